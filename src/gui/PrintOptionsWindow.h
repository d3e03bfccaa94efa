#pragma once
// The print options: the modal window before every print. It chooses the printer (the system's
// printers, or a PDF file when there is none or the user wants one), the paper (the sizes of the
// 41 that the printer takes, and the design page's own size), duplex, orientation, colour,
// quality, copies and the range, and keeps these choices between runs in the settings store,
// section "Settings". The printer takes each choice at once, as it is made.

#include <QDialog>
#include <QSizeF>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPrinter;
class QPushButton;
class QSpinBox;

namespace ff::gui {

class PrintOptionsWindow : public QDialog {
    Q_OBJECT
public:
    // The settings keys; the paper is read under "Papersize" and written under "PaperSize", which
    // the store takes as one key because it ignores case.
    static constexpr const char *kPrinterKey = "PrinterSet";
    static constexpr const char *kPaperReadKey = "Papersize";
    static constexpr const char *kPaperWriteKey = "PaperSize";
    static constexpr const char *kDuplexKey = "PrinterDuplex";
    static constexpr const char *kOrientationKey = "PrinterO";
    static constexpr const char *kColorKey = "PrinterColor";
    static constexpr const char *kQualityKey = "PrinterQty";

    // `pageTwips`: the design page's size, for the custom paper. The printer is changed by the
    // window's choices.
    PrintOptionsWindow(QPrinter &printer, QString applicationKey, QSizeF pageTwips, QWidget *parent = nullptr);

    // The range boxes as the caller fills them: records (or report pages) `first` to `last`, at
    // most `highest`. `currentPage`: the "current page" box is offered (records of the main window).
    void setRange(int first, int last, int highest, bool currentPage);
    int copies() const;
    int first() const;
    int last() const;
    bool rescale() const;
    // Only the print button leaves it false.
    bool PrintCancelled() const { return cancelled_; }
    // When printing into a PDF file: its name (asked for on print unless set here first).
    void setPdfFileName(const QString &name) { pdfFileName_ = name; }

    // Opening: the stored choices go to the printer and the controls (Form_Activate).
    void applyStoredChoices();
    // The print button: the choices are stored, the window hides, PrintCancelled is false.
    void acceptChoices();

    QComboBox *printerList() const { return printerList_; }
    QComboBox *paperList() const { return paperList_; }
    QCheckBox *duplexBox() const { return duplexBox_; }
    QSpinBox *copiesBox() const { return copiesBox_; }
    QCheckBox *currentPageBox() const { return currentPageBox_; }
    QLineEdit *firstBox() const { return firstBox_; }
    QLineEdit *lastBox() const { return lastBox_; }
    QCheckBox *rescaleBox() const { return rescaleBox_; }
    QPushButton *printButton() const { return printButton_; }

    // The PDF entry of the printer list.
    static QString pdfPrinterName() { return tr("PDF file"); }

Q_SIGNALS:
    void currentPageChosen(bool on);

private:
    void choosePrinter(const QString &name);
    void AllPagerSizes();
    void choosePaper(int number);
    void fixRange();
    QString setting(const char *key, const QString &fallback) const;

    QPrinter &printer_;
    QString applicationKey_;
    QSizeF pageTwips_;
    QString pdfFileName_;
    bool cancelled_ = true;
    int highest_ = 1;
    QComboBox *printerList_, *paperList_;
    QCheckBox *duplexBox_;
    QButtonGroup *orientation_, *colour_, *quality_;
    QSpinBox *copiesBox_;
    QCheckBox *currentPageBox_;
    QLineEdit *firstBox_, *lastBox_;
    QCheckBox *rescaleBox_;
    QLabel *hint_;
    QPushButton *printButton_, *cancelButton_;
};

} // namespace ff::gui
