#include "formula/DateReader.h"

#include "design/WorkingLocale.h"
#include "formula/DateNumber.h"
#include "formula/NumberText.h"

#include <QDate>
#include <QRegularExpression>

#include <utility>

namespace ff {

namespace {

QString nameKey(QString name)
{
    name = name.toLower();
    while (name.endsWith(QLatin1Char('.')))
        name.chop(1);
    return name;
}

// The words that a date form writes as they stand ('de' in "d 'de' MMMM 'de' yyyy").
QStringList literalWords(const QString &format)
{
    QStringList words;
    const QStringList quoted = format.split(QLatin1Char('\''));
    for (qsizetype i = 1; i < quoted.size(); i += 2) {
        for (const QString &word : quoted[i].split(QRegularExpression(QStringLiteral("\\W+")), Qt::SkipEmptyParts))
            words << word.toLower();
    }
    return words;
}

bool isSeparator(QChar c)
{
    return c == QLatin1Char('/') || c == QLatin1Char('-') || c == QLatin1Char('.') || c == QLatin1Char(',') || c.isSpace();
}

} // namespace

DateReader::DateReader(const QLocale &given)
{
    const QLocale locale = WorkingLocale(given);
    const QLocale english(QLocale::English, QLocale::UnitedStates);

    // The order of the parts as the locale's short date writes them.
    const QString shortFormat = locale.dateFormat(QLocale::ShortFormat);
    const qsizetype d = shortFormat.indexOf(QLatin1Char('d'));
    const qsizetype m = shortFormat.indexOf(QLatin1Char('M'));
    const qsizetype y = shortFormat.indexOf(QLatin1Char('y'));
    if (y >= 0 && (y < d || d < 0) && (y < m || m < 0))
        order_ = Order::YearMonthDay;
    else if (d >= 0 && m >= 0 && d < m)
        order_ = Order::DayMonthYear;
    else
        order_ = Order::MonthDayYear;

    for (const QLocale *l : {&locale, &english}) {
        for (int month = 1; month <= 12; ++month) {
            for (QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat}) {
                months_.append({nameKey(l->monthName(month, type)), month});
                months_.append({nameKey(l->standaloneMonthName(month, type)), month});
            }
        }
        for (int day = 1; day <= 7; ++day) {
            for (QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat}) {
                noise_ << nameKey(l->dayName(day, type)) << nameKey(l->standaloneDayName(day, type));
            }
        }
        amTexts_ << l->amText().toLower();
        pmTexts_ << l->pmText().toLower();
    }
    noise_ << literalWords(locale.dateFormat(QLocale::LongFormat)) << literalWords(shortFormat);
    noise_.removeAll(QString());
    noise_.removeDuplicates();
    amTexts_ << QStringLiteral("a.m.") << QStringLiteral("am") << QStringLiteral("a");
    pmTexts_ << QStringLiteral("p.m.") << QStringLiteral("pm") << QStringLiteral("p");
    amTexts_.removeAll(QString());
    pmTexts_.removeAll(QString());
}

std::optional<double> DateReader::read(const QString &input) const
{
    const QString text = input.simplified();
    if (text.isEmpty())
        return std::nullopt;
    if (const std::optional<double> number = ParseNumericText(text)) {
        if (IsDateNumber(*number))
            return *number;
        return std::nullopt;
    }
    return readTime(text);
}

// Splits off a time of day at the end of the text and reads what stands before it as the date.
std::optional<double> DateReader::readTime(const QString &text) const
{
    QString rest = text;
    int half = -1; // 0 morning, 1 afternoon, -1 a 24-hour clock
    const QString lower = text.toLower();
    for (int pm = 0; pm < 2 && half < 0; ++pm) {
        for (const QString &mark : pm ? pmTexts_ : amTexts_) {
            if (!lower.endsWith(mark) || lower.size() == mark.size())
                continue;
            const QChar before = lower.at(lower.size() - mark.size() - 1);
            if (!before.isDigit() && !before.isSpace())
                continue;
            rest = text.left(text.size() - mark.size()).trimmed();
            half = pm;
            break;
        }
    }
    static const QRegularExpression clock(QStringLiteral(
        "^(?:(.*?)(?:\\s+|(?<=\\d)T))?(\\d{1,2})(?::(\\d{1,2}))?(?::(\\d{1,2})(?:[.,]\\d+)?)?$"));
    const QRegularExpressionMatch m = clock.match(rest);
    const bool hasTime = m.hasMatch() && (half >= 0 || m.capturedLength(3) > 0);
    if (!hasTime)
        return half >= 0 ? std::nullopt : readDatePart(text);

    int hour = m.captured(2).toInt();
    const int minute = m.captured(3).toInt();
    const int second = m.captured(4).toInt();
    if (half >= 0) {
        if (hour > 12)
            return std::nullopt;
        hour = hour % 12 + 12 * half;
    }
    if (hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const double fraction = (hour * 3600 + minute * 60 + second) / 86400.0;
    const QString datePart = m.captured(1).trimmed();
    if (datePart.isEmpty())
        return fraction;
    const std::optional<double> day = readDatePart(datePart);
    if (!day)
        return std::nullopt;
    return *day < 0 ? *day - fraction : *day + fraction;
}

QList<DateReader::Token> DateReader::tokens(const QString &text)
{
    QList<Token> out;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype start = i;
        const QChar c = text.at(i);
        if (c.isDigit()) {
            while (i < text.size() && text.at(i).isDigit())
                ++i;
            out.append({Token::Number, text.mid(start, i - start)});
        } else if (c.isLetter()) {
            while (i < text.size() && text.at(i).isLetter())
                ++i;
            out.append({Token::Word, text.mid(start, i - start).toLower()});
            if (i < text.size() && text.at(i) == QLatin1Char('.'))
                ++i; // "Jan." and "Do." are shortened names
        } else if (isSeparator(c)) {
            QString marks;
            while (i < text.size() && isSeparator(text.at(i))) {
                if (!text.at(i).isSpace())
                    marks += text.at(i);
                ++i;
            }
            out.append({Token::Separator, marks});
        } else {
            return {}; // a character that no date form writes
        }
    }
    return out;
}

