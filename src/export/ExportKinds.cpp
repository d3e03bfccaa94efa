#include "export/ExportKinds.h"

namespace ff {

std::vector<ExportKindItem> BuildExportKindList(const Design &design, const QString &forbiddenExtensions)
{
    std::vector<ExportKindItem> items;
    const auto add = [&items](const QString &pattern, ExportChoice choice) { items.push_back({pattern, choice}); };
    const auto allowed = [&forbiddenExtensions](const QString &extension) {
        return !forbiddenExtensions.contains(extension, Qt::CaseInsensitive);
    };

    add(QStringLiteral("*.") + design.TextExtension, ExportChoice{ExportKind::DelimitedText, -1, true});
    for (int i = 0; i < kTemplateCount; ++i) {
        const QString &extension = design.Templates[size_t(i)].TemplateExtension;
        if (extension.isEmpty())
            continue;
        add(extension, ExportChoice::Template(i, true));
        add(extension + QStringLiteral("'s"), ExportChoice::Template(i, false));
    }
    if (allowed(QStringLiteral(".htm"))) {
        add(QStringLiteral("*.htm"), ExportChoice{ExportKind::HtmlCurrent, -1, true});
        add(QStringLiteral("*.htm's"), ExportChoice{ExportKind::HtmlPages, -1, true});
    }
    // The delimited text stands first in any case; its extension is not offered twice.
    if (!design.DataExtension.isEmpty() && allowed(QLatin1Char('.') + design.DataExtension))
        add(QStringLiteral("*.") + design.DataExtension, ExportChoice{ExportKind::RecordCopy, -1, true});
    if (allowed(QStringLiteral(".php")))
        add(QStringLiteral("*.php"), ExportChoice{ExportKind::PhpSite, -1, true});
    if (allowed(QStringLiteral(".xls")))
        add(QStringLiteral("*.xls"), ExportChoice{ExportKind::Spreadsheet, -1, true});
    if (allowed(QStringLiteral(".rtf")))
        add(QStringLiteral("*.rtf"), ExportChoice{ExportKind::Listing, -1, true});
    if (allowed(QStringLiteral(".pdf's"))) {
        add(QStringLiteral("*.pdf"), ExportChoice{ExportKind::Pdf, -1, true});
        add(QStringLiteral("*.pdf's"), ExportChoice{ExportKind::PdfPerRecord, -1, true});
    }
    return items;
}

QStringList ExportKindPatterns(const std::vector<ExportKindItem> &items)
{
    QStringList patterns;
    for (const ExportKindItem &item : items)
        patterns << item.pattern;
    return patterns;
}

QString CutExportExtension(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? name : name.left(dot);
}

bool IsPlainFileName(const QString &name)
{
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return false;
    for (const QChar c : name)
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c == QLatin1Char(':') || c.unicode() == 0)
            return false;
    return true;
}

QString TemplateFileExtension(const QString &templateExtension)
{
    QString extension = templateExtension;
    extension.remove(QLatin1Char('*'));
    for (const QChar c : extension)
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c == QLatin1Char(':') || c.unicode() == 0)
            return QString();
    return extension;
}

} // namespace ff
