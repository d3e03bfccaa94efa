// The users window: plain texts while it is open and coded ones after, typing into the selected
// entry, rights on leaving the box, deleting the selected user shifting the tables, the row
// colours, scrolling, and the refusal to close without an administrator's password.

#include "gui/UsersWindow.h"
#include "store/Database.h"
#include "support/StoreDesigns.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

using namespace ff;
using namespace ff::gui;

namespace {

struct Message {
    QString caption, text;
    int colour = 0;
};

// Plain tables: the administrator "boss" with no name, users 1 to 3 named u1..u3.
UserTable plainUsers()
{
    UserTable t;
    t.UserPassword[0] = QStringLiteral("boss");
    for (int i = 1; i <= 3; ++i) {
        t.UserName[size_t(i)] = QStringLiteral("u%1").arg(i);
        t.UserPassword[size_t(i)] = QStringLiteral("p%1").arg(i);
        t.UserRights[size_t(i)] = uint8_t(i == 2);
    }
    t.UserName[250] = QStringLiteral("last");
    return t;
}

Design titledDesign()
{
    Design d = testsupport::smallDesign();
    d.AppTitle = QStringLiteral("Shop");
    return d;
}

} // namespace

class UsersTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void typingGoesIntoTheSelectedEntry()
    {
        UserTable t = plainUsers();
        const Design d = titledDesign();
        UsersWindow w(t, d);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QCOMPARE(w.nameBox(2)->text(), QStringLiteral("u2"));
        QCOMPARE(w.passwordBox(0)->text(), QStringLiteral("boss"));
        QVERIFY(w.readOnlyBox(2)->isChecked());
        w.nameBox(4)->setFocus();
        QCOMPARE(w.SelectedUser, 4);
        QTest::keyClicks(w.nameBox(4), QStringLiteral("dora"));
        QCOMPARE(t.UserName[4], QStringLiteral("dora"));
        QTest::keyClick(w.nameBox(4), Qt::Key_Tab);
        QTest::keyClicks(w.passwordBox(4), QStringLiteral("pw4"));
        QCOMPARE(t.UserPassword[4], QStringLiteral("pw4"));
        // Rights: the box's state goes into the entry when it is left (and when it is clicked).
        QTest::keyClick(w.passwordBox(4), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), w.readOnlyBox(4));
        QTest::keyClick(w.readOnlyBox(4), Qt::Key_Space);
        QTest::keyClick(w.readOnlyBox(4), Qt::Key_Tab);
        QCOMPARE(t.UserRights[4], uint8_t(1));
        QCOMPARE(w.SelectedUser, 5);
        // Down moves to the same box of the next row.
        w.nameBox(8)->setFocus();
        QTest::keyClick(w.nameBox(8), Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), w.nameBox(9));
        QTest::keyClick(w.nameBox(9), Qt::Key_Down); // past the last row: the rows scroll
        QCOMPARE(w.firstShown(), 1);
        QCOMPARE(w.SelectedUser, 10);
        QCOMPARE(QApplication::focusWidget(), w.nameBox(9));
    }

    void rowsScrollOverAllEntries()
    {
        UserTable t = plainUsers();
        const Design d = titledDesign();
        UsersWindow w(t, d);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        w.scrollTo(1000);
        QCOMPARE(w.firstShown(), kUserCount - UsersWindow::kRows); // 241: row 9 is entry 250
        QCOMPARE(w.nameBox(9)->text(), QStringLiteral("last"));
        w.nameBox(8)->setFocus();
        QTest::keyClicks(w.nameBox(8), QStringLiteral("x"));
        QCOMPARE(t.UserName[249], QStringLiteral("x"));
        // A scroll with the focus in a row: what is typed goes to the entry the row now shows.
        w.scrollTo(0);
        QCOMPARE(w.SelectedUser, 8);
        QTest::keyClicks(w.nameBox(8), QStringLiteral("y"));
        QCOMPARE(t.UserName[8], QStringLiteral("y"));
        QCOMPARE(t.UserName[249], QStringLiteral("x"));
        // Add goes to the first entry with neither name nor password.
        w.addButton()->click();
        QCOMPARE(w.SelectedUser, 4);
        QCOMPARE(QApplication::focusWidget(), w.nameBox(4));
    }

    void deleteShiftsTheTablesAndRowColours()
    {
        UserTable t = plainUsers();
        const Design d = titledDesign();
        UsersWindow w(t, d);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        w.nameBox(2)->setFocus();
        QCOMPARE(w.rowColour(2), QColor(0xef, 0xef, 0xef));
        QCOMPARE(w.rowColour(0), w.palette().color(QPalette::ToolTipBase)); // the administrator
        QCOMPARE(w.rowColour(1), QColor(Qt::white));
        QCOMPARE(w.nameBox(2)->palette().color(QPalette::Base), QColor(0xef, 0xef, 0xef));
        w.deleteButton()->click();
        QCOMPARE(t.UserName[2], QStringLiteral("u3"));
        QCOMPARE(t.UserPassword[2], QStringLiteral("p3"));
        QCOMPARE(t.UserRights[2], uint8_t(0));
        QCOMPARE(t.UserName[1], QStringLiteral("u1"));
        QCOMPARE(t.UserName[249], QStringLiteral("last"));
        QCOMPARE(t.UserName[250], QStringLiteral("last")); // the last entry stays as it was
        QCOMPARE(w.nameBox(2)->text(), QStringLiteral("u3"));
        QVERIFY(!w.readOnlyBox(2)->isChecked());
        QCOMPARE(w.nameBox(3)->text(), QString());
    }

    void closingNeedsTheAdministratorsPassword()
    {
        UserTable t = plainUsers();
        const Design d = titledDesign();
        UsersWindow w(t, d);
        QList<Message> messages;
        w.showMessage = [&](const QString &c, const QString &m, int colour) { messages.append({c, m, colour}); };
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        w.passwordBox(0)->setFocus();
        w.passwordBox(0)->selectAll();
        QTest::keyClick(w.passwordBox(0), Qt::Key_Delete);
        QCOMPARE(t.UserPassword[0], QString());
        w.closeButton()->click();
        QVERIFY(w.isVisible());
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages[0].caption, QStringLiteral("Shop"));
        QCOMPARE(messages[0].text, QStringLiteral("System needs a main password..."));
        QCOMPARE(messages[0].colour, 0xff8080);
        QTest::keyClick(&w, Qt::Key_Escape); // the same check
        w.close();
        QVERIFY(w.isVisible());
        QCOMPARE(messages.size(), 3);
        QTest::keyClicks(w.passwordBox(0), QStringLiteral("new"));
        w.closeButton()->click();
        QVERIFY(!w.isVisible());
        QCOMPARE(w.result(), int(QDialog::Accepted));
    }

    void passmenuDecodesThenCodesAgain()
    {
        QTemporaryDir dir;
        Design design = titledDesign();
        design.AdminPassword = QStringLiteral("boss");
        Database db(std::move(design), ParseCommandLine(dir.filePath(QStringLiteral("shop")), {}));
        db.start();
        const CodePage &cp = db.codePage();
        db.users().UserName[1] = CodeText(QStringLiteral("ann"), cp);
        db.users().UserPassword[1] = CodeText(QStringLiteral("pw"), cp);
        QVERIFY(UsersWindow::offeredTo(db) == false); // a login is asked and nobody logged in yet
        db.applyLogin(0, QStringLiteral("boss"));
        QVERIFY(UsersWindow::offeredTo(db));
        QTimer::singleShot(0, [] {
            auto *w = qobject_cast<UsersWindow *>(QApplication::activeModalWidget());
            QVERIFY(w);
            QVERIFY(QTest::qWaitForWindowActive(w));
            QCOMPARE(w->passwordBox(0)->text(), QStringLiteral("boss")); // plain while open
            QCOMPARE(w->nameBox(1)->text(), QStringLiteral("ann"));
            w->nameBox(2)->setFocus();
            QTest::keyClicks(w->nameBox(2), QStringLiteral("carl"));
            QTest::keyClick(w->nameBox(2), Qt::Key_Tab);
            QTest::keyClicks(w->passwordBox(2), QStringLiteral("c1"));
            w->readOnlyBox(2)->click();
            w->closeButton()->click();
        });
        UsersWindow::runUsers(db);
        const UserTable &u = db.users();
        QCOMPARE(u.UserPassword[0], CodeText(QStringLiteral("boss"), cp));
        QCOMPARE(u.UserName[1], CodeText(QStringLiteral("ann"), cp));
        QCOMPARE(u.UserName[2], QStringLiteral("700701683688")); // "carl" coded
        QCOMPARE(DecodeText(u.UserPassword[2], cp), QStringLiteral("c1"));
        QCOMPARE(u.UserRights[2], uint8_t(1));
    }
};

QTEST_MAIN(UsersTest)
#include "test_users.moc"
