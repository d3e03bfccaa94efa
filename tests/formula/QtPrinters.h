#pragma once
// Readable GoogleTest output for Qt strings.

#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *os) { *os << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QStringList &list, std::ostream *os)
{
    *os << '{';
    for (const QString &text : list)
        *os << " \"" << text.toStdString() << '"';
    *os << " }";
}
