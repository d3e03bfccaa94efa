#include "export/RecordCopyExport.h"

#include "core/Scramble.h"
#include "design/AppPaths.h"
#include "export/ExportKinds.h"
#include "export/ExportWalk.h"
#include "store/RecordFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <memory>

namespace ff {

QString RecordCopyExport::fileName(const QString &base) const
{
    return base + QLatin1Char('.') + source_.design.DataExtension;
}

QString RecordCopyExport::pictureFolder(const QString &dataFileName) const
{
    const QFileInfo info(dataFileName);
    QString name = ProperCase(info.fileName());
    const QString dotExt = QLatin1Char('.') + source_.design.DataExtension;
    const qsizetype at = name.lastIndexOf(dotExt, -1, Qt::CaseInsensitive);
    if (at >= 0 && !source_.design.DataExtension.isEmpty())
        name.replace(at, dotExt.size(), QStringLiteral("Pics"));
    else
        name += QStringLiteral("Pics");
    return QDir(info.absolutePath()).filePath(name);
}

namespace {

bool samePath(const QString &a, const QString &b)
{
    const QFileInfo x(a), y(b);
    if (x.exists() && y.exists())
        return x.canonicalFilePath() == y.canonicalFilePath();
    return QDir::cleanPath(x.absoluteFilePath()) == QDir::cleanPath(y.absoluteFilePath());
}

} // namespace

Result<ExportOutcome> RecordCopyExport::run(const ExportRange &range, const QString &base, Progress *progress)
{
    const RecordFile &source = source_.file;
    const int length = source.RecordLength();
    RecordFile target;
    target.setFileSet(fileName(base), length, false);
    if (samePath(target.partName(0), source.partName(0)) || samePath(target.partName(1), source.partName(1)))
        return makeError(ErrorCode::BadFileName,
                         QStringLiteral("%1 is the database's own file set; choose another name").arg(target.partName(0)));
    // A new file set: what an earlier copy of the same name left is removed first.
    for (int part = target.probeLastPart(); part >= 1; --part)
        QFile::remove(target.partName(part));
    QFile::remove(target.partName(0));

    ExportOutcome outcome;
    outcome.path = target.partName(0);
    QFile part;
    int openPart = -1;
    const auto openAt = [&](int number) -> Status {
        if (number == openPart)
            return {};
        part.close();
        part.setFileName(target.partName(number));
        if (!part.open(QIODevice::ReadWrite))
            return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(part.fileName(), part.errorString()));
        openPart = number;
        return {};
    };
    // The header of a new database: the date, the title from position 9, NextPictureNumber at 10.
    if (Status s = openAt(0); !s)
        return s.error();
    QByteArray header(std::max(0, length - 1), ' ');
    QByteArray title = source_.codePage.encode(source_.design.MainCap);
    for (int k = 0; k < title.size() && 8 + k < header.size(); ++k)
        header[8 + k] = title[k];
    const double created = source_.context.Now();
    for (int k = 0; k < 8 && k < header.size(); ++k)
        header[k] = reinterpret_cast<const char *>(&created)[k];
    for (int k = 0; k < 4 && 9 + k < header.size(); ++k)
        header[9 + k] = char((uint32_t(source_.NextPictureNumber) >> (8 * k)) & 0xFF);
    if (part.write(header) != header.size())
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(part.fileName(), part.errorString()));

    QString pictures;
    if (source_.design.HasRecordPictures) {
        pictures = pictureFolder(target.partName(0));
        QDir().mkpath(pictures);
        outcome.path = target.partName(0);
    }
    RecordScanner scanner(source, source_.recordCount, source_.design.ScrambleRecords == 1);
    const RecordScanner::Access access =
        range.order() == BrowseOrder::FileOrder ? RecordScanner::Access::Forward : RecordScanner::Access::Random;
    QByteArray buffer(length, ' ');
    int copies = 0;
    Result<WalkEnd> walked = WalkExportRange(range, progress, 10, [&](int, int record) -> Status {
        const uint8_t *plain = scanner.record(record, access);
        if (!plain)
            return makeError(ErrorCode::PathError, QStringLiteral("record %1 cannot be read").arg(record));
        std::memcpy(buffer.data(), plain, size_t(length));
        if (source_.design.ScrambleRecords == 1)
            ScrambleBytes(buffer.data(), buffer.size()); // the copy is stored as the source is
        const RecordPosition at = target.readPosition(++copies);
        if (Status s = openAt(at.part); !s)
            return s;
        if (!part.seek(at.position - 1) || part.write(buffer) != buffer.size())
            return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(part.fileName(), part.errorString()));
        if (!pictures.isEmpty() && !source_.recordPictureFolder.isEmpty()) {
            for (size_t i = 0; i < source_.design.Pictures.size(); ++i) {
                const int offset = source_.layout.PictureOffset[i];
                if (!offset)
                    continue;
                const QString name =
                    source_.codePage.decode(reinterpret_cast<const char *>(plain) + offset - 1, kPictureNameLength).trimmed();
                // Names come from the record: only plain names, only into the copy's folder.
                if (!IsPlainFileName(name) || !QFileInfo::exists(source_.recordPictureFolder + name))
                    continue;
                const QString to = QDir(pictures).filePath(name);
                QFile::remove(to);
                if (QFile::copy(source_.recordPictureFolder + name, to))
                    ++outcome.pictures;
            }
        }
        return {};
    });
    part.close();
    if (!walked)
        return walked.error();
    outcome.records = walked->done;
    outcome.stopped = walked->stopped;
    return outcome;
}

} // namespace ff
