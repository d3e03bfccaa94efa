#include "gui/ExportImportActions.h"

#include "entry/FieldEntry.h"
#include "export/ImportXmlFiles.h"
#include "export/RecordExport.h"
#include "export/RecordImport.h"
#include "export/TextImport.h"
#include "export/XmlRecord.h"
#include "gui/ExportChooser.h"
#include "gui/ImportChooser.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "pdf/PdfRecordExport.h"
#include "store/Database.h"
#include "store/RecordLayout.h"
#include "toolkit/WaitWindow.h"
#include "web/WebExport.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPointer>
#include <QToolBar>
#include <QToolButton>

#include <vector>

namespace ff::gui {

namespace {

// Rows of the design's caption run (0-based) that name these commands.
constexpr int kExportRow = 16;
constexpr int kCopyDataRow = 17;
constexpr int kPasteDataRow = 18;
constexpr int kImportRow = 23;
// The text of the export's closing message.
constexpr int kExportDoneText = 15;

QString withoutAmpersands(QString caption) { return caption.remove(QLatin1Char('&')); }

// A menu entry that opens a dialog ends in "...".
QString opensDialog(const QString &caption)
{
    return caption.endsWith(QLatin1String("...")) ? caption : caption + QStringLiteral("...");
}

// The copy and paste icons where the desktop's icon theme has none: two sheets, and a sheet on a
// clipboard.
QIcon drawnIcon(bool paste)
{
    QPixmap pixmap(24, 24);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QPen outline(QColor(0x37, 0x47, 0x4f), 1.2);
    const auto sheet = [&p, &outline](const QRectF &r) {
        p.setPen(outline);
        p.setBrush(Qt::white);
        p.drawRect(r);
        for (double y = r.top() + 4; y < r.bottom() - 2; y += 3)
            p.drawLine(QPointF(r.left() + 2.5, y), QPointF(r.right() - 2.5, y));
    };
    if (paste) {
        p.setPen(outline);
        p.setBrush(QColor(0xc8, 0xa1, 0x65));
        p.drawRoundedRect(QRectF(3.5, 3.5, 14, 18), 2, 2);
        p.setBrush(QColor(0x90, 0xa4, 0xae));
        p.drawRect(QRectF(7.5, 1.5, 6, 4));
        sheet(QRectF(10.5, 9.5, 11, 13));
    } else {
        sheet(QRectF(2.5, 2.5, 12, 15));
        sheet(QRectF(9.5, 7.5, 12, 15));
    }
    return QIcon(pixmap);
}

// "1 record", "3 records".
QString counted(int n, const QString &one, const QString &many) { return (n == 1 ? one : many).arg(n); }

// Keeps an import's messages (the record limit) until the wait window is gone, so that none comes
// up behind it.
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
        QString caption, text;
        int colour;
    };
    std::vector<Held> held_;
};

ElementKind elementOf(FocusKind kind)
{
    switch (kind) {
    case FocusKind::Field: return ElementKind::Field;
    case FocusKind::Combo: return ElementKind::Combo;
    case FocusKind::Check: return ElementKind::Check;
    case FocusKind::Note: return ElementKind::Note;
    case FocusKind::None: break;
    }
    return ElementKind::None;
}

} // namespace

ExportImportActions::ExportImportActions(MainWindow &main)
    : QObject(&main), main_(main), wait_(new toolkit::WaitWindow(&main))
{
    // While records go out or in, the rest of the program waits: only the stop can be pressed.
    wait_->setWindowModality(Qt::ApplicationModal);
    folder_ = main.database().paths().AppFolder;
}

ExportImportActions::~ExportImportActions() = default;

QString ExportImportActions::title(int captionRow, const QString &fallback) const
{
    const QString caption = withoutAmpersands(main_.design().CaptionRun[size_t(captionRow)]);
    return caption.isEmpty() ? fallback : caption;
}

void ExportImportActions::addFileCommands(QMenu *fileMenu)
{
    const Design &d = main_.design();
    const QString exportCaption = d.CaptionRun[kExportRow];
    export_ = fileMenu->addAction(exportCaption.isEmpty() ? tr("&Export...") : opensDialog(exportCaption), this,
                                  &ExportImportActions::exportRecords);
    export_->setObjectName(QStringLiteral("Exporting"));
    export_->setVisible(d.ExportingVisible && !exportCaption.isEmpty());
    const QString importCaption = d.CaptionRun[kImportRow];
    import_ = fileMenu->addAction(importCaption.isEmpty() ? tr("&Import...") : opensDialog(importCaption), this,
                                  &ExportImportActions::importRecords);
    import_->setObjectName(QStringLiteral("importtxt"));
    import_->setVisible(!importCaption.isEmpty());
}

