#include "search/ResultRowBuilder.h"

#include "design/Design.h"
#include "formula/FieldFormat.h"
#include "store/RecordLayout.h"

#include <QDate>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace ff {

namespace {

// Fixed-point values up to this size keep every digit in the 15 significant digits the rounding
// works on, and their rounded value converts to a double and back exactly.
constexpr int64_t kExactFixed = 100'000'000'000'000; // 10^14: amounts below ten thousand million

constexpr int64_t kPowers[] = {1, 10, 100, 1000, 10000};

// A date cache stops growing here; later dates are made each time.
constexpr qsizetype kDateCacheSize = 1 << 16;

void appendDigits(QString &row, uint64_t v)
{
    char buffer[24];
    char *end = buffer + sizeof buffer;
    char *p = end;
    do {
        *--p = char('0' + v % 10);
        v /= 10;
    } while (v != 0);
    row += QLatin1String(p, end - p);
}

} // namespace

ResultRowBuilder::ResultRowBuilder(const Design &design, const RecordLayout &layout, const RecordCodec &codec,
                                   const SearchField *columns, int count, const QLocale &locale)
    : layout_(layout), codec_(codec), count_(std::min(count, kColumnSlots)),
      hideZeros_(design.ShowZeros == 0), locale_(locale), groupMark_(locale.groupSeparator()), decimalMark_(locale.decimalPoint()),
      minusSign_(locale.negativeSign()), floatPoint_(locale.decimalPoint())
{
    for (int k = 0; k < count_; ++k) {
        Column &c = columns_[size_t(k)];
        c.field = columns[k];
        switch (c.field.kind) {
        case SearchKind::Field: {
            const int type = c.field.format;
            if (type == 1)
                c.kind = Kind::Float;
            else if (type >= 2 && type <= 4)
                c.kind = Kind::Money, c.decimals = type;
            else if (type == 5)
                c.kind = Kind::Whole;
            else if (type >= 6 && type <= 9)
                c.kind = Kind::Date;
            else
                c.kind = Kind::Text;
            break;
        }
        case SearchKind::Check: c.kind = Kind::Check; break;
        case SearchKind::Note: c.kind = Kind::Note; break;
        case SearchKind::Picture: c.kind = Kind::Picture; break;
        default: c.kind = Kind::Text; break;
        }
        calibrate(c);
        rowReserve_ += 1 + std::clamp(c.field.length, 16, 64);
    }
}

// Probes every value shape a fast routine handles against the codec's text; one difference and
// the column goes the codec's way.
void ResultRowBuilder::calibrate(Column &c)
{
    c.fast = c.kind != Kind::Float && c.kind != Kind::Money && c.kind != Kind::Whole && c.kind != Kind::Date;
    if (c.fast)
        return;
    const int at = c.field.offset + 1; // the codec's writers count from 1
    QByteArray record(layout_.RecordLength, ' ');
    auto codecText = [&] {
        return codec_.fieldDisplayText(record, c.field.index);
    };
    bool agree = true;
    if (c.kind == Kind::Date) {
        c.datePattern = datePattern(c.field.format);
        if (c.datePattern.empty())
            return;
        // Every month and weekday, both halves of a month, years of two and four digits.
        for (int k = 0; k < 84 && agree; ++k) {
            const QDate date = QDate(1900 + (k * 37) % 200, 1 + k % 12, 1 + (k * 5) % 28);
            const int64_t day = QDate(1899, 12, 30).daysTo(date);
            RecordCodec::writeInt64(record, at, day * 10000);
            QString fast;
            if (appendDate(fast, c, day * 10000))
                agree = fast == codecText();
        }
        c.fast = agree;
        return;
    }
    if (c.kind == Kind::Money) {
        static const int64_t probes[] = {0, 1, -1, 49, 50, 51, 5000, -5000, 10050, -10050, 12345, 99995, 999950,
                                         1234567, -7654321, 12340000, 123456789, 1000000000, 98765432101,
                                         -99999999999999, 12500, 1250, 125, 15, 25, 35};
        for (int64_t v : probes) {
            RecordCodec::writeInt64(record, at, v);
            QString fast;
            if (appendFixed(fast, v, c.decimals))
                agree = agree && fast == codecText();
        }
    } else if (c.kind == Kind::Whole) {
        static const int32_t probes[] = {0, 1, -1, 12, 999, 1000, -1000, 1234, 12345, 123456, 1234567, -7654321,
                                         2147483647, -2147483647 - 1};
        for (int32_t v : probes) {
            RecordCodec::writeInt32(record, at, v);
            QString fast;
            if (appendFixed(fast, int64_t(v) * 10000, 0))
                agree = agree && fast == codecText();
        }
    } else {
        static const double probes[] = {0.0, 1.0, -1.0, 0.5, 0.1, 1.0 / 3.0, 123456.789, -98765.4321, 1e15, 1e16,
                                        1.5e20, 1e-5, 1e-4, 2.5e-7, 123456789012345678.0, 3.14159265358979,
                                        -0.000123, 1e300, 5e-324};
        for (double v : probes) {
            RecordCodec::writeDouble(record, at, v);
            QString fast;
            if (appendFloat(fast, v))
                agree = agree && fast == codecText();
        }
    }
    c.fast = agree;
}

