// The rows of a results list are made by fast routines, but must read exactly as the record's own
// text on the page: here each kind of value, random and at its edges, is compared with the codec's
// text under several locales, with the window's formatting hooks and the plain ones, showing and
// hiding zeros.

#include "entry/EngineFormulaHooks.h"
#include "formula/FormulaContext.h"
#include "search/ResultRowBuilder.h"
#include "search/SearchNames.h"
#include "store/RecordCodec.h"
#include "store/RecordLayout.h"
#include "support/StoreDesigns.h"

#include <QRandomGenerator>

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

// Fields of every stored kind: float, money with 2, 3 and 4 places, whole, the four dates, a text.
Design rowDesign(int showZeros)
{
    Design d;
    d.AppTitle = QStringLiteral("Rows");
    d.MainCap = QStringLiteral("Rows");
    d.DataExtension = QStringLiteral("dat");
    d.ShowZeros = showZeros;
    const uint8_t types[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 0};
    d.Fields.resize(11);
    for (int i = 1; i <= 10; ++i) {
        d.Fields[size_t(i)] = makeField(types[i - 1], types[i - 1] == 0 ? 12 : 0);
        d.Fields[size_t(i)].Tag = QStringLiteral("f%1").arg(i);
    }
    d.FieldCount = 10;
    d.Combos.resize(1);
    d.Checks.resize(0);
    d.Notes.resize(1);
    addLabels(d, 6);
    return d;
}

struct Case {
    const char *locale;
    bool engineHooks;
    int showZeros;
};

class ResultRows : public ::testing::TestWithParam<Case> {};

// Money values in fixed point: random over many magnitudes, and the halves and zeros the rounding
// meets.
std::vector<int64_t> fixedValues(QRandomGenerator &rnd)
{
    std::vector<int64_t> out = {0, 1, -1, 4, 5, 49, 50, 51, 149, 150, 5000, -5000, 10050, -10050, 99995, -99995,
                                 12345678, 999999999, 1000000000, -1000000000, 123456789012, 99999999999999,
                                 -99999999999999, 100000000000000, 922337203685477580, -922337203685477580};
    for (int k = 0; k < 1500; ++k) {
        const int digits = 1 + int(rnd.bounded(17));
        int64_t v = 0;
        for (int d = 0; d < digits; ++d)
            v = v * 10 + int64_t(rnd.bounded(10));
        out.push_back(rnd.bounded(3) == 0 ? -v : v);
    }
    return out;
}

std::vector<double> floatValues(QRandomGenerator &rnd)
{
    std::vector<double> out = {0.0, -0.0, 1.0, -1.0, 0.5, 0.1, 1e15, 1e16, 123456789012345.0, 1234567890123456.0,
                               1e-5, 1e-4, 1e21, -2.5e-300, 1.0 / 3.0, 2.0 / 3.0, 0.30000000000000004};
    for (int k = 0; k < 1500; ++k) {
        const double mantissa = rnd.generateDouble() * 2 - 1;
        out.push_back(mantissa * std::pow(10.0, int(rnd.bounded(40)) - 20));
    }
    return out;
}

TEST_P(ResultRows, EveryValueReadsAsTheRecordShowsIt)
{
    const Case c = GetParam();
    const QLocale locale{QString::fromLatin1(c.locale)};
    QLocale::setDefault(locale);
    const Design design = rowDesign(c.showZeros);
    const RecordLayout layout = ComputeRecordLayout(design);
    FormulaContext context;
    context.locale = locale;
    EngineFormulaHooks engine(context);
    FormulaHooks plainHooks;
    const FormulaHooks &hooks = c.engineHooks ? static_cast<const FormulaHooks &>(engine) : plainHooks;
    const RecordCodec codec(design, layout, hooks, locale.decimalPoint().at(0));
    const SearchNames names(design, layout);
    QRandomGenerator rnd(77);

    QByteArray record(layout.RecordLength, ' ');
    for (int i = 1; i <= 10; ++i) {
        const SearchField field = names.byTag(QStringLiteral("f%1").arg(i));
        ASSERT_TRUE(field.valid());
        ResultRowBuilder rows(design, layout, codec, &field, 1, locale);
        const int at = layout.FieldOffset[size_t(i)];
        auto check = [&](const char *what) {
            const QString expected = QStringLiteral("7~") + codec.fieldDisplayText(record, i);
            const QString got = rows.row(7, reinterpret_cast<const uint8_t *>(record.constData()));
            ASSERT_EQ(got, expected) << c.locale << " type " << int(design.Fields[size_t(i)].FieldType) << " " << what;
        };
        const int type = design.Fields[size_t(i)].FieldType;
        if (type == 1) {
            for (double v : floatValues(rnd)) {
                RecordCodec::writeDouble(record, at, v);
                check(QByteArray::number(v, 'g', 17).constData());
            }
        } else if (type == 5) {
            for (int64_t v : fixedValues(rnd)) {
                RecordCodec::writeInt32(record, at, int32_t(v % 2147483647));
                check(QByteArray::number(v).constData());
            }
        } else if (type >= 2 && type <= 9) {
            for (int64_t v : fixedValues(rnd)) {
                // Dates are whole days or days with a time of day, within the calendar's years.
                const int64_t value = type >= 6 ? (v % 3000000) * 10000 / (1 + int64_t(rnd.bounded(2)) * 9999) : v;
                RecordCodec::writeInt64(record, at, value);
                check(QByteArray::number(qlonglong(value)).constData());
                if (type >= 6) // the same date again comes from the cache
                    check("again");
            }
        } else {
            for (const char *text : {"", "a", "Zoë and more", "trailing   "}) {
                record.replace(at - 1, 12, QByteArray(text).leftJustified(12, ' ', true));
                check(text);
            }
        }
        // The fast routines must really be in use where the hooks agree with them; a fallback to
        // the codec everywhere would pass the comparison above without testing them.
        const bool threeDigitGroups = std::strcmp(c.locale, "es_ES") != 0 && std::strcmp(c.locale, "hi_IN") != 0;
        if (c.engineHooks && threeDigitGroups && type >= 1 && type <= 9) {
            EXPECT_TRUE(rows.fastColumn(0)) << c.locale << " type " << type;
        }
    }
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

INSTANTIATE_TEST_SUITE_P(Locales, ResultRows,
                         ::testing::Values(Case{"en_US", true, 1}, Case{"en_US", true, 0}, Case{"de_DE", true, 1},
                                           Case{"fr_FR", true, 0}, Case{"de_CH", true, 1}, Case{"es_ES", true, 1},
                                           Case{"hi_IN", true, 1}, Case{"en_US", false, 1}, Case{"de_DE", false, 0}));

} // namespace
