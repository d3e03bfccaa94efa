#pragma once
// The print commands of the main window and the results windows: the record's pages through the
// print options (copies, the current page or all pages, a record range), the rows of a results
// list, and the reports: one preview window per report of the design, made on first use and kept,
// and a new one for each results list printed as a report.

#include "print/ReportEngine.h"

#include <QObject>
#include <QVector>
#include <map>
#include <memory>

class QImage;
class QPrinter;
class QWidget;

namespace ff::gui {

class MainWindow;
class ReportPreviewWindow;
class FullPictureWindow;

class PrintActions : public QObject {
    Q_OBJECT
public:
    explicit PrintActions(MainWindow &main);
    ~PrintActions() override;

    QPrinter &printer() { return *printer_; }
    QString applicationKey() const;

    // The print command of the main window.
    void printRecord(QWidget *parent);
    // Records `records` with the pages `fromPage` to `toPage`, `copies` times, on `printer`; the
    // record on the page before comes back. Returns the records printed.
    Result<int> printRecords(QPrinter &printer, const QVector<int> &records, int fromPage, int toPage, int copies, bool rescale);
    // The print button of a results window: its rows, in the list's order.
    void printRows(const QVector<int> &rows, QWidget *parent);
    // Report `index` (0-based) over all records, or over `rows` of a results list.
    ReportPreviewWindow *openReport(int index);
    ReportPreviewWindow *openReportOfRows(int index, const QVector<int> &rows);
    // The full-picture window over `picture`; its print button prints it on the chosen printer.
    FullPictureWindow *showPicture(const QImage &picture, QWidget *parent);

private:
    ReportPreviewWindow *show(print::ReportEngine engine, ReportPreviewWindow *reuse);

    MainWindow &main_;
    std::unique_ptr<QPrinter> printer_;
    std::map<int, ReportPreviewWindow *> previews_;
};

} // namespace ff::gui
