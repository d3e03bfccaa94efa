// A second user of a data file of the small test design, in its own process.
//
//   ff_lock_probe DATAFILE RECORDS_PER_PART hold N VALUE
//       locks record N, prints "locked" (or "denied"), waits for a line on stdin, then writes
//       VALUE into field 1 and saves, printing "saved".
//   ff_lock_probe DATAFILE RECORDS_PER_PART edit N VALUE
//       edits field 1 of record N; exit 3 and "denied" when another user holds it.
//   ff_lock_probe DATAFILE RECORDS_PER_PART edits FIRST STEP COUNT PREFIX
//       edits records FIRST, FIRST+STEP, ... writing PREFIX and a counter, retrying while held.
//   ff_lock_probe DATAFILE RECORDS_PER_PART news COUNT PREFIX
//       presses New COUNT times, writing PREFIX and the counter into field 1 of each new record;
//       exit 6 and "refused" when a New is refused.

#include "store/RecordStore.h"
#include "support/StoreDesigns.h"

#include <QCoreApplication>
#include <QThread>

#include <cstdio>
#include <iostream>
#include <string>

using namespace ff;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() < 5) {
        std::fprintf(stderr, "usage: ff_lock_probe DATAFILE RECORDS_PER_PART hold|edit|edits ...\n");
        return 2;
    }
    RecordFile::SetRecordsPerPartForTesting(args[1].toLongLong());
    const Design design = testing::smallDesign();
    Page page(design);
    RecordStore store(design, page);
    if (!store.openFileSet(args[0], false, design.MainCap)) {
        std::printf("open failed\n");
        return 4;
    }
    const QString verb = args[2];
    auto edit = [&](int record, const QString &value) -> bool {
        store.JumpToRecord(record);
        if (!store.LockRecord())
            return false;
        page.FieldText[1] = value;
        return bool(store.PackRecord());
    };

    if (verb == QLatin1String("hold") && args.size() >= 5) {
        store.JumpToRecord(args[3].toInt());
        if (!store.LockRecord()) {
            std::printf("denied\n");
            std::fflush(stdout);
            return 3;
        }
        std::printf("locked\n");
        std::fflush(stdout);
        std::string line;
        std::getline(std::cin, line);
        page.FieldText[1] = args.size() > 4 ? args[4] : QString();
        const bool ok = bool(store.PackRecord());
        std::printf(ok ? "saved\n" : "failed\n");
        return ok ? 0 : 1;
    }
    if (verb == QLatin1String("edit") && args.size() >= 5) {
        if (!edit(args[3].toInt(), args[4])) {
            std::printf("denied\n");
            return 3;
        }
        std::printf("saved\n");
        return 0;
    }
    if (verb == QLatin1String("edits") && args.size() >= 7) {
        const int first = args[3].toInt(), step = args[4].toInt(), count = args[5].toInt();
        for (int k = 0; k < count; ++k) {
            const int record = first + k * step;
            if (record % args[1].toInt() == 0)
                continue; // an exact multiple of the part size cannot be written
            int tries = 0;
            while (!edit(record, args[6] + QString::number(k % 100))) {
                if (++tries > 2000)
                    return 5;
                QThread::usleep(200);
            }
        }
        std::printf("done\n");
        return 0;
    }
    if (verb == QLatin1String("news") && args.size() >= 5) {
        for (int k = 0; k < args[3].toInt(); ++k) {
            if (!store.NewRecord()) {
                std::printf("refused\n");
                return 6;
            }
            page.FieldText[1] = args[4] + QString::number(k);
            if (!store.PackRecord()) {
                std::printf("failed\n");
                return 1;
            }
        }
        std::printf("done\n");
        return 0;
    }
    return 2;
}
