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
    const QLocale system = QLocale::system();
    if (system.language() == QLocale::C)
        QLocale::setDefault(WorkingLocale(system));
}

} // namespace ff
