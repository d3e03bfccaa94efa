// Password coding, the login check and the users table.

#include "store/LoginCheck.h"
#include "store/UserTable.h"

#include <gtest/gtest.h>

using namespace ff;

TEST(UserCoding, CodesThreeDigitsPerCharacter)
{
    EXPECT_EQ(CodeBytes("AB"), QStringLiteral("734732")); // 800-(65+1), 800-(66+2)
    EXPECT_EQ(DecodeBytes(QStringLiteral("734732")), QByteArray("AB"));
    EXPECT_EQ(CodeBytes(""), QString());
    QByteArray all;
    for (int c = 1; c < 256; ++c)
        all.append(char(c));
    const QString coded = CodeBytes(all.left(200));
    EXPECT_EQ(coded.size(), 600);
    EXPECT_EQ(DecodeBytes(coded), all.left(200));
    const CodePage cp(0);
    EXPECT_EQ(DecodeText(CodeText(QStringLiteral("Müller €"), cp), cp), QStringLiteral("Müller €"));
    EXPECT_EQ(DecodeBytes(QStringLiteral("9x9")), QByteArray()); // not a coded text
}

TEST(UserTable, DeleteShiftsTheEntriesUp)
{
    UserTable t;
    for (int i = 0; i < kUserCount; ++i) {
        t.UserName[i] = QString::number(i);
        t.UserRights[i] = uint8_t(i % 2);
    }
    t.deleteUser(5);
    EXPECT_EQ(t.UserName[4], QStringLiteral("4"));
    EXPECT_EQ(t.UserName[5], QStringLiteral("6"));
    EXPECT_EQ(t.UserRights[5], 0);
    EXPECT_EQ(t.UserName[249], QStringLiteral("250"));
    EXPECT_EQ(t.UserName[250], QStringLiteral("250")); // the last entry stays as it was
    const CodePage cp(0);
    t.codeAll(cp);
    EXPECT_EQ(t.UserName[5], QStringLiteral("745"));
    t.decodeAll(cp);
    EXPECT_EQ(t.UserName[5], QStringLiteral("6"));
}

TEST(Login, PasswordAloneOrNameThenPassword)
{
    const CodePage cp(0);
    UserTable t;
    t.UserPassword[0] = CodeText(QStringLiteral("boss"), cp); // the design's password, no name
    t.UserName[2] = CodeText(QStringLiteral("ann"), cp);
    t.UserPassword[2] = CodeText(QStringLiteral("secret"), cp);
    t.UserRights[2] = 1;
    t.UserName[3] = CodeText(QStringLiteral("bob"), cp); // a name with no password
    ASSERT_TRUE(t.loginRequired());

    LoginCheck byPassword(t, cp);
    // Completes on the keystroke that makes it right.
    EXPECT_FALSE(byPassword.check(QStringLiteral("secre"), QString()).success);
    LoginOutcome ok = byPassword.check(QStringLiteral("secret"), QString());
    EXPECT_TRUE(ok.success);
    EXPECT_EQ(ok.user, 2);
    EXPECT_FALSE(IsAdministratorLogin(t, QStringLiteral("secret"), cp));
    EXPECT_EQ(LoginCaption(t, 2, cp), QStringLiteral("        Login : ann"));

    // Entry 0 is tried like any other, only once it has a name: the design's password alone
    // opens nothing, by either box.
    LoginCheck unnamed(t, cp);
    EXPECT_FALSE(unnamed.check(QStringLiteral("boss"), QString()).success);
    EXPECT_FALSE(unnamed.check(QStringLiteral("boss"), QStringLiteral("boss")).success);
    t.UserName[0] = CodeText(QStringLiteral("admin"), cp);
    LoginCheck admin(t, cp);
    ok = admin.check(QStringLiteral("boss"), QString());
    EXPECT_TRUE(ok.success);
    EXPECT_EQ(ok.user, 0);
    EXPECT_TRUE(IsAdministratorLogin(t, QStringLiteral("boss"), cp));
    LoginCheck adminByName(t, cp);
    EXPECT_TRUE(adminByName.check(QString(), QStringLiteral("admin")).askPassword);
    EXPECT_EQ(adminByName.check(QString(), QStringLiteral("boss")).user, 0);

    LoginCheck byName(t, cp);
    EXPECT_FALSE(byName.check(QString(), QStringLiteral("an")).askPassword);
    const LoginOutcome named = byName.check(QString(), QStringLiteral("ann"));
    EXPECT_TRUE(named.askPassword);
    EXPECT_FALSE(named.success);
    EXPECT_FALSE(byName.check(QString(), QStringLiteral("boss")).success); // only ann's password now
    ok = byName.check(QString(), QStringLiteral("secret"));
    EXPECT_TRUE(ok.success);
    EXPECT_EQ(ok.user, 2);

    // Empty texts never match, not even a user's empty password.
    LoginCheck empty(t, cp);
    EXPECT_FALSE(empty.check(QString(), QString()).success);
    EXPECT_TRUE(empty.check(QString(), QStringLiteral("bob")).askPassword);
    EXPECT_FALSE(empty.check(QString(), QString()).success);
}
