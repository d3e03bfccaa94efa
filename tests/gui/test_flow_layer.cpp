// The record's own labels and pictures on the page: records written by the independent record
// writer (a script written from the format alone) carry flow labels and pictures; the window draws
// them where they are stored, on their page only, in their font and colour, and a click on a
// linked picture shows the record it links to.

#include "DesignVariant.h"
#include "gui/FlowLayer.h"
#include "gui/MainWindowHost.h"
#include "gui/PageCanvas.h"
#include "gui/Twips.h"
#include "store/Database.h"
#include "support/RecordWriterLayout.h"

#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace ff;

namespace {

QJsonObject label(int page, int style, int size, const QString &text, int color, int left, int top)
{
    return QJsonObject{{"page", page}, {"style", style}, {"size", size}, {"align", 0},
                       {"text", text}, {"color", color}, {"left", left}, {"top", top}};
}

QJsonObject image(int page, int left, int top, int width, int height, int id, int link)
{
    return QJsonObject{{"page", page}, {"left", left}, {"top", top}, {"width", width},
                       {"height", height}, {"id", id}, {"link", link}};
}

// Record 1: a bold red label and one in italics on page 0, one underlined on page 1, a picture
// linking to record 3, one without a link and one whose file is missing. Record 3: one label.
QJsonArray records()
{
    QJsonObject first{{"F1", QStringLiteral("Ada")}};
    first[QStringLiteral("labels")] = QJsonArray{
        label(0, 1, 20, QStringLiteral("Visited twice"), 0x0000FF, 4320, 5040),
        label(0, 10, 9, QStringLiteral("see file"), 0xFF0000, 4320, 6000),
        label(1, 100, 12, QStringLiteral("On the notes page"), 0x008000, 600, 600),
        label(0, 0, 10, QStringLiteral("   "), 0, 0, 0)}; // a blank caption is never stored
    first[QStringLiteral("images")] = QJsonArray{image(0, 7200, 4320, 900, 600, 100001, 3),
                                                 image(0, 7200, 5400, 900, 600, 100001, 0),
                                                 image(1, 600, 1200, 300, 300, 100099, 2)};
    QJsonObject second{{"F1", QStringLiteral("Ben")}};
    QJsonObject third{{"F1", QStringLiteral("Cy")}};
    third[QStringLiteral("labels")] = QJsonArray{label(0, 0, 10, QStringLiteral("Third record"), 0, 1440, 1440)};
    return {first, second, third};
}

struct FlowFixture {
    QTemporaryDir dir;
    std::unique_ptr<gui::MainWindow> window;

    bool open()
    {
        const QString imagePath = testsupport::buildContactsVariant(dir.path(), [](Design &d) { d.FlowPageEnabled = 1; });
        // The flow pictures: Images/<number>.gif beside the app image.
        QDir(dir.path()).mkdir(QStringLiteral("Images"));
        if (!QFile::copy(testsupport::examplePath(QStringLiteral("contacts/logo.gif")),
                         dir.filePath(QStringLiteral("Images/100001.gif"))))
            return false;
        QJsonObject setup = testsupport::recordWriterLayout(testsupport::loadImage(imagePath).design, 100000);
        setup[QStringLiteral("records")] = records();
        const testsupport::ProgramRun writer =
            testsupport::runRecordWriter(QStringLiteral("write"), setup, dir.filePath(QStringLiteral("Contacts.dat")));
        if (writer.exitCode != 0) {
            qWarning("%s", writer.err.constData());
            return false;
        }
        window = testsupport::openWindow(imagePath);
        window->show();
        return QTest::qWaitForWindowExposed(window.get());
    }
    int currentRecord() { return window->database().store().CurrentRecord(); }
};

} // namespace

class FlowLayerTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theRecordsLabelsStandWhereTheyAreStored()
    {
        FlowFixture f;
        QVERIFY(f.open());
        QCOMPARE(f.currentRecord(), 1);
        gui::FlowLayer *flow = f.window->flowLayer();
        const double tpp = f.window->canvas()->twipsPerPixel();
        QCOMPARE(flow->labelCount(), 3);

        struct Expected {
            QString text;
            bool bold, italic, underline;
            int points;
            QColor colour;
            int left, top;
            bool onFirstPage;
        };
        const Expected expected[] = {
            {QStringLiteral("Visited twice"), true, false, false, 20, QColor(255, 0, 0), 4320, 5040, true},
            {QStringLiteral("see file"), false, true, false, 9, QColor(0, 0, 255), 4320, 6000, true},
            {QStringLiteral("On the notes page"), false, false, true, 12, QColor(0, 128, 0), 600, 600, false},
        };
        for (int i = 0; i < 3; ++i) {
            const Expected &e = expected[i];
            QLabel *w = flow->labelWidget(i);
            QVERIFY(w);
            QCOMPARE(w->text(), e.text);
            QCOMPARE(w->font().bold(), e.bold);
            QCOMPARE(w->font().italic(), e.italic);
            QCOMPARE(w->font().underline(), e.underline);
            QCOMPARE(w->font().pointSize(), e.points);
            QCOMPARE(w->palette().color(QPalette::WindowText), e.colour);
            QCOMPARE(w->pos(), QPoint(gui::toPixels(e.left, tpp), gui::toPixels(e.top, tpp)));
            QCOMPARE(w->isVisible(), e.onFirstPage);
        }
        // Drawn on the page, in front of its elements: the first label's red shows in a grab.
        const QRect first = flow->labelWidget(0)->geometry();
        const QImage shot = f.window->canvas()->grab(first).toImage();
        int red = 0;
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x) {
                const QColor c = shot.pixelColor(x, y);
                red += c.red() > 200 && c.green() < 80 && c.blue() < 80;
            }
        QVERIFY2(red > 20, qPrintable(QString::number(red)));

        // Another page shows its own flow elements and hides those of the first.
        f.window->pageTabs()->setCurrentIndex(1);
        QVERIFY(flow->labelWidget(2)->isVisible());
        QVERIFY(!flow->labelWidget(0)->isVisible());
        QVERIFY(flow->imageWidget(2)->isVisible());
        QVERIFY(!flow->imageWidget(0)->isVisible());
        f.window->pageTabs()->setCurrentIndex(0);
        QVERIFY(flow->labelWidget(0)->isVisible());
        QVERIFY(!flow->labelWidget(2)->isVisible());
    }

    void theRecordsPicturesAreStretchedToTheirStoredSize()
    {
        FlowFixture f;
        QVERIFY(f.open());
        gui::FlowLayer *flow = f.window->flowLayer();
        const double tpp = f.window->canvas()->twipsPerPixel();
        QCOMPARE(flow->imageCount(), 3);
        QLabel *linked = flow->imageWidget(0);
        QCOMPARE(linked->geometry(), gui::twipsRect(7200, 4320, 900, 600, tpp));
        QVERIFY(linked->isVisible());
        QVERIFY(!linked->pixmap().isNull());
        // The logo's pixels fill the box: a grab of it is not the page's plain ground.
        const QImage shot = f.window->canvas()->grab(linked->geometry()).toImage();
        QSet<QRgb> colours;
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x)
                colours.insert(shot.pixel(x, y));
        QVERIFY(colours.size() > 2);
        // A picture missing from the folder leaves an empty box at its place.
        QLabel *missing = flow->imageWidget(2);
        QVERIFY(missing->pixmap().isNull());
        QCOMPARE(missing->geometry(), gui::twipsRect(600, 1200, 300, 300, tpp));
    }

    void aClickOnALinkedPictureShowsItsRecord()
    {
        FlowFixture f;
        QVERIFY(f.open());
        gui::FlowLayer *flow = f.window->flowLayer();
        // A picture without a link does nothing.
        QTest::mouseClick(flow->imageWidget(1), Qt::LeftButton);
        QCOMPARE(f.currentRecord(), 1);
        QCOMPARE(flow->labelCount(), 3);

        QTest::mouseClick(flow->imageWidget(0), Qt::LeftButton);
        QCOMPARE(f.currentRecord(), 3);
        QCOMPARE(f.window->recordBox()->text(), QStringLiteral("3"));
        QCOMPARE(f.window->database().page().FieldText[1], QStringLiteral("Cy"));
        // The layer is the third record's now: one label, no pictures.
        QCOMPARE(flow->labelCount(), 1);
        QCOMPARE(flow->imageCount(), 0);
        QCOMPARE(flow->labelWidget(0)->text(), QStringLiteral("Third record"));
        QVERIFY(flow->labelWidget(0)->isVisible());
        // A record link is no desktop "open".
        QVERIFY(f.window->host().opened.isEmpty());

        // Back on record 1 the layer is rebuilt again.
        f.window->navigationButton(0)->click();
        QCOMPARE(f.currentRecord(), 1);
        QCOMPARE(flow->labelCount(), 3);
        QCOMPARE(flow->imageCount(), 3);
    }
};

QTEST_MAIN(FlowLayerTest)
#include "test_flow_layer.moc"
