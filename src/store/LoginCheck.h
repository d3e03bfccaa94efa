#pragma once
// The login check of the password window, without the window. There is no OK button: the check runs
// on every change of either box, so the login completes on the keystroke that makes a text right.
// Box 0 takes a password alone; box 1 takes a name, and once the name is known it takes that
// user's password.

#include "core/CodePage.h"
#include "store/UserTable.h"

#include <QString>

namespace ff {

struct LoginOutcome {
    bool success = false;
    int user = -1;           // LoginUser on success
    bool askPassword = false; // box 1 just matched a name: prompt UiText(9) and clear box 1
};

class LoginCheck {
public:
    LoginCheck(const UserTable &users, const CodePage &codePage) : users_(users), codePage_(codePage) {}

    // Call after every change of a box with the texts of both boxes.
    LoginOutcome check(const QString &passwordBox, const QString &nameBox);

    int knownUser() const { return knownUser_; } // -1 until a name matched

private:
    const UserTable &users_;
    const CodePage &codePage_;
    int knownUser_ = -1;
};

// After a successful login: the administrator is the one whose password was typed in the password
// box; any other user's caption is "        Login : " and the decoded name.
bool IsAdministratorLogin(const UserTable &users, const QString &passwordBox, const CodePage &codePage);
QString LoginCaption(const UserTable &users, int loginUser, const CodePage &codePage);

} // namespace ff
