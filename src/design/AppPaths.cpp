#include "design/AppPaths.h"

#include <QFileInfo>

namespace ff {

QString ProperCase(const QString &text)
{
    // Words are separated by white space only: "contacts.dat" stays "Contacts.dat".
    QString out = text.toLower();
    bool wordStart = true;
    for (QChar &c : out) {
        if (c.isSpace()) {
            wordStart = true;
        } else {
            if (wordStart)
                c = c.toUpper();
            wordStart = false;
        }
    }
    return out;
}

static QString removeAllCaseInsensitive(QString text, const QString &what)
{
    for (qsizetype at = text.indexOf(what, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(what, at, Qt::CaseInsensitive))
        text.remove(at, what.size());
    return text;
}

AppPaths ParseCommandLine(const QString &programPath, const QStringList &arguments)
{
    AppPaths p;
    p.commandText = arguments.join(QLatin1Char(' '));
    const QFileInfo program(programPath);
    p.AppFolder = program.absolutePath();
    if (!p.AppFolder.endsWith(QLatin1Char('/')))
        p.AppFolder += QLatin1Char('/');

    p.pasteStart = p.commandText.contains(QStringLiteral("-paste"), Qt::CaseInsensitive);
    const QString exe = QStringLiteral(".exe");
    if (p.commandText.contains(exe, Qt::CaseInsensitive)) {
        p.AppBase = removeAllCaseInsensitive(p.commandText, exe);
        p.AppBase.remove(QLatin1Char('"'));
        // A path given for the image names the image; its folder stays the program's.
        p.AppBase = p.AppBase.trimmed();
        const QFileInfo named(p.AppBase);
        if (named.isAbsolute() || p.AppBase.contains(QLatin1Char('/'))) {
            p.AppFolder = named.absolutePath();
            if (!p.AppFolder.endsWith(QLatin1Char('/')))
                p.AppFolder += QLatin1Char('/');
            p.AppBase = named.fileName();
        }
    } else {
        p.AppBase = program.completeBaseName();
    }
    p.AppBasePath = p.AppFolder + p.AppBase;
    return p;
}

QString AppPaths::dataFileName(const QString &dataExtension) const
{
    const QString dotExt = QLatin1Char('.') + dataExtension;
    if (!dataExtension.isEmpty() && commandText.contains(dotExt, Qt::CaseInsensitive)) {
        QString name = commandText;
        name.remove(QLatin1Char('"'));
        return name.trimmed();
    }
    // The data set lives beside the image, wherever the program was started from.
    return AppFolder + ProperCase(AppBase + dotExt);
}

} // namespace ff
