#include "search/SearchParser.h"

#include "core/Scramble.h"
#include "formula/DateNumber.h"
#include "formula/DateReader.h"
#include "formula/NumberText.h"
#include "search/FieldReader.h"

#include <QStringList>
#include <cmath>
#include <cstring>

namespace ff {

bool CompiledQuery::runnable() const
{
    if (command == CommandKind::Find)
        return !terms.isEmpty();
    return !conditions.isEmpty();
}

SearchParser::SearchParser(const SearchNames &names, QChar decimalSeparator, QLocale locale)
    : names_(names), codePage_(names.design().FontCharset), fold_(codePage_), separator_(decimalSeparator),
      locale_(std::move(locale))
{
}

bool SearchParser::IsCommand(const QString &line)
{
    const QString lower = line.trimmed().toLower();
    if (lower.startsWith(QLatin1String("replace ")) || lower.startsWith(QLatin1String("select ")))
        return lower.indexOf(QLatin1String(" where ")) >= 8; // position 9 or later, counted from 1
    return lower.startsWith(QLatin1String("sum ")) || lower.startsWith(QLatin1String("count "));
}

QString SearchParser::Normalise(const QString &line)
{
    QString s = line;
    bool quoted = false;
    for (QChar &c : s) {
        if (c == QLatin1Char('\''))
            quoted = !quoted;
        else if (quoted && c == QLatin1Char(' '))
            c = QLatin1Char('~');
    }
    s.replace(QLatin1String("   "), QLatin1String(" "));
    s.replace(QLatin1String("  "), QLatin1String(" "));
    s.remove(QLatin1Char('\''));
    return s;
}

QString SearchParser::DigitsOnly(const QString &text, const QString &decimalSeparator)
{
    if (text.trimmed().isEmpty())
        return text;
    QString out;
    for (QChar c : text)
        if ((c >= QLatin1Char('0') && c <= QLatin1Char('9')) || decimalSeparator.contains(c))
            out.append(c);
    return CleanNumber(out, decimalSeparator);
}

QString SearchParser::tokenText(QString token)
{
    token.replace(QLatin1Char('~'), QLatin1Char(' '));
    token.remove(QLatin1Char('"'));
    return token;
}

int64_t SearchParser::numberFixed(const QString &value) const
{
    return FieldReader::toFixed(Val(CleanNumberCopy(value, separator_)));
}

int64_t SearchParser::dateFixed(const QString &value) const
{
    // A value that is no date leaves the comparison value at 0.
    const std::optional<double> d = ReadDate(value.trimmed(), locale_);
    return d ? FieldReader::toFixed(*d) : 0;
}

int64_t SearchParser::timeFixed(const QString &value, int format, bool pm) const
{
    QString digits = DigitsOnly(value, separator_);
    digits.remove(QLatin1Char('.'));
    int h = 0, m = 0, s = 0;
    if (format == 12) {
        digits = (QLatin1String("000000") + digits).right(6);
        h = digits.mid(0, 2).toInt();
        m = digits.mid(2, 2).toInt();
        s = digits.mid(4, 2).toInt();
    } else {
        digits = (QLatin1String("0000") + digits).right(4);
        h = digits.mid(0, 2).toInt();
        m = digits.mid(2, 2).toInt();
        if (pm && h < 12)
            h += 12;
        else if (!pm && h == 12)
            h = 0;
    }
    return FieldReader::toFixed((h * 3600 + m * 60 + s) / 86400.0);
}

static bool readsAsDate(const SearchField &f)
{
    if (f.kind == SearchKind::Field)
        return f.format >= 6 && f.format <= 12;
    return f.value == ValueKind::DateText || f.value == ValueKind::TimeText;
}

void SearchParser::addCondition(CompiledQuery &q, QString token) const
{
    token = tokenText(token);
    static const char *const ops[] = {"<>", "<=", ">=", "<", ">", "="};
    static const ConditionOp codes[] = {ConditionOp::NotEqual, ConditionOp::LessEqual, ConditionOp::GreaterEqual, ConditionOp::Less, ConditionOp::Greater, ConditionOp::Equal};
    ConditionOp op = ConditionOp::Name;
    QString name = token, value;
    for (int k = 0; k < 6; ++k) {
        const qsizetype at = token.indexOf(QLatin1String(ops[k]));
        if (at >= 0) {
            op = codes[k];
            name = token.left(at);
            value = token.mid(at + qsizetype(std::strlen(ops[k])));
            break;
        }
    }
    ConditionRow row;
    row.field = names_.lookup(name.toLower());
    if (!row.field.valid()) {
        // An unknown name adds no row. "where" in a sum or count line is such a word on purpose.
        if (name.toLower() != QLatin1String("where"))
            q.unmatchedNames.append(name);
        return;
    }
    row.op = op;
    if (op != ConditionOp::Name) {
        if (row.field.value == ValueKind::Text) {
            row.text = codePage_.encode(value);
            if (!q.matchCase)
                row.text = fold_.fold(row.text);
            row.pattern = SearchPattern(row.text);
            row.fixed = numberFixed(value);
        } else if (readsAsDate(row.field)) {
            row.fixed = dateFixed(value);
        } else {
            row.fixed = numberFixed(value);
        }
    }
    q.conditions.append(row);
}

QByteArray SearchParser::storedBytes(const SearchField &f, const QString &value) const
{
    QByteArray b(f.length, ' ');
    auto text = [&] {
        const QByteArray bytes = codePage_.encode(value).left(f.length);
        std::memcpy(b.data(), bytes.constData(), size_t(bytes.size()));
    };
    if (f.kind == SearchKind::Check) {
        const double v = Val(CleanNumberCopy(value, separator_));
        b[0] = static_cast<char>(v >= 0 && v <= 9 ? '0' + int(v) : '1');
    } else if (f.kind != SearchKind::Field) {
        text();
    } else if (f.value == ValueKind::Float) {
        const double v = Val(CleanNumberCopy(value, separator_));
        std::memcpy(b.data(), &v, 8);
    } else if (f.value == ValueKind::Currency) {
        const int64_t v = (f.format >= 6) ? dateFixed(value) : numberFixed(value);
        std::memcpy(b.data(), &v, 8);
    } else if (f.value == ValueKind::Whole) {
        double v = std::nearbyint(Val(CleanNumberCopy(value, separator_)));
        v = std::max<double>(INT32_MIN, std::min<double>(INT32_MAX, v));
        const auto w = static_cast<int32_t>(v);
        std::memcpy(b.data(), &w, 4);
    } else {
        text();
    }
    if (names_.design().ScrambleRecords == 1)
        ScrambleBytes(b.data(), b.size());
    return b;
}

void SearchParser::addReplacement(CompiledQuery &q, QString token) const
{
    token = tokenText(token);
    const qsizetype at = token.indexOf(QLatin1Char('='));
    if (at < 0)
        return;
    ReplacementRow row;
    row.field = names_.lookup(token.left(at).toLower());
    if (!row.field.valid()) {
        q.unmatchedNames.append(token.left(at));
        return;
    }
    row.bytes = storedBytes(row.field, token.mid(at + 1));
    q.replacements.append(row);
}

void SearchParser::addColumns(CompiledQuery &q, const QString &token) const
{
    const QVector<SearchField> fields =
        token == QLatin1String("*") ? names_.defaultColumns() : names_.matching(tokenText(token).toLower());
    if (fields.isEmpty())
        q.unmatchedNames.append(tokenText(token));
    for (const SearchField &f : fields) {
        if (q.columnCount >= kColumnSlots)
            return;
        q.columns[size_t(q.columnCount++)] = f;
    }
}

static QStringList blankTokens(const QString &piece) { return piece.split(QLatin1Char(' '), Qt::SkipEmptyParts); }

void SearchParser::parseCommand(CompiledQuery &q, QString line) const
{
    const QString lower = line.toLower();
    if (lower.startsWith(QLatin1String("select ")))
        q.command = CommandKind::Select;
    else if (lower.startsWith(QLatin1String("replace ")))
        q.command = CommandKind::Replace;
    else if (lower.startsWith(QLatin1String("sum ")))
        q.command = CommandKind::Sum;
    else
        q.command = CommandKind::Count;

    QString n = Normalise(line);
    if (!q.matchCase)
        n = n.toLower();
    const qsizetype where = n.toLower().indexOf(QLatin1String(" where "));
    if (where >= 0)
        n.replace(where, 7, QLatin1String(" where "));

    auto split = [&](int keyword, QString &left, QString &right) {
        if (where >= keyword) {
            left = n.mid(keyword, where - keyword);
            right = n.mid(where + 7);
        } else {
            left = n.mid(keyword);
        }
    };
    QString left, right;
    switch (q.command) {
    case CommandKind::Select:
        split(7, left, right);
        for (const QString &t : blankTokens(left))
            addColumns(q, t);
        for (const QString &t : blankTokens(right))
            addCondition(q, t);
        break;
    case CommandKind::Replace:
        split(8, left, right);
        for (const QString &t : blankTokens(left))
            addReplacement(q, t);
        for (const QString &t : blankTokens(right))
            addCondition(q, t);
        break;
    case CommandKind::Sum:
        // "where" is a token like any other here: it names no field.
        for (const QString &t : blankTokens(n.mid(4)))
            addCondition(q, t);
        break;
    case CommandKind::Count:
        for (const QString &t : blankTokens(n.mid(6)))
            addCondition(q, t);
        break;
    case CommandKind::Find:
        break;
    }
}

void SearchParser::parseFind(CompiledQuery &q, QString line, const SearchField &focus) const
{
    q.command = CommandKind::Find;
    if (!q.matchCase)
        line = line.toLower();
    if (line.isEmpty())
        return;
    const bool pm = line.contains(QLatin1Char('p'), Qt::CaseInsensitive);
    if (line.startsWith(QLatin1Char('!'))) {
        q.wholeRecord = true;
        line = line.mid(1);
    }
    QStringList terms{line};
    if (line.indexOf(QLatin1Char('+'), 1) >= 1) {
        terms = line.split(QLatin1Char('+'));
        q.allTerms = true;
    }
    if (line.indexOf(QLatin1String(" or "), 1) >= 1) {
        terms = line.split(QLatin1String(" or "));
        q.allTerms = false;
    }
    q.findField = focus;
    q.comparison = !q.wholeRecord && focus.valid() && focus.value != ValueKind::Text;
    for (const QString &term : terms) {
        FindTerm t;
        if (!q.comparison) {
            t.text = codePage_.encode(term);
            if (!q.matchCase)
                t.text = fold_.fold(t.text);
            q.terms.append(t);
            continue;
        }
        auto convert = [&](const QString &v) -> int64_t {
            const int format = focus.kind == SearchKind::Check ? 0 : focus.format;
            if (format >= 6 && format <= 9)
                return dateFixed(v);
            if (format >= 10 && format <= 12)
                return timeFixed(v, format, pm);
            return FieldReader::toFixed(Val(DigitsOnly(v, separator_)));
        };
        QString v = term;
        if (v.startsWith(QLatin1String("<>"))) {
            t.op = FindOp::NotEqual;
            v = v.mid(2);
        } else if (v.contains(QLatin1String("><"))) {
            t.op = FindOp::Between;
            const qsizetype at = v.indexOf(QLatin1String("><"));
            t.low = convert(v.left(at));
            t.high = convert(v.mid(at + 2));
            q.terms.append(t);
            continue;
        } else if (v.startsWith(QLatin1String("<="))) {
            t.op = FindOp::LessEqual;
            v = v.mid(2);
        } else if (v.startsWith(QLatin1String(">="))) {
            t.op = FindOp::GreaterEqual;
            v = v.mid(2);
        } else if (v.startsWith(QLatin1Char('>'))) {
            t.op = FindOp::Greater;
            v = v.mid(1);
        } else if (v.startsWith(QLatin1Char('<'))) {
            t.op = FindOp::Less;
            v = v.mid(1);
        }
        t.low = t.high = convert(v);
        q.terms.append(t);
    }
}

CompiledQuery SearchParser::parse(const QString &line, bool matchCase, const SearchField &focus) const
{
    CompiledQuery q;
    q.line = line;
    q.matchCase = matchCase;
    if (IsCommand(line))
        parseCommand(q, line.trimmed());
    else
        parseFind(q, line, focus);
    return q;
}

} // namespace ff
