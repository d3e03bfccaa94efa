#include "gui/Twips.h"

#include <QApplication>
#include <QPalette>

namespace ff::gui {

QColor colorFromLong(int32_t value, const QColor &systemFallback)
{
    const auto v = static_cast<uint32_t>(value);
    if (v & 0x80000000u) {
        // System colours by index: the common ones map onto the palette.
        const QPalette pal = QApplication::palette();
        switch (v & 0xFFu) {
        case 5: return pal.color(QPalette::Base);        // window background
        case 8: return pal.color(QPalette::Text);        // window text
        case 15: return pal.color(QPalette::Button);     // button face
        case 18: return pal.color(QPalette::ButtonText); // button text
        case 13: return pal.color(QPalette::Highlight);
        case 14: return pal.color(QPalette::HighlightedText);
        default: return systemFallback.isValid() ? systemFallback : pal.color(QPalette::Window);
        }
    }
    return QColor(v & 0xFF, (v >> 8) & 0xFF, (v >> 16) & 0xFF);
}

} // namespace ff::gui
