// Numbers and dates made by the fast routines must read exactly as the record codec shows them, as
// UTF-16 and as code-page bytes: each kind of value, random and at its edges, under several locales
// and code pages, with the window's formatting hooks and the plain ones, showing and hiding zeros.

#include "entry/EngineFormulaHooks.h"
#include "formula/FieldFormat.h"
#include "formula/FormulaContext.h"
#include "store/RecordCodec.h"
#include "store/RecordLayout.h"
#include "store/StoredValueText.h"
#include "support/StoreDesigns.h"

#include <QRandomGenerator>

#include <cmath>
#include <numeric>
#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

// Float, money with 2, 3 and 4 places, whole, the four dates, then a second money and a second
// date field: those two are made by what was learned from the first of their type.
constexpr uint8_t kTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 2, 7};
constexpr int kFields = int(sizeof kTypes);

Design valueDesign(int showZeros, int charset)
{
    Design d;
    d.MainCap = QStringLiteral("Values");
    d.DataExtension = QStringLiteral("dat");
    d.ShowZeros = showZeros;
    d.FontCharset = charset;
    d.Fields.resize(kFields + 1);
    for (int i = 1; i <= kFields; ++i)
        d.Fields[size_t(i)] = makeField(kTypes[i - 1]);
    d.FieldCount = kFields;
    d.Combos.resize(1);
    d.Notes.resize(1);
    addLabels(d, 6);
    return d;
}

struct Case { const char *locale; int charset; bool engineHooks; int showZeros; };

class StoredValues : public ::testing::TestWithParam<Case> {};

// Stored values of one field type: random over many magnitudes, and the halves, zeros and limits
// the rounding and the fast range meet. Dates are whole days or days with a time of day, some
// beyond the years of four digits.
std::vector<int64_t> storedValues(int type, QRandomGenerator &rnd)
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
    for (int64_t &v : out) {
        if (type == 5)
            v = int32_t(v % 2147483647);
        else if (type >= 6)
            v = (v % 3000000) * 10000 / (1 + int64_t(rnd.bounded(2)) * 9999);
    }
    return out;
}

std::vector<double> floatValues(QRandomGenerator &rnd)
{
    std::vector<double> out = {0.0, -0.0, 1.0, -1.0, 0.5, 0.1, 1e15, 1e16, 123456789012345.0, 1234567890123456.0,
                               1e-5, 1e-4, 1e21, -2.5e-300, 1.0 / 3.0, 2.0 / 3.0, 0.30000000000000004,
                               HUGE_VAL, -HUGE_VAL, std::nan("")};
    for (int k = 0; k < 1500; ++k)
        out.push_back((rnd.generateDouble() * 2 - 1) * std::pow(10.0, int(rnd.bounded(40)) - 20));
    return out;
}

TEST_P(StoredValues, EveryValueReadsAsTheCodecShowsIt)
{
    const Case c = GetParam();
    const QLocale locale{QString::fromLatin1(c.locale)};
    QLocale::setDefault(locale);
    const Design design = valueDesign(c.showZeros, c.charset);
    const RecordLayout layout = ComputeRecordLayout(design);
    FormulaContext context;
    context.locale = locale;
    EngineFormulaHooks engine(context);
    FormulaHooks plainHooks;
    const FormulaHooks &hooks = c.engineHooks ? static_cast<const FormulaHooks &>(engine) : plainHooks;
    const RecordCodec codec(design, layout, hooks, locale.decimalPoint().at(0));
    std::vector<int> fields(kFields);
    std::iota(fields.begin(), fields.end(), 1);
    const StoredValueText values(design, codec, fields, StoredValueText::DateForms(locale, &DatePattern));
    StoredValueText::DateTexts<QString> wideDates;
    StoredValueText::DateTexts<std::string> narrowDates;
    QRandomGenerator rnd(77);

    QByteArray record(layout.RecordLength, ' ');
    const auto *plain = reinterpret_cast<const uint8_t *>(record.constData());
    for (int i = 1; i <= kFields; ++i) {
        const int type = kTypes[i - 1];
        const int at = layout.FieldOffset[size_t(i)];
        auto check = [&](const char *what) {
            if (HasFailure())
                return; // one wrong text is enough to read
            const QString expected = codec.fieldDisplayText(record, i);
            const QByteArray bytes = codec.codePage().encode(expected);
            QString wide = QStringLiteral("~"); // appended to what is there
            std::string narrow = "~";
            values.append(i, plain, wide, codec, wideDates);
            values.append(i, plain, narrow, codec, narrowDates);
            EXPECT_EQ(wide.mid(1), expected) << c.locale << " field " << i << " " << what;
            EXPECT_EQ(narrow.substr(1), bytes.toStdString()) << c.locale << " field " << i << " " << what;
        };
        for (double v : type == 1 ? floatValues(rnd) : std::vector<double>{}) {
            RecordCodec::writeDouble(record, at, v);
            check(QByteArray::number(v, 'g', 17).constData());
        }
        for (int64_t v : type == 1 ? std::vector<int64_t>{} : storedValues(type, rnd)) {
            if (type == 5)
                RecordCodec::writeInt32(record, at, int32_t(v));
            else
                RecordCodec::writeInt64(record, at, v);
            check(QByteArray::number(qlonglong(v)).constData());
            if (type >= 6) // the same date again is the text already made
                check("again");
        }
        // The fast routines must really be in use where the engine's hooks format: a fallback
        // to the codec everywhere would pass the comparison above without testing them.
        EXPECT_TRUE(values.fast(type) || !c.engineHooks) << c.locale << " type " << type;
    }
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

INSTANTIATE_TEST_SUITE_P(Locales, StoredValues,
                         ::testing::Values(Case{"en_US", 0, true, 1}, Case{"en_US", 0, true, 0}, Case{"de_DE", 0, true, 1},
                                           Case{"fr_FR", 0, true, 0}, Case{"de_CH", 0, true, 1}, Case{"es_ES", 0, true, 1},
                                           Case{"hi_IN", 0, true, 1}, Case{"ru_RU", 204, true, 0},
                                           Case{"ja_JP", 128, true, 1}, Case{"en_US", 0, false, 1},
                                           Case{"de_DE", 0, false, 0}));

} // namespace
