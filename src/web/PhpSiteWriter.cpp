#include "web/PhpSiteWriter.h"

#include "web/HtmlText.h"

#include <QStringList>

namespace ff::web {

namespace {

enum class Family { Text, Combo, Note, Check };

template <typename Visit>
void postedFields(const Design &d, Visit &&visit)
{
    const auto posted = [](int page) { return page >= 0 && page < kPageLimit; };
    for (size_t i = 1; i < d.Fields.size(); ++i)
        if (posted(d.Fields[i].FieldPage))
            visit(Family::Text, d.Fields[i].Tag);
    for (size_t i = 1; i < d.Combos.size(); ++i)
        if (posted(d.Combos[i].ComboPage))
            visit(Family::Combo, d.Combos[i].Tag);
    for (size_t i = 1; i < d.Notes.size(); ++i)
        if (posted(d.Notes[i].NotePage))
            visit(Family::Note, d.Notes[i].Tag);
    for (const CheckElement &c : d.Checks)
        if (posted(c.CheckPage))
            visit(Family::Check, c.Tag);
}

// A text inside a PHP string in single quotes.
QString phpSingleQuoted(const QString &text)
{
    QString out = text;
    out.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    out.replace(QLatin1Char('\''), QLatin1String("\\'"));
    return out;
}

} // namespace

QString PhpSiteWriter::phpDoubleQuoted(const QString &text)
{
    QString out = text;
    out.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    out.replace(QLatin1Char('"'), QLatin1String("\\\""));
    out.replace(QLatin1Char('$'), QLatin1String("\\$"));
    return out;
}

QString PhpSiteWriter::postedKey(const QString &name)
{
    QString key = name;
    while (key.startsWith(QLatin1Char(' ')))
        key.remove(0, 1);
    for (QChar &c : key)
        if (c == QLatin1Char(' ') || c == QLatin1Char('.') || c == QLatin1Char('['))
            c = QLatin1Char('_');
    return key;
}

QString PhpSiteWriter::headRow(const Design &design)
{
    QStringList names;
    postedFields(design, [&](Family, const QString &tag) { names << tag; });
    return names.join(design.FieldSeparator);
}

QString PhpSiteWriter::postingScript(const Design &design, const QString &exportName)
{
    const QString d = QLatin1Char('"') + phpDoubleQuoted(design.FieldSeparator) + QLatin1Char('"');
    QStringList pieces;
    postedFields(design, [&](Family family, const QString &tag) {
        const QString value = QStringLiteral("$_POST[\"") + phpDoubleQuoted(postedKey(tag)) + QStringLiteral("\"]");
        const QString doubled = QStringLiteral("str_replace(Chr(34),Chr(34).Chr(34),") + value + QLatin1Char(')');
        switch (family) {
        case Family::Text:
        case Family::Combo: pieces << doubled; break;
        case Family::Note: pieces << QStringLiteral("Chr(34).") + doubled + QStringLiteral(".Chr(34)"); break;
        case Family::Check: pieces << value; break;
        }
    });
    // Each value followed by the delimiter, the last one's delimiter cut.
    const QString expression = pieces.isEmpty() ? QStringLiteral("\"\"") : pieces.join(QLatin1Char('.') + d + QLatin1Char('.'));
    const QString dataFile = phpDoubleQuoted(exportName + QLatin1Char('.') + design.TextExtension);
    const QStringList lines = {
        QStringLiteral("<?php"),
        QStringLiteral("$SubData = ") + expression + QLatin1Char(';'),
        QStringLiteral("$fp = fopen(\"") + dataFile + QStringLiteral("\",\"a\") or die(\"Information file could not be opened\");"),
        QStringLiteral("flock($fp, LOCK_EX);"),
        QStringLiteral("fwrite($fp, $SubData.chr(13).chr(10));"),
        QStringLiteral("flock($fp, LOCK_UN);"),
        QStringLiteral("fclose($fp);"),
    };
    return lines.join(QLatin1String("\r\n\r\n")) + QStringLiteral("\r\n\r\necho \"Information has been posted\";\r\n?>\r\n");
}

QString PhpSiteWriter::pagingScript(const Design &design)
{
    // The words for back and forward stand inside an HTML button inside a PHP string in quotes.
    const QString back = phpSingleQuoted(HtmlText::HtmlEscape(design.UiText[51]));
    const QString forward = phpSingleQuoted(HtmlText::HtmlEscape(design.UiText[52]));
    const QStringList lines = {
        QStringLiteral("<?"),
        QStringLiteral("   $PageNo=$_REQUEST[\"pN\"];"),
        QStringLiteral("   if ($PageNo<1){"),
        QStringLiteral("     $PageNo=1;"),
        QStringLiteral("   }"),
        QStringLiteral("   echo '<form action=\"NextPage.php\" method=\"POST\">';"),
        QStringLiteral("   echo '<div align=\"right\">';"),
        QStringLiteral("   $n=$PageNo-1;"),
        QStringLiteral("   echo '<Button onClick=\"parent.location=\\'NextPage.php?pN='.$n.'\\'\">") + back + QStringLiteral("</Button>';"),
        QStringLiteral("   echo '<input type=\"text\" Style=\"text-align:center; Width:70px;\" name=\"pN\" Value=\"'.$PageNo.'\">';"),
        QStringLiteral("   $n=$PageNo+1;"),
        QStringLiteral("   echo '<Button onClick=\"parent.location=\\'NextPage.php?pN='.$n.'\\'\">") + forward + QStringLiteral("</Button>';"),
        QStringLiteral("   echo '</div>';"),
        QStringLiteral("   echo '</form>';"),
        QStringLiteral("   $filename=$PageNo.\".htm\";"),
        QStringLiteral("   if (is_file($filename)) {"),
        QStringLiteral("    $fp=fopen($filename,\"r\");"),
        QStringLiteral("     while (!feof($fp)) {"),
        QStringLiteral("      echo fgets($fp,1024);"),
        QStringLiteral("     }"),
        QStringLiteral("    fclose($fp);"),
        QStringLiteral("    }"),
        QStringLiteral("?>"),
    };
    return lines.join(QLatin1String("\r\n")) + QStringLiteral("\r\n");
}

} // namespace ff::web
