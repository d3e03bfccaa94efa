#pragma once
// The main window's commands that move records out and in: Export and Import in the File menu,
// and in the Edit menu copying the record (or the fields picked with the right button) to the
// clipboard as XML text and pasting such text into the record on screen. The export and import
// run with the wait window, whose stop keeps what was written, and end with a message; an error
// is told in a message and what was written stays. The engine does the work (src/export); this
// class chooses, shows and reports.

#include "export/ExportOutcome.h"
#include "pdfmail/JpegPictureSink.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVector>

class QAction;
class QMenu;
class QMenuBar;
class QToolBar;
class QToolButton;
class QWidget;

namespace ff {
struct ExportRequest;
}

namespace ff::toolkit {
class WaitWindow;
}

namespace ff::gui {

class MainWindow;

class ExportImportActions : public QObject {
    Q_OBJECT
public:
    explicit ExportImportActions(MainWindow &main);
    ~ExportImportActions() override;

    // Export and Import in the File menu, captioned by the design (an empty caption hides one).
    void addFileCommands(QMenu *fileMenu);
    // The Edit menu with copy record, copy data and paste.
    void addEditCommands(QMenuBar *menus);
    // The copy data and paste icons, which the design may hide.
    void addEditIcons(QToolBar *bar);

    // Around the opening of a data file: whether the file set held a record before it (so that an
    // import or a paste start fills the blank record the opening made), and the rights of the
    // commands that write.
    void dataOpening(const QString &dataFileName);
    void dataOpened();

    // Export: the chooser with its range boxes, over the browse order in force.
    void exportRecords();
    // Export of a results window's hits in the order given (the list's order); no range boxes.
    // The dialog stands over `over`, the results window.
    void exportResultList(const QVector<int> &records, QWidget *over = nullptr);
    bool exportAllowed() const;
    void importRecords();
    // CopyAll: the whole record on the clipboard.
    void copyRecord();
    // CopyData: the fields picked with the right button, or the whole record when none is.
    void copyData();
    // PasteData: the clipboard's record into the record on screen.
    void pasteData();
    // "-paste" on the command line: the clipboard's record pasted into a new record.
    void pasteAtStart();

    QAction *exportCommand() const { return export_; }
    QAction *importCommand() const { return import_; }
    QAction *copyRecordCommand() const { return copyRecord_; }
    QAction *copyDataCommand() const { return copyData_; }
    QAction *pasteCommand() const { return paste_; }
    toolkit::WaitWindow *waitWindow() const { return wait_; }

private:
    void chooseAndExport(const QVector<int> *resultList, QWidget *over);
    void runExport(const ExportRequest &request);
    // Kinds 20 and 21: the records' pages as PDF documents.
    Result<ExportOutcome> exportPdf(const ExportRequest &request);
    class FieldLeft;
    // The store still holds only the blank record its opening made.
    bool onlyBlankRecord();
    void tell(const QString &text);
    QString title(int captionRow, const QString &fallback) const;
    void paste(const QString &text);

    MainWindow &main_;
    toolkit::WaitWindow *wait_;
    JpegPictureSink pictures_;
    QAction *export_ = nullptr;
    QAction *import_ = nullptr;
    QAction *copyRecord_ = nullptr;
    QAction *copyData_ = nullptr;
    QAction *paste_ = nullptr;
    QString folder_;        // where the last chooser was left
    bool openedEmpty_ = false;
    QByteArray blankRecord_; // record 1 as the opening of an empty file set wrote it
    bool running_ = false;
};

} // namespace ff::gui
