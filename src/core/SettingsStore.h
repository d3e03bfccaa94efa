#pragma once
// The settings store of window and print choices: text values by application, section and key,
// kept in one INI file per application under the user's configuration folder
// (~/.config/flatform/<application>.ini). Section and key are compared ignoring case, as the
// desktop's registry does; QSettings keys are case-sensitive, so both are lower-cased on the way in.
// A value that cannot be read gives the default.

#include <QString>

namespace ff {

class SettingsStore {
public:
    static QString GetSetting(const QString &application, const QString &section, const QString &key,
                              const QString &defaultValue = QString());
    static void SaveSetting(const QString &application, const QString &section, const QString &key,
                            const QString &value);

    // The folder that holds the INI files; tests point it at a temporary folder. Empty restores
    // the user's configuration folder.
    static void setFolder(const QString &folder);
    static QString folder();
    // The file that holds one application's settings.
    static QString filePath(const QString &application);
};

} // namespace ff