std::optional<int> DateReader::monthOf(const QString &word) const
{
    for (const Name &name : months_) {
        if (name.text == word)
            return name.value;
    }
    // A longer or shorter cut of a month's name ("Sept", "Janu"), unless it is a day's name.
    if (word.size() < 3 || noise_.contains(word))
        return std::nullopt;
    for (const Name &name : months_) {
        if (name.text.startsWith(word))
            return name.value;
    }
    return std::nullopt;
}

bool DateReader::isNoise(const QString &word) const
{
    if (noise_.contains(word))
        return true;
    if (word.size() < 3)
        return false;
    for (const QString &name : noise_) {
        if (name.startsWith(word))
            return true;
    }
    return false;
}

std::optional<int> DateReader::year(const QString &digits)
{
    const int value = digits.toInt();
    if (digits.size() <= 2)
        return value < 30 ? 2000 + value : 1900 + value;
    if (digits.size() > 4 || value < 100)
        return std::nullopt;
    return value;
}

std::optional<double> DateReader::dayNumber(int year, int month, int day)
{
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;
    return NumberFromDate(date);
}

std::optional<double> DateReader::readDatePart(const QString &text) const
{
    const QList<Token> parts = tokens(text);
    if (parts.isEmpty() || parts.first().kind == Token::Separator)
        return std::nullopt; // no date begins with a sign or a mark
    QStringList numbers;
    QStringList marks; // what stands between the numbers of a numeric date
    std::optional<int> month;
    QString pendingMarks;
    for (const Token &t : parts) {
        switch (t.kind) {
        case Token::Number:
            if (!numbers.isEmpty())
                marks << pendingMarks;
            numbers << t.text;
            pendingMarks.clear();
            break;
        case Token::Separator: pendingMarks += t.text; break;
        case Token::Word: {
            const std::optional<int> named = monthOf(t.text);
            if (!named && !isNoise(t.text))
                return std::nullopt; // a word that names no month or day
            if (named && month)
                return std::nullopt;
            if (named)
                month = named;
            pendingMarks.clear();
            break;
        }
        }
    }
    if (numbers.size() != (month ? 2 : 3))
        return std::nullopt;
    for (const QString &n : numbers) {
        if (n.size() > 4)
            return std::nullopt;
    }

    if (month) {
        // "2 Jan 2003", "Jan 2, 2003", "2003 Jan 2": the day first unless the year is written in full.
        const bool yearFirst = numbers[0].size() >= 3;
        const QString &dayText = yearFirst ? numbers[1] : numbers[0];
        const std::optional<int> y = year(yearFirst ? numbers[0] : numbers[1]);
        if (dayText.size() > 2 || !y)
            return std::nullopt;
        return dayNumber(*y, *month, dayText.toInt());
    }

    // A numeric date: one kind of mark between the parts, and at most a point after the last.
    if (marks[0].size() != 1 || marks[0] != marks[1] || !QStringLiteral("/-.").contains(marks[0]))
        return std::nullopt;
    if (!pendingMarks.isEmpty() && pendingMarks != QLatin1String("."))
        return std::nullopt;
    Order order = numbers[0].size() >= 3 ? Order::YearMonthDay : order_;
    QString dayText, monthText, yearText;
    switch (order) {
    case Order::MonthDayYear: monthText = numbers[0], dayText = numbers[1], yearText = numbers[2]; break;
    case Order::DayMonthYear: dayText = numbers[0], monthText = numbers[1], yearText = numbers[2]; break;
    case Order::YearMonthDay: yearText = numbers[0], monthText = numbers[1], dayText = numbers[2]; break;
    }
    const std::optional<int> y = year(yearText);
    if (dayText.size() > 2 || monthText.size() > 2 || !y)
        return std::nullopt;
    return dayNumber(*y, monthText.toInt(), dayText.toInt());
}

std::optional<double> ReadDate(const QString &text, const QLocale &locale)
{
    // Building a reader gathers the locale's names; keep one per thread for the locale in use.
    thread_local std::optional<std::pair<QLocale, DateReader>> cached;
    if (!cached || cached->first != locale)
        cached.emplace(locale, DateReader(locale));
    return cached->second.read(text);
}

} // namespace ff
