#include "store/StoredValueText.h"

#include "store/RecordLayout.h"

#include <QDate>

#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace ff {

namespace {

constexpr int64_t kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000,
                               10000000000LL};

// Money slots beyond this are rounded by the hooks on their 15 significant digits in a way the
// integer rounding below does not follow; they go to the codec.
constexpr uint64_t kExactMoneyLimit = 100000000000000ULL; // 10^14 ten-thousandths

// Whole days kept in the day table: 1 January 1000 to 31 December 9999, the years the date
// patterns write in four digits.
constexpr int64_t kFirstDay = -328716;
constexpr int64_t kLastDay = 2958465;

// A table of other dates is emptied when it reaches this size: dates with times of day seldom
// repeat.
constexpr size_t kOtherDates = 65536;

int decimalsOf(int type) { return type >= 2 && type <= 4 ? type : 0; }

int64_t readInt64(const uint8_t *p)
{
    int64_t v;
    std::memcpy(&v, p, 8);
    return v;
}

// The pieces of text in the form of `Out`.
void put(QString &out, char c) { out += QLatin1Char(c); }
void put(std::string &out, char c) { out += c; }
void put(QString &out, const char *p, size_t n) { out += QLatin1String(p, qsizetype(n)); }
void put(std::string &out, const char *p, size_t n) { out.append(p, n); }
void put(QString &out, const QString &text) { out += text; }
void put(std::string &out, const std::string &text) { out += text; }
void putPart(QString &out, const QString &from, qsizetype at, qsizetype size) { out.append(from.constData() + at, size); }
void putPart(std::string &out, const std::string &from, qsizetype at, qsizetype size)
{
    out.append(from.data() + at, size_t(size));
}

// The UTF-16 or the code-page form of a text, as `Out` wants it.
template <class Out, class Wide, class Narrow>
decltype(auto) formOf(const Wide &wide, const Narrow &narrow)
{
    if constexpr (std::is_same_v<Out, QString>)
        return (wide);
    else
        return (narrow);
}

template <class Out>
void putDigits(Out &out, uint64_t v)
{
    char buffer[24];
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, v);
    put(out, buffer, size_t(r.ptr - buffer));
}

} // namespace

StoredValueText::DateForms::DateForms(const QLocale &locale, QString (*patternOf)(int, const QLocale &))
    : locale(locale)
{
    for (int type = 6; type <= 9; ++type)
        patterns[size_t(type - 6)] = patternOf(type, locale);
}

StoredValueText::StoredValueText(const Design &design, const RecordCodec &codec, const std::vector<int> &fields,
                                 const DateForms &dates)
    : design_(design), layout_(codec.layout()), codePage_(codec.codePage())
{
    std::array<int, 10> representative{};
    for (const int index : fields) {
        if (index < 1 || size_t(index) >= design.Fields.size() || layout_.FieldOffset[size_t(index)] == 0)
            continue;
        const int type = design.Fields[size_t(index)].FieldType;
        if (type >= 1 && type <= 9 && representative[size_t(type)] == 0)
            representative[size_t(type)] = index;
    }
    for (int type = 1; type <= 9; ++type) {
        const int index = representative[size_t(type)];
        if (index && type <= 5)
            learnNumbers(type, index, codec);
        else if (index)
            learnDates(type, index, codec, dates);
    }
}

void StoredValueText::append(int index, const uint8_t *plain, QString &out, const RecordCodec &codec,
                             DateTexts<QString> &dates) const
{
    appendValue(index, plain, out, codec, dates);
}

void StoredValueText::append(int index, const uint8_t *plain, std::string &out, const RecordCodec &codec,
                             DateTexts<std::string> &dates) const
{
    appendValue(index, plain, out, codec, dates);
}

