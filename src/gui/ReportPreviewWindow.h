#pragma once
// The preview of one report: the filled page drawn by the same routine that prints it, in a
// scrolled view, with the paging buttons, the page box, the print button and the record jump (a
// double click on a label shows its row's record in the main window). Closing it while it prints
// throws the job away. Its place and size are saved on closing under "ReportLeft", "ReportTop",
// "ReportWidth" and "ReportHeight" (behind the application key), and nothing reads them back.

#include "print/ReportEngine.h"
#include "print/StoreRecords.h"

#include <QImage>
#include <QWidget>
#include <array>
#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;
class QPrinter;

namespace ff::gui {

class MainWindow;

class ReportPreviewWindow : public QWidget {
    Q_OBJECT
public:
    // `engine` is a report loaded by ReportLoading with its source set.
    ReportPreviewWindow(MainWindow &main, print::ReportEngine engine, QWidget *parent = nullptr);
    ~ReportPreviewWindow() override;

    // ReportStart on the main window's record, then the page drawn.
    void start();
    void pageTo(print::ReportPaging button, int typedPage = 1);
    // The print command: the options window, then the pages asked for on `printer`. With
    // `options` false (tests) all pages are printed once without asking.
    void printReport(QPrinter &printer, bool options = true);
    // A double click at a point of the page, in pixels of the shown page.
    void jumpAt(QPoint pixels);

    print::ReportEngine &engine() { return engine_; }
    const QImage &shownPage() const { return page_; }
    QPushButton *pagingButton(int i) const { return pagingButtons_[size_t(i)]; }
    QLineEdit *pageBox() const { return pageBox_; }
    QPushButton *printButton() const { return printButton_; }
    QScrollArea *pageView() const { return view_; }

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void drawPage();

    MainWindow &main_;
    print::ReportEngine engine_;
    print::StoreRecords records_;
    double tpp_;
    bool CancelFlag = false;
    QImage page_;
    QScrollArea *view_;
    QLabel *pageLabel_;
    std::array<QPushButton *, 4> pagingButtons_{};
    QLineEdit *pageBox_;
    QPushButton *printButton_;
};

} // namespace ff::gui
