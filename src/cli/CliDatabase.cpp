#include "cli/CliDatabase.h"

#include "design/AppPaths.h"
#include "design/DesignReader.h"

#include <QFileInfo>

namespace ff::cli {

CliDatabase::CliDatabase(QTextStream &err, const QString &verb) : err_(err), verb_(verb), host_(err, verb), hooks_(context_)
{
    context_.host = &host_;
}

bool CliDatabase::open(const QString &image, const QString &dataFile, Access access)
{
    // No extraction folder: the command line never writes the embedded files.
    const DesignLoad load = ReadDesign(image, DesignReadOptions{});
    if (!load.complete()) {
        err_ << verb_ << ": " << image << ": " << load.error.text << "\n";
        return false;
    }
    context_.AppTitle = load.design.MainCap;
    db_ = std::make_unique<Database>(load.design, ParseCommandLine(QFileInfo(image).absoluteFilePath(), {}), &host_,
                                     &hooks_);
    context_.AppPath = db_->paths().AppFolder;
    db_->start();
    if (!dataFile.isEmpty())
        db_->DataFileName = dataFile;
    if (access != Access::Write && !QFileInfo::exists(db_->DataFileName)) {
        err_ << verb_ << ": no data file " << db_->DataFileName << "\n";
        return false;
    }
    if (access == Access::Read)
        db_->store().setViewOnly(true);
    // The engine has shown the design's own message; the system's reason follows it.
    if (const Status opened = db_->OpenDatabase(OpenMode::Open); !opened) {
        err_ << verb_ << ": " << opened.error().text << "\n";
        return false;
    }
    return true;
}

} // namespace ff::cli
