#include "gui/MainWindow.h"

#include "entry/EngineFormulaHooks.h"
#include "entry/FieldEntry.h"
#include "entry/PageActions.h"
#include "entry/PageClock.h"
#include "formula/DateNumber.h"
#include "formula/FieldFormat.h"
#include "gui/SearchLineWindow.h"
#include "gui/AboutWindow.h"
#include "gui/ExportImportActions.h"
#include "gui/PrintActions.h"
#include "gui/MailActions.h"
#include "gui/FlowLayer.h"
#include "gui/PageScrollBar.h"
#include "gui/Twips.h"
#include "gui/MainWindowHost.h"
#include "gui/ResultsWindow.h"
#include "gui/UsersWindow.h"
#include "gui/ChartActions.h"
#include "gui/FindReplaceWindow.h"
#include "gui/PageBinder.h"
#include "gui/PageCanvas.h"
#include "gui/PageToolController.h"
#include "gui/PictureLibraryWindow.h"
#include "gui/ToolboxWindow.h"
#include "gui/LoginWindow.h"
#include "search/SearchNames.h"
#include "store/Database.h"
#include "toolkit/Calculator.h"
#include "toolkit/CalendarWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace ff::gui {

// The database is made before the window's host exists; its messages go through this relay.
class RelayHost : public StoreHost {
public:
    MainWindowHost *to = nullptr;
    void ShowMessage(const QString &caption, const QString &text, int colour) override
    {
        if (to)
            to->ShowMessage(caption, text, colour);
    }
    void YieldToEvents() override
    {
        if (to)
            to->YieldToEvents();
    }
};

namespace {

// A caption of the design's command run used as a tool tip: the accelerator's ampersand goes.
QString tipOf(const QString &caption)
{
    QString t = caption;
    return t.remove(QLatin1Char('&'));
}

} // namespace

MainWindow::MainWindow(AppPaths paths, DesignLoad load, const Clock &clock, QWidget *parent)
    : QMainWindow(parent), paths_(std::move(paths)), loadError_(load.error)
{
    const Design &d = load.design;
    context_.AppTitle = d.MainCap;
    context_.AppPath = paths_.AppFolder;
    context_.clock = &clock;
    hooks_ = std::make_unique<EngineFormulaHooks>(context_);
    relay_ = std::make_unique<RelayHost>();
    db_ = std::make_unique<Database>(std::move(load.design), paths_, relay_.get(), hooks_.get());
    db_->setClock(clock);
    host_ = std::make_unique<MainWindowHost>(*db_, context_, this);
    relay_->to = host_.get();
    context_.host = host_.get();
    connect(host_.get(), &MainWindowHost::recordShown, this, &MainWindow::recordShown);
    connect(host_.get(), &MainWindowHost::endNow, this, [this] {
        endingNow_ = true;
        close();
    });
    // A page button's search line: a results window of its own, without the final message.
    connect(host_.get(), &MainWindowHost::searchLine, this, [this](const QString &line) {
        ResultsWindow::Request request;
        request.line = line;
        request.silent = true;
        const EntryState &state = entry_->state();
        request.focus = SearchNames(design(), db_->store().layout())
                            .describe(static_cast<SearchKind>(int(state.focusKind)), state.focusIndex);
        ResultsWindow::start(*this, request);
    });

    db_->start();
    // The login runs before anything of the data shows; a refused login ends the program.
    if (!LoginWindow::runLogin(*db_, this)) {
        loginRefused_ = true;
        endingNow_ = true;
        return;
    }
    setWindowTitle(db_->MainCaption.isEmpty() ? paths_.AppBase : db_->MainCaption);
    if (!design().AppFontName.isEmpty()) {
        QFont f = font();
        f.setFamily(design().AppFontName);
        setFont(f);
    }

    entry_ = std::make_unique<FieldEntry>(db_->page(), *host_, context_.locale, clock);
    actions_ = std::make_unique<PageActions>(db_->page(), *host_, entry_->state(), clock);
    buildToolbar();
    buildPage();
    // The design's start state: 0 normal, 1 minimised, 2 maximised; it takes effect when shown.
    if (design().WindowState == 1)
        setWindowState(Qt::WindowMinimized);
    else if (design().WindowState == 2)
        setWindowState(Qt::WindowMaximized);
    openData(OpenMode::Open);
    // "-paste": the record another program put on the clipboard becomes a new record here.
    if (paths_.pasteStart)
        exportImport_->pasteAtStart();
}

