#include "export/TextImport.h"

#include "core/FixedClock.h"
#include "entry/EngineFormulaHooks.h"
#include "export/ImportAppender.h"
#include "export/ImportLineMachine.h"
#include "export/ImportRecordMaker.h"
#include "formula/FormulaContext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <atomic>
#include <memory>
#include <thread>

namespace ff {

namespace {

constexpr qint64 kReadBlock = 4 << 20;   // bytes read from the file at a time
constexpr int kBatchRows = 8192;          // rows made and written together
constexpr size_t kBatchBytes = 16 << 20;  // ... or fewer when they are long
constexpr size_t kMaxCarry = 256u << 20;  // a line or quoted value longer than this is a broken file
constexpr qint64 kMaxHeader = 1 << 20;
constexpr int kMaxWarnings = 50;

// A new record's page, as the store's new-record routine makes it.
void makeBlankPage(RecordStore &store, Page &page)
{
    const Design &design = store.design();
    const RecordLayout &layout = store.layout();
    for (size_t i = 1; i < design.Fields.size() && qsizetype(i) < page.FieldText.size(); ++i) {
        if (layout.FieldOffset[i] == 0)
            continue;
        page.FieldText[qsizetype(i)].clear();
        page.FieldDate[qsizetype(i)] = 0;
        store.hooks().SetFieldDefault(page, int(i), design.ShowZeros == 1);
        if (design.Fields[i].FieldDefault == 1) {
            page.FieldDate[qsizetype(i)] = 0;
            page.FieldText[qsizetype(i)].clear();
        }
    }
    for (size_t i = 0; i < design.Checks.size() && qsizetype(i) < page.CheckValue.size(); ++i)
        page.CheckValue[qsizetype(i)] = design.Checks[i].CheckDefault ? 1 : 0;
    page.RecordStamp = FormulaHooks::Today(store.clock());
}

bool formulasShowMessages(const Design &design)
{
    for (size_t i = 1; i < design.Fields.size(); ++i)
        if (design.Fields[i].FieldFormula.contains(QLatin1String("MSGBOX"), Qt::CaseInsensitive))
            return true;
    return false;
}

bool hasFormulas(const Design &design)
{
    for (size_t i = 1; i < design.Fields.size(); ++i)
        if (!design.Fields[i].FieldFormula.isEmpty())
            return true;
    return false;
}

// One thread's share of the work: a maker with its own page and, when formulas run on more than
// one thread, its own formula context and engine.
struct Worker {
    std::unique_ptr<FixedClock> clock;
    std::unique_ptr<FormulaContext> context;
    std::unique_ptr<EngineFormulaHooks> hooks;
    std::unique_ptr<ImportRecordMaker> maker;
    QStringList warnings;
};

class TextImportRun {
public:
    TextImportRun(const QString &fileName, const ImportSetup &setup)
        : fileName_(fileName), setup_(setup), store_(*setup.store), design_(store_.design()),
          codePage_(design_.FontCharset), blank_(design_), appender_(store_, setup.messages),
          machine_(codePage_.encode(design_.FieldSeparator), design_.FontCharset)
    {
    }

    ~TextImportRun()
    {
        if (helper_.joinable())
            helper_.join();
    }

    Result<ImportReport> run();

private:
    Status readHeader(QFile &file);
    void makeWorkers();
    // A batch of rows: numbered and its pictures stored on this thread, then made into records
    // by the helper thread while this one reads the next batch, and written in one piece.
    struct Batch {
        ImportRows rows;
        std::vector<QString> pictureNames; // rows x pictures
        std::vector<char> records;
        int64_t first = 0;
        int take = 0;
        bool withPictures = false;
        int32_t nextPicture = 0; // NextPictureNumber once its pictures are stored
        std::atomic<int> nextChunk{0};
    };
    Status flush();
    void makeChunks(Worker &worker, Batch &batch);
    Status finishInFlight();
    QStringList storePictures(const ImportRows &rows, int row);
    QString pictureSource(const QString &value) const;
    void warn(const QString &text);

