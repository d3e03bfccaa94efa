// Characters typed into fields, combos and notes, and the case rule of plain-text fields.

#include "entry/KeyRules.h"

#include <gtest/gtest.h>

using ff::CodePage;
using ff::KeyRules;

namespace {

const CodePage kWestern(0);
const QChar kPoint(QLatin1Char('.'));
const QChar kComma(QLatin1Char(','));

QString typeInto(int format, const QString &keys, QChar separator = kPoint)
{
    QString out;
    for (QChar key : keys) {
        const QChar c = KeyRules::fieldCharacter(format, key, separator, kWestern);
        if (!c.isNull())
            out += c;
    }
    return out;
}

TEST(KeyRules, ControlKeysGiveSpecialCharactersAndEnterOnlyInNotes)
{
    const struct {
        int code;
        char16_t expected;
    } table[] = {{17, u'\u00A2'}, {23, u'\u00A3'}, {5, u'\u00A9'},  {18, u'\u00AE'}, {20, u'\u00B9'}, {25, u'\u00B2'},
                 {21, u'\u00B3'}, {9, u'\u00BC'},  {15, u'\u00BD'}, {16, u'\u00BE'}, {27, u'\u00F7'}};
    for (const auto &row : table) {
        EXPECT_EQ(KeyRules::fieldCharacter(0, QChar(row.code), kPoint, kWestern), QChar(row.expected)) << row.code;
        EXPECT_EQ(KeyRules::noteCharacter(QChar(row.code), kWestern), QChar(row.expected)) << row.code;
    }
    // Other control codes are no special keys.
    EXPECT_EQ(KeyRules::controlCharacterByte(1), 0);
    EXPECT_EQ(KeyRules::controlCharacterByte(8), 0);
    // Enter is dropped in fields and kept in notes.
    EXPECT_TRUE(KeyRules::fieldCharacter(0, QChar(13), kPoint, kWestern).isNull());
    EXPECT_TRUE(KeyRules::fieldCharacter(2, QChar(13), kPoint, kWestern).isNull());
    EXPECT_EQ(KeyRules::noteCharacter(QChar(13), kWestern), QChar(13));
    // The special characters follow the design's code page: byte 163 is the pound sign in
    // Windows-1252 but a Cyrillic letter in Windows-1251.
    EXPECT_EQ(KeyRules::noteCharacter(QChar(23), CodePage(204)), QChar(u'\u0408'));
}

TEST(KeyRules, NumberFieldsTakeExpressionCharactersOnly)
{
    const QString keys = QStringLiteral("2*(3+4)-1/2,5.7 abc:$%");
    for (int format : {1, 2, 3, 4, 10})
        EXPECT_EQ(typeInto(format, keys), QStringLiteral("2*(3+4)-1/2,5.7:")) << format;
    // Format 5 drops the point but keeps the comma, which lies in the expression range.
    EXPECT_EQ(typeInto(5, keys), QStringLiteral("2*(3+4)-1/2,57:"));
    // Backspace goes through; special characters do not survive the mask.
    EXPECT_EQ(KeyRules::fieldCharacter(2, QChar(8), kPoint, kWestern), QChar(8));
    EXPECT_TRUE(KeyRules::fieldCharacter(2, QChar(17), kPoint, kWestern).isNull());
    // Plain text, dates and other formats take anything.
    for (int format : {0, 6, 9, 11, 12, 13, 23})
        EXPECT_EQ(typeInto(format, keys), keys) << format;
}

TEST(KeyRules, DecimalSeparatorOutsideTheRangeIsKeptExceptInWholeNumbers)
{
    // A separator that is not among the expression characters, such as the Arabic decimal sign.
    const QChar arabic(u'\u066B');
    EXPECT_EQ(KeyRules::fieldCharacter(2, arabic, arabic, kWestern), arabic);
    EXPECT_TRUE(KeyRules::fieldCharacter(5, arabic, arabic, kWestern).isNull());
    EXPECT_TRUE(KeyRules::fieldCharacter(2, arabic, kPoint, kWestern).isNull());
    // With a comma as the separator, format 5 still drops the point.
    EXPECT_EQ(typeInto(5, QStringLiteral("1.5,2"), kComma), QStringLiteral("15,2"));
}

TEST(KeyRules, FieldCaseConvertsAndKeepsTheCaret)
{
    const QString typed = QStringLiteral("john SMITH-jones  o'neil");
    EXPECT_EQ(KeyRules::applyFieldCase(typed, 0, 5).text, typed);
    EXPECT_EQ(KeyRules::applyFieldCase(typed, 1, 5).text, QStringLiteral("JOHN SMITH-JONES  O'NEIL"));
    EXPECT_EQ(KeyRules::applyFieldCase(typed, 2, 5).text, QStringLiteral("John Smith-jones  O'neil"));
    EXPECT_EQ(KeyRules::applyFieldCase(typed, 3, 5).text, QStringLiteral("john smith-jones  o'neil"));
    EXPECT_EQ(KeyRules::applyFieldCase(typed, 2, 5).caret, 5);
    // Typed one key at a time, proper case settles as the words grow.
    QString text;
    for (QChar key : QStringLiteral("john smith")) {
        text += key;
        text = KeyRules::applyFieldCase(text, 2, static_cast<int>(text.size())).text;
    }
    EXPECT_EQ(text, QStringLiteral("John Smith"));
    // A caret past a text that got shorter is pulled back inside it.
    EXPECT_LE(KeyRules::applyFieldCase(QStringLiteral("ab"), 1, 9).caret, 2);
}

} // namespace
