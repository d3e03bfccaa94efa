#include "store/LoginCheck.h"

namespace ff {

LoginOutcome LoginCheck::check(const QString &passwordBox, const QString &nameBox)
{
    LoginOutcome out;
    if (knownUser_ >= 0) {
        // The name is known: box 1 now holds that user's password.
        if (!nameBox.isEmpty() && nameBox == DecodeText(users_.UserPassword[knownUser_], codePage_)) {
            out.success = true;
            out.user = knownUser_;
        }
        return out;
    }
    for (int i = 0; i < kUserCount; ++i) {
        // Only entries with a name are tried, the administrator's entry 0 too: a password from
        // the design opens nothing until the administrator has a name.
        if (users_.UserName[i].isEmpty())
            continue;
        if (!passwordBox.isEmpty() && !users_.UserPassword[i].isEmpty()
            && passwordBox == DecodeText(users_.UserPassword[i], codePage_)) {
            out.success = true;
            out.user = i;
            return out;
        }
        if (!nameBox.isEmpty() && nameBox == DecodeText(users_.UserName[i], codePage_)) {
            knownUser_ = i;
            out.askPassword = true;
            return out;
        }
    }
    return out;
}

bool IsAdministratorLogin(const UserTable &users, const QString &passwordBox, const CodePage &codePage)
{
    return !passwordBox.isEmpty() && passwordBox == DecodeText(users.UserPassword[0], codePage);
}

QString LoginCaption(const UserTable &users, int loginUser, const CodePage &codePage)
{
    if (loginUser < 0 || loginUser >= kUserCount)
        return {};
    return QStringLiteral("        Login : ") + DecodeText(users.UserName[loginUser], codePage);
}

} // namespace ff
