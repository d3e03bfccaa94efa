#pragma once
// The fixed pictures of the web pages, drawn by the program and written as GIF files: the check
// pictures 100 to 113 (an off and an on picture for each check style) and the two page tabs
// "button.gif" (plain) and "button2.gif" (the page being shown).

#include <QByteArray>
#include <utility>

namespace ff::web {

class PagePictures {
public:
    static constexpr int FirstCheck = 100;
    static constexpr int LastCheck = 113;
    static constexpr int CheckSize = 13; // pixels, both ways
    static constexpr int TabWidth = 66, TabHeight = 20;

    // The (off, on) picture numbers of a check field's style.
    static std::pair<int, int> checkPair(int style);
    // The GIF bytes of check picture `number` (100..113); empty for another number.
    static QByteArray checkPicture(int number);
    // The GIF bytes of a tab: `shown` for the page being written.
    static QByteArray tabPicture(bool shown);
};

} // namespace ff::web