bool ResultRowBuilder::appendFixed(QString &row, int64_t fixed, int decimals) const
{
    if (fixed >= kExactFixed || fixed <= -kExactFixed)
        return false;
    // Half away from zero at `decimals` places, on the exact decimal value.
    const int64_t unit = kPowers[4 - decimals];
    const bool negative = fixed < 0;
    uint64_t magnitude = uint64_t(negative ? -fixed : fixed);
    uint64_t rounded = (magnitude + uint64_t(unit / 2)) / uint64_t(unit);
    if (rounded == 0) {
        if (negative)
            return false; // a negative value that rounds to zero: its sign is the locale's business
        if (hideZeros_)
            return true;
    }
    if (negative)
        row += minusSign_;
    const uint64_t scale = uint64_t(kPowers[decimals]);
    uint64_t whole = rounded / scale;
    const uint64_t fraction = rounded % scale;
    // The whole part in groups of three.
    char digits[24];
    int n = 0;
    do {
        digits[n++] = char('0' + whole % 10);
        whole /= 10;
    } while (whole != 0);
    for (int k = n - 1; k >= 0; --k) {
        row += QLatin1Char(digits[k]);
        if (k > 0 && k % 3 == 0)
            row += groupMark_;
    }
    if (decimals > 0) {
        row += decimalMark_;
        char f[4];
        uint64_t v = fraction;
        for (int k = decimals - 1; k >= 0; --k) {
            f[k] = char('0' + v % 10);
            v /= 10;
        }
        row += QLatin1String(f, decimals);
    }
    return true;
}

bool ResultRowBuilder::appendFloat(QString &row, double value) const
{
    if (value == 0.0) {
        if (!hideZeros_)
            row += QLatin1Char('0');
        return true;
    }
    if (!std::isfinite(value))
        return false;
    char buffer[40];
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15);
    if (r.ec != std::errc())
        return false;
    qsizetype point = -1;
    for (char *p = buffer; p != r.ptr; ++p) {
        if (*p == 'e')
            *p = 'E';
        else if (*p == '.')
            point = p - buffer;
    }
    if (point < 0 || floatPoint_ == QLatin1String(".")) {
        row += QLatin1String(buffer, r.ptr - buffer);
        return true;
    }
    row += QLatin1String(buffer, point);
    row += floatPoint_;
    row += QLatin1String(buffer + point + 1, r.ptr - buffer - point - 1);
    return true;
}

std::vector<ResultRowBuilder::DateToken> ResultRowBuilder::datePattern(int fieldType) const
{
    using Part = DateToken::Part;
    const QString pattern = DatePattern(fieldType, locale_);
    std::vector<DateToken> tokens;
    auto literal = [&](QChar ch) {
        if (tokens.empty() || tokens.back().part != Part::Literal)
            tokens.push_back(DateToken{});
        tokens.back().text += ch;
    };
    for (qsizetype i = 0; i < pattern.size();) {
        const QChar ch = pattern[i];
        if (ch == QLatin1Char('\'')) { // a quoted literal; '' is a quote
            qsizetype j = i + 1;
            if (j < pattern.size() && pattern[j] == QLatin1Char('\'')) {
                literal(ch);
                i = j + 1;
                continue;
            }
            while (j < pattern.size() && pattern[j] != QLatin1Char('\''))
                literal(pattern[j++]);
            i = j + 1;
            continue;
        }
        if (!ch.isLetter()) {
            literal(ch);
            ++i;
            continue;
        }
        qsizetype run = 1;
        while (i + run < pattern.size() && pattern[i + run] == ch)
            ++run;
        i += run;
        DateToken t;
        if (ch == QLatin1Char('d') && run <= 2)
            t.part = run == 1 ? Part::Day : Part::Day2;
        else if (ch == QLatin1Char('d') && run <= 4) {
            t.part = Part::DayName;
            for (int w = 0; w < 7; ++w) // 1 January 2001 was a Monday
                t.names.push_back(locale_.toString(QDate(2001, 1, 1 + w), QString(run, ch)));
        } else if (ch == QLatin1Char('M') && run <= 2)
            t.part = run == 1 ? Part::Month : Part::Month2;
        else if (ch == QLatin1Char('M') && run <= 4) {
            t.part = Part::MonthName;
            for (int m = 1; m <= 12; ++m)
                t.names.push_back(locale_.toString(QDate(2001, m, 1), QString(run, ch)));
        } else if (ch == QLatin1Char('y') && (run == 2 || run == 4))
            t.part = run == 2 ? Part::Year2 : Part::Year4;
        else
            return {}; // a part only the locale knows how to write
        tokens.push_back(std::move(t));
    }
    return tokens;
}

