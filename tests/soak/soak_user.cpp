// Several copies of the program working on one record file at once, and the check of what they
// leave behind.
//
//   ff_soak_user run DIR USERS EDITS SEED      makes DIR/soak.dat, starts USERS users, verifies
//   ff_soak_user user DATA ID EDITS SEED LOG   one user: EDITS random steps, each logged
//   ff_soak_user make DATA                     the first records alone
//   ff_soak_user crash DATA replace|add|save   works until killed, after printing "ready"
//   ff_soak_user check DATA                    counts records that are not whole
//
// What the crash modes touch: replace writes the mark of the records in bucket 3, add adds
// records, save writes new versions of records 2 to 21.
//
// Every version of a record names itself: its writer, the writer's sequence number, the version
// it replaced (read under the record's lock), a bucket and a payload, and a check over all of
// them and the record number. A replace over a search writes only the mark field, with a mark of
// its own. The verifier then reads every record and the users' logs:
//   - a record whose check does not match its fields is torn;
//   - a version no log wrote is unknown;
//   - two versions of one record that replaced the same version mean one was written while the
//     other user held the record (a fork);
//   - following the versions from the first, the chain must end at the stored version and take in
//     every logged version of the record;
//   - a mark is empty or one a replace wrote;
//   - the count is the first records plus every add; two adds of one number would be the
//     last-write-wins loss of simultaneous adds (counted and reported).

#include "design/Page.h"
#include "search/SearchEngine.h"
#include "store/RecordStore.h"
#include "support/StoreDesigns.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QSet>
#include <QTextStream>

#include <chrono>
#include <cstdio>
#include <random>
#include <thread>

using namespace ff;

