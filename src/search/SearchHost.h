#pragma once
// What the search needs from its surroundings: the final word of sum, count and replace. The
// results window shows it in the program's message box; the command line prints it.

#include <QString>

namespace ff {

class SearchHost {
public:
    virtual ~SearchHost() = default;
    virtual void ShowMessage(const QString &caption, const QString &text) = 0;
};

} // namespace ff
