#include "export/RecordImport.h"

#include "export/ImportAppender.h"
#include "store/RecordCodec.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

namespace ff {

namespace {

constexpr int64_t kBlockRecords = 8192;
constexpr int kMaxPlausibleLength = 1 << 24;

// The source's parts: the file itself, then its name cut at the last dot with four digits.
QString sourcePart(const QString &first, int part)
{
    if (part < 1)
        return first;
    const qsizetype dot = first.lastIndexOf(QLatin1Char('.'));
    const qsizetype slash = first.lastIndexOf(QLatin1Char('/'));
    const QString base = dot > slash ? first.left(dot) : first;
    return base + QStringLiteral("%1").arg(part, 4, 10, QLatin1Char('0'));
}

QByteArray readBytes(const QString &name, qint64 at, qint64 size)
{
    QFile f(name);
    if (!f.open(QIODevice::ReadOnly) || !f.seek(at))
        return {};
    return f.read(size);
}

} // namespace

std::optional<int> RecordImport::headerRecordLength(const QString &firstFile)
{
    const QByteArray field = readBytes(firstFile, 15, 4);
    if (field.size() != 4)
        return std::nullopt;
    const int32_t length = RecordCodec::readInt32(field, 1);
    if (length < 1 || length > kMaxPlausibleLength)
        return std::nullopt;
    return length;
}

Result<ImportReport> RecordImport::run(const QString &fileName, const ImportSetup &setup)
{
    if (!setup.store)
        return makeError(ErrorCode::Invalid, QStringLiteral("no record store"));
    RecordStore &store = *setup.store;
    const int length = store.layout().RecordLength;
    const QFileInfo info(fileName);
    if (!info.isFile())
        return makeError(ErrorCode::FileNotFound, QStringLiteral("%1: no such file").arg(fileName));

    // The records must be this design's: by the length in the header where it is kept, else by
    // the file's size (the header slot and whole records), and for a file made with a title, the
    // title must be this design's or the header must hold no length at all.
    const int64_t size = info.size();
    const std::optional<int> header = headerRecordLength(fileName);
    bool fits = header && *header == length;
    if (!fits && !header && (size + 1) % length == 0)
        fits = true;
    if (!fits) {
        const QString theirs = header ? QStringLiteral("%1-byte records").arg(*header)
                                      : QStringLiteral("records of another length");
        return makeError(ErrorCode::Invalid,
                         QStringLiteral("%1 holds %2, this design's records are %3 bytes: nothing was imported")
                             .arg(fileName, theirs)
                             .arg(length));
    }

    // How many records the source holds, counted before anything is added (the source may be
    // the store's own file set).
    const int64_t perPart = store.file().RecordsPerPart();
    int lastPart = 0;
    while (lastPart < 9999 && QFileInfo::exists(sourcePart(fileName, lastPart + 1)))
        ++lastPart;
    const int64_t total = lastPart * perPart + QFileInfo(sourcePart(fileName, lastPart)).size() / length;

    ImportReport report;
    ImportAppender appender(store, setup.messages);
    if (Status begun = appender.begin(setup.storeWasEmpty); !begun)
        return begun.error();
    RecordFile source; // only for the positions: records of `length` bytes, parts of perPart
    source.setFileSet(fileName, length, true);
    std::vector<char> block;
    Status failed;
    int64_t record = 1;
    int fd = -1;
    int openPart = -1;
    while (record <= total && failed.ok()) {
        // A block of records that lie one after the other in one source part.
        const RecordPosition start = source.readPosition(record);
        int64_t run = 1;
        while (run < kBlockRecords && record + run <= total) {
            const RecordPosition next = source.readPosition(record + run);
            if (next.part != start.part || next.position != start.position + run * length)
                break;
            ++run;
        }
        if (start.part != openPart) {
            if (fd >= 0)
                ::close(fd);
            fd = ::open(QFile::encodeName(sourcePart(fileName, start.part)).constData(), O_RDONLY | O_CLOEXEC);
            openPart = start.part;
            if (fd < 0) {
                failed = makeError(ErrorCode::PathError, QStringLiteral("%1 cannot be read").arg(sourcePart(fileName, start.part)));
                break;
            }
        }
        block.assign(size_t(run * length), ' ');
        int64_t got = 0;
        while (got < run * length) {
            const ssize_t n = ::pread(fd, block.data() + got, size_t(run * length - got), off_t(start.position - 1 + got));
            if (n <= 0)
                break; // a short part: the rest stays blank
            got += n;
        }
        // The target numbers, as far as the limit allows.
        int64_t first = 0, take = 0;
        for (; take < run; ++take) {
            const std::optional<int64_t> n = appender.nextRecord();
            if (!n)
                break;
            if (take == 0)
                first = *n;
        }
        if (take > 0)
            failed = appender.write(first, block.data(), take);
        if (take < run) {
            report.limitReached = true;
            break;
        }
        record += run;
        if (setup.progress) {
            setup.progress->setPercent(int(std::min<int64_t>(100, (record - 1) * 100 / std::max<int64_t>(1, total))));
            if (setup.progress->cancelled()) {
                report.stopped = true;
                break;
            }
        }
    }
    if (fd >= 0)
        ::close(fd);
    report.added = int(appender.written());
    report.firstRecord = int(appender.firstWritten());
    const Status finished = appender.finish();
    if (!failed)
        return failed.error();
    if (!finished)
        return finished.error();
    return report;
}

} // namespace ff
