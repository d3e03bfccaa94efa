#include "gui/PrintOptionsWindow.h"

#include "core/SettingsStore.h"
#include "print/PaperSizes.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

const QString kSection = QStringLiteral("Settings");

// Print quality by the choice's index 1 to 4 (stored as minus the index): draft to high, as dots
// per inch.
int resolutionOfQuality(int index)
{
    switch (index) {
    case 1: return 150;
    case 2: return 300;
    case 3: return 600;
    default: return 1200;
    }
}

} // namespace

PrintOptionsWindow::PrintOptionsWindow(QPrinter &printer, QString applicationKey, QSizeF pageTwips, QWidget *parent)
    : QDialog(parent), printer_(printer), applicationKey_(std::move(applicationKey)), pageTwips_(pageTwips),
      printerList_(new QComboBox(this)), paperList_(new QComboBox(this)), duplexBox_(new QCheckBox(tr("Print on both sides"), this)),
      orientation_(new QButtonGroup(this)), colour_(new QButtonGroup(this)), quality_(new QButtonGroup(this)),
      copiesBox_(new QSpinBox(this)), currentPageBox_(new QCheckBox(tr("Select current page..."), this)),
      firstBox_(new QLineEdit(this)), lastBox_(new QLineEdit(this)),
      rescaleBox_(new QCheckBox(tr("Re-Scale content to fit selected page size..."), this)), hint_(new QLabel(this)),
      printButton_(new QPushButton(tr("Print"), this)), cancelButton_(new QPushButton(tr("Cancel"), this))
{
    setWindowTitle(tr("Print"));
    setModal(true);
    printerList_->setObjectName(QStringLiteral("printerList"));
    paperList_->setObjectName(QStringLiteral("paperList"));
    for (const QString &name : QPrinterInfo::availablePrinterNames())
        printerList_->addItem(name);
    printerList_->addItem(pdfPrinterName());

    auto *orientationRow = new QHBoxLayout;
    int id = 1;
    for (const QString &caption : {tr("Portrait"), tr("Landscape")}) {
        auto *b = new QRadioButton(caption, this);
        orientation_->addButton(b, id++);
        orientationRow->addWidget(b);
    }
    auto *colourRow = new QHBoxLayout;
    id = 1;
    for (const QString &caption : {tr("Black and white"), tr("Colour")}) {
        auto *b = new QRadioButton(caption, this);
        colour_->addButton(b, id++);
        colourRow->addWidget(b);
    }
    auto *qualityRow = new QHBoxLayout;
    id = 1;
    for (const QString &caption : {tr("Draft"), tr("Low"), tr("Medium"), tr("High")}) {
        auto *b = new QRadioButton(caption, this);
        quality_->addButton(b, id++);
        qualityRow->addWidget(b);
    }
    copiesBox_->setRange(1, 999);
    copiesBox_->setValue(1);
    for (QLineEdit *box : {firstBox_, lastBox_})
        box->setValidator(new QIntValidator(0, 999999999, box)); // digits only
    auto *rangeRow = new QHBoxLayout;
    rangeRow->addWidget(firstBox_);
    rangeRow->addWidget(new QLabel(tr("to"), this));
    rangeRow->addWidget(lastBox_);

    auto *form = new QFormLayout;
    form->addRow(tr("Printer:"), printerList_);
    form->addRow(tr("Paper:"), paperList_);
    form->addRow(QString(), duplexBox_);
    form->addRow(tr("Orientation:"), orientationRow);
    form->addRow(tr("Colour:"), colourRow);
    form->addRow(tr("Quality:"), qualityRow);
    form->addRow(tr("Copies:"), copiesBox_);
    form->addRow(QString(), currentPageBox_);
    form->addRow(tr("From:"), rangeRow);
    form->addRow(QString(), rescaleBox_);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(hint_, 1);
    buttons->addWidget(printButton_);
    buttons->addWidget(cancelButton_);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    printButton_->setDefault(true);
    rescaleBox_->setToolTip(rescaleBox_->text());

    connect(printerList_, &QComboBox::textActivated, this, &PrintOptionsWindow::choosePrinter);
    connect(paperList_, &QComboBox::activated, this, [this](int i) { choosePaper(paperList_->itemData(i).toInt()); });
    connect(duplexBox_, &QCheckBox::toggled, this, [this](bool on) {
        printer_.setDuplex(on ? QPrinter::DuplexLongSide : QPrinter::DuplexNone);
    });
    connect(orientation_, &QButtonGroup::idClicked, this, [this](int i) {
        printer_.setPageOrientation(i == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
    });
    connect(colour_, &QButtonGroup::idClicked, this, [this](int i) {
        printer_.setColorMode(i == 2 ? QPrinter::Color : QPrinter::GrayScale);
    });
    connect(quality_, &QButtonGroup::idClicked, this, [this](int i) { printer_.setResolution(resolutionOfQuality(i)); });
    connect(currentPageBox_, &QCheckBox::toggled, this, &PrintOptionsWindow::currentPageChosen);
    connect(firstBox_, &QLineEdit::editingFinished, this, &PrintOptionsWindow::fixRange);
    connect(lastBox_, &QLineEdit::editingFinished, this, &PrintOptionsWindow::fixRange);
    connect(printButton_, &QPushButton::clicked, this, &PrintOptionsWindow::acceptChoices);
    connect(cancelButton_, &QPushButton::clicked, this, &QDialog::reject);
}

QString PrintOptionsWindow::setting(const char *key, const QString &fallback) const
{
    return SettingsStore::GetSetting(applicationKey_, kSection, QLatin1String(key), fallback);
}

void PrintOptionsWindow::setRange(int first, int last, int highest, bool currentPage)
{
    highest_ = qMax(1, highest);
    firstBox_->setText(QString::number(first));
    lastBox_->setText(QString::number(last));
    currentPageBox_->setVisible(currentPage);
}

int PrintOptionsWindow::copies() const { return copiesBox_->value(); }
int PrintOptionsWindow::first() const { return qMax(1, firstBox_->text().toInt()); }
int PrintOptionsWindow::last() const { return qMax(first(), lastBox_->text().toInt()); }
bool PrintOptionsWindow::rescale() const { return rescaleBox_->isChecked(); }

void PrintOptionsWindow::fixRange()
{
    // Below 1 is 1, above the highest is the highest, and the last is never before the first.
    int a = qBound(1, firstBox_->text().toInt(), highest_);
    int b = qBound(1, lastBox_->text().toInt(), highest_);
    if (b < a)
        b = a;
    firstBox_->setText(QString::number(a));
    lastBox_->setText(QString::number(b));
}

void PrintOptionsWindow::choosePrinter(const QString &name)
{
    if (name == pdfPrinterName()) {
        printer_.setOutputFormat(QPrinter::PdfFormat);
    } else {
        printer_.setOutputFormat(QPrinter::NativeFormat);
        printer_.setPrinterName(name); // a printer that has gone leaves the one before
    }
    const int at = printerList_->findText(printer_.outputFormat() == QPrinter::PdfFormat ? pdfPrinterName() : printer_.printerName());
    if (at >= 0)
        printerList_->setCurrentIndex(at);
    AllPagerSizes();
}

void PrintOptionsWindow::AllPagerSizes()
{
    const QPageSize before = printer_.pageLayout().pageSize();
    paperList_->clear();
    const QPrinterInfo info = printer_.outputFormat() == QPrinter::PdfFormat ? QPrinterInfo() : QPrinterInfo(printer_);
    const QList<QPageSize> supported = info.isNull() ? QList<QPageSize>() : info.supportedPageSizes();
    for (int n = 1; n <= print::PaperSizes::Count; ++n) {
        // A PDF file takes any size; a printer only those it lists (all when it lists none).
        bool taken = supported.isEmpty();
        for (const QPageSize &s : supported)
            taken = taken || print::PaperSizes::numberOf(s) == n;
        if (taken)
            paperList_->addItem(print::PaperSizes::name(n), n);
    }
    paperList_->addItem(print::PaperSizes::customName(printerList_->currentText()), 0);
    printer_.setPageSize(before);
}

void PrintOptionsWindow::choosePaper(int number)
{
    if (number > 0)
        printer_.setPageSize(print::PaperSizes::pageSize(number));
    else // the design page's own size
        printer_.setPageSize(QPageSize(QSizeF(pageTwips_.width() / 20, pageTwips_.height() / 20), QPageSize::Point,
                                       QString(), QPageSize::ExactMatch));
    const int at = paperList_->findData(number);
    paperList_->setCurrentIndex(at >= 0 ? at : 0);
}

void PrintOptionsWindow::applyStoredChoices()
{
    cancelled_ = true;
    const QString current = printer_.outputFormat() == QPrinter::PdfFormat ? pdfPrinterName() : printer_.printerName();
    const QString stored = setting(kPrinterKey, current);
    choosePrinter(printerList_->findText(stored) >= 0 ? stored : (current.isEmpty() ? pdfPrinterName() : current));
    // A stored paper the printer does not take leaves the first entry chosen.
    const int paper = setting(kPaperReadKey, QStringLiteral("1")).toInt();
    if (paperList_->findData(paper) >= 0)
        choosePaper(paper);
    else
        choosePaper(paperList_->itemData(0).toInt());
    const int duplex = setting(kDuplexKey, QString::number(printer_.duplex() == QPrinter::DuplexNone ? 1 : 2)).toInt();
    printer_.setDuplex(duplex >= 2 ? QPrinter::DuplexLongSide : QPrinter::DuplexNone);
    duplexBox_->setChecked(printer_.duplex() != QPrinter::DuplexNone); // a printer without duplex keeps its state
    const int orientation =
        setting(kOrientationKey, QString::number(printer_.pageLayout().orientation() == QPageLayout::Landscape ? 2 : 1)).toInt();
    if (QAbstractButton *b = orientation_->button(orientation > 0 ? qBound(1, orientation, 2) : 1))
        b->click();
    const int colour = setting(kColorKey, QString::number(printer_.colorMode() == QPrinter::Color ? 2 : 1)).toInt();
    if (QAbstractButton *b = colour_->button(qBound(1, colour, 2)))
        b->click();
    const int quality = -setting(kQualityKey, QStringLiteral("-3")).toInt();
    if (QAbstractButton *b = quality_->button(qBound(1, quality, 4)))
        b->click();
    copiesBox_->setValue(1);
}

void PrintOptionsWindow::acceptChoices()
{
    fixRange();
    if (printer_.outputFormat() == QPrinter::PdfFormat) {
        QString name = pdfFileName_;
        if (name.isEmpty())
            name = QFileDialog::getSaveFileName(this, tr("Print into a PDF file"), QString(), tr("PDF files (*.pdf)"));
        if (name.isEmpty())
            return; // no file: the window stays
        if (!name.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive))
            name += QStringLiteral(".pdf");
        printer_.setOutputFileName(name);
    }
    const auto save = [this](const char *key, const QString &value) {
        SettingsStore::SaveSetting(applicationKey_, kSection, QLatin1String(key), value);
    };
    save(kPrinterKey, printerList_->currentText());
    save(kDuplexKey, QString::number(printer_.duplex() == QPrinter::DuplexNone ? 1 : 2));
    save(kOrientationKey, QString::number(orientation_->checkedId() > 0 ? orientation_->checkedId() : 1));
    save(kColorKey, QString::number(colour_->checkedId() > 0 ? colour_->checkedId() : 1));
    save(kQualityKey, QString::number(-(quality_->checkedId() > 0 ? quality_->checkedId() : 3)));
    save(kPaperWriteKey, QString::number(paperList_->currentData().toInt()));
    cancelled_ = false;
    accept();
}

} // namespace ff::gui
