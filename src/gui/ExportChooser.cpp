#include "gui/ExportChooser.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QTreeView>

namespace ff::gui {

namespace {

// The kinds whose writers this program has; any other is not offered rather than failing after a
// name was chosen.
bool written(const ExportChoice &choice)
{
    if (choice.isTemplate())
        return true;
    switch (choice.kind) {
    case ExportKind::DelimitedText:
    case ExportKind::Spreadsheet:
    case ExportKind::Listing:
    case ExportKind::RecordCopy:
    case ExportKind::HtmlPages:
    case ExportKind::HtmlCurrent:
    case ExportKind::PhpSite:
    case ExportKind::Pdf:
    case ExportKind::PdfPerRecord: return true;
    default: return false;
    }
}

// The extension the writer gives a one-file kind, so that the dialog asks before it replaces that
// file; empty for the kinds that write a numbered file or a folder.
QString writtenExtension(const Design &design, const ExportChoice &choice)
{
    if (choice.isTemplate())
        return QString();
    switch (choice.kind) {
    case ExportKind::DelimitedText:
        return design.TextExtension.isEmpty() ? QStringLiteral("txt") : design.TextExtension;
    case ExportKind::Spreadsheet: return QStringLiteral("xls");
    case ExportKind::Listing: return QStringLiteral("rtf");
    case ExportKind::RecordCopy: return design.DataExtension;
    case ExportKind::PhpSite: return QStringLiteral("php");
    case ExportKind::Pdf: return QStringLiteral("pdf");
    default: return QString();
    }
}

} // namespace

std::vector<ExportKindItem> ExportChooser::offeredKinds(const Design &design)
{
    // The design keeps no text of forbidden extensions: every kind it can have is offered.
    std::vector<ExportKindItem> items = BuildExportKindList(design, QString());
    std::erase_if(items, [](const ExportKindItem &item) { return !written(item.choice); });
    return items;
}

QString ExportChooser::filterLine(const Design &, const ExportKindItem &item)
{
    const ExportChoice &c = item.choice;
    QString what;
    if (c.isTemplate())
        what = c.ExportPerRecord ? tr("Template %1, one file").arg(c.templateIndex + 1)
                                 : tr("Template %1, a file a record").arg(c.templateIndex + 1);
    else if (c.kind == ExportKind::DelimitedText)
        what = tr("Delimited text");
    else if (c.kind == ExportKind::Spreadsheet)
        what = tr("Spreadsheet");
    else if (c.kind == ExportKind::Listing)
        what = tr("Listing");
    else if (c.kind == ExportKind::RecordCopy)
        what = tr("Copy of the records");
    else if (c.kind == ExportKind::HtmlCurrent)
        what = tr("Web pages of this record");
    else if (c.kind == ExportKind::HtmlPages)
        what = tr("Web pages, a group a record");
    else if (c.kind == ExportKind::PhpSite)
        what = tr("Web form site (PHP)");
    else if (c.kind == ExportKind::Pdf)
        what = tr("PDF document");
    else if (c.kind == ExportKind::PdfPerRecord)
        what = tr("PDF documents, one a record");
    return QStringLiteral("%1 (%2)").arg(what, item.pattern);
}

void ExportChooser::fitFileColumns(QFileDialog *dialog)
{
    auto *files = dialog->findChild<QTreeView *>(QStringLiteral("treeView"));
    if (!files)
        return;
    QHeaderView *header = files->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int column = 1; column < header->count(); ++column)
        header->setSectionResizeMode(column, QHeaderView::ResizeToContents);
}

ExportChooser::ExportChooser(const Design &design, int recordCount, bool resultList, const QString &title,
                             const QString &folder, QWidget *parent)
    : QFileDialog(parent, title, folder), design_(design), kinds_(offeredKinds(design))
{
    setObjectName(QStringLiteral("exportChooser"));
    // The range boxes live in the dialog's own layout, which only the program's dialog has.
    setOption(QFileDialog::DontUseNativeDialog);
    resize(780, 480); // room for the names, sizes and dates of the files
    fitFileColumns(this);
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    for (const ExportKindItem &item : kinds_)
        filters_ << filterLine(design, item);
    setNameFilters(filters_);
    connect(this, &QFileDialog::filterSelected, this, &ExportChooser::kindChosen);

    rangeLabel_ = new QLabel(tr("Records from"), this);
    firstBox_ = new QLineEdit(QString::number(recordCount > 0 ? 1 : 0), this);
    lastBox_ = new QLineEdit(QString::number(recordCount), this);
    firstBox_->setObjectName(QStringLiteral("firstRecordBox"));
    lastBox_->setObjectName(QStringLiteral("lastRecordBox"));
    firstBox_->setAccessibleName(tr("First record"));
    lastBox_->setAccessibleName(tr("Last record"));
    auto *range = new QWidget(this);
    auto *row = new QHBoxLayout(range);
    row->setContentsMargins(0, 0, 0, 0);
    auto *to = new QLabel(tr("to"), range);
    const auto *digits = new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,10}")), this);
    for (QLineEdit *box : {firstBox_, lastBox_}) {
        box->setValidator(digits);
        box->setMaximumWidth(110);
        box->setAlignment(Qt::AlignRight);
    }
    rangeLabel_->setBuddy(firstBox_);
    row->addWidget(firstBox_);
    row->addWidget(to);
    row->addWidget(lastBox_);
    row->addStretch(1);
    if (auto *grid = qobject_cast<QGridLayout *>(layout())) {
        const int at = grid->rowCount();
        grid->addWidget(rangeLabel_, at, 0);
        grid->addWidget(range, at, 1);
    }
    // A results window's hits have no range to choose.
    rangeLabel_->setVisible(!resultList);
    range->setVisible(!resultList);
    kindChosen();
}

int ExportChooser::chosenIndex() const { return int(filters_.indexOf(selectedNameFilter())); }

void ExportChooser::kindChosen()
{
    const int i = chosenIndex();
    setDefaultSuffix(i >= 0 ? writtenExtension(design_, kinds_[size_t(i)].choice) : QString());
}

ExportChoice ExportChooser::chosenKind() const
{
    const int i = chosenIndex();
    return i >= 0 ? kinds_[size_t(i)].choice : ExportChoice{};
}

QString ExportChooser::chosenFile() const
{
    if (result() != QDialog::Accepted)
        return QString();
    return selectedFiles().value(0);
}

int ExportChooser::firstRecord() const { return firstBox_->text().toInt(); }

int ExportChooser::lastRecord() const { return lastBox_->text().toInt(); }

} // namespace ff::gui
