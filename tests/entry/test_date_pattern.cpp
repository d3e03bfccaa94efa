// Free date patterns (the F-key "*" texts) and the page clock, in en_US.

#include "entry/DatePatternText.h"
#include "entry/PageClock.h"

#include <gtest/gtest.h>

using ff::DatePatternText;
using ff::PageClock;

namespace {

const QLocale kUs(QLocale::English, QLocale::UnitedStates);

QString fmt(const QDateTime &when, const char *pattern) { return DatePatternText::format(when, QLatin1String(pattern), kUs); }

TEST(DatePatternTextTest, DayMonthYearAndWeekParts)
{
    const QDateTime when(QDate(2024, 2, 5), QTime(9, 7, 3)); // a Monday
    EXPECT_EQ(fmt(when, "d/m/yy"), QStringLiteral("5/2/24"));
    EXPECT_EQ(fmt(when, "dd.mm.yyyy"), QStringLiteral("05.02.2024"));
    EXPECT_EQ(fmt(when, "ddd dddd"), QStringLiteral("Mon Monday"));
    EXPECT_EQ(fmt(when, "mmm mmmm"), QStringLiteral("Feb February"));
    EXPECT_EQ(fmt(when, "y q"), QStringLiteral("36 1"));
    EXPECT_EQ(fmt(when, "w ww"), QStringLiteral("2 6"));
    EXPECT_EQ(fmt(when, "DD-MMM-YYYY"), QStringLiteral("05-Feb-2024")); // letters in any case
}

TEST(DatePatternTextTest, TimePartsAndMinutesAfterHours)
{
    const QDateTime morning(QDate(2024, 2, 5), QTime(9, 7, 3));
    const QDateTime evening(QDate(2024, 2, 5), QTime(21, 30, 0));
    EXPECT_EQ(fmt(morning, "hh:nn:ss"), QStringLiteral("09:07:03"));
    EXPECT_EQ(fmt(morning, "h:mm"), QStringLiteral("9:07")); // "mm" after an hour is minutes
    EXPECT_EQ(fmt(morning, "mm h"), QStringLiteral("02 9"));  // before it, the month
    EXPECT_EQ(fmt(evening, "h:nn AM/PM"), QStringLiteral("9:30 PM"));
    EXPECT_EQ(fmt(evening, "hh:nn"), QStringLiteral("21:30"));
    EXPECT_EQ(fmt(morning, "h:nna/p"), QStringLiteral("9:07a"));
    EXPECT_EQ(fmt(QDateTime(QDate(2024, 1, 1), QTime(0, 15)), "h:nn am/pm"), QStringLiteral("12:15 am"));
}

TEST(DatePatternTextTest, QuotedAndEscapedTextStandsAsItIs)
{
    const QDateTime when(QDate(2024, 2, 5), QTime(9, 7, 3));
    EXPECT_EQ(fmt(when, "\"day\" d \\h"), QStringLiteral("day 5 h"));
    EXPECT_EQ(fmt(when, "yyyy#"), QStringLiteral("2024#"));
    EXPECT_EQ(DatePatternText::formatNumber(1e12, QStringLiteral("yyyy"), kUs), QString());
}

TEST(PageClockTest, TimeAndDateByTheClockFormat)
{
    // ClockFormat picks from the stamp's list: 0 to 4 are its patterns, any other code the
    // system's short date.
    const QDateTime when(QDate(2024, 2, 5), QTime(15, 4, 0)); // a Monday
    const struct {
        int format;
        const char *text;
    } rows[] = {
        {0, "3:04pm  Monday 05-Feb-2024"}, {1, "3:04pm  05-February-2024"}, {2, "3:04pm  05-02-2024"},
        {3, "3:04pm  02-05-2024"},         {4, "3:04pm  2024-02-05"},       {5, "3:04pm  2/5/24"},
        {9, "3:04pm  2/5/24"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(PageClock::text(when, row.format, kUs), QLatin1String(row.text)) << row.format;
    EXPECT_TRUE(PageClock::text(QDateTime(QDate(2024, 2, 5), QTime(0, 30)), 4, kUs).startsWith(QStringLiteral("12:30am  ")));
}

} // namespace
