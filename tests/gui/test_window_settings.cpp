// The design's window settings as the main window shows them: the start state, the page scroll
// bars' colour and pattern and the tabs' colour, the about icon and window, the calculator icon (Image4Visible) with
// its tool tip from row 10 of the caption run, and the frame around the page.

#include "DesignVariant.h"
#include "gui/AboutWindow.h"
#include "gui/PageCanvas.h"
#include "gui/Twips.h"
#include "toolkit/Calculator.h"

#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOptionSlider>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace ff;

namespace {

const QColor kScrollGreen(0, 0xC0, 0); // the colour long 0x0000C000

// Pixels of a scroll bar's trough (both sides of the handle) in one colour, and in all.
struct TroughCount {
    int inColour = 0;
    int all = 0;
};

TroughCount troughPixels(QScrollBar *bar, const QColor &colour)
{
    const QImage shot = bar->grab().toImage();
    QStyleOptionSlider opt;
    opt.initFrom(bar);
    opt.subControls = QStyle::SC_All;
    opt.orientation = bar->orientation();
    opt.minimum = bar->minimum();
    opt.maximum = bar->maximum();
    opt.sliderPosition = bar->sliderPosition();
    opt.sliderValue = bar->value();
    opt.singleStep = bar->singleStep();
    opt.pageStep = bar->pageStep();
    if (bar->orientation() == Qt::Horizontal)
        opt.state |= QStyle::State_Horizontal;
    TroughCount count;
    const qreal dpr = shot.devicePixelRatio();
    for (const QStyle::SubControl part : {QStyle::SC_ScrollBarSubPage, QStyle::SC_ScrollBarAddPage}) {
        const QRect r = bar->style()->subControlRect(QStyle::CC_ScrollBar, &opt, part, bar);
        for (int y = r.top() + 1; y < r.bottom(); ++y)
            for (int x = r.left() + 1; x < r.right(); ++x) {
                ++count.all;
                if (shot.pixelColor(int(x * dpr), int(y * dpr)) == colour)
                    ++count.inColour;
            }
    }
    return count;
}

} // namespace

class WindowSettingsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theWindowOpensInTheDesignsState_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("maximised");
        QTest::addColumn<bool>("minimised");
        QTest::newRow("normal") << 0 << false << false;
        QTest::newRow("minimised") << 1 << false << true;
        QTest::newRow("maximised") << 2 << true << false;
    }
    void theWindowOpensInTheDesignsState()
    {
        QFETCH(int, state);
        QFETCH(bool, maximised);
        QFETCH(bool, minimised);
        QTemporaryDir dir;
        auto window = testsupport::openWindow(testsupport::buildContactsVariant(dir.path(), [&](Design &d) {
            d.WindowState = int16_t(state);
        }));
        window->show();
        QCOMPARE(window->isMaximized(), maximised);
        QCOMPARE(window->isMinimized(), minimised);
    }

    void theScrollBarsTakeTheDesignsColourAndPattern_data()
    {
        QTest::addColumn<int>("pattern");
        QTest::addColumn<bool>("allInColour");
        QTest::addColumn<bool>("someInColour");
        QTest::newRow("0 solid") << 0 << true << true;
        QTest::newRow("3 vertical lines") << 3 << false << true;
        QTest::newRow("6 cross") << 6 << false << true;
        QTest::newRow("1 none: the platform's trough") << 1 << false << false;
    }
    void theScrollBarsTakeTheDesignsColourAndPattern()
    {
        QFETCH(int, pattern);
        QFETCH(bool, allInColour);
        QFETCH(bool, someInColour);
        QTemporaryDir dir;
        auto window = testsupport::openWindow(testsupport::buildContactsVariant(dir.path(), [&](Design &d) {
            d.Pattern = int16_t(pattern);
            d.ScrollColor = 0x0000C000;
        }));
        window->show();
        window->resize(320, 260); // smaller than the page: both scroll bars show
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        for (QScrollBar *bar : {window->pageView()->verticalScrollBar(), window->pageView()->horizontalScrollBar()}) {
            QTRY_VERIFY(bar->isVisible());
            const TroughCount count = troughPixels(bar, kScrollGreen);
            QVERIFY(count.all > 20);
            QCOMPARE(count.inColour == count.all, allInColour);
            QCOMPARE(count.inColour > 0, someInColour);
            if (someInColour && !allInColour) // a pattern: the colour on a lighter ground
                QVERIFY2(count.inColour < count.all * 3 / 4, qPrintable(QString::number(count.inColour)));
        }
        // The same colour is the face of the page tab shown, shaded a little by the style.
        QTabBar *tabs = window->pageTabs();
        const QRect face = tabs->tabRect(tabs->currentIndex()).adjusted(3, 3, -3, -3);
        const QImage shot = tabs->grab(face).toImage();
        int green = 0;
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x)
            {
                const QColor c = shot.pixelColor(x, y);
                green += c.red() < 20 && c.blue() < 20 && qAbs(c.green() - kScrollGreen.green()) < 25;
            }
        QVERIFY2(green > shot.width() * shot.height() / 2, qPrintable(QStringLiteral("%1 of %2").arg(green).arg(shot.width() * shot.height())));
    }

    void theAboutIconFollowsTheDesign()
    {
        QTemporaryDir hiddenDir;
        auto hidden = testsupport::openWindow(testsupport::buildContactsVariant(hiddenDir.path(), [](Design &d) {
            d.AboutInfoVisible = false;
            d.Image4Visible = false;
        }));
        hidden->show();
        QVERIFY(!hidden->aboutButton()->isVisible());
        QVERIFY(!hidden->aboutButton()->defaultAction()->isVisible()); // nor in the Help menu
        QVERIFY(!hidden->calculatorButton()->isVisible());

        QTemporaryDir dir;
        auto window = testsupport::openWindow(testsupport::buildContactsVariant(dir.path(), [](Design &d) {
            d.AboutInfoVisible = true;
            d.Aboutme = QStringLiteral("&About the book");
            d.AboutLabel1 = QStringLiteral("Contacts, kept by the club");
            d.CaptionRun[11] = QStringLiteral("Second line");
        }));
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QVERIFY(window->aboutButton()->isVisible());
        QCOMPARE(window->aboutButton()->toolTip(), QStringLiteral("About the book"));
        QString title, first, second;
        QTimer::singleShot(0, this, [&] {
            auto *about = qobject_cast<gui::AboutWindow *>(QApplication::activeModalWidget());
            if (!about)
                return;
            title = about->windowTitle();
            first = about->titleLabel()->text();
            second = about->lineLabel()->text();
            about->reject();
        });
        QTest::mouseClick(window->aboutButton(), Qt::LeftButton);
        QCOMPARE(title, QStringLiteral("&About the book"));
        QCOMPARE(first, QStringLiteral("Contacts, kept by the club"));
        QCOMPARE(second, QStringLiteral("Second line"));
    }

    void row10IsTheImage4IconsToolTip()
    {
        QTemporaryDir dir;
        auto window = testsupport::openWindow(testsupport::buildContactsVariant(dir.path(), [](Design &d) {
            d.Image4Visible = true;
            d.CaptionRun[9] = QStringLiteral("Pocket &calculator");
        }));
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QVERIFY(window->calculatorButton()->isVisible());
        QCOMPARE(window->calculatorButton()->toolTip(), QStringLiteral("Pocket calculator"));
        // No menu entry takes row 10 as its caption.
        for (QAction *menu : window->menuBar()->actions())
            for (QAction *item : menu->menu()->actions())
                QVERIFY2(item->text() != QStringLiteral("Pocket &calculator"), qPrintable(item->text()));
        QTest::mouseClick(window->calculatorButton(), Qt::LeftButton);
        auto *calculator = window->findChild<toolkit::Calculator *>();
        QVERIFY(calculator);
        QTRY_VERIFY(calculator->isVisible());
        calculator->close();
    }

    void theFrameAroundThePageTakesTheDesignsSize()
    {
        QTemporaryDir fixedDir;
        auto fixed = testsupport::openWindow(testsupport::buildContactsVariant(fixedDir.path(), [](Design &d) {
            d.Frame3Width = 6000;
            d.Frame3Height = 3000;
            d.Frame3Stretch = false;
        }));
        fixed->show();
        QVERIFY(QTest::qWaitForWindowExposed(fixed.get()));
        const double tpp = fixed->canvas()->twipsPerPixel();
        const QSize designed(gui::toPixels(6000, tpp), gui::toPixels(3000, tpp));
        QCOMPARE(fixed->pageView()->size(), designed);
        fixed->resize(fixed->width() + 200, fixed->height() + 150);
        QTRY_COMPARE(fixed->width(), designed.width() + 200);
        QCOMPARE(fixed->pageView()->size(), designed); // without Stretch it keeps its size

        QTemporaryDir stretchDir;
        auto stretched = testsupport::openWindow(testsupport::buildContactsVariant(stretchDir.path(), [](Design &d) {
            d.Frame3Width = 6000;
            d.Frame3Height = 3000;
            d.Frame3Stretch = true;
        }));
        stretched->show();
        QVERIFY(QTest::qWaitForWindowExposed(stretched.get()));
        QCOMPARE(stretched->pageView()->size(), designed); // it opens at the design's size
        stretched->resize(stretched->width() + 200, stretched->height() + 150);
        QTRY_COMPARE(stretched->pageView()->size(), designed + QSize(200, 150)); // and follows the window
    }
};

QTEST_MAIN(WindowSettingsTest)
#include "test_window_settings.moc"
