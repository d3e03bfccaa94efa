#pragma once
// The file dialog of the import command: delimited text, XML records, record files of the
// program's own format, or any file. For XML records a box lets several files be chosen at once,
// each of them one new record; it shows for that file type only.

#include <QFileDialog>

class QCheckBox;

namespace ff {
struct Design;
}

namespace ff::gui {

class ImportChooser : public QFileDialog {
    Q_OBJECT
public:
    enum class Source { DelimitedText, Xml, RecordFile };

    // `title`: the import command's caption without its "&".
    ImportChooser(const Design &design, const QString &title, const QString &folder, QWidget *parent = nullptr);

    // The files chosen (several only with the XML box ticked); empty when cancelled.
    QStringList chosenFiles() const;
    // What the chosen file is read as: by the file type chosen, and for "all files" by the file's
    // extension (the design's text and data extensions, ".xml"; anything else as delimited text).
    Source source() const;
    QCheckBox *allXmlBox() const { return allXmlBox_; }

    static Source sourceOf(const QString &fileName, const Design &design);

private:
    void typeChosen();

    const Design &design_;
    QStringList filters_;
    QCheckBox *allXmlBox_ = nullptr;
};

} // namespace ff::gui
