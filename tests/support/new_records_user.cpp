// Another copy of the program adding records to a shared data file, in its own process:
//   ff_new_records_user DATAFILE RECORDS_PER_PART COUNT PREFIX
// presses New COUNT times, writing PREFIX and the counter into field 1 of each new record; exit 6
// and "refused" when a New is refused, "done" when all are written.

#include "design/Page.h"
#include "store/RecordStore.h"
#include "support/StoreDesigns.h"

#include <QCoreApplication>

#include <cstdio>

using namespace ff;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() != 4) {
        std::fprintf(stderr, "usage: ff_new_records_user DATAFILE RECORDS_PER_PART COUNT PREFIX\n");
        return 2;
    }
    RecordFile::SetRecordsPerPartForTesting(args[1].toLongLong());
    const Design design = testsupport::smallDesign();
    Page page(design);
    RecordStore store(design, page);
    if (!store.openFileSet(args[0], OpenMode::Open, design.MainCap)) {
        std::printf("open failed\n");
        return 4;
    }
    for (int k = 0; k < args[2].toInt(); ++k) {
        if (!store.NewRecord()) {
            std::printf("refused\n");
            return 6;
        }
        page.FieldText[1] = args[3] + QString::number(k);
        if (!store.PackRecord()) {
            std::printf("failed\n");
            return 1;
        }
    }
    std::printf("done\n");
    return 0;
}
