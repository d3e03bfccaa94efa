#pragma once
// The page box: draws the design's shapes, lines, frames and background for the page shown and
// holds one widget per field, combo, note, check box, label, picture and button at its design
// geometry. Elements of other pages are hidden; elements on page 5 or above never show.

#include "design/Design.h"

#include <QPixmap>
#include <QWidget>
#include <vector>

namespace ff::gui {

class PageCanvas : public QWidget {
    Q_OBJECT
public:
    // `pictureFolder` is where the design's picture files were extracted (the app's folder).
    PageCanvas(const Design &design, const QString &pictureFolder, QWidget *parent = nullptr);

    int currentPage() const { return page_; }
    void showPage(int page);

    QWidget *fieldWidget(int index) const { return widgetOf(fields_, index); }
    QWidget *comboWidget(int index) const { return widgetOf(combos_, index); }
    QWidget *noteWidget(int index) const { return widgetOf(notes_, index); }
    QWidget *checkWidget(int index) const { return widgetOf(checks_, index); }
    QWidget *titleWidget(int index) const { return widgetOf(titles_, index); }
    QWidget *pictureWidget(int index) const { return widgetOf(pictures_, index); }
    QWidget *buttonWidget(int index) const { return widgetOf(buttons_, index); }
    double twipsPerPixel() const { return tpp_; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Placed {
        QWidget *widget = nullptr;
        int page = kPageLimit;
    };
    static QWidget *widgetOf(const std::vector<Placed> &list, int index)
    {
        return index >= 0 && size_t(index) < list.size() ? list[size_t(index)].widget : nullptr;
    }
    void buildElements();
    void buildBackground();
    QFont elementFont(const QString &name, double size, bool bold, bool italic, bool underline = false) const;

    const Design &design_;
    QString pictureFolder_;
    double tpp_;
    int page_ = 0;
    QPixmap background_; // the tiled background picture over the page, or null
    std::vector<Placed> fields_, combos_, notes_, checks_, titles_, pictures_, buttons_;
};

} // namespace ff::gui