namespace {

enum SoakField { Writer = 1, Seq, Prev, Bucket, Payload, Check, Mark, FieldCount = Mark };
constexpr int kInitialRecords = 200;

Design soakDesign()
{
    Design d;
    d.MainCap = QStringLiteral("Soak");
    d.DataExtension = QStringLiteral("dat");
    const struct {
        const char *tag;
        int length;
    } fields[] = {{"writer", 4}, {"seq", 8}, {"prev", 14}, {"bucket", 2}, {"payload", 48}, {"check", 8}, {"mark", 12}};
    d.Fields.resize(FieldCount + 1);
    for (int i = 1; i <= FieldCount; ++i) {
        d.Fields[i] = testsupport::makeField(0, fields[i - 1].length);
        d.Fields[i].Tag = QLatin1String(fields[i - 1].tag);
    }
    d.FieldCount = FieldCount;
    testsupport::addLabels(d, 8);
    return d;
}

// The fields of one version, as text.
struct Version {
    QString writer, seq, prev, bucket, payload, check, mark;
    QString id() const { return writer + QLatin1Char(':') + seq; }
};

QString checkOf(int record, const Version &v)
{
    const QByteArray all = QStringLiteral("%1|%2|%3|%4|%5|%6").arg(record).arg(v.writer, v.seq, v.prev, v.bucket, v.payload).toLatin1();
    uint32_t hash = 2166136261u;
    for (const char c : all)
        hash = (hash ^ uint8_t(c)) * 16777619u;
    return QStringLiteral("%1").arg(hash, 8, 16, QLatin1Char('0'));
}

Version makeVersion(int record, const QString &writer, int seq, const QString &prev)
{
    Version v;
    v.writer = writer;
    v.seq = QString::number(seq);
    v.prev = prev;
    v.bucket = QString::number(seq % 10);
    const QString unit = QStringLiteral("w%1s%2r%3.").arg(writer).arg(seq).arg(record);
    while (v.payload.size() < 48)
        v.payload += unit;
    v.payload.truncate(48);
    v.check = checkOf(record, v);
    return v;
}

// A version read from the plain bytes of a record, by the design's slots.
Version readVersion(const RecordLayout &layout, const QByteArray &plain)
{
    const auto field = [&](int i) {
        return QString::fromLatin1(plain.mid(layout.FieldOffset[i] - 1, layout.FieldSize[i])).trimmed();
    };
    return Version{field(Writer), field(Seq), field(Prev), field(Bucket), field(Payload), field(Check), field(Mark)};
}

void putOnPage(Page &page, const Version &v)
{
    const QString *texts[] = {&v.writer, &v.seq, &v.prev, &v.bucket, &v.payload, &v.check, &v.mark};
    for (int i = 1; i <= FieldCount; ++i)
        page.FieldText[i] = *texts[i - 1];
}

bool whole(int record, const Version &v) { return !v.writer.isEmpty() && v.check == checkOf(record, v); }

struct Store {
    Design design = soakDesign();
    Page page{design};
    RecordStore store{design, page};
};

// ---- one user ----

int runUser(const QString &data, const QString &id, int edits, quint32 seed, const QString &logPath)
{
    Store s;
    if (!s.store.openFileSet(data, OpenMode::Open, s.design.MainCap)) {
        std::fprintf(stderr, "user %s: cannot open %s\n", qPrintable(id), qPrintable(data));
        return 4;
    }
    QFile logFile(logPath);
    if (!logFile.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 4;
    QTextStream log(&logFile);
    std::mt19937 random(seed);
    const auto pause = [&](int maxMicroseconds) {
        std::this_thread::sleep_for(std::chrono::microseconds(random() % uint32_t(maxMicroseconds + 1)));
    };
    int seq = 0;
    int changes = 0, adds = 0, replaces = 0, reads = 0, refused = 0, tornReads = 0;
    for (int step = 0; step < edits; ++step) {
        pause(300);
        std::ignore = s.store.refreshCount(); // a failed refresh keeps the last count: steps go on
        const int count = s.store.RecordCount();
        const int roll = int(random() % 100);
        if (roll < 50 && count >= 2) {
            // Change a record: show it, start typing (the lock), then write a new version over
            // the one stored when the lock was taken.
            // Half of the changes go to a few records that everybody wants.
            const int span = random() % 2 ? std::min(count - 1, 12) : count - 1;
            const int r = 2 + int(random() % uint32_t(span));
            if (!s.store.JumpToRecord(r))
                continue;
            pause(200);
            if (!s.store.LockRecord() || !s.store.RecordLocked()) {
                ++refused;
                log << "X " << r << '\n';
                continue;
            }
            const Result<QByteArray> stored = s.store.readPlainRecord(r);
            if (!stored) {
                std::ignore = s.store.UnlockRecord();
                continue;
            }
            const Version before = readVersion(s.store.layout(), *stored);
            Version v = makeVersion(r, id, ++seq, before.id());
            v.mark = before.mark;
            putOnPage(s.page, v);
            pause(200);
            if (!s.store.PackRecord()) {
                std::fprintf(stderr, "user %s: the save of record %d failed\n", qPrintable(id), r);
                return 1;
            }
            ++changes;
            log << "C " << r << ' ' << v.id() << ' ' << v.prev << '\n';
        } else if (roll < 65) {
            if (!s.store.NewRecord()) {
                std::fprintf(stderr, "user %s: New was refused\n", qPrintable(id));
                return 1;
            }
            const int r = s.store.CurrentRecord();
            const Version v = makeVersion(r, id, ++seq, QStringLiteral("new"));
            putOnPage(s.page, v);
            if (!s.store.PackRecord()) {
                std::fprintf(stderr, "user %s: the new record %d was not written\n", qPrintable(id), r);
                return 1;
            }
            ++adds;
            log << "A " << r << ' ' << v.id() << '\n';
        } else if (roll < 75) {
            // A replace over a search: the mark of every record in one bucket.
            const QString mark = QStringLiteral("m%1x%2").arg(id).arg(++seq);
            const int bucket = int(random() % 10);
            SearchEngine engine(s.store, QLatin1Char('.'));
            const QString line = QStringLiteral("replace mark=%1 where bucket=%2").arg(mark).arg(bucket);
            const SearchResult result = engine.run(engine.compile(line, false, SearchField()), SearchOptions());
            ++replaces;
            log << "R " << mark << ' ' << bucket << ' ' << result.Replacements << ' ' << result.skippedLocked << '\n';
        } else if (count >= 1) {
            // Read a record and check it: reads take no lock, so a read may meet a write half
            // done or a new record not filled in yet; both are counted, neither is a fault.
            const int r = 1 + int(random() % uint32_t(count));
            const Result<QByteArray> stored = s.store.readPlainRecord(r);
            ++reads;
            if (stored) {
                const Version v = readVersion(s.store.layout(), *stored);
                if (!v.writer.isEmpty() && !whole(r, v)) {
                    ++tornReads;
                    log << "T " << r << '\n';
                }
            }
        }
    }
    log << "S " << changes << ' ' << adds << ' ' << replaces << ' ' << reads << ' ' << refused << ' ' << tornReads << '\n';
    return 0;
}

// ---- the verifier ----

struct Figures {
    int records = 0, torn = 0, unknown = 0, forks = 0, brokenChains = 0, badMarks = 0;
    int changes = 0, adds = 0, replaces = 0, replaced = 0, skippedHeld = 0, reads = 0, refused = 0, tornReads = 0;
    int addCollisions = 0, countMismatch = 0;
    bool faults() const { return torn || unknown || forks || brokenChains || badMarks || countMismatch; }
};

int verify(const QString &data, const QStringList &logs)
{
    Figures f;
    // Versions of each record: id -> the id it replaced.
    QHash<int, QHash<QString, QString>> versions;
    QHash<int, int> addsOf;
    QSet<QString> marks;
    for (int r = 1; r <= kInitialRecords; ++r)
        versions[r].insert(QStringLiteral("0:%1").arg(r), QStringLiteral("init"));
    for (const QString &path : logs) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "no log %s\n", qPrintable(path));
            return 1;
        }
        bool summary = false;
        while (!file.atEnd()) {
            const QStringList w = QString::fromLatin1(file.readLine()).trimmed().split(QLatin1Char(' '));
            if (w[0] == QLatin1String("C")) {
                versions[w[1].toInt()].insert(w[2], w[3]);
            } else if (w[0] == QLatin1String("A")) {
                versions[w[1].toInt()].insert(w[2], QStringLiteral("new"));
                ++addsOf[w[1].toInt()];
            } else if (w[0] == QLatin1String("R")) {
                marks.insert(w[1]);
                f.replaced += w[3].toInt();
                f.skippedHeld += w[4].toInt();
            } else if (w[0] == QLatin1String("S")) {
                summary = true;
                f.changes += w[1].toInt();
                f.adds += w[2].toInt();
                f.replaces += w[3].toInt();
                f.reads += w[4].toInt();
                f.refused += w[5].toInt();
                f.tornReads += w[6].toInt();
            }
        }
        if (!summary) {
            std::fprintf(stderr, "the log %s has no summary: its user did not finish\n", qPrintable(path));
            return 1;
        }
    }
    for (const int n : addsOf)
        f.addCollisions += n - 1;

    Store s;
    if (!s.store.openFileSet(data, OpenMode::Open, s.design.MainCap, true))
        return 1;
    f.records = s.store.RecordCount();
    f.countMismatch = f.records != kInitialRecords + f.adds - f.addCollisions;
    for (int r = 1; r <= f.records; ++r) {
        const Result<QByteArray> stored = s.store.readPlainRecord(r);
        const Version v = stored ? readVersion(s.store.layout(), *stored) : Version();
        if (!whole(r, v)) {
            ++f.torn;
            std::fprintf(stderr, "record %d is torn: %s\n", r, stored ? stored->constData() : "(unreadable)");
            continue;
        }
        if (!v.mark.isEmpty() && !marks.contains(v.mark))
            ++f.badMarks;
        const QHash<QString, QString> &all = versions[r];
        if (!all.contains(v.id())) {
            ++f.unknown;
            continue;
        }
        // The chain: each version's successor is the one that replaced it.
        QHash<QString, QString> next;
        QString first;
        for (auto it = all.cbegin(); it != all.cend(); ++it) {
            if (it.value() == QLatin1String("init") || it.value() == QLatin1String("new")) {
                first = it.key();
                continue;
            }
            if (next.contains(it.value())) {
                ++f.forks;
                std::fprintf(stderr, "record %d: %s and %s both replaced %s\n", r, qPrintable(next[it.value()]),
                             qPrintable(it.key()), qPrintable(it.value()));
            }
            next.insert(it.value(), it.key());
        }
        int length = 1;
        QString at = first;
        while (next.contains(at) && length <= all.size()) {
            at = next[at];
            ++length;
        }
        if (at != v.id() || (length != all.size() && addsOf.value(r) <= 1)) {
            ++f.brokenChains;
            std::fprintf(stderr, "record %d: the chain from %s ends at %s after %d of %lld versions; stored %s\n", r,
                         qPrintable(first), qPrintable(at), length, static_cast<long long>(all.size()), qPrintable(v.id()));
        }
    }
    std::printf("records %d (first %d + adds %d - simultaneous adds lost %d)\n", f.records, kInitialRecords, f.adds,
                f.addCollisions);
    std::printf("edits: changes %d, adds %d, replaces %d (records replaced %d, held records passed over %d), reads %d\n",
                f.changes, f.adds, f.replaces, f.replaced, f.skippedHeld, f.reads);
    std::printf("changes refused by another user's lock %d; reads that met a write half done %d\n", f.refused,
                f.tornReads);
    std::printf("torn records %d, unknown versions %d, writes into held records (forks) %d, broken chains %d, "
                "foreign marks %d, count mismatch %d\n",
                f.torn, f.unknown, f.forks, f.brokenChains, f.badMarks, f.countMismatch);
    return f.faults() ? 1 : 0;
}

