#pragma once
// A scroll bar of the page box in the design's colours: its trough is painted in the design's
// scroll bar colour with the design's pattern number, and its handle and arrows take that colour.

#include <QScrollBar>
#include <cstdint>

namespace ff::gui {

class PageScrollBar : public QScrollBar {
    Q_OBJECT
public:
    // `pattern` numbers as a fill style does (brushStyleOf); a transparent one leaves the
    // platform's own trough.
    PageScrollBar(Qt::Orientation orientation, int16_t pattern, int32_t color, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Qt::BrushStyle style_;
    QColor color_;
};

} // namespace ff::gui
