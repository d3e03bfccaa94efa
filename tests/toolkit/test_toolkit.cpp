// The small shared windows: message band, wait window, calculator and calendar.

#include "core/FixedClock.h"
#include "toolkit/CalculatorEngine.h"
#include "toolkit/CalendarWindow.h"
#include "toolkit/WaitWindow.h"
#include "toolkit/MessageWindow.h"

#include <QComboBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <algorithm>

using namespace ff::toolkit;

class ToolkitTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void messageBandBreaksLinesAndSpansTheScreen()
    {
        MessageWindow box;
        box.setMessage(QStringLiteral("Title"), QStringLiteral("a|b"), 0x0000FF);
        QCOMPARE(box.messageText(), QStringLiteral("a\nb"));
        box.setMessage(QStringLiteral("Title"), QStringLiteral("one line only"), 0);
        QCOMPARE(box.messageText(), QStringLiteral("one line only"));
        QCOMPARE(box.width(), box.screen()->availableGeometry().width());
        // The button stands under the message, ending at its right edge (or the margin when narrow).
        QVERIFY(box.okButton()->y() > 0);
        // Modal: exec returns when OK is pressed.
        QTimer::singleShot(0, &box, [&box] { box.okButton()->click(); });
        QCOMPARE(box.exec(), int(QDialog::Accepted));
    }

    void waitWindowRunsItsLightAndStops()
    {
        WaitWindow wait;
        QCOMPARE(WaitWindow::blockGreys(0), (std::array<int, 2>{240, 250}));
        QCOMPARE(WaitWindow::blockGreys(6), (std::array<int, 2>{90, 100}));
        wait.begin();
        for (int i = 0; i < 7; ++i)
            wait.tick();
        QCOMPARE(wait.lightStep(), 7);
        wait.tick(); // all dark, start again
        QCOMPARE(wait.lightStep(), 0);
        wait.setPercent(42);
        QCOMPARE(wait.percentText(), QStringLiteral("42%"));
        QVERIFY(!wait.cancelled());
        wait.stopButton()->click();
        QVERIFY(wait.cancelled());
        wait.begin(); // a new walk starts with the flag down
        QVERIFY(!wait.cancelled());
        wait.end();
    }

    void calculatorWorksLeftToRight()
    {
        const QLocale us(QLocale::English, QLocale::UnitedStates);
        const auto run = [&](const QString &keys) {
            CalculatorEngine c(us);
            for (QChar k : keys) {
                if (k.isDigit())
                    c.digit(k.digitValue());
                else if (k == QLatin1Char('.'))
                    c.decimal();
                else if (k == QLatin1Char('p'))
                    c.percent();
                else if (k == QLatin1Char('e'))
                    c.cancelEntry();
                else
                    c.op(k == QLatin1Char('*') ? QChar(u'×') : k == QLatin1Char('/') ? QChar(u'÷') : k);
            }
            return c.readout();
        };
        QCOMPARE(run(QStringLiteral("2+3=")), QStringLiteral("5"));
        QCOMPARE(run(QStringLiteral("2+3*4=")), QStringLiteral("20")); // no precedence
        QCOMPARE(run(QStringLiteral("7/0=")), QStringLiteral("7"));    // divide by zero keeps the result
        QCOMPARE(run(QStringLiteral("-5+2=")), QStringLiteral("-3"));  // a leading minus starts a number
        QCOMPARE(run(QStringLiteral("1..5+1=")), QStringLiteral("2.5")); // the decimal sign only once
        QCOMPARE(run(QStringLiteral("200+10p")), QStringLiteral("20"));
        QCOMPARE(run(QStringLiteral("200+10p=")), QStringLiteral("220"));
        QCOMPARE(run(QStringLiteral("1234567*1=")), QStringLiteral("1,234,567"));
        QCOMPARE(run(QStringLiteral("0.1+0.2=")), QStringLiteral("0.3"));
        QCOMPARE(run(QStringLiteral("9+5e4=")), QStringLiteral("13"));  // CE drops only the entry
        QCOMPARE(run(QStringLiteral("6*-2=")), QStringLiteral("-12"));  // minus after an operator
        // Operands and results carry 28 significant digits, rounded half to even; a whole part
        // past 28 digits overflows and, like a division by zero, leaves the result.
        const struct {
            const char *keys, *shown;
        } wide[] = {
            {"1/3=", "0.3333333333333333333333333333"},
            {"2/3=", "0.6666666666666666666666666667"},
            {"10/3=", "3.333333333333333333333333333"},
            {"100/7=", "14.28571428571428571428571429"},
            {"1234567890123456789012345678+1=", "1,234,567,890,123,456,789,012,345,679"},
            {"1234567890123456789012345678-1234567890123456789012345677=", "1"},
            {"12345678901234567890*1000=", "12,345,678,901,234,567,890,000"},
            {"0.000000000000000000000000001+1=", "1.000000000000000000000000001"},
            {"0.0000000000000000000000000001+1=", "1"}, // the 29th digit rounds away
            {"0.0000000000000000000000000001/4=", "0"},
            {"0.0000000000000000000000000003/2=", "0.0000000000000000000000000002"},
            {"5000000000000000000000000000*2=", "5,000,000,000,000,000,000,000,000,000"},
            {"9999999999999999999999999999*2=", "9,999,999,999,999,999,999,999,999,999"},
            {"4.5*0.5=", "2.25"},
        };
        for (const auto &row : wide)
            QCOMPARE(run(QLatin1String(row.keys)), QLatin1String(row.shown));
        CalculatorEngine big(us);
        for (QChar k : QStringLiteral("9999999999999999"))
            big.digit(k.digitValue());
        big.op(QChar(u'×'));
        big.digit(2);
        big.op(QLatin1Char('='));
        QVERIFY(big.smallFont());
        big.cancel();
        QCOMPARE(big.readout(), QStringLiteral("0"));
        QCOMPARE(big.lastInput(), QStringLiteral("NONE"));
    }

    void calendarMonths()
    {
        QCOMPARE(DaysInMonth(2, 2024), 29);
        QCOMPARE(DaysInMonth(2, 2026), 28);
        QCOMPARE(DaysInMonth(2, 1900), 28);
        QCOMPARE(DaysInMonth(2, 2000), 29);
        QCOMPARE(DaysInMonth(9, 2026), 30);
        QCOMPARE(DaysInMonth(12, 2026), 31);
        // 1 November 2026 is a Sunday.
        auto cells = MonthCells(11, 2026, Qt::Sunday);
        QCOMPARE(cells[0], 1);
        QCOMPARE(cells[29], 30);
        QCOMPARE(cells[30], 0);
        cells = MonthCells(11, 2026, Qt::Monday);
        QCOMPARE(cells[5], 0);
        QCOMPARE(cells[6], 1);
        const auto count29 = [](int year) {
            const auto c = MonthCells(2, year, Qt::Monday);
            return std::count(c.begin(), c.end(), 29);
        };
        QCOMPARE(count29(2028), 1);
        QCOMPARE(count29(2027), 0);
    }

    void calendarPicksAndSteps()
    {
        const ff::FixedClock clock(QDateTime(QDate(2026, 12, 15), QTime(23, 59)));
        CalendarWindow clc(clock, QDate(2026, 12, 15));
        QCOMPARE(clc.yearList()->count(), 401);
        clc.stepMonth(1);
        QCOMPARE(clc.month(), 1);
        QCOMPARE(clc.year(), 2027);
        clc.stepMonth(-1);
        clc.stepMonth(-1);
        QCOMPARE(clc.month(), 11);
        QCOMPARE(clc.year(), 2026);
        // Find the cell showing 24 and click it.
        for (int i = 0; i < 42; ++i) {
            if (clc.dayCell(i)->text() == QLatin1String("24")) {
                clc.dayCell(i)->click();
                break;
            }
        }
        QCOMPARE(clc.pickedDate(), QDate(2026, 11, 24));
    }

    // Without a start day the calendar opens on the clock's month, today in bold, and its years
    // run from two hundred before the clock's year to two hundred after it.
    void calendarTodayComesFromTheClock()
    {
        const ff::FixedClock clock(QDateTime(QDate(2031, 3, 9), QTime(0, 0, 1)));
        CalendarWindow clc(clock);
        QCOMPARE(clc.month(), 3);
        QCOMPARE(clc.year(), 2031);
        QCOMPARE(clc.yearList()->itemText(0), QStringLiteral("1831"));
        QCOMPARE(clc.yearList()->itemText(400), QStringLiteral("2231"));
        QStringList bold;
        for (int i = 0; i < 42; ++i)
            if (clc.dayCell(i)->font().bold())
                bold << clc.dayCell(i)->text();
        QCOMPARE(bold, QStringList{QStringLiteral("9")});
        clc.stepMonth(1); // today is in no cell of April
        for (int i = 0; i < 42; ++i)
            QVERIFY(!clc.dayCell(i)->font().bold());
    }
};

QTEST_MAIN(ToolkitTest)
#include "test_toolkit.moc"
