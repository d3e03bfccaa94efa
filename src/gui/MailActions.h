#pragma once
// The mail command of the main window: the record on the page becomes a PDF attached to an unsent
// mail message, which the desktop opens in the user's mail program, ready to be checked and sent.
// When no PDF can be made, the desktop gets a "mailto:" link to the record's address instead.
// Where xdg-email is installed, a second command opens the desktop's own compose window with the
// record's PDF attached.

#include <QObject>

class QMenu;
class QToolBar;

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

private:
    // The record on the page, saved first; 0 when it cannot be saved.
    int savedRecord();
    QString addressText() const;

    MainWindow &main_;
};

} // namespace ff::gui
