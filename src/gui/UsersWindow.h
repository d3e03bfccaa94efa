#pragma once
// The users window of the administrator: ten rows at a time over the 251 user entries, each with a
// name, a password and a read-only box. Entry 0 is the administrator. The window works on plain
// texts: runUsers decodes the tables before it opens and codes them again when it closes, so the
// per-user file always holds the coded forms.

#include "store/UserTable.h"

#include <QDialog>
#include <array>
#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollBar;

namespace ff {
class Database;
struct Design;
} // namespace ff

namespace ff::gui {

class UsersWindow : public QDialog {
    Q_OBJECT
public:
    static constexpr int kRows = 10;

    // `users` must hold plain texts while the window is open.
    UsersWindow(UserTable &users, const Design &design, QWidget *parent = nullptr);

    // The Passmenu command: decode, edit modally, code again.
    static void runUsers(Database &db, QWidget *parent = nullptr);
    // Whether the start-up offers the users window: to the administrator, and to everyone while no
    // login is asked (the administrator's password is then empty, so anyone may set one).
    static bool offeredTo(const Database &db);

    int SelectedUser = 0;
    // How the window tells that it cannot close; the program's message box unless a test sets it.
    std::function<void(const QString &caption, const QString &message, int colour)> showMessage;

    // The entry shown in row k is rowScroll_ + k.
    int firstShown() const;
    void scrollTo(int first);
    QLineEdit *nameBox(int row) const { return nameBoxes_[size_t(row)]; }
    QLineEdit *passwordBox(int row) const { return passwordBoxes_[size_t(row)]; }
    QCheckBox *readOnlyBox(int row) const { return readOnlyBoxes_[size_t(row)]; }
    QPushButton *deleteButton() const { return deleteButton_; }
    QPushButton *addButton() const { return addUser_; }
    QPushButton *closeButton() const { return closeButton_; }
    // The back colour of row k as the rows are painted.
    QColor rowColour(int row) const;

    void reject() override; // Escape and the window's close go through the same check as closeButton_

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    UserTable &users_;
    QString appTitle_;
    std::array<QWidget *, kRows> rowFrame_{};
    std::array<QLabel *, kRows> rowNumber_{};
    std::array<QLineEdit *, kRows> nameBoxes_{};
    std::array<QLineEdit *, kRows> passwordBoxes_{};
    std::array<QCheckBox *, kRows> readOnlyBoxes_{};
    QScrollBar *rowScroll_;
    QPushButton *addUser_;
    QPushButton *deleteButton_;
    QPushButton *closeButton_;

    void repaintRows();
    int rowOf(QObject *widget) const;
    void selectRow(int row);
    void takeRights(int row);
    void addEntry();
    void deleteSelected();
    void tryClose();
};

} // namespace ff::gui
