#include "export/TemplateExport.h"

#include "export/ExportKinds.h"
#include "export/ExportWalk.h"
#include "formula/SubstituteTags.h"

#include <QDir>
#include <QFile>

namespace ff {

TemplateExport::TemplateExport(const ExportSource &source, int templateIndex, bool oneFile)
    : source_(source), index_(templateIndex), oneFile_(oneFile)
{
}

Status TemplateExport::check() const
{
    if (index_ < 0 || index_ >= kTemplateCount)
        return makeError(ErrorCode::Invalid, QStringLiteral("there is no template %1 (0 to 9)").arg(index_));
    const Template &t = source_.design.Templates[size_t(index_)];
    if (t.TemplateExtension.isEmpty())
        return makeError(ErrorCode::Invalid, QStringLiteral("the design has no template %1").arg(index_));
    if (t.TemplateText.isEmpty())
        return makeError(ErrorCode::Invalid, QStringLiteral("template %1 (%2) is empty").arg(index_).arg(t.TemplateExtension));
    if (TemplateFileExtension(t.TemplateExtension).isNull())
        return makeError(ErrorCode::BadFileName,
                         QStringLiteral("the extension of template %1 (%2) is not a plain extension").arg(index_).arg(t.TemplateExtension));
    return {};
}

Result<ExportOutcome> TemplateExport::run(const ExportRange &range, const QString &base, Progress *progress)
{
    if (Status s = check(); !s)
        return s.error();
    const Template &t = source_.design.Templates[size_t(index_)];
    const QString extension = TemplateFileExtension(t.TemplateExtension);
    ExportOutcome outcome;
    QString prefix = base;
    if (oneFile_) {
        outcome.path = base;
    } else {
        if (!QDir().mkpath(base))
            return makeError(ErrorCode::PathError, QStringLiteral("cannot make the folder %1").arg(base));
        prefix = base + QLatin1Char('/');
        outcome.path = base;
    }
    ExportRecordReader reader(source_, ExportRecordReader::Mode::Page, ExportRecordReader::Access::Jumping);
    // One file holds the first record alone.
    Result<WalkEnd> walked = WalkExportRange(oneFile_ ? range.head(1) : range, progress, 10, [&](int, int record) -> Status {
        if (Status s = reader.load(record); !s)
            return s;
        QString text = t.TemplateText;
        SubstituteTags(text, reader.page(), reader.context());
        const QString path = prefix + QString::number(record) + extension;
        QFile file(path);
        const QByteArray bytes = source_.codePage.encode(text) + "\r\n";
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
            return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
        if (oneFile_)
            outcome.path = path;
        ++outcome.records;
        return {};
    });
    if (!walked)
        return walked.error();
    outcome.stopped = walked->stopped;
    return outcome;
}

} // namespace ff
