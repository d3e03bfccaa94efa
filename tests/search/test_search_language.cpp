// The search language without records: recognising commands, normalising, the parsed rows and
// values, the find's terms, DigitsOnly, the pattern rule and the case-fold tables.

#include "search/SearchFixture.h"

#include "search/CaseFold.h"
#include "search/SearchParser.h"
#include "search/SearchPattern.h"
#include "search/FieldReader.h"
#include "store/RecordLayout.h"

#include <QRandomGenerator>

#include <cstring>
#include <string>
#include <vector>

using namespace ff;
using namespace ff::testsupport;

namespace {

bool like(const char *value, const char *pattern, bool fold = true)
{
    static const CaseFold table{CodePage(0)};
    const CaseFold same = CaseFold::identity();
    const QByteArray p = fold ? table.fold(QByteArray(pattern)) : QByteArray(pattern);
    return SearchPattern(p).matches(reinterpret_cast<const uint8_t *>(value), int(std::strlen(value)),
                                    fold ? table.table() : same.table());
}

TEST(SearchPattern, WildcardsListsAndShapes)
{
    const struct {
        const char *value, *pattern;
        bool matches;
    } rows[] = {
        {"smith", "sm*", true}, {"SMITH", "sm*", true}, {"asmith", "sm*", false}, {"x", "*", true}, {"", "*", true},
        {"", "?", false}, {"ab12", "ab##", true}, {"ab1x", "ab##", false}, {"cat", "[bc]at", true},
        {"rat", "[bc]at", false}, {"rat", "[!bc]at", true}, {"m5", "[a-z][0-9]", true}, {"a-", "a[-]", true},
        {"[x", "[x", true}, // an open bracket without its close is a plain character
        {"mississippi", "*ss*ss*i", true}, {"mississippi", "*ss*ss*ss*", false}, {"abcabd", "*abd", true},
        {"abc", "a**c", true}, {"abc", "abc", true}, {"abcd", "abc", false}, {"xabcx", "*abc*", true},
    };
    for (const auto &row : rows)
        EXPECT_EQ(like(row.value, row.pattern), row.matches) << row.value << " like " << row.pattern;
    EXPECT_FALSE(like("Abc", "abc", false));
    EXPECT_EQ(SearchPattern("ab*").shape(), SearchPattern::Shape::Prefix);
    EXPECT_EQ(SearchPattern("*ab*").shape(), SearchPattern::Shape::Contains);
    EXPECT_EQ(SearchPattern("*a?").shape(), SearchPattern::Shape::General);
}

TEST(CaseFold, FoldsLettersOfTheCodePageOnly)
{
    const CaseFold west{CodePage(0)};
    EXPECT_EQ(west(uint8_t('A')), uint8_t('a'));
    EXPECT_EQ(west(uint8_t('1')), uint8_t('1'));
    EXPECT_EQ(west(0xC9), 0xE9);  // É to é in Windows-1252
    EXPECT_EQ(west(0x8A), 0x9A);  // Š to š
    const CaseFold cyrillic{CodePage(204)};
    EXPECT_EQ(cyrillic(0xC0), 0xE0); // А to а in Windows-1251
    const CaseFold japanese{CodePage(128)};
    EXPECT_EQ(japanese(0x82), 0x82); // lead bytes never change
    EXPECT_EQ(japanese(uint8_t('Q')), uint8_t('q'));
}

TEST(SearchPattern, PaddedValuesMatchAsTheirTrimmedText)
{
    // A stored text keeps its trailing blanks; the prefix and contains shapes skip the trim
    // unless their run ends in a blank, every other shape trims first.
    static const CaseFold west{CodePage(0)};
    const char *values[] = {"", "   ", "k12", "K12  ", "k1 2 ", "xk12 ", "k1", "ab c   ", "ab  "};
    const char *patterns[] = {"k12*", "*k12*", "k12", "*12", "k1 *", "*b *", "ab ", "*", "", "k?2*", "*c", "ab*"};
    for (const char *v : values)
        for (const char *p : patterns) {
            const SearchPattern pattern(west.fold(QByteArray(p)));
            const auto *bytes = reinterpret_cast<const uint8_t *>(v);
            int trimmed = int(std::strlen(v));
            while (trimmed > 0 && v[trimmed - 1] == ' ')
                --trimmed;
            EXPECT_EQ(pattern.matchesPadded(bytes, int(std::strlen(v)), west.table()),
                      pattern.matches(bytes, trimmed, west.table()))
                << "'" << v << "' against '" << p << "'";
        }
}

TEST(FoldedNeedle, FindsWhatTheByteLoopFinds)
{
    // Needles of one to five bytes against slices of every length up to 70, so that matches fall
    // in the sixteen-byte blocks, across their edges and in the tail; with and without folding.
    static const CaseFold west{CodePage(0)};
    const CaseFold same = CaseFold::identity();
    QRandomGenerator rnd(11);
    const char alphabet[] = "abAB xQq";
    std::vector<uint8_t> hay(80);
    for (const CaseFold *fold : {&west, &same}) {
        for (const char *raw : {"q", "ab", "Ba", "qxA", "abab", "x ab", "aaaaa", "\xe9" "a"}) {
            const QByteArray needle = fold == &west ? fold->fold(QByteArray(raw)) : QByteArray(raw);
            const FoldedNeedle prepared(needle, fold->table());
            for (int length = 0; length <= 70; ++length)
                for (int round = 0; round < 20; ++round) {
                    for (int k = 0; k < length; ++k)
                        hay[size_t(k)] = uint8_t(round % 5 == 0 && k % 23 == 7 ? 0xC9 : alphabet[rnd.bounded(8)]);
                    EXPECT_EQ(prepared.foundIn(hay.data(), length),
                              ContainsFolded(hay.data(), length, needle, fold->table()))
                        << raw << " in " << std::string(reinterpret_cast<const char *>(hay.data()), size_t(length));
                }
        }
    }
}

class SearchParserTest : public ::testing::Test {
protected:
    SearchParserTest() : layout(ComputeRecordLayout(design)), names(design, layout), parser(names, QLatin1Char('.')) {}
    CompiledQuery parse(const char *line, bool matchCase = false, const char *focus = "F1")
    {
        return parser.parse(QString::fromUtf8(line), matchCase, names.byTag(QString::fromLatin1(focus)));
    }
    Design design = searchDesign();
    RecordLayout layout;
    SearchNames names;
    SearchParser parser;
};

TEST_F(SearchParserTest, RecognisesCommands)
{
    // " where " must stand at the ninth character or later.
    for (const char *line : {"  SELECT a WHERE b=1", "select * where x=1", "Sum price", "count x=1"})
        EXPECT_TRUE(SearchParser::IsCommand(QLatin1String(line))) << line;
    for (const char *line : {"select where x=1", "select everything", "counting"})
        EXPECT_FALSE(SearchParser::IsCommand(QLatin1String(line))) << line;
    EXPECT_EQ(parse("summer").command, CommandKind::Find);
}

TEST_F(SearchParserTest, NormalisesBlanksAndApostrophes)
{
    EXPECT_EQ(SearchParser::Normalise(QStringLiteral("a='New York'  b=1")), QStringLiteral("a=New~York b=1"));
    EXPECT_EQ(SearchParser::Normalise(QStringLiteral("a    b")), QStringLiteral("a b"));
    // Three blanks then two: five blanks leave two.
    EXPECT_EQ(SearchParser::Normalise(QStringLiteral("a     b")), QStringLiteral("a  b"));
    // A value "x~y" reads as "x y".
    const CompiledQuery q = parse("count name=x~y");
    ASSERT_EQ(q.conditions.size(), 1);
    EXPECT_EQ(q.conditions[0].text, QByteArray("x y"));
    // Upper-case keywords and WHERE parse as their lower-case form.
    const CompiledQuery upper = parse("SELECT Name WHERE city='New York'");
    const CompiledQuery lower = parse("select name where city='new york'");
    ASSERT_EQ(upper.conditions.size(), 1);
    EXPECT_EQ(upper.conditions[0].text, lower.conditions[0].text);
    EXPECT_EQ(upper.columnCount, lower.columnCount);
}

TEST_F(SearchParserTest, ConditionRowsOperatorsAndValues)
{
    const CompiledQuery q = parse("count price>=10.5 qty<>3 when<2024-01-02 paid=1 city=b* size<=2.5 nothing=1 amount");
    ASSERT_EQ(q.conditions.size(), 7);
    EXPECT_EQ(q.conditions[0].op, ConditionOp::GreaterEqual);
    EXPECT_EQ(q.conditions[0].fixed, 105000);
    EXPECT_EQ(q.conditions[1].op, ConditionOp::NotEqual);
    EXPECT_EQ(q.conditions[1].fixed, 30000);
    EXPECT_EQ(q.conditions[2].op, ConditionOp::Less);
    EXPECT_EQ(q.conditions[2].fixed, int64_t(NumberFromDate(QDate(2024, 1, 2))) * 10000);
    EXPECT_EQ(q.conditions[3].field.kind, SearchKind::Check);
    EXPECT_EQ(q.conditions[4].field.kind, SearchKind::Combo);
    EXPECT_EQ(q.conditions[4].text, QByteArray("b*"));
    EXPECT_EQ(q.conditions[5].fixed, 25000);
    EXPECT_EQ(q.conditions[6].op, ConditionOp::Name);
    // The operators are looked for in a fixed order, not by position: "<" is found before "=".
    const CompiledQuery odd = parse("count name=a<b");
    ASSERT_EQ(odd.conditions.size(), 0); // "name=a" is no name
    const CompiledQuery bad = parse("count when=soon");
    EXPECT_EQ(bad.conditions[0].fixed, 0); // no date: the value stays 0
}

TEST_F(SearchParserTest, ColumnsSumTokensAndReplacements)
{
    EXPECT_EQ(parse("select * where qty>1").columnCount, 6); // no default columns set: the stored fields
    design.SearchSetting[1] = 3;
    design.SearchSetting[2] = 1;
    const CompiledQuery star = parse("select * where qty>1");
    ASSERT_EQ(star.columnCount, 2);
    EXPECT_EQ(star.columns[0].index, 3);
    const CompiledQuery many = parse("select * * name price qty when amount time city where qty>1");
    EXPECT_EQ(many.columnCount, 10);
    const CompiledQuery wild = parse("select ?i* where qty>1"); // time, city, size
    EXPECT_EQ(wild.columnCount, 3);

    const CompiledQuery sum = parse("sum price where price>100");
    ASSERT_EQ(sum.conditions.size(), 2);
    EXPECT_EQ(sum.conditions[0].op, ConditionOp::Name);
    EXPECT_EQ(sum.conditions[1].op, ConditionOp::Greater);

    const CompiledQuery rep = parse("replace price=2.5 qty=7 name='Big Al' when=2024-01-02 paid=1 nothing=1 where qty>1", true);
    ASSERT_EQ(rep.replacements.size(), 5);
    int64_t money = 0;
    std::memcpy(&money, rep.replacements[0].bytes.constData(), 8);
    EXPECT_EQ(money, 25000);
    int32_t whole = 0;
    std::memcpy(&whole, rep.replacements[1].bytes.constData(), 4);
    EXPECT_EQ(whole, 7);
    EXPECT_EQ(rep.replacements[2].bytes, QByteArray("Big Al      ")); // padded to the slot, case kept
    EXPECT_EQ(rep.replacements[4].bytes, QByteArray("1"));
    EXPECT_EQ(parse("replace name=Big where qty>1").replacements[0].bytes, QByteArray("big         "));
}

TEST_F(SearchParserTest, FindTermsAndComparisons)
{
    const CompiledQuery plus = parse("Anna+Bob");
    EXPECT_TRUE(plus.allTerms);
    EXPECT_EQ(plus.terms.size(), 2);
    EXPECT_EQ(plus.terms[0].text, QByteArray("anna"));
    const CompiledQuery either = parse("a+b or c");
    EXPECT_FALSE(either.allTerms); // " or " wins over "+"
    EXPECT_EQ(either.terms.size(), 2);
    EXPECT_EQ(either.terms[0].text, QByteArray("a+b"));
    EXPECT_EQ(parse("+x").terms.size(), 1); // "+" at the first character does not cut
    const CompiledQuery whole = parse("!Paris", true);
    EXPECT_TRUE(whole.wholeRecord);
    EXPECT_EQ(whole.terms[0].text, QByteArray("Paris"));

    const CompiledQuery between = parse("10><20", false, "price");
    ASSERT_TRUE(between.comparison);
    EXPECT_EQ(between.terms[0].op, FindOp::Between);
    EXPECT_EQ(between.terms[0].low, 100000);
    EXPECT_EQ(between.terms[0].high, 200000);
    EXPECT_EQ(parse("<>5", false, "qty").terms[0].op, FindOp::NotEqual);
    EXPECT_EQ(parse("<=5", false, "qty").terms[0].op, FindOp::LessEqual);
    EXPECT_EQ(parse(">5", false, "qty").terms[0].op, FindOp::Greater);
    EXPECT_EQ(parse("1,234.5", false, "price").terms[0].low, 12345000);
    // Times: 930 is 09:30, 93015 09:30:15; "p" in the line makes it afternoon for short times.
    EXPECT_EQ(parse("93015", false, "time").terms[0].low, FieldReader::toFixed((9 * 3600 + 30 * 60 + 15) / 86400.0));
    design.Fields[6].FieldType = 10;
    EXPECT_EQ(parse("930", false, "time").terms[0].low, FieldReader::toFixed(9.5 / 24));
    EXPECT_EQ(parse("930p", false, "time").terms[0].low, FieldReader::toFixed(21.5 / 24));
}

TEST(DigitsOnly, KeepsDigitsAndTheSeparator)
{
    EXPECT_EQ(SearchParser::DigitsOnly(QStringLiteral("-1.234,5 kg"), QStringLiteral(",")), QStringLiteral("1234.5"));
    EXPECT_EQ(SearchParser::DigitsOnly(QStringLiteral("$12.50"), QStringLiteral(".")), QStringLiteral("12.50"));
    EXPECT_EQ(SearchParser::DigitsOnly(QStringLiteral("  "), QStringLiteral(".")), QStringLiteral("  "));
}

} // namespace