void ExportImportActions::addEditCommands(QMenuBar *menus)
{
    const Design &d = main_.design();
    auto *menu = menus->addMenu(tr("&Edit"));
    // No Ctrl+C or Ctrl+V here: in a field they copy and paste its text.
    copyRecord_ = menu->addAction(tr("Copy the whole &record"), this, &ExportImportActions::copyRecord);
    copyRecord_->setObjectName(QStringLiteral("CopyAll"));
    const QString copyTip = d.CaptionRun[kCopyDataRow];
    copyData_ = menu->addAction(QIcon::fromTheme(QStringLiteral("edit-copy"), drawnIcon(false)),
                                copyTip.isEmpty() ? tr("Copy &data") : copyTip, this, &ExportImportActions::copyData);
    copyData_->setObjectName(QStringLiteral("CopyData"));
    copyData_->setToolTip(copyTip.isEmpty() ? tr("Copies the picked fields, or the whole record")
                                            : withoutAmpersands(copyTip));
    const QString pasteTip = d.CaptionRun[kPasteDataRow];
    paste_ = menu->addAction(QIcon::fromTheme(QStringLiteral("edit-paste"), drawnIcon(true)),
                             pasteTip.isEmpty() ? tr("&Paste") : pasteTip, this, &ExportImportActions::pasteData);
    paste_->setObjectName(QStringLiteral("PasteData"));
    paste_->setToolTip(pasteTip.isEmpty() ? tr("Pastes a copied record into this one") : withoutAmpersands(pasteTip));
    // The design hides the copy and paste icons by leaving their tips empty; the menu follows.
    copyData_->setVisible(!copyTip.isEmpty());
    paste_->setVisible(!pasteTip.isEmpty());
    // Copy data copies the whole record unless fields are picked: the entry for the whole record
    // shows only when it does something else, and copy data says how many fields it takes.
    const QString copyCaption = copyData_->text();
    connect(menu, &QMenu::aboutToShow, this, [this, copyCaption] {
        const MultiFieldSelection &picked = main_.entry().selection();
        copyRecord_->setVisible(!copyData_->isVisible() || picked.active());
        copyData_->setText(picked.active() ? tr("%1 (%2 picked)").arg(copyCaption).arg(picked.count()) : copyCaption);
    });
}

void ExportImportActions::addEditIcons(QToolBar *bar)
{
    bar->addSeparator();
    for (QAction *action : {copyData_, paste_}) {
        auto *button = new QToolButton(bar);
        button->setDefaultAction(action);
        button->setAccessibleName(action->objectName());
        bar->addWidget(button)->setVisible(action->isVisible());
    }
}

void ExportImportActions::dataOpening(const QString &dataFileName)
{
    // The same test as the opening's: no whole record in the first file and no second part.
    const int length = ComputeRecordLayout(main_.design()).RecordLength;
    const QFileInfo first(dataFileName);
    const qsizetype dot = dataFileName.lastIndexOf(QLatin1Char('.'));
    const QString base = dot > dataFileName.lastIndexOf(QLatin1Char('/')) ? dataFileName.left(dot) : dataFileName;
    openedEmpty_ = (!first.exists() || first.size() < length) && !QFileInfo::exists(base + QStringLiteral("0001"));
}

void ExportImportActions::dataOpened()
{
    RecordStore &store = main_.database().store();
    blankRecord_.clear();
    if (openedEmpty_ && store.RecordCount() == 1) {
        if (const Result<QByteArray> stored = store.readPlainRecord(1))
            blankRecord_ = *stored;
    }
    if (export_)
        export_->setEnabled(exportAllowed());
    if (import_)
        import_->setEnabled(store.writingAllowed());
    if (paste_)
        paste_->setEnabled(store.writingAllowed());
}

bool ExportImportActions::onlyBlankRecord()
{
    RecordStore &store = main_.database().store();
    if (blankRecord_.isEmpty() || store.RecordCount() != 1 || store.RecordDirty())
        return false;
    const Result<QByteArray> stored = store.readPlainRecord(1);
    return stored && *stored == blankRecord_;
}

bool ExportImportActions::exportAllowed() const
{
    // The rights check of the File menu: a user who may only read does not take records away.
    return !main_.database().store().ViewOnlyMode();
}

void ExportImportActions::tell(const QString &text) { main_.host().ShowMessage(QString(), text, kMessageColour); }