bool ResultRowBuilder::appendDate(QString &row, const Column &c, int64_t fixed) const
{
    if (c.datePattern.empty() || fixed % 10000 != 0)
        return false; // a time of day goes the codec's way
    // Days since 30 December 1899 to a civil date (the proleptic Gregorian calendar).
    const int64_t z = fixed / 10000 - 25569 + 719468; // days since 1 March of year 0
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const int day = int(doy - (153 * mp + 2) / 5 + 1);
    const int month = int(mp < 10 ? mp + 3 : mp - 9);
    const int64_t year = yoe + era * 400 + (month <= 2 ? 1 : 0);
    if (year < 1000 || year > 9999)
        return false;
    const int weekday = int(((fixed / 10000 - 2) % 7 + 7) % 7); // 0 Monday: day 2 was a Monday
    auto two = [&](int v) {
        row += QLatin1Char(char('0' + v / 10));
        row += QLatin1Char(char('0' + v % 10));
    };
    for (const DateToken &t : c.datePattern) {
        switch (t.part) {
        case DateToken::Part::Literal: row += t.text; break;
        case DateToken::Part::Day: appendDigits(row, uint64_t(day)); break;
        case DateToken::Part::Day2: two(day); break;
        case DateToken::Part::Month: appendDigits(row, uint64_t(month)); break;
        case DateToken::Part::Month2: two(month); break;
        case DateToken::Part::Year2: two(int(year % 100)); break;
        case DateToken::Part::Year4: appendDigits(row, uint64_t(year)); break;
        case DateToken::Part::DayName: row += t.names[size_t(weekday)]; break;
        case DateToken::Part::MonthName: row += t.names[size_t(month - 1)]; break;
        }
    }
    return true;
}

void ResultRowBuilder::appendCodecText(QString &row, const Column &c, const uint8_t *plain) const
{
    const QByteArray raw = QByteArray::fromRawData(reinterpret_cast<const char *>(plain), layout_.RecordLength);
    row += codec_.fieldDisplayText(raw, c.field.index);
}

void ResultRowBuilder::appendValue(QString &row, Column &c, const uint8_t *plain)
{
    const SearchField &f = c.field;
    const uint8_t *p = plain + f.offset;
    const CodePage &cp = codec_.codePage();
    int64_t i64;
    switch (c.kind) {
    case Kind::Check:
        row += QLatin1Char(char('0' + ((p[0] >= '0' && p[0] <= '9') ? p[0] - '0' : 0)));
        return;
    case Kind::Note: {
        int n = f.length;
        while (n > 0 && p[n - 1] == ' ')
            --n;
        QString text = cp.decode(reinterpret_cast<const char *>(p), n);
        text.replace(QLatin1String("\r\n"), QLatin1String(" "));
        text.replace(QLatin1Char('\r'), QLatin1Char(' '));
        text.replace(QLatin1Char('\n'), QLatin1Char(' '));
        row += text;
        return;
    }
    case Kind::Picture: {
        int lead = 0;
        while (lead < f.length && p[lead] == ' ')
            ++lead;
        cp.appendDecoded(row, reinterpret_cast<const char *>(p + lead), f.length - lead);
        return;
    }
    case Kind::Text: {
        int n = f.length;
        while (n > 0 && p[n - 1] == ' ')
            --n;
        cp.appendDecoded(row, reinterpret_cast<const char *>(p), n);
        return;
    }
    case Kind::Money:
        std::memcpy(&i64, p, 8);
        if (c.fast && appendFixed(row, i64, c.decimals))
            return;
        break;
    case Kind::Whole: {
        int32_t v;
        std::memcpy(&v, p, 4);
        if (c.fast && appendFixed(row, int64_t(v) * 10000, 0))
            return;
        break;
    }
    case Kind::Float: {
        double v;
        std::memcpy(&v, p, 8);
        if (c.fast && appendFloat(row, v))
            return;
        break;
    }
    case Kind::Date: {
        std::memcpy(&i64, p, 8);
        if (i64 == 0)
            return; // no date: an empty cell
        if (c.fast && appendDate(row, c, i64))
            return;
        const auto it = c.dates.constFind(i64);
        if (it != c.dates.constEnd()) {
            row += *it;
            return;
        }
        const QByteArray raw = QByteArray::fromRawData(reinterpret_cast<const char *>(plain), layout_.RecordLength);
        const QString text = codec_.fieldDisplayText(raw, f.index);
        if (c.dates.size() < kDateCacheSize)
            c.dates.insert(i64, text);
        row += text;
        return;
    }
    }
    appendCodecText(row, c, plain);
}

QString ResultRowBuilder::row(int record, const uint8_t *plainRecord)
{
    QString row;
    row.reserve(rowReserve_);
    appendDigits(row, uint64_t(record));
    for (int k = 0; k < count_; ++k) {
        row += QLatin1Char('~');
        appendValue(row, columns_[size_t(k)], plainRecord);
    }
    return row;
}

} // namespace ff
