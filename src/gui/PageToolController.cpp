#include "gui/PageToolController.h"

#include "gui/FlowLayer.h"
#include "gui/PageCanvas.h"
#include "gui/Twips.h"
#include "store/RecordStore.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QTimer>

#include <cmath>

namespace ff::gui {

namespace {

// The ruler drawn along the top and left edges of the page while a grid is on: a tick every tenth
// of the grid's unit, longer at whole units. It lets every click through.
class GridRuler : public QWidget {
public:
    explicit GridRuler(PageCanvas &canvas) : QWidget(&canvas), canvas_(canvas)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAccessibleName(QStringLiteral("Grid ruler"));
        hide();
    }
    void setScale(GridScale scale)
    {
        scale_ = scale;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.setPen(QPen(Qt::black, 1));
        const double tpp = canvas_.twipsPerPixel();
        for (const RulerTick &t : GridSnap::rulerTicks(width() * tpp, scale_)) {
            const int at = toPixels(t.position, tpp), length = qMax(2, toPixels(t.length, tpp));
            p.drawLine(at, 0, at, length - 1);
        }
        for (const RulerTick &t : GridSnap::rulerTicks(height() * tpp, scale_)) {
            const int at = toPixels(t.position, tpp), length = qMax(2, toPixels(t.length, tpp));
            p.drawLine(0, at, length - 1, at);
        }
    }

private:
    PageCanvas &canvas_;
    GridScale scale_ = GridScale::Inches;
};

constexpr int kHandlePixels = 8;

} // namespace

PageToolController::PageToolController(PageCanvas &canvas, FlowLayer &layer, Page &page, RecordStore &store, QObject *parent)
    : QObject(parent), canvas_(canvas), layer_(layer), page_(page), store_(store), editor_(page, &store)
{
    canvas_.installEventFilter(this);
    layer_.setEditFilter(this);

    handle_ = new QWidget(&canvas_);
    handle_->setObjectName(QStringLiteral("sizingHandle"));
    handle_->setAccessibleName(tr("Size"));
    handle_->setFixedSize(kHandlePixels, kHandlePixels);
    handle_->setAutoFillBackground(true);
    QPalette pal = handle_->palette();
    pal.setColor(QPalette::Window, Qt::black);
    handle_->setPalette(pal);
    handle_->setCursor(Qt::SizeFDiagCursor);
    handle_->installEventFilter(this);
    handle_->hide();

    labelEditor_ = new QLineEdit(&canvas_);
    labelEditor_->setObjectName(QStringLiteral("labelEditor"));
    labelEditor_->setAccessibleName(tr("Label text"));
    labelEditor_->hide();
    connect(labelEditor_, &QLineEdit::textEdited, this, [this](const QString &text) {
        if (selected_.kind == FlowElement::Kind::Label)
            std::ignore = editor_.setCaption(selected_, text); // a refusal has shown the record again
    });
    // Enter or the focus going elsewhere ends the typing; the box goes once the event is over.
    // A box opened again meanwhile (for another label) stays.
    connect(labelEditor_, &QLineEdit::editingFinished, this, [this] {
        QTimer::singleShot(0, this, [this, opened = editorOpenings_] {
            if (opened == editorOpenings_)
                closeLabelEditor();
        });
    });

    ruler_ = new GridRuler(canvas_);
    ruler_->setGeometry(canvas_.rect());

    // The page's menu; "Grip" is how the captions are spelt.
    menu_ = new QMenu(&canvas_);
    menu_->setObjectName(QStringLiteral("pageMenu"));
    gridActions_[0] = menu_->addAction(tr("Delete..."), this, &PageToolController::deleteSelected);
    menu_->addSeparator();
    const std::pair<int, QString> grids[] = {{2, QStringLiteral("Snap To Grip \u00bc Inch")},
                                             {3, QStringLiteral("Snap To Grip \u00bd Inch")},
                                             {5, QStringLiteral("Snap To Grip \u00bc cm")},
                                             {6, QStringLiteral("Snap To Grip \u00bd cm")},
                                             {7, QStringLiteral("Snap To Grip 1 cm")}};
    for (const auto &[index, caption] : grids) {
        if (index == 5)
            menu_->addSeparator();
        QAction *a = menu_->addAction(caption, this, [this, index] { chooseGrid(index); });
        a->setCheckable(true);
        gridActions_[index] = a;
    }
    menu_->addSeparator();
    QAction *tools = menu_->addAction(tr("Show Toolbar..."), this, &PageToolController::toolboxWanted);
    tools->setObjectName(QStringLiteral("ShTools"));

    connect(&page_, &Page::flowChanged, this, &PageToolController::layerChanged);
    connect(&page_, &Page::reset, this, &PageToolController::recordChanged);
    connect(&page_, &Page::pageChanged, this, &PageToolController::recordChanged);
}

bool PageToolController::editable() const
{
    return page_.design().FlowPageEnabled == 1 && store_.writingAllowed();
}

