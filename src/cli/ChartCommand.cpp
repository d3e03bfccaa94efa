#include "cli/ChartCommand.h"

#include "charts/ChartModel.h"
#include "charts/ChartPainter.h"
#include "formula/FieldFormat.h"
#include "search/SearchEngine.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QGuiApplication>
#include <QImageWriter>

namespace ff::cli {

namespace {

std::optional<charts::ChartKind> chartKindOf(SearchKind kind)
{
    switch (kind) {
    case SearchKind::Field: return charts::ChartKind::Field;
    case SearchKind::Combo: return charts::ChartKind::Combo;
    case SearchKind::Check: return charts::ChartKind::Check;
    default: return std::nullopt;
    }
}

QString textOf(const charts::ChartModel &model, const QLocale &locale)
{
    QString text;
    text += QStringLiteral("chart: %1\n").arg(model.title);
    if (model.numeric) {
        const charts::PieStatsData &s = model.stats;
        text += QStringLiteral("count: %1\n").arg(s.ValueCount);
        if (s.ValueCount > 0) {
            text += QStringLiteral("sum: %1\n").arg(FormatFixed(double(s.Total), 4, locale, false));
            text += QStringLiteral("average: %1\n").arg(FormatFixed(s.Average, 4, locale, false));
            text += QStringLiteral("lowest: %1\n").arg(FormatFixed(charts::fixedToDouble(s.Lowest), 4, locale, false));
            text += QStringLiteral("highest: %1\n").arg(FormatFixed(charts::fixedToDouble(s.Highest), 4, locale, false));
            text += QStringLiteral("step: %1\n").arg(FormatFixed(charts::fixedToDouble(s.Step), 4, locale, false));
            text += QStringLiteral("axis top: %1\n").arg(s.AxisTop);
            text += QStringLiteral("ranges:\n");
            for (const charts::StatsRow &row : model.rows)
                text += row.range + QLatin1Char('\t') + row.count + QLatin1Char('\t') + row.share + QLatin1Char('\n');
        }
    }
    text += QStringLiteral("groups: %1 of %2 values\n").arg(model.groups.groups.size()).arg(model.groups.total);
    for (const charts::PieGroup &g : model.groups.groups)
        text += g.label + QLatin1Char('\t') + QString::number(g.count) + QLatin1Char('\t')
                + charts::ShareText(g.count, model.groups.total, locale) + QLatin1Char('\n');
    return text;
}

QJsonObject jsonOf(const charts::ChartModel &model, const QLocale &locale)
{
    QJsonObject o{{QStringLiteral("chart"), model.title}, {QStringLiteral("values"), double(model.groups.total)}};
    if (model.numeric && model.stats.ValueCount > 0) {
        const charts::PieStatsData &s = model.stats;
        QJsonArray ranges;
        for (size_t k = 0; k < model.rows.size(); ++k)
            ranges.append(QJsonObject{{QStringLiteral("range"), model.rows[k].range.trimmed()},
                                      {QStringLiteral("upTo"), charts::fixedToDouble(s.Bounds[k + 1])},
                                      {QStringLiteral("count"), double(s.RangeCounts[k])}});
        o.insert(QStringLiteral("statistics"),
                 QJsonObject{{QStringLiteral("count"), double(s.ValueCount)}, {QStringLiteral("sum"), double(s.Total)},
                             {QStringLiteral("average"), s.Average}, {QStringLiteral("lowest"), charts::fixedToDouble(s.Lowest)},
                             {QStringLiteral("highest"), charts::fixedToDouble(s.Highest)},
                             {QStringLiteral("step"), charts::fixedToDouble(s.Step)}, {QStringLiteral("axisTop"), s.AxisTop},
                             {QStringLiteral("ranges"), ranges}});
    }
    QJsonArray groups;
    for (const charts::PieGroup &g : model.groups.groups)
        groups.append(QJsonObject{{QStringLiteral("label"), g.label}, {QStringLiteral("count"), double(g.count)},
                                  {QStringLiteral("share"), charts::ShareText(g.count, model.groups.total, locale)},
                                  {QStringLiteral("others"), g.others}});
    o.insert(QStringLiteral("groups"), groups);
    return o;
}

} // namespace

ChartCommand::ChartCommand()
    : DatabaseCommand(QStringLiteral("chart"), QStringLiteral("TAG"),
                      QStringLiteral("The statistics and groups of one element over all records, as the chart window\n"
                                     "shows them. TAG: a name from the tags, or F1, C1, K0.")),
      searchOption_(QStringLiteral("search"), QStringLiteral("Charts the records a select or find line lists."),
                    QStringLiteral("LINE")),
      pngOption_(QStringLiteral("png"), QStringLiteral("Draws the chart into a PNG picture."), QStringLiteral("OUT")),
      pieOption_(QStringLiteral("pie"), QStringLiteral("The picture is the pie.")),
      histogramOption_(QStringLiteral("histogram"), QStringLiteral("The picture is the histogram (number fields)."))
{
    addOption(searchOption_);
    addOption(pngOption_);
    addOption(pieOption_);
    addOption(histogramOption_);
}

std::optional<CliDatabase::Access> ChartCommand::access(const QStringList &arguments, const QCommandLineParser &) const
{
    if (arguments.size() != 1)
        return std::nullopt;
    return CliDatabase::Access::Read;
}

int ChartCommand::executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                            CommandIo &io)
{
    if (parser.isSet(pieOption_) && parser.isSet(histogramOption_))
        return usageError(io, QStringLiteral("--pie and --histogram exclude each other"));
    const QString png = parser.value(pngOption_);
    if (parser.isSet(pngOption_) && (QFileInfo(png).fileName().isEmpty() || QFileInfo(png).isDir()))
        return usageError(io, QStringLiteral("--png must name a picture file, not \"%1\"").arg(png));
    if (!png.isEmpty() && !qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        io.err << name() << ": drawing needs the graphical application\n";
        return 1;
    }
    Database &db = database.db();
    RecordStore &store = db.store();
    SearchEngine engine(store, db.DecimalSeparator);
    const SearchField field = engine.names().byTag(arguments.first());
    const std::optional<charts::ChartKind> kind = chartKindOf(field.kind);
    if (!field.valid() || !kind) {
        io.err << name() << ": no chartable element " << arguments.first() << " (a field, combo or check box)\n";
        return 1;
    }
    if (parser.isSet(searchOption_)) {
        const CompiledQuery query = engine.compile(parser.value(searchOption_), false, engine.names().describe(SearchKind::Field, 1));
        if (!query.unmatchedNames.isEmpty() || (query.command != CommandKind::Select && query.command != CommandKind::Find)
            || !query.runnable()) {
            io.err << name() << ": the search line must select or find records by stored elements\n";
            return 1;
        }
        SearchOptions options;
        options.hitCap = INT32_MAX;
        options.forward = true;
        const SearchResult result = engine.run(query, options);
        QVector<int> list{0};
        list += result.hits;
        store.setBrowseOrder(BrowseOrder::ResultList, list);
    }
    const QLocale locale;
    const charts::ChartModel model = charts::BuildChart(store, *kind, field.index, locale);

    if (jsonWanted(parser))
        writeJson(io.out, QJsonDocument(jsonOf(model, locale)));
    else
        writeUtf8(io.out, textOf(model, locale).toUtf8());


    if (!png.isEmpty()) {
        const bool histogram = model.numeric && !parser.isSet(pieOption_);
        if (parser.isSet(histogramOption_) && !model.numeric) {
            io.err << name() << ": " << model.title << " is no number field: it has no histogram\n";
            return 1;
        }
        if (model.groups.total == 0) {
            io.err << name() << ": no records: nothing to draw\n";
            return 1;
        }
        const QImage image = histogram ? charts::HistogramImage(model.title, model.stats, model.header, locale)
                                       : charts::PieImage(model.title, model.groups, true, locale);
        QImageWriter writer(png, "png");
        if (!writer.write(image)) {
            io.err << name() << ": " << png << " cannot be written: " << writer.errorString() << "\n";
            return 1;
        }
    }
    return 0;
}

} // namespace ff::cli
