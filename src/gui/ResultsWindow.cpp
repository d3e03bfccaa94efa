#include "gui/ResultsWindow.h"

#include "gui/ExportImportActions.h"
#include "gui/MainWindowHost.h"
#include "gui/MailActions.h"
#include "gui/MainWindow.h"
#include "gui/PrintActions.h"
#include "gui/PickedFieldsFind.h"
#include "gui/SearchSession.h"
#include "gui/Twips.h"
#include "store/Database.h"
#include "toolkit/WaitWindow.h"
#include "toolkit/SortableList.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace ff::gui {

namespace {

// The wait window and the results windows' own stop buttons, as one stop for the engine.
class StopProgress : public Progress {
public:
    StopProgress(toolkit::WaitWindow &wait, SearchSession &session) : wait_(wait), session_(session) {}
    void setPercent(int percent) override { wait_.setPercent(percent); }
    bool cancelled() override
    {
        if (wait_.cancelled())
            session_.requestStop();
        return session_.stopRequested();
    }

private:
    toolkit::WaitWindow &wait_;
    SearchSession &session_;
};

// Keeps the search's final word (sum, count, replace) until the wait window is gone, so that the
// message does not come up behind it.
class HeldMessages : public MessageSink {
public:
    void ShowMessage(const QString &caption, const QString &text, int colour) override
    {
        held_.push_back({caption, text, colour});
    }
    void showOn(MessageSink &sink)
    {
        for (const Held &m : held_)
            sink.ShowMessage(m.caption, m.text, m.colour);
        held_.clear();
    }

private:
    struct Held {
        QString caption;
        QString text;
        int colour;
    };
    std::vector<Held> held_;
};

// The list's sort kind of a column: money and numbers with decimals as currency, dates as dates,
// whole numbers as such, everything else as text.
int columnKind(const SearchField &f)
{
    switch (f.value) {
    case ValueKind::Float:
    case ValueKind::NumberText: return 2;
    case ValueKind::Whole: return 4;
    case ValueKind::Currency: return (f.format >= 6 && f.format <= 9) ? 3 : 2;
    case ValueKind::DateText: return 3;
    default: return 1;
    }
}

} // namespace

QString ResultsWindow::fieldCaption(const Design &d, const SearchField &f)
{
    auto pick = [](const QString &tip, const QString &tag, const QString &fallback) {
        if (!tip.trimmed().isEmpty())
            return tip.trimmed();
        if (!tag.trimmed().isEmpty())
            return tag.trimmed();
        return fallback;
    };
    const size_t i = size_t(f.index);
    switch (f.kind) {
    case SearchKind::Field:
        if (i < d.Fields.size())
            return pick(d.Fields[i].ToolTip, d.Fields[i].Tag, QStringLiteral("F%1").arg(f.index));
        break;
    case SearchKind::Combo:
        if (i < d.Combos.size())
            return pick(d.Combos[i].ToolTip, d.Combos[i].Tag, QStringLiteral("C%1").arg(f.index));
        break;
    case SearchKind::Check:
        if (i < d.Checks.size())
            return pick(d.Checks[i].ToolTip, d.Checks[i].Tag, QStringLiteral("K%1").arg(f.index));
        break;
    case SearchKind::Note:
        if (i < d.Notes.size())
            return pick(d.Notes[i].ToolTip, d.Notes[i].Tag, QStringLiteral("M%1").arg(f.index));
        break;
    case SearchKind::Picture:
        return QStringLiteral("P%1").arg(f.index);
    case SearchKind::None:
        break;
    }
    return QString();
}

ResultsWindow *ResultsWindow::start(MainWindow &main, const Request &request)
{
    auto *w = new ResultsWindow(main, request);
    w->runSearch(request.line, false);
    const CommandKind kind = w->result_.command;
    if (!w->result_.ran || (kind != CommandKind::Select && kind != CommandKind::Find)) {
        delete w;
        return nullptr;
    }
    w->show();
    w->raise();
    return w;
}

