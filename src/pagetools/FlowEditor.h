#pragma once
// The editing of a record's flow layer: free labels and pictures that a user places on a page,
// drags, sizes, snaps to a grid, restyles and deletes. The rules live here, in twips on the core
// page, so that they are tested without widgets; the window turns mouse events into these calls
// and redraws from the page.
//
// Every change goes through `begin`: it asks the record store for the record (LockRecord), which
// marks the record changed so that it is saved like any other edit. When another user holds the
// record, the store shows it again as stored and the change is not made.

#include "core/Result.h"
#include "design/Page.h"
#include "pagetools/GridSnap.h"

#include <QSize>

namespace ff {

class RecordStore;

// One element of the flow layer.
struct FlowElement {
    enum class Kind : uint8_t { None, Label, Image };
    Kind kind = Kind::None;
    int index = -1; // in Page::FlowLabels or Page::FlowImages

    bool valid() const { return kind != Kind::None && index >= 0; }
    bool operator==(const FlowElement &) const = default;
};

// The tools of the toolbox: the pointer, the label tool and the picture tool.
enum class PageTool : uint8_t { Pointer = 0, Label = 1, Picture = 2 };

// The label's alignment as stored: 0 left, 1 right, 2 centre.
enum class FlowAlignment : uint8_t { Left = 0, Right = 1, Centre = 2 };

class FlowEditor {
public:
    // The smallest width and height sizing leaves an element (the handle's own size on screen).
    static constexpr int32_t MinimumSize = 120;
    // The design's picture files for flow pictures are numbered from here.
    static constexpr int32_t FirstImageNumber = 100000;
    // The style byte's decimal digits.
    static constexpr uint8_t Bold = 1, Italic = 10, Underline = 100;

    // `store` holds the record on the page; null edits the page alone (nothing is saved then).
    explicit FlowEditor(Page &page, RecordStore *store = nullptr);

    const Page &page() const { return page_; }
    const Grid &grid() const { return grid_; }
    void setGrid(const Grid &grid) { grid_ = grid; }

    // A new label at (left, top) on the page shown, with no caption yet.
    FlowElement addLabel(int32_t left, int32_t top);
    // A new picture of file number `imageId`, centred on (x, y) in its natural size (in twips),
    // then snapped to the grid.
    FlowElement addImage(int32_t x, int32_t y, int32_t imageId, QSize naturalTwips, int32_t link = 0);

    // Place and size as the page holds them; a label's size of 0 follows its text.
    bool exists(FlowElement e) const;
    int32_t left(FlowElement e) const;
    int32_t top(FlowElement e) const;

    // Moves without snapping (while dragging); snapPlace() afterwards puts it on the grid.
    bool moveTo(FlowElement e, int32_t left, int32_t top);
    bool snapPlace(FlowElement e);
    // Sizes with the handle: each side at least MinimumSize; with the grid on, rounded to it (never
    // below one step).
    bool resize(FlowElement e, int32_t width, int32_t height, bool snap);

    // The toolbox's changes to the selected element. Font changes apply to labels only; a
    // picture has no font.
    bool setCaption(FlowElement e, const QString &text);
    bool setFontSize(FlowElement e, int points);
    bool setStyleFlag(FlowElement e, uint8_t flag, bool on);
    bool setAlignment(FlowElement e, FlowAlignment alignment);
    bool setColour(FlowElement e, int32_t colour); // labels only: a picture keeps its look
    // A picture's link, held between 0 and the record count; returns the link kept.
    int32_t setLink(FlowElement e, int32_t record, int32_t recordCount);
    // Takes the element off the layer: it is not shown and not saved with the record.
    bool remove(FlowElement e);

    // The file number a picture of the toolbox's row stands for.
    static int32_t rowImageNumber(int scrollValue, int slot) { return FirstImageNumber + scrollValue + slot; }
    static int32_t clampLink(int32_t record, int32_t recordCount);
    static uint8_t withFlag(uint8_t style, uint8_t flag, bool on);
    static bool hasFlag(uint8_t style, uint8_t flag) { return (style / flag) % 10 != 0; }

private:
    bool begin();
    FlowLabel *label(FlowElement e);
    FlowImage *image(FlowElement e);

    Page &page_;
    RecordStore *store_;
    Grid grid_;
};

} // namespace ff
