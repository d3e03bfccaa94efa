#include "gui/PageScrollBar.h"

#include "gui/Twips.h"

#include <QPainter>
#include <QStyleOptionSlider>

namespace ff::gui {

PageScrollBar::PageScrollBar(Qt::Orientation orientation, int16_t pattern, int32_t color, QWidget *parent)
    : QScrollBar(orientation, parent), style_(brushStyleOf(pattern)), color_(colorFromLong(color, palette().color(QPalette::Button)))
{
    QPalette pal = palette();
    pal.setColor(QPalette::Button, color_);
    setPalette(pal);
}

void PageScrollBar::paintEvent(QPaintEvent *event)
{
    QScrollBar::paintEvent(event);
    if (style_ == Qt::NoBrush)
        return;
    // The trough on both sides of the handle; the handle and the arrows stay as the style drew them.
    QStyleOptionSlider opt;
    initStyleOption(&opt);
    QPainter p(this);
    for (const QStyle::SubControl part : {QStyle::SC_ScrollBarSubPage, QStyle::SC_ScrollBarAddPage}) {
        const QRect r = style()->subControlRect(QStyle::CC_ScrollBar, &opt, part, this);
        if (r.isEmpty())
            continue;
        if (style_ != Qt::SolidPattern)
            p.fillRect(r, Qt::white);
        p.fillRect(r, QBrush(color_, style_));
    }
}

} // namespace ff::gui