    QString fileName_;
    const ImportSetup &setup_;
    RecordStore &store_;
    const Design &design_;
    CodePage codePage_;
    Page blank_;
    ImportAppender appender_;
    ImportLineMachine machine_;
    ImportColumns columns_;
    ImportRows rows_;
    std::vector<std::unique_ptr<Worker>> workers_;
    Batch batches_[2];
    int inFlight_ = -1; // the batch being made, or -1
    std::thread helper_;
    std::vector<char> pending_;         // the part of a line that a read block cut off
    int32_t nextPicture_ = 0;
    ImportReport report_;
    int warnings_ = 0;
};

void TextImportRun::warn(const QString &text)
{
    if (++warnings_ <= kMaxWarnings)
        report_.warnings << text;
    else if (warnings_ == kMaxWarnings + 1)
        report_.warnings << QStringLiteral("... and more");
}

Status TextImportRun::readHeader(QFile &file)
{
    QByteArray line = file.readLine(kMaxHeader);
    if (!line.endsWith('\n') && !file.atEnd())
        return makeError(ErrorCode::Invalid, QStringLiteral("%1: the head row is longer than %2 MB: not a delimited text")
                                                 .arg(fileName_).arg(kMaxHeader >> 20));
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    if (line.startsWith("\xEF\xBB\xBF"))
        line.remove(0, 3); // a byte order mark ahead of the first name
    QStringList header;
    for (const QByteArray &name : machine_.splitHeader(line.constData(), line.size()))
        header << codePage_.decode(name).toUpper();
    columns_ = ImportColumns::match(design_, header);
    if (columns_.matched == 0)
        return makeError(ErrorCode::Invalid,
                         QStringLiteral("%1: no column of the head row names a field of the design").arg(fileName_));
    return {};
}

void TextImportRun::makeWorkers()
{
    const QChar separator = store_.codec().decimalSeparator();
    const bool formulas = hasFormulas(design_);
    // Formulas run on two threads only with an engine and context of each thread's own, and not
    // when they may show a message: messages belong to the user-interface thread.
    const bool twoThreads = std::thread::hardware_concurrency() > 1
                            && (!formulas || (setup_.formulaContext && !formulasShowMessages(design_)));
    const int count = twoThreads ? 2 : 1;
    for (int k = 0; k < count; ++k) {
        auto w = std::make_unique<Worker>();
        FormulaHooks *hooks = &store_.hooks();
        QLocale locale;
        if (setup_.formulaContext) {
            w->context = std::make_unique<FormulaContext>(*setup_.formulaContext);
            // The whole import happens at one moment: reading the system clock for every record
            // costs more than the formulas themselves.
            w->clock = std::make_unique<FixedClock>(setup_.formulaContext->clock->now());
            w->context->clock = w->clock.get();
            if (count > 1)
                w->context->host = nullptr;
            locale = w->context->locale;
            if (count > 1 || formulas) {
                w->hooks = std::make_unique<EngineFormulaHooks>(*w->context);
                hooks = w->hooks.get();
            }
        }
        w->maker = std::make_unique<ImportRecordMaker>(design_, store_.layout(), columns_, *hooks, separator, blank_, locale);
        workers_.push_back(std::move(w));
    }
    // With one thread and the caller's context, the store's own hooks run the formulas, so that
    // messages go where the store's go.
    if (count == 1 && setup_.formulaContext && formulas) {
        workers_[0]->maker = std::make_unique<ImportRecordMaker>(design_, store_.layout(), columns_, store_.hooks(),
                                                                 separator, blank_, setup_.formulaContext->locale);
    }
}

QString TextImportRun::pictureSource(const QString &value) const
{
    const QString name = value.trimmed();
    if (name.isEmpty())
        return {};
    const QFileInfo given(name);
    if (given.isAbsolute())
        return given.isFile() ? name : QString();
    // Beside the text file, in the Pictures folder an export writes beside it, or as given.
    const QDir folder = QFileInfo(fileName_).absoluteDir();
    for (const QString &candidate : {folder.filePath(name), folder.filePath(QStringLiteral("Pictures/") + name), name})
        if (QFileInfo(candidate).isFile())
            return candidate;
    return {};
}

// The record pictures of one row, stored in row order so that each takes the next number.
QStringList TextImportRun::storePictures(const ImportRows &rows, int row)
{
    QStringList names;
    for (size_t i = 0; i < design_.Pictures.size(); ++i) {
        names << QString();
        const int column = columns_.picture[i];
        if (column < 0 || column >= rows.valueCount(row))
            continue;
        const std::string_view value = rows.value(row, column);
        const QString source = pictureSource(codePage_.decode(value.data(), qsizetype(value.size())));
        if (source.isEmpty())
            continue; // no such file: the field stays empty
        ImportedPicture picture;
        picture.source = source;
        picture.folder = store_.RecordPictureFolder();
        picture.widthTwips = int(design_.Pictures[i].Width);
        picture.heightTwips = int(design_.Pictures[i].Height);
        picture.number = nextPicture_ + 1;
        Result<QString> stored = setup_.pictures->storePicture(picture);
        if (!stored) {
            warn(QStringLiteral("%1: %2").arg(source, stored.error().text));
            continue;
        }
        ++nextPicture_;
        ++report_.picturesStored;
        // The record keeps eight characters: the number, without ".jpg" when the whole name is longer.
        QString name = *stored;
        if (name.size() > kPictureNameLength && name.contains(QLatin1Char('.')))
            name = name.left(name.lastIndexOf(QLatin1Char('.')));
        names.last() = name;
    }
    return names;
}

Status TextImportRun::flush()
{
    const int rows = rows_.rowCount();
    if (rows == 0)
        return {};
    Batch &batch = batches_[inFlight_ == 0 ? 1 : 0];
    // Numbers first: the rows past the record limit are not stored.
    batch.first = 0;
    batch.take = 0;
    for (; batch.take < rows; ++batch.take) {
        const std::optional<int64_t> n = appender_.nextRecord();
        if (!n)
            break;
        if (batch.take == 0)
            batch.first = *n;
    }
    if (batch.take < rows)
        report_.limitReached = true;
    const size_t pictures = design_.Pictures.size();
    batch.withPictures = setup_.pictures && columns_.pictureColumns > 0 && pictures > 0;
    if (batch.withPictures) {
        batch.pictureNames.assign(size_t(batch.take) * pictures, QString());
        for (int r = 0; r < batch.take; ++r) {
            const QStringList names = storePictures(rows_, r);
            for (size_t i = 0; i < pictures; ++i)
                batch.pictureNames[size_t(r) * pictures + i] = names.value(qsizetype(i));
        }
    }
    batch.nextPicture = nextPicture_;
    batch.rows.clear();
    std::swap(batch.rows, rows_);
    // The batch before this one is finished (this thread lends a hand) before this one starts.
    if (Status done = finishInFlight(); !done)
        return done;
    if (batch.take == 0)
        return {};
    batch.records.resize(size_t(batch.take) * size_t(store_.layout().RecordLength));
    batch.nextChunk = 0;
    inFlight_ = &batch == &batches_[0] ? 0 : 1;
    if (workers_.size() > 1)
        helper_ = std::thread([this, &batch] { makeChunks(*workers_[1], batch); });
    return {};
}

void TextImportRun::makeChunks(Worker &worker, Batch &batch)
{
    constexpr int kChunk = 256;
    const size_t length = size_t(store_.layout().RecordLength);
    const size_t pictures = design_.Pictures.size();
    for (;;) {
        const int from = batch.nextChunk.fetch_add(1) * kChunk;
        if (from >= batch.take)
            return;
        const int to = std::min(batch.take, from + kChunk);
        for (int r = from; r < to; ++r)
            worker.maker->make(batch.rows, r, batch.first + r,
                               batch.withPictures ? &batch.pictureNames[size_t(r) * pictures] : nullptr,
                               batch.records.data() + size_t(r) * length, worker.warnings);
    }
}

Status TextImportRun::finishInFlight()
{
    if (inFlight_ < 0)
        return {};
    Batch &batch = batches_[inFlight_];
    inFlight_ = -1;
    makeChunks(*workers_[0], batch);
    if (helper_.joinable())
        helper_.join();
    for (auto &w : workers_) {
        for (const QString &text : std::as_const(w->warnings))
            warn(text);
        w->warnings.clear();
    }
    if (batch.withPictures)
        if (Status s = appender_.setNextPictureNumber(batch.nextPicture); !s)
            return s;
    return appender_.write(batch.first, batch.records.data(), batch.take);
}

Result<ImportReport> TextImportRun::run()
{
    QFile file(fileName_);
    if (!file.open(QIODevice::ReadOnly))
        return makeError(ErrorCode::FileNotFound, QStringLiteral("%1: %2").arg(fileName_, file.errorString()));
    if (Status header = readHeader(file); !header)
        return header.error();
    if (columns_.pictureColumns > 0 && !setup_.pictures)
        warn(QStringLiteral("the picture columns were passed over: no picture store"));

    makeBlankPage(store_, blank_);
    if (Status begun = appender_.begin(setup_.storeWasEmpty); !begun)
        return begun.error();
    nextPicture_ = appender_.nextPictureNumber();
    makeWorkers();

    const qint64 total = std::max<qint64>(1, file.size());
    qint64 done = file.pos();
    int percent = -1;
    Status failed;
    std::vector<char> block(static_cast<size_t>(kReadBlock));
    bool atEnd = false;
    while (!atEnd && failed.ok() && !report_.limitReached && !report_.stopped) {
        const qint64 got = file.read(block.data(), kReadBlock);
        if (got < 0) {
            failed = makeError(ErrorCode::PathError, QStringLiteral("%1: %2").arg(fileName_, file.errorString()));
            break;
        }
        atEnd = got == 0;
        const char *p = block.data();
        const char *end = p + got;
        while (failed.ok() && !report_.limitReached) {
            const char *lineEnd = atEnd ? nullptr : static_cast<const char *>(std::memchr(p, '\n', size_t(end - p)));
            const char *line;
            qsizetype size;
            if (lineEnd) {
                if (!pending_.empty()) {
                    pending_.insert(pending_.end(), p, lineEnd);
                    line = pending_.data();
                    size = qsizetype(pending_.size());
                } else {
                    line = p;
                    size = lineEnd - p;
                }
                done += (lineEnd - p) + 1;
                p = lineEnd + 1;
            } else if (atEnd && !pending_.empty()) {
                line = pending_.data(); // the last line, with no line end
                size = qsizetype(pending_.size());
            } else {
                pending_.insert(pending_.end(), p, end);
                if (pending_.size() > kMaxCarry)
                    failed = makeError(ErrorCode::Invalid, QStringLiteral("%1: a line runs on past %2 MB")
                                                               .arg(fileName_).arg(kMaxCarry >> 20));
                break;
            }
            if (size > 0 && line[size - 1] == '\r')
                --size;
            machine_.feedLine(line, size, rows_);
            pending_.clear();
            if (machine_.pending() && machine_.carrySize() > kMaxCarry) {
                failed = makeError(ErrorCode::Invalid, QStringLiteral("%1: a quoted value runs on past %2 MB")
                                                           .arg(fileName_).arg(kMaxCarry >> 20));
                break;
            }
            if (setup_.progress) {
                const int now = int(std::min<qint64>(100, done * 100 / total));
                if (now != percent)
                    setup_.progress->setPercent(percent = now);
                if (setup_.progress->cancelled()) {
                    report_.stopped = true;
                    break;
                }
            }
            if (rows_.rowCount() >= kBatchRows || rows_.byteSize() >= kBatchBytes)
                failed = flush();
            if (report_.stopped || atEnd)
                break;
        }
    }
    if (failed.ok())
        failed = flush();
    if (Status last = finishInFlight(); failed.ok())
        failed = last;
    if (failed.ok() && machine_.pending() && !report_.stopped && !report_.limitReached)
        warn(QStringLiteral("the file ends inside a quoted value: its last row was not imported"));
    report_.added = int(appender_.written());
    report_.firstRecord = int(appender_.firstWritten());
    const Status finished = appender_.finish();
    if (!failed) {
        Error error = failed.error();
        if (report_.added > 0)
            error.text += QStringLiteral(" (%1 records were added before it)").arg(report_.added);
        return error;
    }
    if (!finished)
        return finished.error();
    return report_;
}

} // namespace

Result<ImportReport> TextImport::run(const QString &fileName, const ImportSetup &setup)
{
    if (!setup.store)
        return makeError(ErrorCode::Invalid, QStringLiteral("no record store"));
    TextImportRun run(fileName, setup);
    return run.run();
}

} // namespace ff