template <class Out>
void StoredValueText::appendValue(int index, const uint8_t *plain, Out &out, const RecordCodec &codec,
                                  DateTexts<Out> &dates) const
{
    const int type = design_.Fields[size_t(index)].FieldType;
    const uint8_t *slot = plain + layout_.FieldOffset[size_t(index)] - 1;
    if (type <= 5) {
        if (!fast_[size_t(type)] || !appendNumber(type, slot, out))
            appendCodecText(index, plain, out, codec);
        return;
    }
    const int64_t stored = readInt64(slot);
    if (stored == 0)
        return; // no date: an empty text
    if (fast_[size_t(type)] && appendDate(type, stored, out))
        return;
    if (size_t(index) >= dates.fields_.size())
        dates.fields_.resize(size_t(index) + 1);
    auto &f = dates.fields_[size_t(index)];
    const int64_t day = stored / 10000;
    if (stored % 10000 == 0 && day >= kFirstDay && day <= kLastDay) {
        using Texts = DateTexts<Out>;
        const int64_t at = day - kFirstDay;
        if (f.pages.empty())
            f.pages.resize(size_t(((kLastDay - kFirstDay) >> Texts::kPageBits) + 1));
        std::unique_ptr<typename Texts::Page> &page = f.pages[size_t(at >> Texts::kPageBits)];
        if (!page)
            page = std::make_unique<typename Texts::Page>();
        typename Texts::Entry &e = (*page)[size_t(at & ((1 << Texts::kPageBits) - 1))];
        if (e.size == UINT32_MAX) {
            const qsizetype start = qsizetype(f.pool.size());
            appendCodecText(index, plain, f.pool, codec);
            e.offset = uint32_t(start);
            e.size = uint32_t(qsizetype(f.pool.size()) - start);
        }
        putPart(out, f.pool, qsizetype(e.offset), qsizetype(e.size));
        return;
    }
    auto it = f.others.find(stored);
    if (it == f.others.end()) {
        if (f.others.size() >= kOtherDates)
            f.others.clear();
        Out text;
        appendCodecText(index, plain, text, codec);
        it = f.others.emplace(stored, std::move(text)).first;
    }
    put(out, it->second);
}

template <class Out>
void StoredValueText::appendCodecText(int index, const uint8_t *plain, Out &out, const RecordCodec &codec) const
{
    const QByteArray record = QByteArray::fromRawData(reinterpret_cast<const char *>(plain), layout_.RecordLength);
    if constexpr (std::is_same_v<Out, QString>) {
        out += codec.fieldDisplayText(record, index);
    } else {
        const QByteArray bytes = codePage_.encode(codec.fieldDisplayText(record, index));
        out.append(bytes.constData(), size_t(bytes.size()));
    }
}

template <class Out>
bool StoredValueText::appendNumber(int type, const uint8_t *slot, Out &out) const
{
    const Notation &n = notation_[size_t(type)];
    const Marks<Out> &marks = formOf<Out>(n.wide, n.narrow);
    if (type == 1) {
        double v;
        std::memcpy(&v, slot, 8);
        if (v == 0.0) {
            if (!n.zeroHidden)
                put(out, '0');
            return true;
        }
        if (!std::isfinite(v))
            return false;
        char buffer[40];
        const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::general, 15);
        if (r.ec != std::errc())
            return false;
        char *point = nullptr;
        for (char *p = buffer; p != r.ptr; ++p) {
            if (*p == 'e')
                *p = 'E';
            else if (*p == '.')
                point = p;
        }
        if (!point || n.plainPoint) {
            put(out, buffer, size_t(r.ptr - buffer));
            return true;
        }
        put(out, buffer, size_t(point - buffer));
        put(out, marks.point);
        put(out, point + 1, size_t(r.ptr - point - 1));
        return true;
    }
    const int decimals = decimalsOf(type);
    bool negative;
    uint64_t units; // the value rounded to `decimals` places, in units of the last place
    if (type == 5) {
        int32_t v;
        std::memcpy(&v, slot, 4);
        negative = v < 0;
        units = negative ? uint64_t(-int64_t(v)) : uint64_t(v);
    } else {
        const int64_t v = readInt64(slot);
        negative = v < 0;
        const uint64_t magnitude = negative ? uint64_t(0) - uint64_t(v) : uint64_t(v);
        if (magnitude >= kExactMoneyLimit)
            return false;
        const uint64_t step = uint64_t(kPowers[4 - decimals]);
        units = magnitude / step;
        if (step > 1 && (magnitude % step) * 2 >= step)
            ++units; // halves away from zero
    }
    if (units == 0) {
        if (negative)
            return false; // a negative value that rounds to zero: its sign is the hooks' business
        if (n.zeroHidden)
            return true;
    }
    const uint64_t whole = units / uint64_t(kPowers[decimals]);
    const uint64_t fraction = units % uint64_t(kPowers[decimals]);
    char digits[24];
    const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, whole);
    const int count = int(r.ptr - digits);
    if (count > 10)
        return false;
    if (negative)
        put(out, marks.minus);
    const uint32_t groups = n.marks[size_t(count)];
    int from = 0;
    for (int k = 0; k < count; ++k) {
        const int fromRight = count - 1 - k;
        if (fromRight > 0 && (groups >> fromRight) & 1u) {
            put(out, digits + from, size_t(k + 1 - from));
            put(out, marks.group);
            from = k + 1;
        }
    }
    put(out, digits + from, size_t(count - from));
    if (decimals > 0) {
        put(out, marks.point);
        char f[4];
        uint64_t v = fraction;
        for (int k = decimals - 1; k >= 0; --k) {
            f[k] = char('0' + v % 10);
            v /= 10;
        }
        put(out, f, size_t(decimals));
    }
    return true;
}

