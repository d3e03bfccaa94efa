#include "gui/ToolboxWindow.h"

#include "gui/FlowLayer.h"
#include "gui/PageToolController.h"
#include "gui/Twips.h"
#include "store/RecordStore.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QRadioButton>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

QToolButton *toolButton(QWidget *parent, const QString &text, const QString &tip, bool checkable = true)
{
    auto *b = new QToolButton(parent);
    b->setText(text);
    b->setToolTip(tip);
    b->setAccessibleName(tip);
    b->setCheckable(checkable);
    b->setAutoRaise(false);
    b->setMinimumSize(28, 26);
    return b;
}

void showColour(QWidget *w, int32_t colour)
{
    QPalette pal = w->palette();
    pal.setColor(QPalette::Window, colorFromLong(colour, Qt::black));
    w->setPalette(pal);
    w->setAutoFillBackground(true);
}

} // namespace

const std::array<int32_t, 16> &ToolboxWindow::stripColours()
{
    // Black, greys and white, then the strong and dark colours, as colour longs (0x00BBGGRR).
    static const std::array<int32_t, 16> colours{0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF, 0x0000FF, 0x000080,
                                                 0x00FFFF, 0x008080, 0x00FF00, 0x008000, 0xFFFF00, 0x808000,
                                                 0xFF0000, 0x800000, 0xFF00FF, 0x800080};
    return colours;
}

