#pragma once
// The keys F1 to F11: each fills the focused field or combo with a text the design chose
// (SelectiveText 1 to 11). A text that reads as a number other than 0 names a text field and
// gives that field's live text; a text starting with "*" is a date pattern for the present moment;
// any other text stands for itself.

#include "design/Page.h"

#include <QLocale>
#include <QString>

#include <array>
#include <optional>

namespace ff {

class FunctionKeys {
public:
    static constexpr int kCount = 11;
    // FunctionKeyValues: the eleven texts resolved for the moment `now` (a day number).
    static std::array<QString, kCount> resolve(const Page &page, double now, const QLocale &locale);
    // One key's text, F1 = 1 ... F11 = 11.
    static QString resolveKey(const Page &page, int key, double now, const QLocale &locale);

    // 1 to 11 for Qt::Key_F1 to Qt::Key_F11, nothing for any other key.
    static std::optional<int> functionKeyNumber(int qtKey);
};

} // namespace ff