template <class Out>
bool StoredValueText::appendDate(int type, int64_t stored, Out &out) const
{
    const std::vector<DateToken> &tokens = datePattern_[size_t(type - 6)];
    if (tokens.empty() || stored % 10000 != 0)
        return false; // a time of day goes the codec's way
    // Days since 30 December 1899 to a civil date (the proleptic Gregorian calendar).
    const int64_t days = stored / 10000;
    const int64_t z = days - 25569 + 719468; // days since 1 March of year 0
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
    const int weekday = int(((days - 2) % 7 + 7) % 7); // 0 Monday: day 2 was a Monday
    auto two = [&](int v) {
        put(out, char('0' + v / 10));
        put(out, char('0' + v % 10));
    };
    using Part = DateToken::Part;
    for (const DateToken &t : tokens) {
        switch (t.part) {
        case Part::Literal: put(out, formOf<Out>(t.wide, t.narrow)); break;
        case Part::Day: putDigits(out, uint64_t(day)); break;
        case Part::Day2: two(day); break;
        case Part::Month: putDigits(out, uint64_t(month)); break;
        case Part::Month2: two(month); break;
        case Part::Year2: two(int(year % 100)); break;
        case Part::Year4: putDigits(out, uint64_t(year)); break;
        case Part::DayName: put(out, formOf<Out>(t.wideNames[size_t(weekday)], t.narrowNames[size_t(weekday)])); break;
        case Part::MonthName: put(out, formOf<Out>(t.wideNames[size_t(month - 1)], t.narrowNames[size_t(month - 1)])); break;
        }
    }
    return true;
}

void StoredValueText::learnNumbers(int type, int index, const RecordCodec &codec)
{
    Notation &n = notation_[size_t(type)];
    const int decimals = decimalsOf(type);
    const int at = layout_.FieldOffset[size_t(index)];
    QByteArray record(layout_.RecordLength, ' ');
    const auto store = [&](int64_t stored, double value) {
        if (type == 1)
            RecordCodec::writeDouble(record, at, value);
        else if (type == 5)
            RecordCodec::writeInt32(record, at, int32_t(stored));
        else
            RecordCodec::writeInt64(record, at, stored);
    };
    // The codec's text of a whole or half value.
    const auto text = [&](double value) {
        store(type == 5 ? int64_t(value) : int64_t(std::llround(value * 10000)), value);
        return codec.fieldDisplayText(record, index);
    };
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };

    // The sign before 1, and the point between 0 and 5 (type 1 shows 0.5 as "0<point>5").
    const QString minusOne = text(-1.0);
    const qsizetype one = minusOne.indexOf(QLatin1Char('1'));
    if (one < 1)
        return;
    n.wide.minus = minusOne.left(one);
    if (type == 1 || decimals > 0) {
        const QString half = text(0.5);
        const int after = type == 1 ? 1 : decimals;
        if (half.size() < 3 || half.front() != QLatin1Char('0') || half.at(half.size() - after) != QLatin1Char('5'))
            return;
        n.wide.point = half.mid(1, half.size() - 1 - after);
    }
    // Group marks for 1..10 integer digits, read from 1, 12, 123, ... 1234567890.
    if (type != 1) {
        for (int count = 1; count <= 10; ++count) {
            QString t = text(double(int64_t(1234567890) / kPowers[10 - count]));
            if (decimals > 0)
                t.chop(n.wide.point.size() + decimals);
            uint32_t marks = 0;
            int seen = 0;
            for (qsizetype k = 0; k < t.size();) {
                if (isDigit(t[k])) {
                    ++seen;
                    ++k;
                    continue;
                }
                const qsizetype from = k;
                while (k < t.size() && !isDigit(t[k]))
                    ++k;
                const QString mark = t.mid(from, k - from);
                if (seen == 0 || (!n.wide.group.isEmpty() && mark != n.wide.group))
                    return;
                n.wide.group = mark;
                marks |= 1u << (count - seen);
            }
            if (seen != count)
                return;
            n.marks[size_t(count)] = marks;
        }
    }
    n.zeroHidden = text(0.0).isEmpty();
    n.plainPoint = n.wide.point == QLatin1String(".");
    n.narrow = {codePage_.encode(n.wide.minus).toStdString(), codePage_.encode(n.wide.point).toStdString(),
                codePage_.encode(n.wide.group).toStdString()};

    // The proof: the codec's own texts over values of every size, both signs and the halves, in
    // both forms.
    const auto agrees = [&](int64_t stored, double value) {
        store(stored, value);
        const uint8_t *slot = reinterpret_cast<const uint8_t *>(record.constData()) + at - 1;
        QString wide;
        std::string narrow;
        if (!appendNumber(type, slot, wide) || !appendNumber(type, slot, narrow))
            return true; // left to the codec anyway
        const QString theirs = codec.fieldDisplayText(record, index);
        return wide == theirs && narrow == codePage_.encode(theirs).toStdString();
    };
    uint64_t seed = 0x9E3779B97F4A7C15ULL;
    const auto next = [&seed]() {
        seed ^= seed << 13;
        seed ^= seed >> 7;
        seed ^= seed << 17;
        return seed;
    };
    std::vector<int64_t> samples = {0, 1, -1, 5, -5, 49, 50, 51, -50, 99, 100, 150, 9999, 10000, 10001, 12345,
                                    -12345, 99995, 99994, 999999, 1000000, 1234567, 125000, 1250000, 2147483647,
                                    -2147483647 - 1, 99999999999999, -99999999999999, 10000000000000};
    for (int digits = 1; digits <= 14; ++digits)
        for (int k = 0; k < 8; ++k) {
            const int64_t v = int64_t(next() % uint64_t(kPowers[std::min(digits, 10)] * kPowers[std::max(digits - 10, 0)]));
            samples.push_back((k & 1) ? -v : v);
        }
    for (const int64_t s : samples) {
        if (type == 5 && (s > INT32_MAX || s < INT32_MIN))
            continue;
        if (!agrees(s, double(s) / 997.0))
            return;
    }
    if (type == 1) {
        for (const double v : {-0.0, 1e-5, 1.5e-300, 1e15, 1e16, 123456789012345678.0, 0.1, 2.675, -3.25e-7, 1e300, 5e-324})
            if (!agrees(0, v))
                return;
    }
    fast_[size_t(type)] = true;
}

