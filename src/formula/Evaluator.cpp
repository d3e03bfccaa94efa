#include "formula/Evaluator.h"

#include "formula/NumberText.h"

#include <cmath>

namespace ff {

namespace {

bool isNumberChar(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= '0' && u <= '9') || u == '.' || u == '-';
}

char16_t upper(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') ? static_cast<char16_t>(u - 32) : u;
}

bool isBinary(char16_t u) { return u == '+' || u == '~' || u == '*' || u == '/' || u == '^' || u == 'M'; }
bool isUnaryAtoT(char16_t u)
{
    return u == 'A' || u == 'B' || u == 'C' || u == 'E' || u == 'L' || u == 'S' || u == 'T';
}
bool isRounding(char16_t u) { return u == 'R' || u == 'O' || u == 'U' || u == 'N' || u == 'D'; }

// Dates run from 1 January 100 to 31 December 9999 as day numbers.
constexpr double kFirstDate = -657434.0;
constexpr double kLastDate = 2958465.0;

// Hours times 60 plus minutes of the time of day of a date number; no value outside the dates.
std::optional<double> minutesOfDay(double date)
{
    if (!(date > kFirstDate - 1.0 && date < kLastDate + 1.0))
        return std::nullopt;
    // A negative date counts its time of day forwards too: -1.25 is 29 December 1899, 06:00.
    const double fraction = std::fabs(date) - std::floor(std::fabs(date));
    long long seconds = std::llround(fraction * 86400.0);
    if (seconds >= 86400)
        seconds = 0;
    return static_cast<double>(seconds / 3600 * 60 + (seconds % 3600) / 60);
}

// The running state of one scan: accumulator, number text and pending operator.
struct Scanner {
    double accumulator = 0.0;
    QString numberText;
    char16_t pending = 0;

    void reset()
    {
        accumulator = 0.0;
        numberText.clear();
        pending = 0;
    }

    // Applies the pending operator with the number text as its operand. A failing operation leaves
    // the accumulator as it was; the number text is emptied all the same.
    void apply()
    {
        if (numberText.isEmpty())
            numberText = QStringLiteral("0");
        const double acc = accumulator;
        std::optional<double> result;
        auto operand = [this] { return Val(numberText); };
        switch (pending) {
        case 0: result = operand(); break;
        case '+': result = acc + operand(); break;
        case '~': result = acc - operand(); break;
        case '*': result = acc * operand(); break;
        case '/': {
            const double b = operand();
            if (acc == 0.0)
                result = acc;
            else if (b != 0.0)
                result = acc / b;
            break;
        }
        case '^': result = std::pow(acc, operand()); break;
        case 'M': {
            const double a = RoundHalfEven(acc, 0);
            const double b = RoundHalfEven(operand(), 0);
            if (b != 0.0 && std::isfinite(a) && std::isfinite(b))
                result = std::fmod(a, b);
            break;
        }
        case 'A': result = std::fabs(acc); break;
        case 'B': result = std::atan(acc); break;
        case 'C': result = std::cos(acc); break;
        case 'E': result = std::exp(acc); break;
        case 'L':
            if (acc > 0)
                result = std::log(acc);
            break;
        case 'S':
            if (acc >= 0)
                result = std::sqrt(acc);
            break;
        case 'T': result = std::tan(acc); break;
        case 'R': result = RoundHalfEven(acc, 0); break;
        case 'O': result = RoundHalfEven(acc, 1); break;
        case 'U': result = RoundHalfEven(acc, 2); break;
        case 'N': result = RoundHalfEven(acc, 3); break;
        case 'D': result = RoundHalfEven(acc, 4); break;
        case 'X': result = minutesOfDay(acc); break;
        default: break;
        }
        if (result && std::isfinite(*result))
            accumulator = *result == 0.0 ? 0.0 : *result;
        numberText.clear();
    }

    // One character of a run. `c` is the character of the run; `atIndex` is the character at the
    // same index of the whole expression, which is where the rounding letters are looked for.
    void step(QChar c, QChar atIndex)
    {
        const char16_t u = upper(c);
        if (isNumberChar(c)) {
            numberText.append(c);
        } else if (isBinary(u) || isUnaryAtoT(u)) {
            apply();
            pending = u;
        } else if (isRounding(upper(atIndex))) {
            apply();
            pending = upper(atIndex);
        } else if (u == 'X') {
            apply();
            pending = u;
        } else {
            pending = 0;
        }
    }
};

} // namespace

std::optional<double> EvaluateExpression(QString &expression, const QString &decimalSeparator)
{
    Scanner scan;
    const int bound = expression.size(); // fixed for the whole bracket pass
    int start = 0;
    for (int i = 1; i <= bound; ++i) {
        if (i > expression.size())
            continue;
        const QChar c = expression.at(i - 1);
        if (c == QLatin1Char('('))
            start = i + 1;
        if (c != QLatin1Char(')'))
            continue;
        if (start == 0)
            return std::nullopt; // a ")" with no "(": the call is abandoned
        // A stale start never lies behind the ")": everything before the first ")" is unchanged
        // by a replacement. Should it ever, stop rather than loop.
        if (start > i)
            return std::nullopt;
        // Between the stored start and the ")": with a stale start this need not be a bracket.
        const QString contents = expression.mid(start - 1, i - start);
        for (int k = 1; k <= contents.size(); ++k) {
            const QChar atIndex = k <= expression.size() ? expression.at(k - 1) : QChar();
            scan.step(contents.at(k - 1), atIndex);
        }
        scan.apply();
        const QString whole = expression.mid(start - 2, i - start + 2);
        QString value = NumberToText(scan.accumulator, decimalSeparator);
        CleanNumber(value, decimalSeparator);
        expression.replace(whole, value, Qt::CaseInsensitive);
        scan.reset();
        i = 1; // the walk goes on at the second character
    }
    for (int k = 1; k <= expression.size(); ++k)
        scan.step(expression.at(k - 1), expression.at(k - 1));
    scan.apply();
    return scan.accumulator;
}

QString EvaluateToText(QString &expression, const QString &decimalSeparator)
{
    const std::optional<double> value = EvaluateExpression(expression, decimalSeparator);
    if (!value)
        return QString();
    QString text = NumberToText(*value, decimalSeparator);
    return CleanNumber(text, decimalSeparator);
}

} // namespace ff
