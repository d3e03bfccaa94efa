#include "gui/FlowLayer.h"

#include "gui/PageCanvas.h"
#include "gui/Twips.h"

#include <QDir>
#include <QLabel>
#include <QMouseEvent>
#include <QPixmap>

namespace ff::gui {

FlowLayer::FlowLayer(PageCanvas &canvas, const Page &page, const QString &imageFolder, QObject *parent)
    : QObject(parent), canvas_(canvas), page_(page), imageFolder_(imageFolder)
{
    connect(&page_, &Page::reset, this, &FlowLayer::refresh);
    connect(&page_, &Page::flowChanged, this, &FlowLayer::refresh);
    connect(&page_, &Page::pageChanged, this, &FlowLayer::showPage);
}

QString FlowLayer::imagePath(const QString &imageFolder, int32_t imageId)
{
    return QDir(imageFolder).filePath(QString::number(imageId) + QStringLiteral(".gif"));
}

QLabel *FlowLayer::labelWidget(int index) const
{
    return index >= 0 && index < labelCount() ? labels_[size_t(index)] : nullptr;
}

QLabel *FlowLayer::imageWidget(int index) const
{
    return index >= 0 && index < imageCount() ? images_[size_t(index)] : nullptr;
}

void FlowLayer::refresh()
{
    // Screen objects are made or removed to match the record's counts; those that stay are reused.
    const auto resize = [this](std::vector<QLabel *> &list, qsizetype count, bool watched) {
        while (list.size() > size_t(count)) {
            // Later: a click on a linked picture shows another record from inside its own event.
            list.back()->hide();
            list.back()->deleteLater();
            list.pop_back();
        }
        while (list.size() < size_t(count)) {
            auto *w = new QLabel(&canvas_);
            w->setTextFormat(Qt::PlainText);
            if (watched)
                w->installEventFilter(this);
            if (editFilter_)
                w->installEventFilter(editFilter_); // installed last, so it sees the events first
            list.push_back(w);
        }
    };
    resize(images_, page_.FlowImages.size(), true);
    resize(labels_, page_.FlowLabels.size(), false);
    for (size_t i = 0; i < images_.size(); ++i)
        placeImage(images_[i], page_.FlowImages[qsizetype(i)]);
    for (size_t i = 0; i < labels_.size(); ++i)
        placeLabel(labels_[i], page_.FlowLabels[qsizetype(i)]);
    showPage(page_.CurrentPage);
}

void FlowLayer::setEditFilter(QObject *filter)
{
    for (std::vector<QLabel *> *list : {&labels_, &images_})
        for (QLabel *w : *list) {
            if (editFilter_)
                w->removeEventFilter(editFilter_);
            if (filter)
                w->installEventFilter(filter);
        }
    editFilter_ = filter;
}

std::pair<int, int> FlowLayer::elementOf(const QObject *widget) const
{
    for (size_t i = 0; i < labels_.size(); ++i)
        if (labels_[i] == widget)
            return {1, int(i)};
    for (size_t i = 0; i < images_.size(); ++i)
        if (images_[i] == widget)
            return {2, int(i)};
    return {0, -1};
}

void FlowLayer::placeImage(QLabel *w, const FlowImage &im)
{
    // The picture is stretched to the stored size; one missing from the folder leaves the box empty.
    // The file is read again only when the box shows another number (a drag re-places it often).
    if (w->property("imageId").toInt() != im.FlowImageId || w->pixmap().isNull()) {
        const QPixmap pix(imagePath(imageFolder_, im.FlowImageId));
        w->setPixmap(pix);
        w->setScaledContents(true);
        if (pix.isNull())
            w->clear();
        w->setProperty("imageId", im.FlowImageId);
    }
    w->setAccessibleName(QStringLiteral("Flow picture %1").arg(im.FlowImageId));
    if (im.FlowImageLink > 0)
        w->setCursor(Qt::PointingHandCursor);
    else
        w->unsetCursor();
    const double tpp = canvas_.twipsPerPixel();
    w->setGeometry(twipsRect(im.left, im.top, im.width, im.height, tpp));
}

void FlowLayer::placeLabel(QLabel *w, const FlowLabel &l)
{
    const Design &d = page_.design();
    QFont font(d.AppFontName.isEmpty() ? canvas_.font().family() : d.AppFontName);
    if (l.fontSize > 0)
        font.setPointSize(l.fontSize);
    // The style byte in decimal digits: units bold, tens italic, hundreds underline.
    font.setBold(l.style % 10 != 0);
    font.setItalic((l.style / 10) % 10 != 0);
    font.setUnderline((l.style / 100) % 10 != 0);
    w->setFont(font);
    QPalette pal = w->palette();
    pal.setColor(QPalette::WindowText, colorFromLong(l.color, pal.color(QPalette::WindowText)));
    w->setPalette(pal);
    switch (l.alignment) {
    case 1: w->setAlignment(Qt::AlignRight | Qt::AlignTop); break;
    case 2: w->setAlignment(Qt::AlignHCenter | Qt::AlignTop); break;
    default: w->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    }
    // A caption's lines end in CR LF, or in a lone CR.
    QString text = l.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    w->setText(text);
    w->setAccessibleName(text);
    const double tpp = canvas_.twipsPerPixel();
    w->move(toPixels(l.left, tpp), toPixels(l.top, tpp));
    // A label sized by hand keeps that size; one never sized follows its text.
    if (l.width > 0 && l.height > 0)
        w->resize(qMax(1, toPixels(l.width, tpp)), qMax(1, toPixels(l.height, tpp)));
    else
        w->resize(w->sizeHint());
}

void FlowLayer::showPage(int page)
{
    // In front of the design's elements, the labels in front of the pictures.
    for (size_t i = 0; i < images_.size(); ++i) {
        images_[i]->setVisible(page_.FlowImages[qsizetype(i)].page == page);
        images_[i]->raise();
    }
    for (size_t i = 0; i < labels_.size(); ++i) {
        labels_[i]->setVisible(page_.FlowLabels[qsizetype(i)].page == page);
        labels_[i]->raise();
    }
}

bool FlowLayer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    auto *w = qobject_cast<QLabel *>(watched);
    if (mouse->button() != Qt::LeftButton || !w || !w->rect().contains(mouse->position().toPoint()))
        return false;
    for (size_t i = 0; i < images_.size(); ++i) {
        if (images_[i] != w)
            continue;
        const int32_t link = page_.FlowImages[qsizetype(i)].FlowImageLink;
        if (link > 0) {
            // The page's editing hides its sizing handle and label editor when the record changes.
            Q_EMIT recordLinkClicked(link);
            return true;
        }
    }
    return false;
}

} // namespace ff::gui
