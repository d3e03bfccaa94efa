#include "export/ListingExport.h"

#include "export/ExportWalk.h"

#include <QFile>

namespace ff {

ListingExport::ListingExport(const ExportSource &source, const PageAllowed &allowed)
    : source_(source), columns_(TabWalkColumns(source.design, allowed, TabWalkOrder::TextComboCheckNote))
{
}

Result<ExportOutcome> ListingExport::run(const ExportRange &range, const QString &path, Progress *progress)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    ExportRecordReader reader(source_, ExportRecordReader::Mode::Values,
                              range.order() == BrowseOrder::FileOrder ? ExportRecordReader::Access::InOrder
                                                                      : ExportRecordReader::Access::Jumping);
    std::string out;
    size_t column = 0; // characters in the open line
    const auto line = [&](const std::string &text) {
        out += text;
        out += "\r\n";
        column = 0;
    };
    const auto flush = [&]() -> Status {
        if (file.write(out.data(), qint64(out.size())) != qint64(out.size()))
            return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
        out.clear();
        return {};
    };
    std::string value;
    Result<WalkEnd> walked = WalkExportRange(range, progress, 10, [&](int, int record) -> Status {
        if (Status s = reader.load(record); !s)
            return s;
        line(std::string());
        line("Record No. " + std::to_string(record));
        line(std::string());
        for (const ExportColumn &c : columns_) {
            value.clear();
            reader.appendValue(c, value);
            if (c.kind == ElementKind::Check) {
                out += value;
                column += value.size();
                const size_t zone = (column / kTabZone + 1) * kTabZone;
                out.append(zone - column, ' ');
                column = zone;
            } else if (value.empty()) {
                continue;
            } else if (c.kind == ElementKind::Note) {
                line(std::string());
                line(value);
                line(std::string());
            } else {
                line(value);
            }
        }
        return out.size() > (1 << 20) ? flush() : Status();
    });
    if (column > 0)
        out += "\r\n";
    const Status written = flush();
    if (!walked)
        return walked.error();
    if (!written)
        return written.error();
    ExportOutcome outcome;
    outcome.path = path;
    outcome.records = walked->done;
    outcome.stopped = walked->stopped;
    return outcome;
}

} // namespace ff