ResultsWindow::ResultsWindow(MainWindow &main, Request request)
    : QWidget(&main, Qt::Window), main_(main), session_(main.searchSession()), request_(std::move(request)), searchLabel_(new QLabel(this)),
      lineBox_(new QLineEdit(this)), stopButton_(new QPushButton(tr("Stop"), this)), exitButton_(new QPushButton(tr("Close"), this)),
      exportButton_(new QPushButton(tr("Export..."), this)), reportButton_(new QPushButton(tr("Report..."), this)),
      printButton_(new QPushButton(tr("Print..."), this)), list_(new toolkit::SortableList(this)), wait_(new toolkit::WaitWindow(&main))
{
    setAttribute(Qt::WA_DeleteOnClose);
    const QString title = main.database().MainCaption.isEmpty() ? main.design().MainCap : main.database().MainCaption;
    setWindowTitle(title.isEmpty() ? tr("Results") : tr("%1 - Results").arg(title));

    searchLabel_->setAccessibleName(tr("Search result"));
    searchLabel_->setWordWrap(true);
    lineBox_->setPlaceholderText(tr("Search among these results..."));
    lineBox_->setAccessibleName(tr("Search among these results"));
    lineBox_->setClearButtonEnabled(true);
    connect(lineBox_, &QLineEdit::returnPressed, this, [this] {
        if (!lineBox_->text().trimmed().isEmpty() && !running_)
            runSearch(lineBox_->text(), true);
    });
    stopButton_->setToolTip(tr("Stops the search under way; what was found stays listed"));
    connect(stopButton_, &QPushButton::clicked, this, [this] { session_.requestStop(); });
    connect(exitButton_, &QPushButton::clicked, this, [this] {
        session_.requestStop();
        close();
    });
    // The export takes the hits in the order the list shows them; the design may hide it, and a
    // user who may only read has none.
    exportButton_->setObjectName(QStringLiteral("exportButton"));
    exportButton_->setVisible(main.design().ResultExportVisible && main.exportImport().exportAllowed());
    connect(exportButton_, &QPushButton::clicked, this, [this] {
        if (running_)
            return;
        const std::vector<int32_t> shown = list_->ImportReport();
        main_.exportImport().exportResultList(QVector<int>(shown.begin(), shown.end()), this);
    });
    reportButton_->setVisible(false);
    // Print: the rows' records page by page, or the list as any report of the design.
    printButton_->setObjectName(QStringLiteral("printButton"));
    printButton_->setVisible(main.design().ResultImage2Visible);
    auto *printMenu = new QMenu(printButton_);
    printMenu->addAction(tr("Records..."), this, [this] {
        if (running_)
            return;
        const std::vector<int32_t> shown = list_->ImportReport();
        main_.printing().printRows(QVector<int>(shown.begin(), shown.end()), this);
    });
    const Design &design = main.design();
    for (size_t i = 0; i < design.Reports.size(); ++i)
        if (!design.Reports[i].Caption.isEmpty())
            printMenu->addAction(design.Reports[i].Caption, this, [this, i] {
                if (running_)
                    return;
                const std::vector<int32_t> shown = list_->ImportReport();
                main_.printing().openReportOfRows(int(i), QVector<int>(shown.begin(), shown.end()));
            });
    printButton_->setMenu(printMenu);
    // PDF: the rows' records as one document, or the list as any report of the design.
    auto *pdfButton = new QPushButton(tr("PDF..."), this);
    pdfButton->setObjectName(QStringLiteral("pdfButton"));
    auto *pdfMenu = new QMenu(pdfButton);
    pdfMenu->addAction(tr("Records..."), this, [this] {
        const std::vector<int32_t> shown = list_->ImportReport();
        if (!running_)
            main_.mail().saveRowsPdf(QVector<int>(shown.begin(), shown.end()), this);
    });
    for (size_t i = 0; i < design.Reports.size(); ++i)
        if (!design.Reports[i].Caption.isEmpty())
            pdfMenu->addAction(design.Reports[i].Caption, this, [this, i] {
                const std::vector<int32_t> shown = list_->ImportReport();
                const QVector<int> rows(shown.begin(), shown.end());
                if (!running_)
                    main_.mail().saveReportPdf(int(i), &rows, this);
            });
    pdfButton->setMenu(pdfMenu);

    auto *top = new QHBoxLayout;
    top->addWidget(lineBox_, 1);
    top->addWidget(stopButton_);
    top->addWidget(printButton_);
    top->addWidget(pdfButton);
    top->addWidget(reportButton_);
    top->addWidget(exportButton_);
    top->addWidget(exitButton_);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(searchLabel_);
    layout->addLayout(top);
    layout->addWidget(list_, 1);

    connect(list_, &toolkit::SortableList::rowChosen, this, [this](int32_t record, int) { showRecord(record); });

    // Each window one step (200 twips) lower and further right than the last; beside the main
    // window when the screen has room, so that the record a row shows stays in sight.
    const int step = toPixels(200, twipsPerPixel(&main));
    const int k = session_.windowMade() % 12;
    const QRect mainFrame = main.frameGeometry();
    QPoint at = mainFrame.topLeft() + QPoint(40 + k * step, 60 + k * step);
    if (const QScreen *screen = main.screen()) {
        const QRect avail = screen->availableGeometry();
        if (avail.right() - mainFrame.right() >= 500)
            at = QPoint(mainFrame.right() + 8 + k * step, mainFrame.top() + k * step);
        at.setX(qBound(avail.left(), at.x(), qMax(avail.left(), avail.right() - 560)));
        at.setY(qBound(avail.top(), at.y(), qMax(avail.top(), avail.bottom() - 420)));
    }
    resize(560, 420);
    move(at);
}

