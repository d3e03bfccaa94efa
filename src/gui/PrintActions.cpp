#include "gui/PrintActions.h"

#include "gui/FullPictureWindow.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "gui/PrintOptionsWindow.h"
#include "gui/PrinterTarget.h"
#include "gui/ReportPreviewWindow.h"
#include "print/RecordPrinter.h"
#include "store/Database.h"
#include "toolkit/WaitWindow.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QPrinter>

namespace ff::gui {

PrintActions::PrintActions(MainWindow &main)
    : QObject(&main), main_(main), printer_(std::make_unique<QPrinter>(QPrinter::HighResolution))
{
}

PrintActions::~PrintActions() = default;

QString PrintActions::applicationKey() const
{
    const Design &d = main_.design();
    return d.AppTitle.trimmed().isEmpty() ? main_.database().paths().AppBase : d.AppTitle.trimmed();
}

Result<int> PrintActions::printRecords(QPrinter &printer, const QVector<int> &records, int fromPage, int toPage, int copies,
                                       bool rescale)
{
    RecordStore &store = main_.database().store();
    const int before = store.CurrentRecord();
    PrinterTarget target(printer);
    print::Printer device(target);
    if (rescale && main_.design().PageWidth > 0)
        device.setZoom(int(device.ScaleWidth() / main_.design().PageWidth * 100));
    print::RecordPrinter drawing(main_.design(), main_.database().paths().AppFolder);
    drawing.setRecordPictureFolder(store.RecordPictureFolder());
    drawing.setDecimalSeparator(main_.database().DecimalSeparator);
    drawing.setPageRange(fromPage, toPage);
    drawing.setShownPage(store.page().CurrentPage);
    // The wait window shows how far the job is and holds its stop; a stopped job is thrown away
    // rather than half printed. While it runs, only the stop can be pressed.
    toolkit::WaitWindow wait(&main_);
    wait.setWindowModality(Qt::ApplicationModal);
    wait.setWindowTitle(tr("Print"));
    wait.begin();
    const int total = int(records.size()) * qMax(1, copies);
    int printed = 0, done = 0;
    bool stopped = false;
    for (int copy = 0; copy < qMax(1, copies) && !stopped; ++copy)
        for (const int record : records) {
            if (done % 10 == 0) {
                wait.setPercent(int(100LL * done / qMax(1, total)));
                if ((stopped = wait.cancelled()))
                    break;
            }
            ++done;
            if (!store.JumpToRecord(record))
                continue; // a record that cannot be read is left out, as a drawing step that fails
            drawing.PrintRecordPages(device, store.page());
            ++printed;
        }
    wait.end();
    Status ended;
    if (stopped)
        device.KillDoc();
    else
        ended = device.EndDoc();
    if (before >= 1 && before <= store.RecordCount())
        std::ignore = store.JumpToRecord(before); // the printed pages are out; the record shown comes back if it can
    main_.host().announceRecordShown();
    if (!ended)
        return ended.error();
    return printed;
}

void PrintActions::printRecord(QWidget *parent)
{
    RecordStore &store = main_.database().store();
    if (!store.SaveIfDirty())
        return; // the save has told why; nothing is printed over an unsaved record
    PrintOptionsWindow window(*printer_, applicationKey(), QSizeF(main_.design().PageWidth, main_.design().PageHeight), parent);
    const int shown = store.page().CurrentPage, current = store.CurrentRecord();
    window.setRange(current, current, store.RecordCount(), true);
    window.currentPageBox()->setChecked(true);
    connect(&window, &PrintOptionsWindow::currentPageChosen, &window, [&](bool on) {
        window.setRange(on ? current : 1, on ? current : store.RecordCount(), store.RecordCount(), true);
    });
    window.applyStoredChoices();
    window.exec();
    if (window.PrintCancelled())
        return;
    const bool onePage = window.currentPageBox()->isChecked();
    QVector<int> records;
    for (int r = window.first(); r <= window.last(); ++r)
        records.append(r);
    const Result<int> done = printRecords(*printer_, records, onePage ? shown : 0, onePage ? shown : main_.design().PageCount,
                                          window.copies(), window.rescale());
    if (!done)
        main_.host().ShowMessage(main_.design().AppTitle, done.error().text, 0);
}

FullPictureWindow *PrintActions::showPicture(const QImage &picture, QWidget *parent)
{
    auto *window = new FullPictureWindow(picture, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &FullPictureWindow::printRequested, window, [this, window] {
        PrinterTarget target(*printer_);
        print::Printer device(target);
        if (Status printed = window->printOn(device); !printed)
            main_.host().ShowMessage(main_.design().AppTitle, printed.error().text, 0);
    });
    window->show();
    return window;
}

void PrintActions::printRows(const QVector<int> &rows, QWidget *parent)
{
    if (rows.isEmpty() || !main_.database().store().SaveIfDirty())
        return;
    PrintOptionsWindow window(*printer_, applicationKey(), QSizeF(main_.design().PageWidth, main_.design().PageHeight), parent);
    window.setRange(1, int(rows.size()), int(rows.size()), false);
    window.applyStoredChoices();
    window.exec();
    if (window.PrintCancelled())
        return;
    const QVector<int> chosen = rows.mid(window.first() - 1, window.last() - window.first() + 1);
    const Result<int> done = printRecords(*printer_, chosen, 0, main_.design().PageCount, 1, window.rescale());
    if (!done)
        main_.host().ShowMessage(main_.design().AppTitle, done.error().text, 0);
}

ReportPreviewWindow *PrintActions::show(print::ReportEngine engine, ReportPreviewWindow *reuse)
{
    ReportPreviewWindow *window = reuse;
    if (!window)
        window = new ReportPreviewWindow(main_, std::move(engine), &main_);
    window->start();
    window->show();
    window->raise();
    return window;
}

ReportPreviewWindow *PrintActions::openReport(int index)
{
    auto it = previews_.find(index);
    if (it != previews_.end())
        return show(print::ReportEngine(it->second->engine()), it->second);
    Result<print::ReportEngine> loaded = print::ReportEngine::ReportLoading(main_.design(), index);
    if (!loaded) {
        main_.host().ShowMessage(main_.design().AppTitle, loaded.error().text, 0);
        return nullptr;
    }
    ReportPreviewWindow *window = show(std::move(*loaded), nullptr);
    previews_[index] = window;
    return window;
}

ReportPreviewWindow *PrintActions::openReportOfRows(int index, const QVector<int> &rows)
{
    Result<print::ReportEngine> loaded = print::ReportEngine::ReportLoading(main_.design(), index);
    if (!loaded) {
        main_.host().ShowMessage(main_.design().AppTitle, loaded.error().text, 0);
        return nullptr;
    }
    loaded->setSource(print::ReportSource::SearchList, rows);
    ReportPreviewWindow *window = show(std::move(*loaded), nullptr);
    window->setAttribute(Qt::WA_DeleteOnClose); // one per list printed; nothing prints after it closes
    return window;
}

} // namespace ff::gui
