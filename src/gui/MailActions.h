#pragma once
// The mail command of the main window: the record on the page becomes a PDF attached to an unsent
// mail message, which the desktop opens in the user's mail program, ready to be checked and sent.
// When no PDF can be made, the desktop gets a "mailto:" link to the record's address instead.
// Where xdg-email is installed, a second command opens the desktop's own compose window with the
// record's PDF attached. The report preview saves and mails its report as a PDF through it as well.

#include <QObject>
#include <QVector>

class QMenu;
class QToolBar;
class QWidget;

namespace ff::gui {

class MainWindow;

class MailActions : public QObject {
    Q_OBJECT
public:
    explicit MailActions(MainWindow &main);

    // The menu entries and the mail icon (shown when the design's MailIconVisible is on).
    void addCommands(QMenu *menu, QToolBar *bar);

    // Mails the record on the page as an unsent message; returns the message's path, empty after
    // the "mailto:" fallback.
    QString mailRecord();
    // The compose window of xdg-email with the record's PDF attached.
    void composeWithDesktop();

    // The report preview's buttons for report `reportIndex` (0-based), over `list` when given: the
    // report as a PDF file chosen in a file dialog, and the report mailed as an unsent message.
    void saveReportPdf(int reportIndex, const QVector<int> *list, QWidget *parent);
    QString mailReport(int reportIndex, const QVector<int> *list);
    // The results window's PDF button: the records of `rows`, in their order, as one document.
    void saveRowsPdf(const QVector<int> &rows, QWidget *parent);

private:
    // The record on the page, saved first; 0 when it cannot be saved.
    int savedRecord();
    QString addressText() const;

    MainWindow &main_;
};

} // namespace ff::gui
