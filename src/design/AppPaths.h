#pragma once
// Where the app image, its folder and its data file are, from the command line.
//
// The text after the program's name decides: when it holds ".exe" the run-time opens that image
// (the ".exe" is cut out of the whole text, data file name and all, as stored launchers expect);
// otherwise the image is the program itself. Matching ignores case, but names keep the case typed,
// since Linux file names are case-sensitive.

#include <QString>
#include <QStringList>

namespace ff {

struct AppPaths {
    QString AppBase;     // image name without ".exe"
    QString AppFolder;   // folder of the program, with a trailing '/'
    QString AppBasePath; // AppFolder + AppBase
    bool pasteStart = false; // "-paste" somewhere on the command line
    QString commandText;     // the text after the program's name, words joined by spaces

    QString imagePath() const { return AppBasePath + QStringLiteral(".exe"); }
    QString userFilePath() const { return AppBasePath + QStringLiteral(".cfg"); }

    // The data file: a name on the command line that holds "." + extension (quotes removed, taken
    // as typed, so relative to the current folder), else AppBase + "." + extension in proper case
    // in the image's folder.
    QString dataFileName(const QString &dataExtension) const;
};

// `programPath` is the running executable (argv[0] resolved); `arguments` the words after it.
AppPaths ParseCommandLine(const QString &programPath, const QStringList &arguments);

// "john SMITH" → "John Smith": the first letter of each word upper case, the rest lower case.
QString ProperCase(const QString &text);

} // namespace ff
