#pragma once
// The login window shown at start when the database asks for a login. There is no OK button: the
// check runs on every change of either box, so the login completes on the keystroke that makes a
// text right. Box 0 takes a password alone; box 1, shown when users have names, takes a name and,
// once the name is known, that user's password. A wrong text leaves the window open with no
// message; closing or cancelling it ends the program.

#include "store/LoginCheck.h"

#include <QDialog>
#include <array>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace ff {
class Database;
struct Design;
} // namespace ff

namespace ff::gui {

class LoginWindow : public QDialog {
    Q_OBJECT
public:
    LoginWindow(const UserTable &users, const CodePage &codePage, const Design &design, QWidget *parent = nullptr);

    // Shows the window modally when the database asks for a login, then applies the login to the
    // database (LoginUser, read-only mode, administrator, caption). Returns the user who logged in,
    // user 0 when no login is asked, and nothing when the window was closed: the program ends.
    static std::optional<int> runLogin(Database &db, QWidget *parent = nullptr);

    std::optional<int> loginUser() const { return loginUser_; }
    // The text of the password box, which tells the start-up whether the administrator came in.
    QString passwordBoxText() const;

    QLineEdit *passwordBox() const { return boxes_[0]; }
    QLineEdit *nameBox() const { return boxes_[1]; }
    QLabel *namePrompt() const { return namePrompt_; }
    QPushButton *cancelButton() const { return cancel_; }

Q_SIGNALS:
    void loggedIn(int user);

private:
    void checkBoxes();

    LoginCheck check_;
    std::array<QLineEdit *, 2> boxes_{};
    QLabel *passwordLabel_;
    QLabel *namePrompt_;
    QPushButton *cancel_;
    QString passwordPrompt_;
    std::optional<int> loginUser_;
};

} // namespace ff::gui