int32_t PageToolController::toTwips(int pixels) const { return int32_t(std::lround(pixels * canvas_.twipsPerPixel())); }

void PageToolController::setTool(PageTool tool, int32_t imageNumber)
{
    if (tool == tool_ && (tool != PageTool::Picture || imageNumber == toolImage_ || imageNumber == 0))
        tool = PageTool::Pointer; // the same button pressed again
    tool_ = tool;
    if (tool == PageTool::Picture && imageNumber > 0)
        toolImage_ = imageNumber;
    Q_EMIT toolChanged(tool_);
}

void PageToolController::chooseGrid(int menuIndex)
{
    const Grid grid = GridSnap::choose(menuIndex, checkedGrid_);
    editor_.setGrid(grid);
    for (int i = 2; i < 8; ++i)
        if (gridActions_[i])
            gridActions_[i]->setChecked(i == checkedGrid_);
    static_cast<GridRuler *>(ruler_)->setScale(grid.scale);
    ruler_->setGeometry(canvas_.rect());
    ruler_->setVisible(grid.on());
    if (grid.on())
        ruler_->raise();
    Q_EMIT gridChanged(checkedGrid_);
}

void PageToolController::resetTool()
{
    if (tool_ == PageTool::Pointer)
        return;
    tool_ = PageTool::Pointer;
    Q_EMIT toolChanged(tool_);
}

void PageToolController::deleteSelected()
{
    const FlowElement e = selected_;
    closeLabelEditor();
    select({});
    if (e.valid())
        std::ignore = editor_.remove(e); // refused: another user holds the record, shown again
}

QRect PageToolController::elementRect(FlowElement e) const
{
    QLabel *w = e.kind == FlowElement::Kind::Label ? layer_.labelWidget(e.index)
              : e.kind == FlowElement::Kind::Image ? layer_.imageWidget(e.index)
                                                   : nullptr;
    return w ? w->geometry() : QRect();
}

void PageToolController::select(FlowElement element)
{
    if (!editor_.exists(element))
        element = {};
    const bool changed = !(element == selected_);
    selected_ = element;
    placeHandle();
    if (changed)
        Q_EMIT selectionChanged(selected_);
}

void PageToolController::placeHandle()
{
    const QRect r = elementRect(selected_);
    if (r.isNull() || sizing_) {
        if (!sizing_)
            handle_->hide();
        return;
    }
    handle_->move(r.right() + 1 - kHandlePixels / 2, r.bottom() + 1 - kHandlePixels / 2);
    handle_->show();
    handle_->raise();
}

void PageToolController::layerChanged()
{
    // The layer re-placed its screen objects: the handle and the editor follow the element.
    if (!editor_.exists(selected_)) {
        closeLabelEditor();
        select({});
        return;
    }
    placeHandle();
    if (labelEditor_ && labelEditor_->isVisible()) {
        const QRect r = elementRect(selected_);
        labelEditor_->setGeometry(r.x(), r.y(), qMax(r.width() + 24, 120), qMax(r.height(), labelEditor_->sizeHint().height()));
    }
}

void PageToolController::recordChanged()
{
    // Another record or page: nothing stays selected.
    dragging_ = sizing_ = false;
    closeLabelEditor();
    select({});
}

void PageToolController::openLabelEditor()
{
    if (selected_.kind != FlowElement::Kind::Label)
        return;
    const FlowLabel &l = page_.FlowLabels[selected_.index];
    QLabel *w = layer_.labelWidget(selected_.index);
    if (!w)
        return;
    labelEditor_->setFont(w->font());
    labelEditor_->setAlignment(l.alignment == 1 ? Qt::AlignRight : l.alignment == 2 ? Qt::AlignHCenter : Qt::AlignLeft);
    labelEditor_->setText(l.text);
    const QRect r = w->geometry();
    labelEditor_->setGeometry(r.x(), r.y(), qMax(r.width() + 24, 120), qMax(r.height(), labelEditor_->sizeHint().height()));
    ++editorOpenings_;
    labelEditor_->show();
    labelEditor_->raise();
    labelEditor_->setFocus(Qt::MouseFocusReason);
}

void PageToolController::closeLabelEditor()
{
    if (labelEditor_ && labelEditor_->isVisible())
        labelEditor_->hide();
}

void PageToolController::popupMenu(const QPoint &global)
{
    gridActions_[0]->setEnabled(selected_.valid());
    menu_->popup(global);
}

bool PageToolController::pagePressed(QMouseEvent *mouse)
{
    const QPoint at = mouse->position().toPoint();
    if (mouse->button() == Qt::RightButton) {
        popupMenu(mouse->globalPosition().toPoint());
        return true;
    }
    if (mouse->button() != Qt::LeftButton)
        return false;
    closeLabelEditor();
    FlowElement added;
    if (tool_ == PageTool::Label) {
        added = editor_.addLabel(toTwips(at.x()), toTwips(at.y()));
    } else if (tool_ == PageTool::Picture && toolImage_ > 0) {
        // The picture in its own size on the screen.
        const QPixmap pix(FlowLayer::imagePath(layer_.imageFolder(), toolImage_));
        const QSize natural = pix.isNull() ? QSize(1440, 1440) : QSize(toTwips(pix.width()), toTwips(pix.height()));
        added = editor_.addImage(toTwips(at.x()), toTwips(at.y()), toolImage_, natural);
    } else {
        select({});
        return false;
    }
    // One element per press of a tool: the tools return to the pointer.
    tool_ = PageTool::Pointer;
    Q_EMIT toolChanged(tool_);
    select(added);
    if (added.kind == FlowElement::Kind::Label)
        openLabelEditor();
    return true;
}