MainWindow::~MainWindow()
{
    if (loginRefused_)
        return;
    // The binder and the canvas refer to the page: they go before the database.
    delete binder_;
    binder_ = nullptr;
    delete takeCentralWidget();
}

const Design &MainWindow::design() const { return db_->design(); }

void MainWindow::buildToolbar()
{
    const Design &d = design();
    auto *bar = addToolBar(tr("Records"));
    bar->setObjectName(QStringLiteral("records"));
    bar->setMovable(false);
    QStyle *st = style();

    auto *menu = menuBar()->addMenu(tr("&File"));
    const QString openCaption = d.CaptionRun[0].isEmpty() ? tr("&Open...") : d.CaptionRun[0];
    const QString createCaption = d.CaptionRun[1].isEmpty() ? tr("&Create...") : d.CaptionRun[1];
    QAction *open = menu->addAction(st->standardIcon(QStyle::SP_DialogOpenButton), openCaption, this,
                                    [this] { chooseDataFile(false); });
    // No Ctrl+letter shortcuts on the main window: in a field, Ctrl+Q, W, E, R, T, Y, U, I, O and P
    // type special characters (cent, pound, copyright, ...).
    QAction *create = menu->addAction(st->standardIcon(QStyle::SP_FileDialogNewFolder), createCaption, this,
                                      [this] { chooseDataFile(true); });
    menu->addSeparator();
    exportImport_ = new ExportImportActions(*this);
    exportImport_->addFileCommands(menu);
    menu->addSeparator();
    printing_ = new PrintActions(*this);
    const QString printCaption = d.CaptionRun[2].isEmpty() ? tr("&Print") : d.CaptionRun[2];
    QAction *printCommand = menu->addAction(printCaption + QStringLiteral("..."), this, [this] { printing_->printRecord(this); });
    printCommand->setObjectName(QStringLiteral("printCommand"));
    mail_ = new MailActions(*this);
    mail_->addCommands(menu, bar);
    menu->addSeparator();
    if (UsersWindow::offeredTo(*db_)) {
        // Named as the users window is (row 10 of the caption run is the calculator icon's tool tip).
        const QString usersCaption = d.UiText[11].isEmpty() ? tr("&Users") : d.UiText[11];
        QAction *users = menu->addAction(usersCaption + QStringLiteral("..."), this,
                                         [this] { UsersWindow::runUsers(*db_, this); });
        users->setObjectName(QStringLiteral("Passmenu"));
        menu->addSeparator();
    }
    menu->addAction(tr("&Quit"), this, &QWidget::close);
    exportImport_->addEditCommands(menuBar());
    // The report menu: one entry per report of the design that has a caption, counted from 1.
    if (std::any_of(d.Reports.begin(), d.Reports.end(), [](const ReportDefinition &r) { return !r.Caption.isEmpty(); })) {
        QMenu *reports = menuBar()->addMenu(tr("&Reports"));
        reports->setObjectName(QStringLiteral("reportMenu"));
        for (size_t i = 0; i < d.Reports.size(); ++i)
            if (!d.Reports[i].Caption.isEmpty())
                reports->addAction(d.Reports[i].Caption, this, [this, i] { printing_->openReport(int(i)); });
    }
    bar->addAction(open);
    open->setToolTip(tipOf(openCaption));
    bar->addSeparator();

    const QStyle::StandardPixmap icons[6] = {QStyle::SP_MediaSkipBackward, QStyle::SP_MediaSeekBackward,
                                             QStyle::SP_ArrowLeft,         QStyle::SP_ArrowRight,
                                             QStyle::SP_MediaSeekForward,  QStyle::SP_MediaSkipForward};
    const QString tips[6] = {tr("First record"), tr("Ten records back"), tr("Previous record"),
                             tr("Next record"),  tr("Ten records on"),   tr("Last record")};
    for (int i = 0; i < 6; ++i) {
        auto *b = new QToolButton(bar);
        b->setIcon(st->standardIcon(icons[i]));
        b->setToolTip(tips[i]);
        b->setAccessibleName(tips[i]);
        connect(b, &QToolButton::clicked, this, [this, i] { host_->navigate(i); });
        navigationButtons_[size_t(i)] = b;
        if (i == 3) {
            recordBox_ = new QLineEdit(bar);
            recordBox_->setValidator(new QIntValidator(1, 2000000000, recordBox_));
            recordBox_->setAlignment(Qt::AlignCenter);
            recordBox_->setMaximumWidth(90);
            recordBox_->setAccessibleName(tr("Record number"));
            recordBox_->setToolTip(tr("Record number: type one and press Enter"));
            connect(recordBox_, &QLineEdit::returnPressed, this, &MainWindow::jumpToTypedRecord);
            bar->addWidget(recordBox_);
        }
        bar->addWidget(b);
    }
    newButton_ = new QToolButton(bar);
    newButton_->setIcon(st->standardIcon(QStyle::SP_FileIcon));
    newButton_->setText(tr("New"));
    newButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    newButton_->setToolTip(d.CaptionRun[6].isEmpty() ? tr("New record") : tipOf(d.CaptionRun[6]));
    newButton_->setAccessibleName(tr("New record"));
    connect(newButton_, &QToolButton::clicked, this, [this] { host_->newRecord(); });
    bar->addSeparator();
    bar->addWidget(newButton_);
    exportImport_->addEditIcons(bar);
    buildSearchCommands(bar);
    charts_ = new ChartActions(*this);
    charts_->addCommands(bar, menuBar());

    actionButton_ = new QToolButton(bar);
    actionButton_->setIcon(st->standardIcon(QStyle::SP_CommandLink));
    actionButton_->setAccessibleName(tr("Field action"));
    connect(actionButton_, &QToolButton::clicked, this, [this] {
        if (actions_->actionButtonClicked()) {
            stopWatchRecord_ = db_->store().CurrentRecord();
            stopWatchTimer_->start();
        }
        else if (!actions_->stopWatch().running())
            stopWatchTimer_->stop();
    });
    bar->addSeparator();
    QAction *actionItem = bar->addWidget(actionButton_);
    actionItem->setVisible(false);
    actionButton_->setProperty("toolbarAction", QVariant::fromValue(static_cast<QObject *>(actionItem)));

    buildInfoCommands(bar);

    if (d.CaptionRun[0].isEmpty())
        open->setVisible(false);
    if (d.CaptionRun[1].isEmpty())
        create->setVisible(false);
    create->setObjectName(QStringLiteral("newin"));
    createAction_ = create;

    stopWatchTimer_ = new QTimer(this);
    stopWatchTimer_->setInterval(1000);
    connect(stopWatchTimer_, &QTimer::timeout, this, [this] { actions_->stopWatchTick(); });
    clockTimer_ = new QTimer(this);
    clockTimer_->setInterval(1000);
    connect(clockTimer_, &QTimer::timeout, this, &MainWindow::updateClock);
    clockTimer_->start();
}