bool StoredValueText::parseDatePattern(int type, const DateForms &forms)
{
    using Part = DateToken::Part;
    const QString &pattern = forms.patterns[size_t(type - 6)];
    std::vector<DateToken> &tokens = datePattern_[size_t(type - 6)];
    const auto literal = [&](QChar ch) {
        if (tokens.empty() || tokens.back().part != Part::Literal)
            tokens.push_back(DateToken{});
        tokens.back().wide += ch;
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
        if (ch.unicode() > 127 || !ch.isLetter()) { // the pattern's letters are ASCII: "年" is a literal
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
                t.wideNames.push_back(forms.locale.toString(QDate(2001, 1, 1 + w), QString(run, ch)));
        } else if (ch == QLatin1Char('M') && run <= 2)
            t.part = run == 1 ? Part::Month : Part::Month2;
        else if (ch == QLatin1Char('M') && run <= 4) {
            t.part = Part::MonthName;
            for (int m = 1; m <= 12; ++m)
                t.wideNames.push_back(forms.locale.toString(QDate(2001, m, 1), QString(run, ch)));
        } else if (ch == QLatin1Char('y') && (run == 2 || run == 4))
            t.part = run == 2 ? Part::Year2 : Part::Year4;
        else
            return false; // a part only the locale knows how to write
        tokens.push_back(std::move(t));
    }
    for (DateToken &t : tokens) {
        t.narrow = codePage_.encode(t.wide).toStdString();
        for (const QString &name : t.wideNames)
            t.narrowNames.push_back(codePage_.encode(name).toStdString());
    }
    return !tokens.empty();
}

void StoredValueText::learnDates(int type, int index, const RecordCodec &codec, const DateForms &forms)
{
    if (!parseDatePattern(type, forms)) {
        datePattern_[size_t(type - 6)].clear();
        return;
    }
    const int at = layout_.FieldOffset[size_t(index)];
    QByteArray record(layout_.RecordLength, ' ');
    // Every month and weekday, both halves of a month, years of two and four digits.
    for (int k = 0; k < 84; ++k) {
        const QDate date = QDate(1900 + (k * 37) % 200, 1 + k % 12, 1 + (k * 5) % 28);
        const int64_t stored = QDate(1899, 12, 30).daysTo(date) * 10000;
        RecordCodec::writeInt64(record, at, stored);
        QString wide;
        std::string narrow;
        if (!appendDate(type, stored, wide) || !appendDate(type, stored, narrow))
            return;
        const QString theirs = codec.fieldDisplayText(record, index);
        if (wide != theirs || narrow != codePage_.encode(theirs).toStdString())
            return;
    }
    fast_[size_t(type)] = true;
}

} // namespace ff