bool PageToolController::elementEvent(QObject *watched, QEvent *event)
{
    const auto [kind, index] = layer_.elementOf(watched);
    const FlowElement element{kind == 1 ? FlowElement::Kind::Label : FlowElement::Kind::Image, index};
    auto *mouse = static_cast<QMouseEvent *>(event);
    auto *w = static_cast<QWidget *>(watched);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() == Qt::RightButton) {
            select(element);
            popupMenu(mouse->globalPosition().toPoint());
            return true;
        }
        if (mouse->button() != Qt::LeftButton)
            return false;
        if (tool_ != PageTool::Pointer) {
            // A tool places on top of what is there.
            QMouseEvent onPage(QEvent::MouseButtonPress, w->mapToParent(mouse->position()), mouse->globalPosition(),
                               mouse->button(), mouse->buttons(), mouse->modifiers());
            return pagePressed(&onPage);
        }
        closeLabelEditor();
        select(element);
        dragging_ = true;
        dragMoved_ = false;
        dragOffset_ = mouse->position().toPoint();
        return true; // the element keeps the mouse: its release still reaches the layer's link

    case QEvent::MouseMove: {
        if (!dragging_ || !(mouse->buttons() & Qt::LeftButton))
            return false;
        const QPoint topLeft = w->mapToParent(mouse->position().toPoint()) - dragOffset_;
        if (!dragMoved_ && (topLeft - w->pos()).manhattanLength() < 2)
            return true;
        dragMoved_ = true;
        if (!editor_.moveTo(selected_, toTwips(topLeft.x()), toTwips(topLeft.y())))
            dragging_ = false; // another user holds the record: it was shown again
        return true;
    }
    case QEvent::MouseButtonRelease: {
        if (mouse->button() != Qt::LeftButton || !dragging_)
            return false;
        dragging_ = false;
        if (!dragMoved_)
            return element.kind == FlowElement::Kind::Label; // a click on a picture: its link is the layer's
        std::ignore = editor_.snapPlace(selected_); // the element stays where it was dropped when refused
        placeHandle();
        return true;
    }
    case QEvent::MouseButtonDblClick:
        if (element.kind == FlowElement::Kind::Label && mouse->button() == Qt::LeftButton) {
            select(element);
            openLabelEditor();
            return true;
        }
        return false;
    default: return false;
    }
}

bool PageToolController::handleEvent(QEvent *event)
{
    auto *mouse = static_cast<QMouseEvent *>(event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() != Qt::LeftButton || !selected_.valid())
            return false;
        sizing_ = true;
        sizeOffset_ = mouse->position().toPoint();
        return true;
    case QEvent::MouseMove: {
        if (!sizing_)
            return false;
        // The handle's corner follows the mouse, never left of or above the element's least size.
        const QRect r = elementRect(selected_);
        QPoint corner = handle_->mapToParent(mouse->position().toPoint()) - sizeOffset_ + QPoint(kHandlePixels / 2, kHandlePixels / 2);
        corner.setX(qMax(corner.x(), r.x() + kHandlePixels));
        corner.setY(qMax(corner.y(), r.y() + kHandlePixels));
        handle_->move(corner - QPoint(kHandlePixels / 2, kHandlePixels / 2));
        if (!editor_.resize(selected_, toTwips(corner.x() - r.x()), toTwips(corner.y() - r.y()), false))
            sizing_ = false;
        return true;
    }
    case QEvent::MouseButtonRelease: {
        if (!sizing_)
            return false;
        sizing_ = false;
        const QRect r = elementRect(selected_);
        if (!r.isNull())
            std::ignore = editor_.resize(selected_, toTwips(r.width()), toTwips(r.height()), true); // refused: shown again
        placeHandle();
        return true;
    }
    default: return false;
    }
}

bool PageToolController::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::Resize && watched == &canvas_)
        ruler_->setGeometry(canvas_.rect());
    const bool mouseEvent = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease
        || type == QEvent::MouseMove || type == QEvent::MouseButtonDblClick;
    if (!mouseEvent || !editable())
        return false;
    if (watched == handle_)
        return handleEvent(event);
    if (watched == &canvas_)
        return type == QEvent::MouseButtonPress && pagePressed(static_cast<QMouseEvent *>(event));
    if (layer_.elementOf(watched).first != 0)
        return elementEvent(watched, event);
    return false;
}

} // namespace ff::gui
