#pragma once
// The main window's editing of the record's flow layer, on designs that allow it: the label and
// picture tools place new elements with a click on the page, a press on an element selects it and
// drags it, the small handle at its lower right corner sizes it, a double click on a label types
// its caption in place, and the right button opens the page's menu (delete, the snap grids, the
// toolbox). A drop and a size land on the grid when one is chosen, and a ruler along the page's
// edges shows its unit. The rules are FlowEditor's; this class turns the mouse into its calls.

#include "pagetools/FlowEditor.h"

#include <QLineEdit>
#include <QObject>
#include <QPoint>
#include <QPointer>

class QAction;
class QMenu;
class QMouseEvent;
class QWidget;

namespace ff {
class RecordStore;
}

namespace ff::gui {

class FlowLayer;
class PageCanvas;

class PageToolController : public QObject {
    Q_OBJECT
public:
    PageToolController(PageCanvas &canvas, FlowLayer &layer, Page &page, RecordStore &store, QObject *parent = nullptr);

    FlowEditor &editor() { return editor_; }
    const RecordStore &store() const { return store_; }
    const FlowLayer &layer() const { return layer_; }
    PageTool tool() const { return tool_; }
    int32_t toolImage() const { return toolImage_; }
    FlowElement selected() const { return selected_; }

    // The toolbox's tools: a tool pressed again returns to the pointer.
    void setTool(PageTool tool, int32_t imageNumber = 0);
    // The menu's grid entries by their place (2, 3, 5, 6, 7); choosing the checked one turns the
    // grid off. -1 turns it off.
    void chooseGrid(int menuIndex);
    int checkedGrid() const { return checkedGrid_; }
    // Takes the selected element off the layer (the menu's and the toolbox's delete).
    void deleteSelected();
    // The toolbox closed: the tools return to the pointer.
    void resetTool();

    // The screen objects of editing, for the window's tests.
    QWidget *sizingHandle() const { return handle_; }
    QLineEdit *labelEditor() const { return labelEditor_; }
    QMenu *pageMenu() const { return menu_; }
    QWidget *ruler() const { return ruler_; }

Q_SIGNALS:
    void selectionChanged(ff::FlowElement element);
    // A placed element returns the tools to the pointer.
    void toolChanged(ff::PageTool tool);
    void gridChanged(int menuIndex);
    // The menu's "Show Toolbar...".
    void toolboxWanted();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool editable() const;
    bool pagePressed(QMouseEvent *mouse);
    bool elementEvent(QObject *watched, QEvent *event);
    bool handleEvent(QEvent *event);
    void select(FlowElement element);
    void placeHandle();
    void openLabelEditor();
    void closeLabelEditor();
    void popupMenu(const QPoint &global);
    void layerChanged();
    void recordChanged();
    QRect elementRect(FlowElement e) const;
    int32_t toTwips(int pixels) const;

    PageCanvas &canvas_;
    FlowLayer &layer_;
    Page &page_;
    RecordStore &store_;
    FlowEditor editor_;
    PageTool tool_ = PageTool::Pointer;
    int32_t toolImage_ = 0;
    FlowElement selected_;
    int checkedGrid_ = -1;

    // Dragging an element: where in it the button went down, and whether it moved.
    bool dragging_ = false;
    bool dragMoved_ = false;
    QPoint dragOffset_;
    // Sizing with the handle: where in the handle the button went down.
    bool sizing_ = false;
    QPoint sizeOffset_;

    QWidget *handle_ = nullptr;
    QPointer<QLineEdit> labelEditor_; // the canvas owns it and may go first
    int editorOpenings_ = 0;
    QWidget *ruler_ = nullptr;
    QMenu *menu_ = nullptr;
    QAction *gridActions_[8] = {};
};

} // namespace ff::gui
