#include "core/SettingsStore.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace ff {

namespace {

QString &folderOverride()
{
    static QString folder;
    return folder;
}

// A name as one part of a QSettings key: lower case, and without the separators QSettings gives
// a meaning to ("/" nests groups, "\\" is its escape).
QString keyPart(const QString &name)
{
    QString k = name.trimmed().toLower();
    k.replace(QLatin1Char('/'), QLatin1Char('_'));
    k.replace(QLatin1Char('\\'), QLatin1Char('_'));
    return k.isEmpty() ? QStringLiteral("_") : k;
}

// The application name as a file name: nothing that leaves the folder.
QString fileName(const QString &application)
{
    QString name;
    for (const QChar c : application.trimmed())
        name += (c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('_') || c == QLatin1Char(' '))
                    ? c
                    : QLatin1Char('_');
    if (name.isEmpty())
        name = QStringLiteral("flatform");
    return name + QStringLiteral(".ini");
}

QString fullKey(const QString &section, const QString &key) { return keyPart(section) + QLatin1Char('/') + keyPart(key); }

} // namespace

void SettingsStore::setFolder(const QString &folder) { folderOverride() = folder; }

QString SettingsStore::folder()
{
    if (!folderOverride().isEmpty())
        return folderOverride();
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)).filePath(QStringLiteral("flatform"));
}

QString SettingsStore::filePath(const QString &application) { return QDir(folder()).filePath(fileName(application)); }

QString SettingsStore::GetSetting(const QString &application, const QString &section, const QString &key,
                                  const QString &defaultValue)
{
    QSettings settings(filePath(application), QSettings::IniFormat);
    if (settings.status() != QSettings::NoError)
        return defaultValue;
    const QVariant v = settings.value(fullKey(section, key));
    if (!v.isValid())
        return defaultValue;
    // A text with commas that was written by another tool reads back as a list.
    if (v.typeId() == QMetaType::QStringList)
        return v.toStringList().join(QLatin1Char(','));
    return v.toString();
}

void SettingsStore::SaveSetting(const QString &application, const QString &section, const QString &key,
                                const QString &value)
{
    QDir().mkpath(folder());
    QSettings settings(filePath(application), QSettings::IniFormat);
    settings.setValue(fullKey(section, key), value);
    settings.sync();
}

} // namespace ff
