#include "entry/TagRules.h"

#include <QRegularExpression>

namespace ff {

std::optional<int> TagRules::navigationButton(const QString &tag)
{
    static const char *const tags[] = {"<<<", "<<", "<", ">", ">>", ">>>"};
    for (int i = 0; i < 6; ++i)
        if (tag == QLatin1String(tags[i]))
            return i;
    return std::nullopt;
}

bool TagRules::isEndTag(const QString &tag) { return tag.compare(QLatin1String("END"), Qt::CaseInsensitive) == 0; }

bool TagRules::wantsPaste(const QString &tag) { return tag.contains(QLatin1String("-paste"), Qt::CaseInsensitive); }

TagRules::OpenTarget TagRules::splitProgram(const QString &text)
{
    static const QLatin1String kProgram(".exe ");
    const qsizetype at = text.indexOf(kProgram);
    if (at < 0)
        return {text, QString()};
    return {text.left(at + 4), text.mid(at + kProgram.size())};
}

QStringList TagRules::scriptLines(const QString &script)
{
    static const QRegularExpression breaks(QStringLiteral("\r\n|\n|\r"));
    QStringList lines = script.split(breaks);
    lines.removeIf([](const QString &line) { return line.trimmed().isEmpty(); });
    return lines;
}

bool TagRules::isSearchCommand(const QString &line)
{
    const QString lower = line.trimmed().toLower();
    if (lower.startsWith(QLatin1String("replace ")) || lower.startsWith(QLatin1String("select ")))
        return lower.indexOf(QLatin1String(" where ")) >= 8; // position 9 or later, counted from 1
    return lower.startsWith(QLatin1String("sum ")) || lower.startsWith(QLatin1String("count "));
}

bool TagRules::isIfLine(const QString &line) { return line.startsWith(QLatin1String("IF"), Qt::CaseInsensitive); }

} // namespace ff
