// What the charts draw: the printed pie at its sheet geometry (centre 3675, 3675 twips, radius
// 3500, pieces counter-clockwise from three o'clock) with its colour boxes, and the chart verb of
// the command line over the contacts example: its figures against counts made here from the sample
// records, its pictures, and the arguments it refuses.

#include "charts/ChartPainter.h"
#include "charts/PieSlices.h"
#include "cli/CliRunner.h"
#include "print/ImageTarget.h"
#include "print/Printer.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>
#include <cmath>
#include <map>

using namespace ff;

namespace {

QColor colourAt(const QImage &image, QPointF centre, double radius, double percent)
{
    const double a = percent * 3.6 * M_PI / 180;
    return image.pixelColor(QPoint(int(std::lround(centre.x() + radius / 2 * std::cos(a))),
                                   int(std::lround(centre.y() - radius / 2 * std::sin(a)))));
}

} // namespace

class ChartDrawingTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void printedPieKeepsTheSheetGeometry()
    {
        charts::PieGroups groups;
        groups.groups = {{QStringLiteral("big"), 3, false, 0}, {QStringLiteral("small"), 1, false, 1}};
        groups.total = 4;
        print::ImageTarget target(QSizeF(11906, 16838)); // A4 at 15 twips a pixel
        print::Printer printer(target);
        QVERIFY(charts::PrintPie(printer, QStringLiteral("Title"), groups, QLocale(QLocale::English)).ok());
        QCOMPARE(int(target.pages().size()), 1);
        const QImage sheet = target.pages().front();
        const QPointF centre(3675 / 15.0, 3675 / 15.0);
        const double radius = 3500 / 15.0;
        QCOMPARE(colourAt(sheet, centre, radius, 37.5), charts::SliceColour(0)); // 0 to 75 %
        QCOMPARE(colourAt(sheet, centre, radius, 87.5), charts::SliceColour(1)); // 75 to 100 %
        QCOMPARE(sheet.pixelColor(int(centre.x() + radius + 10), int(centre.y())), QColor(Qt::white)); // outside
        // The rows under the pie start at 7400 twips, each with its colour box from 200 to 400.
        QCOMPARE(sheet.pixelColor(300 / 15, (7400 + 130) / 15), charts::SliceColour(0));
    }

    void chartVerbOverTheContacts()
    {
        QTemporaryDir dir;
        const QString image = testsupport::buildExample(QStringLiteral("contacts"), dir.path()).path;
        const QString loaded = testsupport::loadSamples(QStringLiteral("contacts"), image);
        QVERIFY2(loaded.isEmpty(), qPrintable(loaded));
        auto chart = [&](const QStringList &args) { return testsupport::runCli(QStringList{QStringLiteral("chart"), image} + args); };

        // Groups of a combo, largest first, against the sample file.
        std::map<QString, int> expected;
        for (const QString &c : testsupport::sampleColumn(QStringLiteral("contacts"), QStringLiteral("category")))
            ++expected[c];
        testsupport::CliRun run = chart({QStringLiteral("category")});
        QCOMPARE(run.code, 0);
        QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines[1], QStringLiteral("groups: %1 of 25 values").arg(expected.size()));
        for (const QString &line : lines.mid(2)) {
            const QStringList cells = line.split(QLatin1Char('\t'));
            QCOMPARE(cells.value(1).toInt(), expected[cells[0]]);
        }

        // A number field: count, sum, lowest and highest of the balances.
        double sum = 0, low = 1e300, high = -1e300;
        const QStringList balances = testsupport::sampleColumn(QStringLiteral("contacts"), QStringLiteral("balance"));
        for (const QString &b : balances) {
            sum += b.toDouble();
            low = std::min(low, b.toDouble());
            high = std::max(high, b.toDouble());
        }
        run = chart({QStringLiteral("balance")});
        QCOMPARE(run.code, 0);
        auto figure = [&](const char *name) {
            for (const QString &line : run.out.split(QLatin1Char('\n')))
                if (line.startsWith(QLatin1String(name) + QLatin1String(": ")))
                    return line.section(QLatin1Char(' '), 1).toDouble();
            return std::nan("");
        };
        QCOMPARE(figure("count"), double(balances.size()));
        QCOMPARE(figure("sum"), sum);
        QCOMPARE(figure("lowest"), low);
        QCOMPARE(figure("highest"), high);

        // The same as JSON: every value counted once in the ranges and once in the groups.
        run = chart({QStringLiteral("balance"), QStringLiteral("--json")});
        QCOMPARE(run.code, 0);
        const QJsonObject o = QJsonDocument::fromJson(run.out.toUtf8()).object();
        const QJsonObject stats = o.value(QLatin1String("statistics")).toObject();
        QCOMPARE(stats.value(QLatin1String("sum")).toDouble(), sum);
        int inRanges = 0, inGroups = 0;
        for (const QJsonValue r : stats.value(QLatin1String("ranges")).toArray())
            inRanges += r.toObject().value(QLatin1String("count")).toInt();
        for (const QJsonValue g : o.value(QLatin1String("groups")).toArray())
            inGroups += g.toObject().value(QLatin1String("count")).toInt();
        QCOMPARE(inRanges, int(balances.size()));
        QCOMPARE(inGroups, int(balances.size()));

        // Over the hits of a search only.
        run = chart({QStringLiteral("category"), QStringLiteral("--search"), QStringLiteral("select firstname where category=customer")});
        QCOMPARE(run.code, 0);
        QVERIFY2(run.out.contains(QStringLiteral("Customer\t%1\t100.00%").arg(expected[QStringLiteral("Customer")])), qPrintable(run.out));

        // Pictures: the histogram of a number field, the pie of any.
        const QString histogram = dir.filePath(QStringLiteral("h.png")), pie = dir.filePath(QStringLiteral("p.png"));
        QCOMPARE(chart({QStringLiteral("balance"), QStringLiteral("--png"), histogram}).code, 0);
        QCOMPARE(chart({QStringLiteral("category"), QStringLiteral("--png"), pie}).code, 0);
        QCOMPARE(QImage(histogram).size(), QSize(charts::kPanelWidth, charts::kPanelHeight + 30));
        QCOMPARE(QImage(pie).width(), charts::kPanelWidth);

        // Refused: an element that is no field, a histogram of a text, both pictures at once.
        for (const QStringList &bad : {QStringList{QStringLiteral("nosuchthing")},
                                       QStringList{QStringLiteral("notes")},
                                       QStringList{QStringLiteral("category"), QStringLiteral("--histogram"), QStringLiteral("--png"), pie},
                                       QStringList{QStringLiteral("balance"), QStringLiteral("--pie"), QStringLiteral("--histogram")}}) {
            run = chart(bad);
            QVERIFY2(run.code != 0, qPrintable(bad.join(QLatin1Char(' '))));
            QVERIFY(!run.err.isEmpty());
        }
    }
};

QTEST_MAIN(ChartDrawingTest)
#include "test_chart_drawing.moc"
