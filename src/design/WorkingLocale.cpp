#include "design/WorkingLocale.h"

namespace ff {

QLocale WorkingLocale(const QLocale &locale)
{
    if (locale.language() == QLocale::C)
        return QLocale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

void UseWorkingLocale()
{
    // With TZ unset, glibc looks at /etc/localtime again (a stat under its time zone lock) for
    // every local-time conversion: a walk formatting a million dates, or two import threads
    // running formulas, spent up to half their time there, waiting on each other.
    // ":/etc/localtime" is the same zone to glibc and to Qt, read once. No other thread runs yet.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    const QLocale system = QLocale::system();
    if (system.language() == QLocale::C)
        QLocale::setDefault(WorkingLocale(system));
}

} // namespace ff