void MainWindow::buildInfoCommands(QToolBar *bar)
{
    const Design &d = design();
    // The calculator icon (shown by Image4Visible) opens the calculator; its tool tip is row 10 of the caption run and the design
    // may hide it. The Tools menu offers the calculator whatever the icon does.
    QAction *calculator = new QAction(QIcon::fromTheme(QStringLiteral("accessories-calculator"),
                                                       style()->standardIcon(QStyle::SP_ComputerIcon)),
                                      tr("&Calculator"), this);
    connect(calculator, &QAction::triggered, this, [this] {
        auto *calc = new toolkit::Calculator(this);
        calc->setAttribute(Qt::WA_DeleteOnClose);
        calc->show();
    });
    menuBar()->addMenu(tr("&Tools"))->addAction(calculator);
    calculatorButton_ = new QToolButton(bar);
    calculatorButton_->setDefaultAction(calculator);
    calculatorButton_->setToolTip(d.CaptionRun[9].isEmpty() ? tr("Calculator") : tipOf(d.CaptionRun[9]));
    calculatorButton_->setAccessibleName(tr("Calculator"));
    bar->addSeparator();
    bar->addWidget(calculatorButton_)->setVisible(d.Image4Visible);

    // The AboutInfo icon opens the about window, captioned Aboutme; the design may hide it, and the
    // Help menu's entry goes with it.
    QAction *about = new QAction(style()->standardIcon(QStyle::SP_MessageBoxInformation),
                                 d.Aboutme.isEmpty() ? tr("&About") : d.Aboutme, this);
    connect(about, &QAction::triggered, this, [this] {
        AboutWindow window(design(), this);
        window.exec();
    });
    about->setVisible(d.AboutInfoVisible);
    menuBar()->addMenu(tr("&Help"))->addAction(about);
    aboutButton_ = new QToolButton(bar);
    aboutButton_->setDefaultAction(about);
    aboutButton_->setToolTip(tipOf(about->text()));
    aboutButton_->setAccessibleName(tr("About"));
    bar->addWidget(aboutButton_)->setVisible(d.AboutInfoVisible);

    // Commands still to come read their switches here: the mail icon shows only with MailIconVisible.
}

