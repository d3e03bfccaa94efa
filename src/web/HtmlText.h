#pragma once
// The small texts of the web pages: escaping a value for HTML, a colour number as an HTML colour,
// the script that centres the form page in the browser window, the name of a design's character
// set, and the units the pages are written in.

#include <QString>
#include <cstdint>

namespace ff::web {

class HtmlText {
public:
    // "&" → "&amp;", '"' → "&quot;", "<" → "&lt;", ">" → "&gt;", CR LF → "<br>", in this order.
    static QString HtmlEscape(const QString &text);
    // A colour number 0x00BBGGRR (negative: a system colour, taken as its usual RGB) as "#RRGGBB".
    static QString ColorToHex(int32_t color);
    // The script that keeps the form page centred: `width` is the page's width in pixels. Every
    // line ends in CR LF.
    static QString CentreScript(int width);
    // The meta line's character set of a design's font charset; empty for one the pages do not name.
    static QString CharsetName(int fontCharset);

    // Geometry is kept in twips; the pages are written in pixels of a 96 dpi screen, 15 twips each,
    // as the window shows them.
    static int px(double twips);
    // A font size in points as pixels, in the shortest text that reads back to the same number.
    static QString fontPx(double points);
};

} // namespace ff::web
