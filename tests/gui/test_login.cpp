// The login window over a database made from a design built in code: the password alone, a name
// and then its password, completing on the keystroke that makes the text right, wrong texts that
// leave the window open, and cancelling, which ends the program.

#include "gui/LoginWindow.h"
#include "store/Database.h"
#include "support/StoreDesigns.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

using namespace ff;
using namespace ff::gui;

namespace {

struct Session {
    QTemporaryDir dir;
    std::unique_ptr<Database> db;
    // The design's administrator password "boss"; with `names` the administrator is "admin", ann
    // (read-only) and bob have names too.
    explicit Session(bool names = true)
    {
        Design d = testsupport::smallDesign();
        d.AppTitle = QStringLiteral("Shop");
        d.MainCap = QStringLiteral("Shop");
        d.AdminPassword = QStringLiteral("boss");
        d.UiText[8] = QStringLiteral("Name please:");
        d.UiText[9] = QStringLiteral("Secret word:");
        db = std::make_unique<Database>(std::move(d), ParseCommandLine(dir.filePath(QStringLiteral("shop")), {}));
        db->start(); // codes the design's password into entry 0
        const CodePage &cp = db->codePage();
        UserTable &u = db->users();
        if (names) {
            u.UserName[0] = CodeText(QStringLiteral("admin"), cp);
            u.UserName[2] = CodeText(QStringLiteral("ann"), cp);
            u.UserPassword[2] = CodeText(QStringLiteral("secret"), cp);
            u.UserRights[2] = 1;
            u.UserName[3] = CodeText(QStringLiteral("bob"), cp);
            u.UserPassword[3] = CodeText(QStringLiteral("b0b"), cp);
        }
    }
};

// Runs `act` on the login window once runLogin has opened it.
std::optional<int> runWith(Database &db, std::function<void(LoginWindow &)> act)
{
    QTimer::singleShot(0, [act] {
        auto *w = qobject_cast<LoginWindow *>(QApplication::activeModalWidget());
        QVERIFY(w);
        act(*w);
    });
    return LoginWindow::runLogin(db);
}

} // namespace

class LoginTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void passwordAloneCompletesOnTheRightKeystroke()
    {
        Session s;
        LoginWindow w(s.db->users(), s.db->codePage(), s.db->design());
        w.show();
        QSignalSpy spy(&w, &LoginWindow::loggedIn);
        QCOMPARE(w.passwordBox()->echoMode(), QLineEdit::Password);
        QCOMPARE(w.focusWidget(), w.passwordBox());
        QTest::keyClicks(w.passwordBox(), QStringLiteral("secre"));
        QVERIFY(w.isVisible());
        QCOMPARE(spy.count(), 0);
        QTest::keyClicks(w.passwordBox(), QStringLiteral("t")); // ann's password, no name asked
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toInt(), 2);
        QVERIFY(!w.isVisible());
        QCOMPARE(w.result(), int(QDialog::Accepted));
    }

    void administratorThroughRunLogin()
    {
        Session s;
        const std::optional<int> user = runWith(*s.db, [](LoginWindow &w) { QTest::keyClicks(w.passwordBox(), QStringLiteral("boss")); });
        QCOMPARE(user, std::optional<int>(0));
        QCOMPARE(s.db->LoginUser, 0);
        QVERIFY(s.db->administrator());
        QVERIFY(!s.db->MainCaption.contains(QStringLiteral("Login"))); // no login line for the administrator
        QVERIFY(!s.db->store().ViewOnlyMode());
    }

    void nameThenPassword()
    {
        Session s;
        const std::optional<int> user = runWith(*s.db, [](LoginWindow &w) {
            QVERIFY(w.nameBox()->isVisible());
            QCOMPARE(w.namePrompt()->text(), QStringLiteral("Name please:"));
            QTest::keyClicks(w.nameBox(), QStringLiteral("an"));
            QCOMPARE(w.namePrompt()->text(), QStringLiteral("Name please:"));
            QTest::keyClicks(w.nameBox(), QStringLiteral("n"));
            // The name is known: the prompt asks for the password and the box is emptied for it.
            QCOMPARE(w.namePrompt()->text(), QStringLiteral("Secret word:"));
            QCOMPARE(w.nameBox()->text(), QString());
            QCOMPARE(w.nameBox()->echoMode(), QLineEdit::Password);
            // Only ann's password counts now: the administrator's does nothing here.
            QTest::keyClicks(w.nameBox(), QStringLiteral("boss"));
            QVERIFY(w.isVisible());
            w.nameBox()->clear();
            QTest::keyClicks(w.nameBox(), QStringLiteral("secret"));
        });
        QCOMPARE(user, std::optional<int>(2));
        QCOMPARE(s.db->LoginUser, 2);
        QVERIFY(!s.db->administrator());
        QVERIFY(s.db->store().ViewOnlyMode()); // ann may only read
        QCOMPARE(s.db->MainCaption, QStringLiteral("Shop        Login : ann"));
    }

    void wrongTextsLeaveTheWindowOpen()
    {
        Session s;
        LoginWindow w(s.db->users(), s.db->codePage(), s.db->design());
        w.show();
        QTest::keyClicks(w.passwordBox(), QStringLiteral("bosx"));
        QTest::keyClicks(w.nameBox(), QStringLiteral("carl"));
        QVERIFY(w.isVisible());
        QVERIFY(!w.loginUser());
        QCOMPARE(w.namePrompt()->text(), QStringLiteral("Name please:"));
        QTest::keyClick(w.passwordBox(), Qt::Key_Backspace);
        QVERIFY(!w.loginUser());
        QTest::keyClicks(w.passwordBox(), QStringLiteral("s"));
        QCOMPARE(w.loginUser(), std::optional<int>(0)); // correcting the text completes at once
    }

    void cancelOrCloseEndsTheProgram()
    {
        Session s;
        const std::optional<int> byButton = runWith(*s.db, [](LoginWindow &w) {
            QTest::keyClicks(w.passwordBox(), QStringLiteral("nope"));
            w.cancelButton()->click();
        });
        QVERIFY(!byButton);
        QCOMPARE(s.db->LoginUser, -1);
        const std::optional<int> byEscape = runWith(*s.db, [](LoginWindow &w) { QTest::keyClick(&w, Qt::Key_Escape); });
        QVERIFY(!byEscape);
        const std::optional<int> byClose = runWith(*s.db, [](LoginWindow &w) { w.close(); });
        QVERIFY(!byClose);
    }

    void administratorWithoutNameIsNotTried()
    {
        // Entry 0 is tried only when it has a name: the design's password alone opens nothing.
        Session s(false);
        const std::optional<int> user = runWith(*s.db, [](LoginWindow &w) {
            QTest::keyClicks(w.passwordBox(), QStringLiteral("boss"));
            QVERIFY(w.isVisible());
            QVERIFY(!w.loginUser());
            w.cancelButton()->click();
        });
        QVERIFY(!user);
        QCOMPARE(s.db->LoginUser, -1);
        QVERIFY(!s.db->administrator());
    }

    void withoutNamesOrWithoutPassword()
    {
        Session noNames(false);
        LoginWindow w(noNames.db->users(), noNames.db->codePage(), noNames.db->design());
        w.show();
        QVERIFY(!w.nameBox()->isVisible());
        QVERIFY(w.passwordBox()->isVisible());
        // No administrator password: no login is asked and no window opens.
        Session open(false);
        open.db->users().UserPassword[0].clear();
        QCOMPARE(LoginWindow::runLogin(*open.db), std::optional<int>(0));
        QCOMPARE(open.db->LoginUser, -1);
    }
};

QTEST_MAIN(LoginTest)
#include "test_login.moc"