ResultsWindow::~ResultsWindow()
{
    delete wait_;
}

QString ResultsWindow::searchLabelText() const { return searchLabel_->text(); }

QStringList ResultsWindow::captions() const
{
    QStringList out;
    for (int c = 1; c <= result_.columnCount; ++c)
        out << list_->buttonCaption(c);
    return out;
}

void ResultsWindow::runSearch(const QString &line, bool withinHits)
{
    Database &db = main_.database();
    RecordStore &store = db.store();
    // The walk reads the stored records: the one on the page is saved first. A record that
    // cannot be saved (the store has said so) stops the search before it starts: its results
    // would miss the edit, and a replace would write over it.
    if (!store.SaveIfDirty())
        return;
    if (!withinHits && store.browseOrder() == BrowseOrder::ResultList)
        store.setBrowseOrder(BrowseOrder::FileOrder);

    SearchEngine engine(store, db.DecimalSeparator, main_.context().locale);
    const CompiledQuery query = engine.compile(line, request_.matchCase, request_.focus);

    const QVector<int> previous = result_.hits;
    SearchOptions options;
    options.forward = request_.forward;
    options.matchCase = request_.matchCase;
    options.silent = request_.silent;
    options.progressStep = session_.progressStep();
    if (withinHits)
        options.within = &previous;
    else if (store.browseOrder() == BrowseOrder::SortIndexUp || store.browseOrder() == BrowseOrder::SortIndexDown) {
        options.sortIndex = &store.SortIndex();
        options.order = store.browseOrder();
    }
    // The silent flag is read once, by the search it came with.
    request_.silent = false;

    session_.clearStop();
    running_ = true;
    stopButton_->setEnabled(true);
    StopProgress progress(*wait_, session_);
    options.progress = &progress;
    HeldMessages messages;
    PickedFieldsFind pickedFind(engine, request_.picked);
    wait_->begin();
    SearchResult r = pickedFind.takes(line) ? pickedFind.run(line, options, &main_.context())
                                            : engine.run(query, options, &messages, &main_.context());
    wait_->end();
    messages.showOn(main_.host());
    running_ = false;
    stopButton_->setEnabled(false);

    if (r.command == CommandKind::Replace && r.Replacements > 0 && !store.RecordDirty()) {
        // The record on the page may be one of those changed. When it cannot be read again the
        // page keeps what it showed; the file holds the replacements all the same.
        std::ignore = store.UnpackRecord();
        main_.host().announceRecordShown();
    }
    if (withinHits && r.command != CommandKind::Select && r.command != CommandKind::Find)
        return; // a total over the hits leaves the list as it is
    result_ = std::move(r);
    if (result_.command == CommandKind::Select || result_.command == CommandKind::Find)
        showResult();
}