void MainWindow::buildPage()
{
    const Design &d = design();
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    tabs_ = new QTabBar(central);
    tabs_->setAccessibleName(tr("Pages"));
    tabs_->setExpanding(false);
    tabs_->setDocumentMode(true);
    for (int page = 0; page <= d.PageCount && page < kPageLimit; ++page) {
        const QString caption = d.PageCaptions[size_t(page)];
        tabs_->addTab(caption.isEmpty() ? tr("Page %1").arg(page + 1) : caption);
    }
    // Without the tab bar the page takes its room, and no tab shows.
    tabs_->setVisible(d.Frame1Visible);
    connect(tabs_, &QTabBar::currentChanged, this, &MainWindow::showPage);
    layout->addWidget(tabs_);

    canvas_ = new PageCanvas(d, paths_.AppFolder, central);
    scroll_ = new QScrollArea(central);
    // The page's scroll bars, and the tabs, in the design's scroll bar colour.
    scroll_->setVerticalScrollBar(new PageScrollBar(Qt::Vertical, d.Pattern, d.ScrollColor, scroll_));
    scroll_->setHorizontalScrollBar(new PageScrollBar(Qt::Horizontal, d.Pattern, d.ScrollColor, scroll_));
    QPalette tabColours = tabs_->palette();
    tabColours.setColor(QPalette::Button, colorFromLong(d.ScrollColor, tabColours.color(QPalette::Button)));
    tabColours.setColor(QPalette::Window, tabColours.color(QPalette::Button)); // the tab face in this style
    tabs_->setPalette(tabColours);
    scroll_->setWidget(canvas_);
    scroll_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setBackgroundRole(QPalette::Dark);
    layout->addWidget(scroll_, 1);
    setCentralWidget(central);

    binder_ = new PageBinder(*canvas_, db_->page(), *entry_, *actions_, this);
    flowLayer_ = new FlowLayer(*canvas_, db_->page(), QDir(paths_.AppFolder).filePath(QStringLiteral("Images")), this);
    connect(flowLayer_, &FlowLayer::recordLinkClicked, this, &MainWindow::jumpToRecord);
    if (d.FlowPageEnabled == 1) {
        pageTools_ = new PageToolController(*canvas_, *flowLayer_, db_->page(), db_->store(), this);
        connect(pageTools_, &PageToolController::toolboxWanted, this, &MainWindow::showToolbox);
    }
    connect(binder_, &PageBinder::pictureEditorWanted, this, [this](int picture) { PictureLibraryWindow::openFor(*this, picture); });
    connect(binder_, &PageBinder::actionChanged, this, &MainWindow::showAction);
    connect(binder_, &PageBinder::datePickerWanted, this, &MainWindow::pickDate);
    connect(binder_, &PageBinder::fullViewWanted, this, [this](const QImage &picture) { printing_->showPicture(picture, this); });
    connect(binder_, &PageBinder::scrollWanted, this, [this](int delta) {
        QScrollBar *v = scroll_->verticalScrollBar();
        v->setValue(qBound(v->minimum(), v->value() + delta, v->maximum()));
    });
    setTabOrder();

    status_ = new QLabel(this);
    status_->setAccessibleName(tr("Status"));
    clock_ = new QLabel(this);
    clock_->setAccessibleName(tr("Clock"));
    statusBar()->addWidget(status_, 1);
    statusBar()->addPermanentWidget(clock_);
    updateClock();

    sizeToDesign();
}

