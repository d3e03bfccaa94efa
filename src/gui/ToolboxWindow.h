#pragma once
// The floating toolbox of page editing: the label and picture tools, a scrolling row of the
// design's flow pictures to place, and the properties of the element selected on the page (font
// size, bold, italic, underline, alignment and colour of a label; the record a picture links to),
// a grid choice and the delete button. It shows the selected element's values, so a change starts
// from them, and sends every change through the page's editing. Closing it returns the tools to
// the pointer.

#include "pagetools/FlowEditor.h"

#include <QWidget>
#include <array>

class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QScrollBar;
class QToolButton;

namespace ff::gui {

class PageToolController;

class ToolboxWindow : public QWidget {
    Q_OBJECT
public:
    static constexpr int RowLength = 4; // pictures shown at once

    ToolboxWindow(PageToolController &tools, QWidget *parent = nullptr);

    QToolButton *labelToolButton() const { return toolButtons_[0]; }
    QToolButton *pictureToolButton() const { return toolButtons_[1]; }
    QToolButton *rowPicture(int slot) const { return row_[size_t(slot)]; }
    QScrollBar *pictureScroll() const { return pictureScroll_; }
    QComboBox *fontSizeBox() const { return fontSize_; }
    QToolButton *boldButton() const { return bold_; }
    QToolButton *italicButton() const { return italic_; }
    QToolButton *underlineButton() const { return underline_; }
    QRadioButton *alignmentButton(FlowAlignment a) const { return alignment_[size_t(a)]; }
    QToolButton *colourButton(int k) const { return colours_[size_t(k)]; }
    QLabel *shownColour() const { return shownColour_; }
    QLineEdit *linkBox() const { return link_; }
    QComboBox *gridBox() const { return grid_; }
    QToolButton *deleteButton() const { return delete_; }

    // The colours of the strip, as colour longs (0x00BBGGRR).
    static const std::array<int32_t, 16> &stripColours();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void showRow(int first);
    void showSelection(FlowElement element);
    void showTool(PageTool tool);
    void applyFontSize();
    void applyLink();
    void flipStyle(uint8_t flag, QToolButton *button);
    int32_t highestImageNumber() const;

    PageToolController &tools_;
    std::array<QToolButton *, 2> toolButtons_{};
    std::array<QToolButton *, RowLength> row_{};
    QScrollBar *pictureScroll_ = nullptr;
    QComboBox *fontSize_ = nullptr;
    QToolButton *bold_ = nullptr, *italic_ = nullptr, *underline_ = nullptr;
    std::array<QRadioButton *, 3> alignment_{};
    std::array<QToolButton *, 16> colours_{};
    QLabel *shownColour_ = nullptr;
    QLineEdit *link_ = nullptr;
    QComboBox *grid_ = nullptr;
    QToolButton *delete_ = nullptr;
    QWidget *labelProperties_ = nullptr;
    QWidget *pictureProperties_ = nullptr;
    bool showing_ = false; // the controls are being set from the selection, not by the user
};

} // namespace ff::gui
