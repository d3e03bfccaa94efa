#include "export/DelimitedTextExport.h"

#include "export/ExportKinds.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <charconv>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <thread>

namespace ff {

struct DelimitedTextExport::Chunk {
    int first = 0;
    int count = 0;
    std::string bytes;
    std::vector<size_t> ends;                      // where each record's row ends in `bytes`
    std::vector<std::pair<int, QString>> pictures; // (row in the chunk, picture name) to copy
    Status status;
};

DelimitedTextExport::DelimitedTextExport(const ExportSource &source, const PageAllowed &allowed) : source_(source)
{
    columns_ = TabWalkColumns(source.design, allowed);
    const std::vector<ExportColumn> pictures = PictureColumns(source.design, allowed);
    columns_.insert(columns_.end(), pictures.begin(), pictures.end());
    pictureColumns_ = pictures.size();
    // A design without a separator still gets rows that can be read back.
    const QString separator = source.design.FieldSeparator.isEmpty() ? QStringLiteral(",") : source.design.FieldSeparator;
    separator_ = source.codePage.encode(separator).toStdString();
}

QString DelimitedTextExport::fileName(const QString &base) const
{
    const QString extension = source_.design.TextExtension.isEmpty() ? QStringLiteral("txt") : source_.design.TextExtension;
    return base + QLatin1Char('.') + extension;
}

namespace {

// True when some byte of the 8 in `word` equals `byte` (the classic test for a zero byte).
inline bool holdsByte(uint64_t word, uint8_t byte)
{
    const uint64_t x = word ^ (0x0101010101010101ULL * byte);
    return ((x - 0x0101010101010101ULL) & ~x & 0x8080808080808080ULL) != 0;
}

} // namespace

bool DelimitedTextExport::needsQuotes(const char *value, size_t size) const
{
    // Eight bytes at a time for the three bytes that can start trouble; a hit is then looked at.
    const uint8_t separator = separator_.empty() ? uint8_t('"') : uint8_t(separator_[0]);
    size_t k = 0;
    bool suspect = false;
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"'), separate = _mm_set1_epi8(char(separator)), cr = _mm_set1_epi8('\r');
    for (; k + 16 <= size && !suspect; k += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(value + k));
        const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, quote), _mm_cmpeq_epi8(v, separate)),
                                          _mm_cmpeq_epi8(v, cr));
        suspect = _mm_movemask_epi8(hits) != 0;
    }
#endif
    for (; k + 8 <= size && !suspect; k += 8) {
        uint64_t word;
        std::memcpy(&word, value + k, 8);
        suspect = holdsByte(word, '"') || holdsByte(word, separator) || holdsByte(word, '\r');
    }
    for (; k < size && !suspect; ++k)
        suspect = value[k] == '"' || uint8_t(value[k]) == separator || value[k] == '\r';
    if (!suspect)
        return false;
    const std::string_view text(value, size);
    return text.find('"') != std::string_view::npos
        || (!separator_.empty() && text.find(separator_) != std::string_view::npos)
        || text.find("\r\n") != std::string_view::npos;
}

void DelimitedTextExport::appendQuoted(const char *value, size_t size, std::string &out) const
{
    if (!needsQuotes(value, size)) {
        out.append(value, size);
        return;
    }
    out += '"';
    for (size_t k = 0; k < size; ++k) {
        if (value[k] == '"')
            out += '"';
        out += value[k];
    }
    out += '"';
}

void DelimitedTextExport::quoteTail(std::string &out, size_t from) const
{
    if (!needsQuotes(out.data() + from, out.size() - from))
        return;
    const std::string value = out.substr(from);
    out.resize(from);
    appendQuoted(value.data(), value.size(), out);
}

std::string DelimitedTextExport::headRow() const
{
    std::string row = "No.";
    row += separator_;
    for (const ExportColumn &c : columns_) {
        const QByteArray name = source_.codePage.encode(c.name);
        appendQuoted(name.constData(), size_t(name.size()), row);
        row += separator_;
    }
    row.resize(row.size() - separator_.size());
    row += "\r\n";
    return row;
}

void DelimitedTextExport::appendRow(ExportRecordReader &reader, std::string &out) const
{
    char number[16];
    const std::to_chars_result r = std::to_chars(number, number + sizeof number, reader.record());
    out.append(number, size_t(r.ptr - number));
    out += separator_;
    for (const ExportColumn &c : columns_) {
        const size_t from = out.size();
        reader.appendValue(c, out); // written in place, and quoted afterwards in the rare case it must be
        quoteTail(out, from);
        out += separator_;
    }
    out.resize(out.size() - separator_.size());
    out += "\r\n";
}

Status DelimitedTextExport::makeChunk(ExportRecordReader &reader, const ExportRange &range, int first, int count,
                                      Chunk &chunk) const
{
    chunk.first = first;
    chunk.count = 0;
    chunk.bytes.clear();
    chunk.ends.clear();
    chunk.pictures.clear();
    std::string name;
    for (int k = 0; k < count; ++k) {
        if (Status s = reader.load(range.recordAt(first + k)); !s)
            return s;
        appendRow(reader, chunk.bytes);
        chunk.ends.push_back(chunk.bytes.size());
        ++chunk.count;
        for (size_t p = columns_.size() - pictureColumns_; p < columns_.size(); ++p) {
            name.clear();
            reader.appendValue(columns_[p], name);
            if (!name.empty())
                chunk.pictures.emplace_back(k, source_.codePage.decode(name.data(), qsizetype(name.size())));
        }
    }
    return {};
}