void MainWindow::sizeToDesign()
{
    // The frame around the page (Frame3) takes the design's size when it gives one; without Stretch
    // it keeps that size, with Stretch it follows the window. Without a size the window opens as
    // large as the page, within the screen's bounds.
    const Design &d = design();
    const int chrome = tabs_->sizeHint().height() + statusBar()->sizeHint().height() + 70;
    if (d.Frame3Width <= 0 || d.Frame3Height <= 0) {
        resize(qMin(canvas_->width() + 2, 1400), qMin(canvas_->height() + chrome, 1000));
        return;
    }
    const double tpp = canvas_->twipsPerPixel();
    const QSize frame(qMax(1, toPixels(d.Frame3Width, tpp)), qMax(1, toPixels(d.Frame3Height, tpp)));
    if (!d.Frame3Stretch) {
        scroll_->setFixedSize(frame);
        scroll_->parentWidget()->layout()->setAlignment(scroll_, Qt::AlignLeft | Qt::AlignTop);
    }
    // Lay the window out once at a first guess, then grow or shrink it by what the frame lacks.
    resize(frame.width(), frame.height() + chrome);
    layout()->activate();
    centralWidget()->layout()->activate();
    resize(size() + frame - scroll_->size());
}

void MainWindow::buildSearchCommands(QToolBar *bar)
{
    const Design &d = design();
    auto *menu = menuBar()->addMenu(tr("&Search"));
    const QString captions[4] = {d.CaptionRun[7].isEmpty() ? tr("&Search...") : d.CaptionRun[7],
                                 d.CaptionRun[8].isEmpty() ? tr("Sort &up") : d.CaptionRun[8],
                                 d.CaptionRun[20].isEmpty() ? tr("Sort &down") : d.CaptionRun[20],
                                 d.Finden3Caption};
    for (int i = 0; i < 4; ++i) {
        findActions_[size_t(i)] = menu->addAction(captions[i], this, [this, i] { Finden(i); });
        findActions_[size_t(i)]->setToolTip(tipOf(captions[i]));
    }
    findActions_[0]->setShortcut(QKeySequence::Find);
    findActions_[0]->setIcon(style()->standardIcon(QStyle::SP_FileDialogContentsView));
    findActions_[1]->setIcon(style()->standardIcon(QStyle::SP_ArrowUp));
    findActions_[2]->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    // Without a caption there is no find-and-replace command.
    findActions_[3]->setVisible(!d.Finden3Caption.isEmpty());

    searchButton_ = new QToolButton(bar);
    searchButton_->setDefaultAction(findActions_[0]);
    searchButton_->setToolTip(tipOf(d.CaptionRun[14]));
    searchButton_->setAccessibleName(tr("Search"));
    bar->addSeparator();
    QAction *item = bar->addWidget(searchButton_);
    item->setVisible(!d.CaptionRun[14].isEmpty());
    for (int i = 1; i <= 2; ++i) {
        auto *b = new QToolButton(bar);
        b->setDefaultAction(findActions_[size_t(i)]);
        bar->addWidget(b);
    }
}

void MainWindow::Finden(int command)
{
    switch (command) {
    case 0:
        if (!searchWindow_)
            searchWindow_ = new SearchLineWindow(*this);
        searchWindow_->open();
        break;
    case 1:
    case 2:
        FindReplaceWindow::sortByFocusedField(*this, command == 1 ? BrowseOrder::SortIndexUp : BrowseOrder::SortIndexDown);
        break;
    case 3:
        if (!findActions_[3]->isVisible())
            return;
        if (!replaceWindow_)
            replaceWindow_ = new FindReplaceWindow(*this);
        replaceWindow_->open();
        break;
    default: break;
    }
}

