// search and sort over the contacts example, run in-process: rows and totals as JSON read back,
// tags as names, and a line that would do nothing (a name that names no element, no condition)
// refused with its reason instead of passing over it in silence.

#include "cli/CliRunner.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace ff::testsupport;

namespace {

class SearchCli : public ExampleCli {
protected:
    void SetUp() override
    {
        open(QStringLiteral("contacts"));
        // Record 1 comes with the file; 2 to 4 get people.
        const char *const people[][4] = {
            {"Ada", "Customer", "100", "3"},
            {"Bo~b", "Supplier", "20.5", "1"},
            {"Cy", "Customer", "7", "2"},
        };
        for (const auto &p : people) {
            const CliRun added = records({QStringLiteral("new")});
            ASSERT_EQ(added.code, 0);
            const QString record = added.out.trimmed();
            const CliRun set = records({QStringLiteral("set"), record, QStringLiteral("firstname=") + QLatin1String(p[0]),
                                        QStringLiteral("category=") + QLatin1String(p[1]),
                                        QStringLiteral("balance=") + QLatin1String(p[2]),
                                        QStringLiteral("visits=") + QLatin1String(p[3])});
            ASSERT_EQ(set.code, 0) << set.err.toStdString();
        }
    }
    CliRun search(const QString &line, const QStringList &more = {}) const
    {
        return cli(QStringLiteral("search"), QStringList{line} + more);
    }
};

TEST_F(SearchCli, SelectRowsAsTextAndAsJson)
{
    const CliRun text = search(QStringLiteral("select firstname where category=customer"));
    ASSERT_EQ(text.code, 0) << text.err.toStdString();
    EXPECT_EQ(text.out, QStringLiteral("4~Cy\n2~Ada\n")); // from the last record down

    const CliRun forward = search(QStringLiteral("select firstname visits where category=supplier"),
                                  {QStringLiteral("--json"), QStringLiteral("--forward")});
    ASSERT_EQ(forward.code, 0) << forward.err.toStdString();
    const QJsonObject o = parsedJson(forward).object();
    EXPECT_EQ(o.value(QLatin1String("command")).toString(), QStringLiteral("select"));
    EXPECT_EQ(o.value(QLatin1String("found")).toInt(), 1);
    EXPECT_EQ(o.value(QLatin1String("columns")).toArray(), (QJsonArray{QStringLiteral("F1"), QStringLiteral("F9")}));
    const QJsonArray rows = o.value(QLatin1String("rows")).toArray();
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].toObject().value(QLatin1String("record")).toInt(), 3);
    // The "~" that separates a text row's columns stays inside the value.
    EXPECT_EQ(rows[0].toObject().value(QLatin1String("values")).toArray(), (QJsonArray{QStringLiteral("Bo~b"), QStringLiteral("1")}));
}

TEST_F(SearchCli, TotalsAsJson)
{
    const CliRun counted = search(QStringLiteral("count category=customer"));
    EXPECT_EQ(counted.code, 0);
    EXPECT_TRUE(counted.err.isEmpty()) << counted.err.toStdString(); // a count lists no rows, so none are missing
    EXPECT_FALSE(counted.out.isEmpty());
    const QJsonObject count = parsedJson(search(QStringLiteral("count category=customer"), {QStringLiteral("--json")})).object();
    EXPECT_EQ(count.value(QLatin1String("count")).toInt(), 2);
    EXPECT_FALSE(count.value(QLatin1String("message")).toString().isEmpty());

    // "where" in a sum line is a word that names nothing on purpose: no complaint.
    EXPECT_EQ(search(QStringLiteral("sum balance where category=customer")).code, 0);
    const CliRun summed = search(QStringLiteral("sum balance>10"), {QStringLiteral("--json")});
    ASSERT_EQ(summed.code, 0) << summed.err.toStdString();
    const QJsonObject sum = parsedJson(summed).object();
    EXPECT_EQ(sum.value(QLatin1String("command")).toString(), QStringLiteral("sum"));
    EXPECT_DOUBLE_EQ(sum.value(QLatin1String("total")).toDouble(), 120.5);
}

TEST_F(SearchCli, LineThatWouldDoNothingIsRefusedWithItsReason)
{
    const QByteArray before = fileBytes(data);
    struct Case {
        const char *line;
        const char *why; // what stderr must name
    };
    const Case cases[] = {
        {"select firstname where nmae=Ada", "\"nmae\""},
        {"select frstname where firstname=Ada", "\"frstname\""},           // a column that matches none
        {"count catgory=customer", "\"catgory\""},
        {"replace firstname=X where catgory=customer", "\"catgory\""},     // would replace in every record
        {"replace frstname=X where category=customer", "\"frstname\""},
        {"count where", "names no stored element to count"},
        {"sum where", "names no stored element to sum"},
        {"", "nothing to find"},
    };
    for (const Case &c : cases) {
        const CliRun run = search(QLatin1String(c.line));
        EXPECT_EQ(run.code, 1) << c.line;
        EXPECT_TRUE(run.err.contains(QLatin1String(c.why))) << c.line << ": " << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty()) << c.line << ": " << run.out.toStdString();
    }
    EXPECT_EQ(fileBytes(data), before);
    EXPECT_EQ(search(QStringLiteral("ada"), {QStringLiteral("--field"), QStringLiteral("nosuch")}).code, 1);

    // A plain find names no element; it looks in field 1, or the one --field names.
    const CliRun found = search(QStringLiteral("ada"));
    EXPECT_TRUE(found.out.startsWith(QStringLiteral("2~Ada~"))) << found.out.toStdString();
    EXPECT_EQ(found.out.count(QLatin1Char('\n')), 1);
    EXPECT_EQ(search(QStringLiteral(">50"), {QStringLiteral("--field"), QStringLiteral("balance")}).code, 0);
}

TEST_F(SearchCli, SortByNameOrCodeAndAsJson)
{
    const CliRun byName = cli(QStringLiteral("sort"), {QStringLiteral("balance")});
    ASSERT_EQ(byName.code, 0) << byName.err.toStdString();
    EXPECT_EQ(byName.out, QStringLiteral("1\n4\n3\n2\n")); // record 1 is empty: balance 0
    EXPECT_EQ(cli(QStringLiteral("sort"), {QStringLiteral("F10")}).out, byName.out);
    const QJsonArray down = parsedJson(cli(QStringLiteral("sort"), {QStringLiteral("balance"), QStringLiteral("--down"),
                                                                   QStringLiteral("--json")}))
                                .array();
    EXPECT_EQ(down, (QJsonArray{2, 3, 4, 1}));
    EXPECT_EQ(cli(QStringLiteral("sort"), {QStringLiteral("nosuch")}).code, 1);
}

} // namespace
