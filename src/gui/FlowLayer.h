#pragma once
// The record's own labels and pictures over the page box: one screen object per flow label and flow
// picture of the page model, made or removed to match the record's counts each time a record is
// shown, at the stored places in twips, in front of the design's elements. Only those of the page
// shown are visible. A click on a flow picture that links to a record asks for that record.

#include "design/Page.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <utility>
#include <vector>

class QLabel;

namespace ff::gui {

class PageCanvas;

class FlowLayer : public QObject {
    Q_OBJECT
public:
    // `imageFolder` holds the flow pictures, named <FlowImageId>.gif.
    FlowLayer(PageCanvas &canvas, const Page &page, const QString &imageFolder, QObject *parent = nullptr);

    // Rebuilds the screen objects from the page model.
    void refresh();

    int labelCount() const { return int(labels_.size()); }
    int imageCount() const { return int(images_.size()); }
    QLabel *labelWidget(int index) const; // from 0, in the model's order
    QLabel *imageWidget(int index) const;

    // Where a flow picture's file is.
    static QString imagePath(const QString &imageFolder, int32_t imageId);
    const QString &imageFolder() const { return imageFolder_; }

    // Page editing: `filter` sees the mouse on every flow element before the layer does, so that
    // a drag is not taken for a click on a link. Null stops it.
    void setEditFilter(QObject *filter);
    // The element a screen object shows: kind 1 a label, 2 a picture, with its index; {0, -1} none.
    std::pair<int, int> elementOf(const QObject *widget) const;

Q_SIGNALS:
    // A linked flow picture was clicked: the record it links to.
    void recordLinkClicked(int record);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showPage(int page);
    void placeLabel(QLabel *w, const FlowLabel &l);
    void placeImage(QLabel *w, const FlowImage &im);

    PageCanvas &canvas_;
    const Page &page_;
    QString imageFolder_;
    std::vector<QLabel *> labels_, images_;
    QPointer<QObject> editFilter_;
};

} // namespace ff::gui
