// A second user of an app image's data file, in its own process: locks one record and holds it
// until a line arrives on stdin.
//
//   ff_lock_holder IMAGE DATAFILE RECORD
//       prints "locked" or "denied", then waits for a line and exits (the lock dies with it).

#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "store/Database.h"

#include <QCoreApplication>

#include <cstdio>
#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() != 3) {
        std::fprintf(stderr, "usage: ff_lock_holder IMAGE DATAFILE RECORD\n");
        return 2;
    }
    ff::DesignLoad load = ff::ReadDesign(args[0]);
    if (!load.complete())
        return 2;
    ff::Database db(std::move(load.design), ff::ParseCommandLine(args[0], {}));
    db.DataFileName = args[1];
    if (!db.OpenDatabase(ff::OpenMode::Open))
        return 2;
    if (!db.store().JumpToRecord(args[2].toInt()))
        return 2;
    const bool locked = db.store().LockRecord().ok() && db.store().RecordLocked();
    std::printf("%s\n", locked ? "locked" : "denied");
    std::fflush(stdout);
    std::string line;
    std::getline(std::cin, line);
    return locked ? 0 : 3;
}
