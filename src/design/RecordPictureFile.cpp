#include "design/RecordPictureFile.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace ff {

QString RecordPictureFile(const QString &folder, const QString &recordName)
{
    const QString name = recordName.trimmed();
    if (name.isEmpty() || folder.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")
        || name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return {};
    const QDir dir(folder);
    const QString plain = dir.filePath(name);
    if (QFileInfo(plain).isFile() || name.contains(QLatin1Char('.')))
        return plain;
    // A name held without its extension: the JPEG of that name, else a file of another type.
    const QString jpeg = plain + QStringLiteral(".jpg");
    if (!QFileInfo(jpeg).isFile()) {
        const QStringList others = dir.entryList({name + QStringLiteral(".*")}, QDir::Files, QDir::Name);
        if (!others.isEmpty())
            return dir.filePath(others.first());
    }
    return jpeg;
}

} // namespace ff