// ---- the first records, and the modes the crash test kills ----

int makeFirstRecords(const QString &data)
{
    QFile::remove(data);
    Store s;
    if (!s.store.openFileSet(data, OpenMode::Create, s.design.MainCap) || !s.store.showFirstRecord(OpenMode::Create, true))
        return 4;
    // Version "0:r" of every record, by nobody; record 1 is there already.
    for (int r = 1; r <= kInitialRecords; ++r) {
        if (r > 1 && !s.store.NewRecord())
            return 4;
        putOnPage(s.page, makeVersion(r, QStringLiteral("0"), r, QStringLiteral("init")));
        if (!s.store.PackRecord())
            return 4;
    }
    return 0;
}

int runUntilKilled(const QString &data, const QString &mode)
{
    Store s;
    if (!s.store.openFileSet(data, OpenMode::Open, s.design.MainCap))
        return 4;
    std::printf("ready\n");
    std::fflush(stdout);
    for (int seq = 1;; ++seq) {
        if (mode == QLatin1String("replace")) {
            SearchEngine engine(s.store, QLatin1Char('.'));
            const QString line = QStringLiteral("replace mark=k%1 where bucket=3").arg(seq);
            std::ignore = engine.run(engine.compile(line, false, SearchField()), SearchOptions()); // killed midway
        } else if (mode == QLatin1String("add")) {
            if (!s.store.NewRecord())
                return 1;
            putOnPage(s.page, makeVersion(s.store.CurrentRecord(), QStringLiteral("9"), seq, QStringLiteral("new")));
            if (!s.store.PackRecord())
                return 1;
        } else {
            const int r = 2 + seq % 20;
            if (!s.store.JumpToRecord(r) || !s.store.LockRecord())
                return 1;
            putOnPage(s.page, makeVersion(r, QStringLiteral("9"), seq, QStringLiteral("0:0")));
            if (!s.store.PackRecord())
                return 1;
        }
    }
}