int ResultsWindow::numberColumnWidth() const
{
    // As wide as the cell of the largest record number listed needs (its mark box, the digits and
    // the cell's margins, as the style measures a cell), so that seven digits of a large store
    // are not cut short; never narrower than the caption's usual width.
    constexpr int kNarrowest = 70;
    if (result_.hits.isEmpty())
        return kNarrowest;
    const QTableView *view = list_->view();
    QStyleOptionViewItem cell;
    cell.initFrom(view->viewport());
    cell.font = view->font();
    cell.fontMetrics = view->fontMetrics();
    cell.text = QString::number(*std::max_element(result_.hits.cbegin(), result_.hits.cend()));
    cell.features = QStyleOptionViewItem::HasDisplay;
    if (list_->mSelect != 0)
        cell.features |= QStyleOptionViewItem::HasCheckIndicator;
    cell.displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
    const int slack = 4; // the grid line and a little air
    return qMax(kNarrowest, view->style()->sizeFromContents(QStyle::CT_ItemViewItem, &cell, QSize(), view).width() + slack);
}

void ResultsWindow::setUpColumns()
{
    const Design &d = main_.design();
    const double tpp = twipsPerPixel(this);
    list_->NameButton(0, tr("No."));
    list_->setColumnWidthPx(0, numberColumnWidth());
    for (int c = 1; c <= toolkit::ListSort::kColumns; ++c) {
        if (c <= result_.columnCount) {
            const SearchField &f = result_.columns[size_t(c - 1)];
            list_->NameButton(c, fieldCaption(d, f));
            std::ignore = list_->ASearchTypes(c, columnKind(f)); // c is within the list's columns
            // The width of the field on the page, within reason.
            double twips = 1500;
            const size_t i = size_t(f.index);
            if (f.kind == SearchKind::Field && i < d.Fields.size())
                twips = d.Fields[i].Width;
            else if (f.kind == SearchKind::Combo && i < d.Combos.size())
                twips = d.Combos[i].Width;
            else if (f.kind == SearchKind::Note && i < d.Notes.size())
                twips = d.Notes[i].Width;
            else if (f.kind == SearchKind::Check)
                twips = 900;
            list_->setColumnWidthPx(c, qBound(50, toPixels(twips, tpp), 180));
        } else {
            list_->NameButton(c, QString());
        }
    }
}

void ResultsWindow::showResult()
{
    setUpColumns();
    if (!isVisible()) {
        // Wide enough for the listed columns, within the screen.
        int wanted = numberColumnWidth() + 60;
        for (int c = 1; c <= result_.columnCount; ++c)
            wanted += list_->view()->columnWidth(c);
        int width = qBound(420, wanted, 900);
        if (const QScreen *screen = main_.screen()) {
            const QRect avail = screen->availableGeometry();
            width = qMin(width, avail.width());
            move(qMin(x(), avail.right() - width), y());
        }
        resize(width, height());
    }
    list_->AddArray(result_.rows);
    searchLabel_->setText(QString::number(result_.rows.size()) + QStringLiteral(" : ") + main_.context().SearchLine);
    if (result_.aborted)
        searchLabel_->setText(searchLabel_->text() + tr("  (stopped)"));
}

void ResultsWindow::showRecord(int32_t record)
{
    RecordStore &store = main_.database().store();
    if (record == store.CurrentRecord() || record < 1 || record > store.RecordCount())
        return;
    // A record that cannot be read leaves the page as it was; the main window shows which record
    // is there.
    std::ignore = store.JumpToRecord(record);
    main_.host().announceRecordShown();
}

} // namespace ff::gui