void MainWindow::setTabOrder()
{
    // Focus order by the design's order numbers; for equal numbers fields come first, then check
    // boxes, combos and notes.
    const Design &d = design();
    struct Stop {
        int order, kind, index;
        QWidget *w;
    };
    std::vector<Stop> stops;
    for (int i = 1; i < int(d.Fields.size()); ++i)
        stops.push_back({d.Fields[size_t(i)].FieldTabOrder, 0, i, canvas_->fieldWidget(i)});
    for (int i = 0; i < int(d.Checks.size()); ++i)
        stops.push_back({d.Checks[size_t(i)].CheckTabOrder, 1, i, canvas_->checkWidget(i)});
    for (int i = 1; i < int(d.Combos.size()); ++i)
        stops.push_back({d.Combos[size_t(i)].ComboTabOrder, 2, i, canvas_->comboWidget(i)});
    for (int i = 1; i < int(d.Notes.size()); ++i)
        stops.push_back({d.Notes[size_t(i)].NoteTabOrder, 3, i, canvas_->noteWidget(i)});
    std::stable_sort(stops.begin(), stops.end(), [](const Stop &a, const Stop &b) {
        return a.order != b.order ? a.order < b.order : a.kind < b.kind;
    });
    QWidget *previous = nullptr;
    for (const Stop &s : stops) {
        if (!s.w)
            continue;
        if (previous)
            QWidget::setTabOrder(previous, s.w);
        previous = s.w;
    }
}

void MainWindow::openData(OpenMode mode)
{
    if (!loadError_.text.isEmpty() && design().DataExtension.isEmpty()) {
        recordShown();
        return;
    }
    // The auto-run button (AutoRunButton 1) presses button 0 before the first record shows.
    // File errors have been shown by the database; the window shows what is on the page, and
    // the status line which file that is.
    exportImport_->dataOpening(db_->DataFileName);
    std::ignore = db_->OpenDatabase(mode, [this] {
        if (!design().Buttons.empty())
            actions_->buttonPressed(0);
    });
    exportImport_->dataOpened();
    binder_->setPictureFolder(db_->store().RecordPictureFolder(),
                              QPixmap(QDir(paths_.AppFolder).filePath(QStringLiteral("0.jpg"))));
    binder_->refreshAll();
    // A read-only file or user: the writing commands are disabled, Create among them.
    const bool writable = db_->store().writingAllowed();
    newButton_->setEnabled(writable);
    createAction_->setEnabled(writable);
    findActions_[3]->setVisible(writable && !design().Finden3Caption.isEmpty());
    recordShown();
}

void MainWindow::openDataFile(const QString &fileName, bool create)
{
    // Another file takes the page: a record that cannot be saved (the store has said so) keeps
    // this one open.
    if (!db_->store().SaveIfDirty())
        return;
    db_->DataFileName = fileName;
    openData(create ? OpenMode::Create : OpenMode::Open);
}

void MainWindow::chooseDataFile(bool create)
{
    if (!db_->store().SaveIfDirty())
        return;
    const Design &d = design();
    const QString filter = tr("Data files (*.%1);;All files (*)").arg(d.DataExtension);
    const QString caption = create ? tipOf(d.CaptionRun[1]) : tipOf(d.CaptionRun[0]);
    QString name = create ? QFileDialog::getSaveFileName(this, caption, paths_.AppFolder, filter, nullptr,
                                                         QFileDialog::DontConfirmOverwrite)
                          : QFileDialog::getOpenFileName(this, caption, paths_.AppFolder, filter);
    if (name.isEmpty())
        return;
    if (QFileInfo(name).suffix().isEmpty())
        name += QLatin1Char('.') + d.DataExtension;
    QString message;
    if (!create && !QFileInfo::exists(name))
        message = d.MessageText[1];
    else if (create && QFileInfo::exists(name))
        message = d.MessageText[11];
    if (!message.isNull()) {
        host_->ShowMessage(db_->MainCaption, message.replace(QLatin1Char('*'), name), kMessageColour);
        return;
    }
    openDataFile(name, create);
}