ToolboxWindow::ToolboxWindow(PageToolController &tools, QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::WindowCloseButtonHint | Qt::WindowTitleHint), tools_(tools)
{
    setWindowTitle(tr("Toolbox"));
    setObjectName(QStringLiteral("toolbox"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);

    // The tools and delete.
    auto *toolRow = new QHBoxLayout;
    toolButtons_[0] = toolButton(this, tr("A"), tr("Label tool: click on the page to place a label"));
    toolButtons_[1] = toolButton(this, tr("Pic"), tr("Picture tool: click on the page to place the chosen picture"));
    QFont big = toolButtons_[0]->font();
    big.setBold(true);
    toolButtons_[0]->setFont(big);
    delete_ = toolButton(this, tr("Delete"), tr("Delete the selected element"), false);
    for (int i = 0; i < 2; ++i) {
        toolRow->addWidget(toolButtons_[size_t(i)]);
        connect(toolButtons_[size_t(i)], &QToolButton::clicked, this, [this, i] {
            tools_.setTool(i == 0 ? PageTool::Label : PageTool::Picture);
        });
    }
    toolRow->addStretch();
    toolRow->addWidget(delete_);
    connect(delete_, &QToolButton::clicked, this, [this] { tools_.deleteSelected(); });
    layout->addLayout(toolRow);

    // The row of pictures and its scroll bar.
    auto *rowBox = new QHBoxLayout;
    for (int k = 0; k < RowLength; ++k) {
        auto *b = new QToolButton(this);
        b->setIconSize(QSize(40, 40));
        b->setFixedSize(48, 48);
        b->setCheckable(true);
        // The picture tool with this picture; the same picture chosen again returns to the pointer.
        connect(b, &QToolButton::clicked, this, [this, k] {
            tools_.setTool(PageTool::Picture, FlowEditor::rowImageNumber(pictureScroll_->value(), k));
        });
        row_[size_t(k)] = b;
        rowBox->addWidget(b);
    }
    layout->addLayout(rowBox);
    pictureScroll_ = new QScrollBar(Qt::Horizontal, this);
    pictureScroll_->setAccessibleName(tr("Pictures"));
    connect(pictureScroll_, &QScrollBar::valueChanged, this, &ToolboxWindow::showRow);
    layout->addWidget(pictureScroll_);

    // A label's font, alignment and colour.
    labelProperties_ = new QWidget(this);
    auto *labelBox = new QVBoxLayout(labelProperties_);
    labelBox->setContentsMargins(0, 0, 0, 0);
    auto *fontRow = new QHBoxLayout;
    fontSize_ = new QComboBox(labelProperties_);
    fontSize_->setEditable(true);
    fontSize_->setAccessibleName(tr("Font size"));
    fontSize_->setValidator(new QIntValidator(1, 255, fontSize_));
    for (int size : {6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 36, 48, 72})
        fontSize_->addItem(QString::number(size));
    connect(fontSize_, &QComboBox::textActivated, this, &ToolboxWindow::applyFontSize);
    bold_ = toolButton(labelProperties_, tr("B"), tr("Bold"));
    italic_ = toolButton(labelProperties_, tr("I"), tr("Italic"));
    underline_ = toolButton(labelProperties_, tr("U"), tr("Underline"));
    QFont f = bold_->font();
    f.setBold(true);
    bold_->setFont(f);
    f.setBold(false);
    f.setItalic(true);
    italic_->setFont(f);
    f.setItalic(false);
    f.setUnderline(true);
    underline_->setFont(f);
    connect(bold_, &QToolButton::clicked, this, [this] { flipStyle(FlowEditor::Bold, bold_); });
    connect(italic_, &QToolButton::clicked, this, [this] { flipStyle(FlowEditor::Italic, italic_); });
    connect(underline_, &QToolButton::clicked, this, [this] { flipStyle(FlowEditor::Underline, underline_); });
    fontRow->addWidget(fontSize_, 1);
    fontRow->addWidget(bold_);
    fontRow->addWidget(italic_);
    fontRow->addWidget(underline_);
    labelBox->addLayout(fontRow);

    auto *alignRow = new QHBoxLayout;
    auto *alignGroup = new QButtonGroup(this);
    const QString alignCaptions[3] = {tr("Left"), tr("Right"), tr("Centre")};
    for (int i = 0; i < 3; ++i) {
        alignment_[size_t(i)] = new QRadioButton(alignCaptions[i], labelProperties_);
        alignGroup->addButton(alignment_[size_t(i)], i);
        alignRow->addWidget(alignment_[size_t(i)]);
    }
    connect(alignGroup, &QButtonGroup::idClicked, this, [this](int id) {
        if (!showing_)
            std::ignore = tools_.editor().setAlignment(tools_.selected(), FlowAlignment(id)); // a picture has none
    });
    labelBox->addLayout(alignRow);

    auto *colourRow = new QGridLayout;
    colourRow->setSpacing(1);
    for (int k = 0; k < 16; ++k) {
        auto *b = new QToolButton(labelProperties_);
        b->setFixedSize(16, 16);
        b->setAutoRaise(true);
        const int32_t colour = stripColours()[size_t(k)];
        b->setAccessibleName(tr("Colour %1").arg(k + 1));
        showColour(b, colour);
        b->setStyleSheet(QStringLiteral("background-color: %1; border: 1px solid gray;").arg(colorFromLong(colour).name()));
        connect(b, &QToolButton::clicked, this, [this, colour] {
            // A colour goes to labels only; a picture keeps its look.
            if (tools_.editor().setColour(tools_.selected(), colour))
                showColour(shownColour_, colour);
        });
        colours_[size_t(k)] = b;
        colourRow->addWidget(b, k / 8, k % 8);
    }
    shownColour_ = new QLabel(labelProperties_);
    shownColour_->setFixedSize(33, 33);
    shownColour_->setFrameShape(QFrame::Box);
    shownColour_->setAccessibleName(tr("Label colour"));
    showColour(shownColour_, 0);
    colourRow->addWidget(shownColour_, 0, 8, 2, 1);
    labelBox->addLayout(colourRow);
    layout->addWidget(labelProperties_);

    // A picture's link.
    pictureProperties_ = new QWidget(this);
    auto *linkForm = new QFormLayout(pictureProperties_);
    linkForm->setContentsMargins(0, 0, 0, 0);
    link_ = new QLineEdit(pictureProperties_);
    link_->setValidator(new QIntValidator(0, 2000000000, link_));
    link_->setAccessibleName(tr("Link to record"));
    connect(link_, &QLineEdit::editingFinished, this, &ToolboxWindow::applyLink);
    linkForm->addRow(tr("Link to record:"), link_);
    layout->addWidget(pictureProperties_);

    // The snap grid, the same choice as the page's menu.
    auto *gridForm = new QFormLayout;
    grid_ = new QComboBox(this);
    grid_->setAccessibleName(tr("Grid"));
    const std::pair<int, QString> grids[] = {{-1, tr("No grid")},
                                             {2, QStringLiteral("\u00bc inch")},
                                             {3, QStringLiteral("\u00bd inch")},
                                             {5, QStringLiteral("\u00bc cm")},
                                             {6, QStringLiteral("\u00bd cm")},
                                             {7, QStringLiteral("1 cm")}};
    for (const auto &[index, caption] : grids)
        grid_->addItem(caption, index);
    connect(grid_, &QComboBox::activated, this, [this](int row) {
        const int item = grid_->itemData(row).toInt();
        if (item != tools_.checkedGrid())
            tools_.chooseGrid(item < 0 ? tools_.checkedGrid() : item); // the checked one again is off
    });
    gridForm->addRow(tr("Grid:"), grid_);
    layout->addLayout(gridForm);

    connect(&tools_, &PageToolController::selectionChanged, this, &ToolboxWindow::showSelection);
    connect(&tools_, &PageToolController::toolChanged, this, &ToolboxWindow::showTool);
    connect(&tools_, &PageToolController::gridChanged, this, [this](int item) {
        grid_->setCurrentIndex(qMax(0, grid_->findData(item)));
    });
    connect(&tools_.editor().page(), &Page::flowChanged, this, [this] { showSelection(tools_.selected()); });

    grid_->setCurrentIndex(qMax(0, grid_->findData(tools_.checkedGrid())));
    pictureScroll_->setRange(0, qMax(0, int(highestImageNumber() - FlowEditor::FirstImageNumber)));
    pictureScroll_->setPageStep(RowLength);
    showRow(0);
    showSelection(tools_.selected());
    showTool(tools_.tool());
}

int32_t ToolboxWindow::highestImageNumber() const
{
    // The design's flow pictures are the numbered GIF files of the images folder.
    int32_t highest = FlowEditor::FirstImageNumber;
    const QStringList files = QDir(tools_.layer().imageFolder()).entryList({QStringLiteral("*.gif")}, QDir::Files);
    for (const QString &name : files) {
        bool ok = false;
        const int32_t n = name.left(name.size() - 4).toInt(&ok);
        if (ok && n > highest)
            highest = n;
    }
    return highest;
}

void ToolboxWindow::showRow(int first)
{
    for (int k = 0; k < RowLength; ++k) {
        const int32_t number = FlowEditor::rowImageNumber(first, k);
        const QPixmap pix(FlowLayer::imagePath(tools_.layer().imageFolder(), number));
        QToolButton *b = row_[size_t(k)];
        // A number without a file hides its place in the row.
        b->setVisible(!pix.isNull());
        b->setIcon(QIcon(pix));
        b->setToolTip(tr("Picture %1").arg(number));
        b->setAccessibleName(tr("Picture %1").arg(number));
        b->setChecked(tools_.tool() == PageTool::Picture && tools_.toolImage() == number);
    }
}

void ToolboxWindow::showTool(PageTool tool)
{
    toolButtons_[0]->setChecked(tool == PageTool::Label);
    toolButtons_[1]->setChecked(tool == PageTool::Picture);
    showRow(pictureScroll_->value());
}

void ToolboxWindow::showSelection(FlowElement element)
{
    // The selected element's values, so that a change starts from them.
    showing_ = true;
    const Page &page = tools_.editor().page();
    const bool isLabel = element.kind == FlowElement::Kind::Label && element.index < page.FlowLabels.size();
    const bool isImage = element.kind == FlowElement::Kind::Image && element.index < page.FlowImages.size();
    labelProperties_->setEnabled(isLabel);
    pictureProperties_->setEnabled(isImage);
    delete_->setEnabled(isLabel || isImage);
    if (isLabel) {
        const FlowLabel &l = page.FlowLabels[element.index];
        if (!fontSize_->lineEdit()->hasFocus())
            fontSize_->setCurrentText(QString::number(l.fontSize));
        bold_->setChecked(FlowEditor::hasFlag(l.style, FlowEditor::Bold));
        italic_->setChecked(FlowEditor::hasFlag(l.style, FlowEditor::Italic));
        underline_->setChecked(FlowEditor::hasFlag(l.style, FlowEditor::Underline));
        if (l.alignment < 3)
            alignment_[l.alignment]->setChecked(true);
        showColour(shownColour_, l.color);
    }
    if (!isLabel)
        fontSize_->setCurrentText(QString());
    if (isImage && !link_->hasFocus())
        link_->setText(QString::number(page.FlowImages[element.index].FlowImageLink));
    if (!isImage)
        link_->clear();
    showing_ = false;
}

void ToolboxWindow::applyFontSize()
{
    bool ok = false;
    const int size = fontSize_->currentText().toInt(&ok);
    if (ok)
        std::ignore = tools_.editor().setFontSize(tools_.selected(), size); // a picture has no font
}

void ToolboxWindow::flipStyle(uint8_t flag, QToolButton *button)
{
    const FlowElement e = tools_.selected();
    const Page &page = tools_.editor().page();
    if (e.kind != FlowElement::Kind::Label || e.index >= page.FlowLabels.size()) {
        button->setChecked(false);
        return;
    }
    const bool on = !FlowEditor::hasFlag(page.FlowLabels[e.index].style, flag);
    if (!tools_.editor().setStyleFlag(e, flag, on))
        showSelection(tools_.selected());
}

void ToolboxWindow::applyLink()
{
    const FlowElement e = tools_.selected();
    if (showing_ || e.kind != FlowElement::Kind::Image)
        return;
    // A record beyond the last is taken as the last.
    const int32_t kept = tools_.editor().setLink(e, link_->text().toInt(), tools_.store().RecordCount());
    link_->setText(QString::number(kept));
}

void ToolboxWindow::showEvent(QShowEvent *event)
{
    showSelection(tools_.selected());
    showTool(tools_.tool());
    QWidget::showEvent(event);
}

void ToolboxWindow::closeEvent(QCloseEvent *event)
{
    tools_.resetTool();
    QWidget::closeEvent(event);
}

} // namespace ff::gui