// The field being typed in is left for the time of a command, so that its text is converted and
// the formulas run, and takes the focus back afterwards.
class ExportImportActions::FieldLeft {
public:
    explicit FieldLeft(QWidget &window)
    {
        if (QWidget *focus = QApplication::focusWidget(); focus && focus->window() == &window) {
            focus_ = focus;
            focus->clearFocus();
        }
    }
    ~FieldLeft()
    {
        if (focus_ && focus_->isVisible() && focus_->isEnabled())
            focus_->setFocus(Qt::OtherFocusReason);
    }

private:
    QPointer<QWidget> focus_;
};

void ExportImportActions::exportRecords() { chooseAndExport(nullptr, &main_); }

void ExportImportActions::exportResultList(const QVector<int> &records, QWidget *over)
{
    chooseAndExport(&records, over ? over : &main_);
}

void ExportImportActions::chooseAndExport(const QVector<int> *resultList, QWidget *over)
{
    if (running_ || !exportAllowed())
        return;
    // The export reads the stored records: the one on the page is saved first.
    const FieldLeft left(main_);
    if (!main_.database().store().SaveIfDirty())
        return;
    RecordStore &store = main_.database().store();
    ExportChooser chooser(main_.design(), store.RecordCount(), resultList != nullptr, title(kExportRow, tr("Export")),
                          folder_, over);
    if (chooser.exec() != QDialog::Accepted)
        return;
    const QString file = chooser.chosenFile();
    if (file.isEmpty())
        return; // no name: nothing is written, nothing said
    const QFileInfo info(file);
    folder_ = info.absolutePath();

    ExportRequest request;
    request.choice = chooser.chosenKind();
    request.folder = info.absolutePath();
    request.name = info.fileName();
    request.range = resultList ? ExportRange::ResultList(*resultList, store.RecordCount())
                               : ExportRange::Records(chooser.firstRecord(), chooser.lastRecord(), store.RecordCount(),
                                                      store.browseOrder(), store.SortIndex());
    runExport(request);
}

void ExportImportActions::runExport(const ExportRequest &request)
{
    RecordExport exporter(main_.database().store(), main_.context());
    running_ = true;
    wait_->setWindowTitle(title(kExportRow, tr("Export")));
    wait_->begin();
    // The web kinds have their own writers; the page on screen is the record of "*.htm".
    RecordStore &store = main_.database().store();
    web::WebExport webExporter(store, main_.context(), main_.database().paths().AppFolder);
    const int current = qBound(1, store.CurrentRecord(), qMax(1, store.RecordCount()));
    const bool pdf = request.choice.kind == ExportKind::Pdf || request.choice.kind == ExportKind::PdfPerRecord;
    const Result<ExportOutcome> done =
        pdf ? exportPdf(request)
        : !web::WebExport::handles(request.choice.kind) ? exporter.run(request, wait_)
        : request.choice.kind == ExportKind::HtmlCurrent
            ? webExporter.run(request.choice.kind, ExportRange::Records(current, current, store.RecordCount()),
                              request.folder, request.name, wait_)
            : webExporter.run(request.choice.kind, request.range, request.folder, request.name, wait_);
    wait_->end();
    running_ = false;
    QCoreApplication::processEvents();
    if (!done) {
        tell(tr("The export could not be finished: %1.").arg(done.error().text));
        return;
    }
    const QString designText = main_.design().MessageText[kExportDoneText];
    if (!designText.isEmpty()) {
        tell(designText);
        return;
    }
    QString text = counted(done->records, tr("%1 record exported to %2"), tr("%1 records exported to %2"))
                       .arg(QDir::toNativeSeparators(done->path));
    if (done->pictures > 0)
        text += counted(done->pictures, tr(", with %1 picture"), tr(", with %1 pictures"));
    if (done->stopped)
        text += QLatin1Char('|') + tr("The export was stopped; what was written before the stop stays.");
    tell(text);
}

Result<ExportOutcome> ExportImportActions::exportPdf(const ExportRequest &request)
{
    // Every page of the design: the print options keep no page range between prints.
    pdf::PdfRecordExport exporter(main_.database().store(), main_.context(), main_.database().paths().AppFolder);
    const bool perRecord = request.choice.kind == ExportKind::PdfPerRecord;
    const QString base = QDir(request.folder).filePath(CutExportExtension(request.name));
    const Result<pdf::PdfOutcome> done =
        exporter.PrintPDF(perRecord ? base : base + QStringLiteral(".pdf"),
                          perRecord ? pdf::PdfMode::DocumentPerRecord : pdf::PdfMode::OneDocument, request.range, wait_);
    if (!done)
        return done.error();
    ExportOutcome outcome;
    outcome.records = done->records;
    outcome.stopped = done->stopped;
    outcome.path = perRecord ? base + QStringLiteral("*.pdf") : base + QStringLiteral(".pdf");
    return outcome;
}

