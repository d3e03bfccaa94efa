#include "gui/ImportChooser.h"

#include "design/Design.h"
#include "gui/ExportChooser.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>

namespace ff::gui {

namespace {

enum FilterRow { TextRow = 0, XmlRow = 1, RecordRow = 2, AllRow = 3 };

} // namespace

ImportChooser::ImportChooser(const Design &design, const QString &title, const QString &folder, QWidget *parent)
    : QFileDialog(parent, title, folder), design_(design)
{
    setObjectName(QStringLiteral("importChooser"));
    setOption(QFileDialog::DontUseNativeDialog);
    resize(780, 480); // room for the names, sizes and dates of the files
    ExportChooser::fitFileColumns(this);
    setAcceptMode(QFileDialog::AcceptOpen);
    setFileMode(QFileDialog::ExistingFile);
    const QString text = design.TextExtension.isEmpty() ? QStringLiteral("txt") : design.TextExtension;
    filters_ << tr("Delimited text (*.%1)").arg(text) << tr("XML records (*.xml)")
             << tr("Record files (*.%1)").arg(design.DataExtension) << tr("All files (*)");
    setNameFilters(filters_);

    allXmlBox_ = new QCheckBox(tr("Import every file chosen, one record each"), this);
    allXmlBox_->setObjectName(QStringLiteral("allXmlBox"));
    if (auto *grid = qobject_cast<QGridLayout *>(layout()))
        grid->addWidget(allXmlBox_, grid->rowCount(), 1);
    connect(allXmlBox_, &QCheckBox::toggled, this,
            [this](bool all) { setFileMode(all ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile); });
    connect(this, &QFileDialog::filterSelected, this, &ImportChooser::typeChosen);
    typeChosen();
}

void ImportChooser::typeChosen()
{
    const bool xml = filters_.indexOf(selectedNameFilter()) == XmlRow;
    allXmlBox_->setVisible(xml);
    if (!xml)
        allXmlBox_->setChecked(false);
}

QStringList ImportChooser::chosenFiles() const
{
    if (result() != QDialog::Accepted)
        return {};
    return selectedFiles();
}

ImportChooser::Source ImportChooser::sourceOf(const QString &fileName, const Design &design)
{
    const QString suffix = QFileInfo(fileName).suffix();
    const auto is = [&suffix](const QString &extension) {
        return !extension.isEmpty() && suffix.compare(extension, Qt::CaseInsensitive) == 0;
    };
    if (is(design.TextExtension))
        return Source::DelimitedText;
    if (is(QStringLiteral("xml")))
        return Source::Xml;
    if (is(design.DataExtension))
        return Source::RecordFile;
    return Source::DelimitedText;
}

ImportChooser::Source ImportChooser::source() const
{
    switch (filters_.indexOf(selectedNameFilter())) {
    case TextRow: return Source::DelimitedText;
    case XmlRow: return Source::Xml;
    case RecordRow: return Source::RecordFile;
    default: break;
    }
    return sourceOf(selectedFiles().value(0), design_);
}

} // namespace ff::gui