int DelimitedTextExport::copyPicture(const QString &name, const QString &folder) const
{
    // The name comes from the record: only a plain name is copied, and only into the folder.
    if (source_.recordPictureFolder.isEmpty() || !IsPlainFileName(name))
        return 0;
    const QString from = source_.recordPictureFolder + name;
    if (!QFileInfo::exists(from))
        return 0;
    const QString to = QDir(folder).filePath(name.contains(QLatin1Char('.')) ? name : name + QStringLiteral(".jpg"));
    QFile::remove(to);
    return QFile::copy(from, to) ? 1 : 0;
}

Result<ExportOutcome> DelimitedTextExport::run(const ExportRange &range, const QString &path, Progress *progress,
                                               int threads, ExportRecordReader::Mode mode)
{
    ExportOutcome outcome;
    outcome.path = path;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    const std::string head = headRow();
    if (file.write(head.data(), qint64(head.size())) != qint64(head.size()))
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));

    const int first = range.ExportFirst();
    const int total = range.size();
    const int chunks = (total + kChunkRecords - 1) / kChunkRecords;
    if (threads <= 0)
        threads = total >= kTwoThreadsFrom ? 2 : 1;
    threads = std::max(1, std::min(threads, chunks));
    const ExportRecordReader::Access access = range.order() == BrowseOrder::FileOrder
                                                  ? ExportRecordReader::Access::InOrder
                                                  : ExportRecordReader::Access::Jumping;
    // Numbers are learned once for all readers.
    FormulaContext context = source_.context;
    context.host = nullptr;
    EngineFormulaHooks hooks(context);
    const RecordCodec codec(source_.design, source_.layout, hooks, source_.decimalSeparator);
    const std::unique_ptr<StoredValueText> values = storedValueText(source_, codec);
    const QString pictureFolder = QDir(QFileInfo(path).absolutePath()).filePath(QStringLiteral("Pictures"));

    // Thread w makes chunks w, w + threads, ...: the calling thread (w 0) makes its own and writes
    // all of them in order, the helpers hand theirs over through their lanes, at most two ahead.
    struct Lane {
        std::mutex mutex;
        std::condition_variable changed;
        std::deque<Chunk> ready;
    };
    std::vector<Lane> lanes(static_cast<size_t>(threads));
    std::atomic<bool> quit{false};
    const auto work = [&](int w) {
        ExportRecordReader reader(source_, mode, access, values.get());
        Lane &lane = lanes[size_t(w)];
        for (int c = w; c < chunks && !quit.load(); c += threads) {
            Chunk chunk;
            const int from = first + c * kChunkRecords;
            chunk.status = makeChunk(reader, range, from, std::min(kChunkRecords, first + total - from), chunk);
            std::unique_lock<std::mutex> lock(lane.mutex);
            lane.changed.wait(lock, [&] { return lane.ready.size() < 2 || quit.load(); });
            lane.ready.push_back(std::move(chunk));
            lane.changed.notify_all();
        }
    };
    std::vector<std::thread> helpers;
    for (int w = 1; w < threads; ++w)
        helpers.emplace_back(work, w);
    ExportRecordReader ownReader(source_, mode, access, values.get());

    Status failure;
    bool picturesFolderMade = false;
    for (int c = 0; c < chunks && failure && !outcome.stopped; ++c) {
        Chunk chunk;
        if (c % threads != 0) {
            Lane &lane = lanes[size_t(c % threads)];
            std::unique_lock<std::mutex> lock(lane.mutex);
            lane.changed.wait(lock, [&] { return !lane.ready.empty(); });
            chunk = std::move(lane.ready.front());
            lane.ready.pop_front();
            lane.changed.notify_all();
        } else {
            const int from = first + c * kChunkRecords;
            chunk.status = makeChunk(ownReader, range, from, std::min(kChunkRecords, first + total - from), chunk);
        }
        // Rows are committed one by one, so that a stop at index i keeps exactly the rows before i.
        int rows = chunk.count;
        for (int k = 0; k < chunk.count && progress; ++k) {
            const int index = chunk.first + k;
            if (index % 10 != 0)
                continue;
            progress->setPercent(range.percentAt(index));
            if (progress->cancelled()) {
                rows = k;
                outcome.stopped = true;
                break;
            }
        }
        const size_t bytes = rows > 0 ? chunk.ends[size_t(rows) - 1] : 0;
        if (bytes > 0 && file.write(chunk.bytes.data(), qint64(bytes)) != qint64(bytes)) {
            failure = makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
            break;
        }
        outcome.records += rows;
        for (const auto &[row, name] : chunk.pictures) {
            if (row >= rows)
                break;
            if (!picturesFolderMade)
                picturesFolderMade = QDir().mkpath(pictureFolder);
            outcome.pictures += copyPicture(name, pictureFolder);
        }
        if (!chunk.status && rows == chunk.count)
            failure = chunk.status;
    }
    quit = true;
    for (Lane &lane : lanes) {
        std::lock_guard<std::mutex> lock(lane.mutex);
        lane.changed.notify_all();
    }
    for (std::thread &t : helpers)
        t.join();
    if (!file.flush())
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    if (!failure)
        return failure.error();
    return outcome;
}

} // namespace ff