void ExportImportActions::importRecords()
{
    RecordStore &store = main_.database().store();
    if (running_ || !store.writingAllowed())
        return;
    // The import adds after the stored records: the one on the page is saved first.
    const FieldLeft left(main_);
    if (!store.SaveIfDirty())
        return;
    ImportChooser chooser(main_.design(), title(kImportRow, tr("Import")), folder_, &main_);
    if (chooser.exec() != QDialog::Accepted)
        return;
    const QStringList files = chooser.chosenFiles();
    if (files.isEmpty())
        return;
    folder_ = QFileInfo(files.first()).absolutePath();

    HeldMessages messages;
    ImportSetup setup;
    setup.store = &store;
    setup.messages = &messages;
    setup.progress = wait_;
    setup.pictures = &pictures_;
    setup.formulaContext = &main_.context();
    setup.storeWasEmpty = onlyBlankRecord();

    running_ = true;
    wait_->setWindowTitle(title(kImportRow, tr("Import")));
    wait_->begin();
    Result<ImportReport> report = makeError(ErrorCode::Invalid, QString());
    switch (chooser.source()) {
    case ImportChooser::Source::Xml: report = ImportXmlFiles::run(files, setup); break;
    case ImportChooser::Source::RecordFile: report = RecordImport::run(files.first(), setup); break;
    case ImportChooser::Source::DelimitedText: report = TextImport::run(files.first(), setup); break;
    }
    wait_->end();
    running_ = false;
    QCoreApplication::processEvents();
    // The import ends on the last record it wrote (or the one that was shown).
    main_.host().announceRecordShown();
    messages.showOn(main_.host());
    if (report && report->added > 0)
        blankRecord_.clear();
    if (!report) {
        tell(tr("The import could not be finished: %1.").arg(report.error().text));
        return;
    }
    QString text = report->added > 0 ? counted(report->added, tr("%1 record added: records %2 to %3"),
                                               tr("%1 records added: records %2 to %3"))
                                           .arg(report->firstRecord)
                                           .arg(report->firstRecord + report->added - 1)
                                     : tr("No record was added.");
    if (report->stopped)
        text += QLatin1Char('|') + tr("The import was stopped; the records added before the stop stay.");
    for (const QString &warning : std::as_const(report->warnings))
        text += QLatin1Char('|') + warning;
    tell(text);
}

void ExportImportActions::copyRecord()
{
    const FieldLeft left(main_);
    main_.host().copyRecordToClipboard();
}

void ExportImportActions::copyData()
{
    const FieldLeft left(main_);
    MultiFieldSelection &picked = main_.entry().selection();
    QVector<XmlElementChoice> chosen;
    for (const MultiFieldSelection::Entry &e : picked.fields())
        chosen.append(XmlElementChoice{elementOf(e.kind), e.index});
    // The pick has served: the next find looks where the focus is.
    picked.clear();
    if (chosen.isEmpty()) {
        main_.host().copyRecordToClipboard();
        return;
    }
    Database &db = main_.database();
    main_.host().setClipboardText(XmlRecord::CopyData(db.page(), db.store().CurrentRecord(), chosen));
}

void ExportImportActions::paste(const QString &text)
{
    Page &page = main_.database().page();
    // Pasting is typing: the record is locked first, and another user's lock keeps it as stored.
    if (!main_.entry().beginEdit())
        return;
    const XmlImportResult result = XmlRecord::XMLimport(page, text, false);
    main_.host().runFormulas();
    page.notifyAll();
    if (result.valuesSet + result.labelsAdded + result.imagesAdded == 0)
        tell(tr("No field of the copied record has a name that this page knows."));
}

void ExportImportActions::pasteData()
{
    if (!main_.database().store().writingAllowed())
        return;
    const QString text = main_.host().clipboardText();
    // Every field of a copied record closes with "</" and its name.
    if (!text.contains(QLatin1String("</"))) {
        tell(tr("The clipboard holds no copied record."));
        return;
    }
    const FieldLeft left(main_);
    paste(text);
}

void ExportImportActions::pasteAtStart()
{
    RecordStore &store = main_.database().store();
    if (!store.writingAllowed())
        return;
    const QString text = main_.host().clipboardText();
    // A new data file's blank record takes the paste instead of a second record beside it.
    if (!onlyBlankRecord())
        main_.host().newRecord();
    if (text.contains(QLatin1String("</")))
        paste(text);
}

} // namespace ff::gui