int checkRecords(const QString &data)
{
    Store s;
    if (!s.store.openFileSet(data, OpenMode::Open, s.design.MainCap, true))
        return 4;
    int broken = 0, blank = 0;
    for (int r = 1; r <= s.store.RecordCount(); ++r) {
        const Result<QByteArray> stored = s.store.readPlainRecord(r);
        const Version v = stored ? readVersion(s.store.layout(), *stored) : Version();
        if (stored && v.writer.isEmpty() && v.payload.isEmpty())
            ++blank; // added, not filled in yet
        else if (!whole(r, v) || (!v.mark.isEmpty() && !v.mark.startsWith(QLatin1Char('k'))))
            ++broken;
    }
    std::printf("records %d, not whole %d, blank %d\n", s.store.RecordCount(), broken, blank);
    return broken ? 1 : 0;
}

// ---- the run ----

int runSoak(const QString &dir, int users, int edits, quint32 seed, const QString &self)
{
    QDir().mkpath(dir);
    const QString data = dir + QStringLiteral("/soak.dat");
    if (const int made = makeFirstRecords(data); made != 0)
        return made;
    const auto started = std::chrono::steady_clock::now();
    std::vector<std::unique_ptr<QProcess>> running;
    QStringList logs;
    for (int u = 1; u <= users; ++u) {
        const QString log = dir + QStringLiteral("/user%1.log").arg(u);
        logs << log;
        auto p = std::make_unique<QProcess>();
        p->setProcessChannelMode(QProcess::ForwardedChannels);
        p->start(self, {QStringLiteral("user"), data, QString::number(u), QString::number(edits),
                        QString::number(seed + quint32(u)), log});
        running.push_back(std::move(p));
    }
    bool allDone = true;
    for (auto &p : running) {
        p->waitForFinished(-1);
        allDone = allDone && p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::printf("%d users x %d edits in %.2f s (%.0f edits/s)\n", users, edits, seconds, users * edits / seconds);
    if (!allDone) {
        std::fprintf(stderr, "a user failed\n");
        return 1;
    }
    return verify(data, logs);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList a = app.arguments();
    if (a.size() == 6 && a[1] == QLatin1String("run"))
        return runSoak(a[2], a[3].toInt(), a[4].toInt(), a[5].toUInt(), app.applicationFilePath());
    if (a.size() == 7 && a[1] == QLatin1String("user"))
        return runUser(a[2], a[3], a[4].toInt(), a[5].toUInt(), a[6]);
    if (a.size() == 3 && a[1] == QLatin1String("make"))
        return makeFirstRecords(a[2]);
    if (a.size() == 4 && a[1] == QLatin1String("crash"))
        return runUntilKilled(a[2], a[3]);
    if (a.size() == 3 && a[1] == QLatin1String("check"))
        return checkRecords(a[2]);
    std::fprintf(stderr, "usage: ff_soak_user run DIR USERS EDITS SEED\n"
                         "       ff_soak_user user DATA ID EDITS SEED LOG\n");
    return 2;
}
