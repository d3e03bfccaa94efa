#pragma once
// The locale the program works in. QLocale::system() follows LC_ALL, LC_TIME and LANG; the C and
// POSIX locales of servers and minimal installs name no language and write dates as "2003 Jan 2",
// so the program reads and writes dates and numbers there as en_US does. Everything else keeps
// the system's own choice.

#include <QLocale>

namespace ff {

// `locale` itself, or en_US for the C locale (POSIX reads as C).
QLocale WorkingLocale(const QLocale &locale);

// Makes WorkingLocale(QLocale::system()) the default locale of the process, so that every
// QLocale() the engine builds follows it, and names the system's time zone file once when TZ is
// unset. Called once at start-up by the programs, before any thread starts.
void UseWorkingLocale();

} // namespace ff
