#pragma once
// The file dialog of the export command: the kinds of file the export writes, the name, and the
// range of records. The kinds are built afresh from the design each time (the delimited text
// first, then the design's templates, then the other kinds); the range boxes start at 1 and the
// record count, take digits only, and stay hidden while a results window is the source: then its
// hits are exported in its order. The dialog is the platform's file dialog with the range boxes
// added below its own rows.

#include "export/ExportKinds.h"

#include <QFileDialog>
#include <vector>

class QLabel;
class QLineEdit;

namespace ff::gui {

class ExportChooser : public QFileDialog {
    Q_OBJECT
public:
    // `title`: the export command's caption without its "&". `resultList`: a results window is the
    // source, so there is no range to choose.
    ExportChooser(const Design &design, int recordCount, bool resultList, const QString &title, const QString &folder,
                  QWidget *parent = nullptr);

    // The kinds this program writes, in the order the dialog offers them.
    static std::vector<ExportKindItem> offeredKinds(const Design &design);
    // The dialog's line for a kind: what it is, and its pattern in brackets.
    static QString filterLine(const Design &design, const ExportKindItem &item);
    // The list of files gives the name what room is left after the size, type and date.
    static void fitFileColumns(QFileDialog *dialog);

    const std::vector<ExportKindItem> &kinds() const { return kinds_; }
    // The kind of the file type chosen in the dialog.
    ExportChoice chosenKind() const;
    // The chosen file, empty when the dialog was cancelled or left without a name.
    QString chosenFile() const;
    // The range boxes; 0 for a box left empty.
    int firstRecord() const;
    int lastRecord() const;
    QLineEdit *firstBox() const { return firstBox_; }
    QLineEdit *lastBox() const { return lastBox_; }

private:
    int chosenIndex() const;
    void kindChosen();

    const Design &design_;
    std::vector<ExportKindItem> kinds_;
    QStringList filters_;
    QLabel *rangeLabel_ = nullptr;
    QLineEdit *firstBox_ = nullptr;
    QLineEdit *lastBox_ = nullptr;
};

} // namespace ff::gui