void MainWindow::recordShown()
{
    const RecordStore &s = db_->store();
    // The stop watch times a field of its own record: another record on the page stops it (the
    // timed record was saved on leaving).
    if (actions_ && actions_->stopWatch().running() && s.CurrentRecord() != stopWatchRecord_) {
        actions_->stopWatch().stop();
        stopWatchTimer_->stop();
    }
    context_.RecordCount = s.RecordCount();
    recordBox_->setText(QString::number(s.CurrentRecord()));
    QString text;
    if (!loadError_.text.isEmpty())
        text = tr("The design could not be read completely: %1").arg(loadError_.text);
    else if (db_->DataFileName.isEmpty())
        text = tr("No data file");
    else
        text = tr("%1: record %2 of %3%4")
                   .arg(QFileInfo(db_->DataFileName).fileName())
                   .arg(s.CurrentRecord())
                   .arg(s.RecordCount())
                   .arg(s.writingAllowed() ? QString() : tr(" (read only)"));
    status_->setText(text);
}

QString MainWindow::statusText() const { return status_->text(); }

void MainWindow::showPage(int page) { db_->page().setCurrentPage(page); }

void MainWindow::jumpToTypedRecord()
{
    bool ok = false;
    const int n = recordBox_->text().toInt(&ok);
    jumpToRecord(ok ? n : 0);
}

void MainWindow::jumpToRecord(int record)
{
    // The record box on Enter and a linked flow picture: a number beyond the records changes nothing.
    if (record >= 1 && record <= db_->store().RecordCount()) {
        // A record that cannot be read leaves the page as it was, and the box gets the number of
        // the record shown back below.
        std::ignore = db_->store().JumpToRecord(record);
    }
    recordShown();
}

void MainWindow::showToolbox()
{
    if (!pageTools_)
        return;
    if (!toolbox_)
        toolbox_ = new ToolboxWindow(*pageTools_, this);
    toolbox_->show();
    toolbox_->raise();
}

void MainWindow::showAction(const FieldAction &action)
{
    auto *item = qobject_cast<QAction *>(actionButton_->property("toolbarAction").value<QObject *>());
    if (item)
        item->setVisible(action.visible());
    actionButton_->setToolTip(action.tip);
}

void MainWindow::pickDate(int field)
{
    if (!entry_->beginEdit())
        return;
    Page &page = db_->page();
    const int type = design().Fields[size_t(field)].FieldType;
    const double old = page.FieldDate.value(field);
    const QDate start = old != 0 ? DateFromNumber(old).date() : QDate();
    toolkit::CalendarWindow calendar(*context_.clock, start, this);
    if (calendar.exec() != QDialog::Accepted || !calendar.pickedDate().isValid())
        return;
    // The picked day keeps the time of day the field held.
    const double time = old - std::floor(old);
    const double value = NumberFromDate(calendar.pickedDate()) + (old > 0 ? time : 0);
    page.FieldDate[field] = value;
    page.setFieldText(field, FormatStoredValue(value, type, context_.locale));
    host_->runFormulas();
    page.notifyAll();
}

void MainWindow::updateClock()
{
    clock_->setText(PageClock::text(context_.clock->now(), design().ClockFormat, context_.locale));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (loginRefused_) {
        event->accept();
        return;
    }
    const bool stopWatchRan = stopWatchTimer_->isActive();
    stopWatchTimer_->stop();
    clockTimer_->stop();
    // Leaving the page saves a dirty record and rewrites the per-user file; "END" ends at once.
    if (!endingNow_) {
        if (QWidget *focus = QApplication::focusWidget())
            focus->clearFocus(); // the field being typed in converts its text first
        if (!db_->shutdown() && db_->store().RecordDirty()) {
            // The record could not be saved (the store has said so): the window stays open with
            // the edit on the page, so that the user can correct it or copy it away.
            clockTimer_->start();
            if (stopWatchRan)
                stopWatchTimer_->start();
            event->ignore();
            return;
        }
    }
    event->accept();
}

} // namespace ff::gui
