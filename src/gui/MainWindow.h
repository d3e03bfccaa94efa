#pragma once
// The main window: the toolbar with the navigation buttons, the new-record button and the record
// box, the tabs of the pages in use, the page box and the status line. It owns the open database
// and binds the page to its widgets; the record on screen lives in the core page, not here.
// If the design could not be read completely, it opens with what was read and says so.

#include "core/Clock.h"
#include "design/AppPaths.h"
#include "design/DesignReader.h"
#include "formula/FormulaContext.h"
#include "gui/SearchSession.h"
#include "store/RecordStore.h"

#include <QMainWindow>
#include <memory>

class QAction;
class QLabel;
class QLineEdit;
class QScrollArea;
class QTabBar;
class QTimer;
class QToolBar;
class QToolButton;

namespace ff {
class Database;
class EngineFormulaHooks;
class FieldEntry;
class FieldAction;
class PageActions;
} // namespace ff

namespace ff::gui {

class SearchLineWindow;
class ExportImportActions;
class PrintActions;
class MailActions;
class FlowLayer;
class MainWindowHost;
class FindReplaceWindow;
class ChartActions;
class PageBinder;
class PageCanvas;
class PageToolController;
class RelayHost;
class ToolboxWindow;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // `clock`: the present moment for formulas, stamps, the calendar, the clock and the stop watch
    // (tests pass a FixedClock); it must outlive the window.
    MainWindow(AppPaths paths, DesignLoad load, const Clock &clock = Clock::system(), QWidget *parent = nullptr);
    ~MainWindow() override;

    const Design &design() const;
    Database &database() { return *db_; }
    MainWindowHost &host() { return *host_; }
    FieldEntry &entry() { return *entry_; }
    PageCanvas *canvas() const { return canvas_; }
    FlowLayer *flowLayer() const { return flowLayer_; }
    // Editing of the flow layer, on designs that allow it (null otherwise), and its toolbox.
    PageToolController *pageTools() const { return pageTools_; }
    ToolboxWindow *toolbox() const { return toolbox_; }
    void showToolbox();
    QScrollArea *pageView() const { return scroll_; }
    QTabBar *pageTabs() const { return tabs_; }
    QLineEdit *recordBox() const { return recordBox_; }
    QToolButton *navigationButton(int i) const { return navigationButtons_[size_t(i)]; }
    QToolButton *newButton() const { return newButton_; }
    QAction *createCommand() const { return createAction_; }
    QToolButton *actionButton() const { return actionButton_; }
    QString statusText() const;
    FormulaContext &context() { return context_; }
    // Shared by the results windows and the find-and-replace window.
    SearchSession &searchSession() { return searchSession_; }

    // The find commands: 0 the search window, 1 sort up, 2 sort down, 3 find and replace.
    void Finden(int command);
    SearchLineWindow *searchWindow() const { return searchWindow_; }
    FindReplaceWindow *replaceWindow() const { return replaceWindow_; }
    QAction *findenAction(int command) const { return findActions_[size_t(command)]; }
    QToolButton *searchButton() const { return searchButton_; }
    QToolButton *calculatorButton() const { return calculatorButton_; } // shown by Image4Visible
    QToolButton *aboutButton() const { return aboutButton_; }           // the AboutInfo icon
    // False when the login was refused: the program ends without showing the window.
    bool started() const { return !loginRefused_; }

    // Export, import, copy and paste of records.
    ExportImportActions &exportImport() { return *exportImport_; }
    // Printing records and reports.
    PrintActions &printing() { return *printing_; }
    // Mailing the record or a report, and a report as a PDF file.
    MailActions &mail() { return *mail_; }
    // The statistics command and its chart windows.
    ChartActions &charts() { return *charts_; }

    // Opens (create false) or creates a data file by name, as the Open and Create commands do
    // after their file dialog.
    void openDataFile(const QString &fileName, bool create);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildToolbar();
    void buildPage();
    void setTabOrder();
    void openData(OpenMode mode);
    void recordShown();
    void showPage(int page);
    void jumpToTypedRecord();
    void jumpToRecord(int record);
    void buildInfoCommands(QToolBar *bar);
    void sizeToDesign();
    void chooseDataFile(bool create);
    void showAction(const FieldAction &action);
    void pickDate(int field);
    void updateClock();
    void buildSearchCommands(QToolBar *bar);

    AppPaths paths_;
    Error loadError_;
    FormulaContext context_;
    SearchSession searchSession_;
    std::unique_ptr<EngineFormulaHooks> hooks_;
    std::unique_ptr<RelayHost> relay_;
    std::unique_ptr<Database> db_;
    std::unique_ptr<MainWindowHost> host_;
    std::unique_ptr<FieldEntry> entry_;
    std::unique_ptr<PageActions> actions_;
    PageCanvas *canvas_ = nullptr;
    PageBinder *binder_ = nullptr;
    FlowLayer *flowLayer_ = nullptr;
    PageToolController *pageTools_ = nullptr;
    ToolboxWindow *toolbox_ = nullptr;
    QTabBar *tabs_ = nullptr;
    QScrollArea *scroll_ = nullptr;
    QLabel *status_ = nullptr;
    QLabel *clock_ = nullptr;
    std::array<QToolButton *, 6> navigationButtons_{};
    QToolButton *newButton_ = nullptr;
    QAction *createAction_ = nullptr; // the Create command of the File menu
    QToolButton *actionButton_ = nullptr; // the action button of the focused field
    QLineEdit *recordBox_ = nullptr;
    QTimer *stopWatchTimer_ = nullptr; // the stop watch
    int stopWatchRecord_ = 0;          // the record whose field the stop watch times
    QTimer *clockTimer_ = nullptr; // the clock
    QToolButton *searchButton_ = nullptr; // the search window's icon
    QToolButton *calculatorButton_ = nullptr;
    QToolButton *aboutButton_ = nullptr;
    std::array<QAction *, 4> findActions_{};
    SearchLineWindow *searchWindow_ = nullptr;
    FindReplaceWindow *replaceWindow_ = nullptr;
    ExportImportActions *exportImport_ = nullptr;
    PrintActions *printing_ = nullptr;
    MailActions *mail_ = nullptr;
    ChartActions *charts_ = nullptr;
    bool endingNow_ = false;
    bool loginRefused_ = false;
};

} // namespace ff::gui
