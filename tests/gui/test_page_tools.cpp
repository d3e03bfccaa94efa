// Editing the record's own labels and pictures in the window, with the mouse as a person does:
// the toolbox's tools place them, a drag moves them, the handle sizes them, the page's menu sets a
// grid that they snap to, the toolbox restyles and deletes them. The layer is read back from the
// data file by the independent record reader (a script written from the format alone) and by the
// window itself after another record was shown.

#include "DesignVariant.h"
#include "WindowDriver.h"
#include "design/Page.h"
#include "gui/FlowLayer.h"
#include "gui/PageToolController.h"
#include "gui/ToolboxWindow.h"
#include "gui/Twips.h"
#include "store/Database.h"
#include "support/RecordWriterLayout.h"

#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace ff;

namespace {

constexpr double kCm = 1440.0 / 2.54;

struct PageToolsFixture {
    QTemporaryDir dir;
    QString imagePath;
    QJsonObject layout;
    std::unique_ptr<gui::MainWindow> window;

    bool open()
    {
        imagePath = testsupport::buildContactsVariant(dir.path(), [](Design &d) { d.FlowPageEnabled = 1; });
        QDir(dir.path()).mkdir(QStringLiteral("Images"));
        if (!QFile::copy(testsupport::examplePath(QStringLiteral("contacts/logo.gif")), dir.filePath(QStringLiteral("Images/100001.gif"))))
            return false;
        layout = testsupport::recordWriterLayout(testsupport::loadImage(imagePath).design, 100000);
        layout[QStringLiteral("records")] = QJsonArray{QJsonObject{{"F1", QStringLiteral("Ada")}}, QJsonObject{{"F1", QStringLiteral("Ben")}}};
        if (testsupport::runRecordWriter(QStringLiteral("write"), layout, dataFile()).exitCode != 0)
            return false;
        window = testsupport::openActive(imagePath);
        return window->pageTools() != nullptr;
    }
    QString dataFile() const { return dir.filePath(QStringLiteral("Contacts.dat")); }
    Page &page() { return window->database().page(); }
    gui::PageToolController &tools() { return *window->pageTools(); }
    double tpp() const { return window->canvas()->twipsPerPixel(); }
    int twips(int pixels) const { return int(std::lround(pixels * tpp())); }

    // The records as the independent reader finds them in the file.
    QJsonArray storedRecords()
    {
        const testsupport::ProgramRun run = testsupport::runRecordWriter(QStringLiteral("read"), layout, dataFile());
        if (run.exitCode != 0)
            qWarning("%s", run.err.constData());
        return QJsonDocument::fromJson(run.out).object().value(QStringLiteral("records")).toArray();
    }

    // Chooses an entry of the page's menu with the mouse: a right click on the page, a click on it.
    void chooseFromPageMenu(const QString &caption, QPoint at = QPoint(5, 5))
    {
        QTest::mouseClick(window->canvas(), Qt::RightButton, {}, at);
        QMenu *menu = tools().pageMenu();
        QVERIFY(QTest::qWaitFor([menu] { return menu->isVisible(); }));
        QAction *chosen = nullptr;
        for (QAction *a : menu->actions())
            if (a->text() == caption)
                chosen = a;
        QVERIFY2(chosen, qPrintable(caption));
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(chosen).center());
        QVERIFY(QTest::qWaitFor([menu] { return !menu->isVisible(); }));
    }

    // Drags `w` by `delta` pixels, grabbed at `grab` inside it.
    static void drag(QWidget *w, QPoint grab, QPoint delta)
    {
        QTest::mousePress(w, Qt::LeftButton, {}, grab);
        QTest::mouseMove(w, grab + delta / 2);
        QTest::mouseMove(w, grab + delta - delta / 2); // the widget followed the first half
        QTest::mouseRelease(w, Qt::LeftButton, {}, grab);
    }
};

} // namespace

class PageToolsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void placeMoveSizeAndSnapWithTheMouse()
    {
        PageToolsFixture f;
        QVERIFY(f.open());
        gui::FlowLayer *layer = f.window->flowLayer();
        f.window->showToolbox();
        gui::ToolboxWindow *toolbox = f.window->toolbox();
        QVERIFY(QTest::qWaitForWindowExposed(toolbox));
        QVERIFY(!f.window->database().store().RecordDirty());

        // The label tool, a click on the page: a label there, its text typed in place.
        QTest::mouseClick(toolbox->labelToolButton(), Qt::LeftButton);
        QVERIFY(toolbox->labelToolButton()->isChecked());
        QTest::mouseClick(f.window->canvas(), Qt::LeftButton, {}, QPoint(100, 80));
        QCOMPARE(f.page().FlowLabels.size(), 1);
        QCOMPARE(f.page().FlowLabels[0].left, f.twips(100));
        QCOMPARE(f.page().FlowLabels[0].top, f.twips(80));
        QVERIFY2(!toolbox->labelToolButton()->isChecked(), "one element per tool press");
        QLineEdit *editor = f.tools().labelEditor();
        QVERIFY(editor->isVisible());
        f.window->activateWindow();
        QVERIFY(QTest::qWaitFor([editor] { return editor->hasFocus(); }));
        QTest::keyClicks(editor, QStringLiteral("Call back"));
        QTest::keyClick(editor, Qt::Key_Return);
        QVERIFY(QTest::qWaitFor([editor] { return !editor->isVisible(); }));
        QCOMPARE(f.page().FlowLabels[0].text, QStringLiteral("Call back"));
        QCOMPARE(layer->labelWidget(0)->text(), QStringLiteral("Call back"));
        QVERIFY(f.window->database().store().RecordDirty());

        // Without a grid a drag lands where it is let go.
        QLabel *label = layer->labelWidget(0);
        PageToolsFixture::drag(label, QPoint(3, 3), QPoint(37, 21));
        QCOMPARE(label->pos(), QPoint(137, 101));
        QCOMPARE(f.page().FlowLabels[0].left, f.twips(137));

        // The 1 cm grid from the page's menu: the ruler shows, the next drop snaps.
        f.chooseFromPageMenu(QStringLiteral("Snap To Grip 1 cm"));
        QVERIFY(f.tools().ruler()->isVisible());
        QCOMPARE(toolbox->gridBox()->currentText(), QStringLiteral("1 cm"));
        PageToolsFixture::drag(label, QPoint(3, 3), QPoint(20, 10)); // 157 px, 111 px: 4.15 cm, 2.94 cm
        QCOMPARE(f.page().FlowLabels[0].left, int(std::lround(4 * kCm)));
        QCOMPARE(f.page().FlowLabels[0].top, int(std::lround(3 * kCm)));

        // The picture tool with the row's picture: centred on the click, in its own size, snapped.
        QToolButton *logo = toolbox->rowPicture(1);
        QVERIFY2(!toolbox->rowPicture(0)->isVisible(), "no file 100000.gif");
        QVERIFY(logo->isVisible());
        QTest::mouseClick(logo, Qt::LeftButton);
        QCOMPARE(f.tools().tool(), PageTool::Picture);
        QCOMPARE(f.tools().toolImage(), 100001);
        QTest::mouseClick(f.window->canvas(), Qt::LeftButton, {}, QPoint(300, 200));
        QCOMPARE(f.page().FlowImages.size(), 1);
        const FlowImage &im = f.page().FlowImages[0];
        QCOMPARE(im.FlowImageId, 100001);
        QCOMPARE(im.width, f.twips(48)); // the logo is 48 x 48 pixels
        QCOMPARE(im.left, int(std::lround(7 * kCm))); // 300 - 24 px: 7.30 cm
        QCOMPARE(im.top, int(std::lround(5 * kCm)));  // 200 - 24 px: 4.66 cm
        QCOMPARE(f.tools().tool(), PageTool::Pointer);
        QVERIFY(!logo->isChecked());
        QWidget *handle = f.tools().sizingHandle();
        QVERIFY(handle->isVisible());
        QLabel *picture = layer->imageWidget(0);
        QCOMPARE(handle->geometry().center(), picture->geometry().bottomRight());
        // A drag moves the picture onto the grid, and the handle follows.
        PageToolsFixture::drag(picture, QPoint(5, 5), QPoint(30, 12)); // 295 x 201 px: 7.81, 5.32 cm
        QCOMPARE(f.page().FlowImages[0].left, int(std::lround(8 * kCm)));
        QCOMPARE(f.page().FlowImages[0].top, int(std::lround(5 * kCm)));
        QCOMPARE(handle->geometry().center(), picture->geometry().bottomRight());

        // The handle sizes it; let go, the size is whole centimetres.
        PageToolsFixture::drag(handle, QPoint(4, 4), QPoint(40, 25)); // 88 x 73 px: 2.33 x 1.93 cm
        QCOMPARE(f.page().FlowImages[0].width, int(std::lround(2 * kCm)));
        QCOMPARE(f.page().FlowImages[0].height, int(std::lround(2 * kCm)));
        QCOMPARE(picture->size(), QSize(gui::toPixels(f.page().FlowImages[0].width, f.tpp()),
                                        gui::toPixels(f.page().FlowImages[0].height, f.tpp())));
        QCOMPARE(handle->geometry().center(), picture->geometry().bottomRight());
        // Never below the handle's own size.
        PageToolsFixture::drag(handle, QPoint(4, 4), QPoint(-300, -300));
        QVERIFY(f.page().FlowImages[0].width >= FlowEditor::MinimumSize);

        // The same menu entry again switches the grid off.
        f.chooseFromPageMenu(QStringLiteral("Snap To Grip 1 cm"));
        QVERIFY(!f.tools().ruler()->isVisible());
        QVERIFY(!f.tools().editor().grid().on());

        // Another page hides the layer of the first; it comes back with its page.
        f.window->pageTabs()->setCurrentIndex(1);
        QVERIFY(!label->isVisible());
        QVERIFY(!picture->isVisible());
        QVERIFY(!handle->isVisible());
        f.window->pageTabs()->setCurrentIndex(0);
        QVERIFY(label->isVisible());
        QVERIFY(picture->isVisible());

        // Showing the next record saves this one: the file holds the layer, record 2 has none.
        const FlowLabel placedLabel = f.page().FlowLabels[0];
        const FlowImage placedImage = f.page().FlowImages[0];
        f.window->navigationButton(3)->click();
        QCOMPARE(f.window->database().store().CurrentRecord(), 2);
        QCOMPARE(layer->labelCount(), 0);
        const QJsonArray stored = f.storedRecords();
        QCOMPARE(stored.size(), 2);
        const QJsonArray labels = stored[0].toObject()[QStringLiteral("labels")].toArray();
        const QJsonArray images = stored[0].toObject()[QStringLiteral("images")].toArray();
        QCOMPARE(labels.size(), 1);
        QCOMPARE(labels[0].toObject()[QStringLiteral("text")].toString(), QStringLiteral("Call back"));
        QCOMPARE(labels[0].toObject()[QStringLiteral("left")].toInt(), placedLabel.left);
        QCOMPARE(labels[0].toObject()[QStringLiteral("top")].toInt(), placedLabel.top);
        QCOMPARE(labels[0].toObject()[QStringLiteral("page")].toInt(), 0);
        QCOMPARE(images.size(), 1);
        QCOMPARE(images[0].toObject()[QStringLiteral("id")].toInt(), 100001);
        QCOMPARE(images[0].toObject()[QStringLiteral("left")].toInt(), placedImage.left);
        QCOMPARE(images[0].toObject()[QStringLiteral("width")].toInt(), placedImage.width);
        QCOMPARE(images[0].toObject()[QStringLiteral("height")].toInt(), placedImage.height);
        QVERIFY(stored[1].toObject()[QStringLiteral("labels")].toArray().isEmpty());

        // And back on record 1 the window shows it again where it was left.
        f.window->navigationButton(2)->click();
        QCOMPARE(layer->labelCount(), 1);
        QCOMPARE(layer->labelWidget(0)->text(), QStringLiteral("Call back"));
        QCOMPARE(layer->imageWidget(0)->geometry(), gui::twipsRect(placedImage.left, placedImage.top, placedImage.width,
                                                                   placedImage.height, f.tpp()));
    }

    void theToolboxRestylesLinksAndDeletes()
    {
        PageToolsFixture f;
        QVERIFY(f.open());
        gui::FlowLayer *layer = f.window->flowLayer();
        // The toolbox opened from the page's menu shows the grid chosen before.
        f.chooseFromPageMenu(QStringLiteral("Snap To Grip \u00bd Inch"));
        f.chooseFromPageMenu(QStringLiteral("Show Toolbar..."));
        gui::ToolboxWindow *toolbox = f.window->toolbox();
        QVERIFY(toolbox && QTest::qWaitForWindowExposed(toolbox));
        QCOMPARE(toolbox->gridBox()->currentText(), QStringLiteral("\u00bd inch"));
        QTest::mouseClick(toolbox->labelToolButton(), Qt::LeftButton);
        QTest::mouseClick(f.window->canvas(), Qt::LeftButton, {}, QPoint(60, 60));
        QTest::keyClicks(f.tools().labelEditor(), QStringLiteral("Note"));
        QTest::mouseClick(toolbox->rowPicture(1), Qt::LeftButton);
        QTest::mouseClick(f.window->canvas(), Qt::LeftButton, {}, QPoint(400, 300));
        QCOMPARE(f.page().FlowImages.size(), 1);

        // Select the label with a click: its values show; change them from the toolbox.
        QTest::mouseClick(layer->labelWidget(0), Qt::LeftButton, {}, QPoint(2, 2));
        QCOMPARE(f.tools().selected().kind, FlowElement::Kind::Label);
        QCOMPARE(toolbox->fontSizeBox()->currentText(), QStringLiteral("8"));
        QVERIFY(toolbox->linkBox()->parentWidget()->isEnabled() == false);
        QLineEdit *sizeEdit = toolbox->fontSizeBox()->lineEdit();
        sizeEdit->selectAll();
        QTest::keyClicks(sizeEdit, QStringLiteral("20"));
        QTest::keyClick(sizeEdit, Qt::Key_Return);
        QTest::mouseClick(toolbox->boldButton(), Qt::LeftButton);
        QTest::mouseClick(toolbox->underlineButton(), Qt::LeftButton);
        QTest::mouseClick(toolbox->alignmentButton(FlowAlignment::Centre), Qt::LeftButton);
        QTest::mouseClick(toolbox->colourButton(4), Qt::LeftButton); // red, 0x0000FF
        const FlowLabel &l = f.page().FlowLabels[0];
        QCOMPARE(l.fontSize, 20);
        QCOMPARE(l.style, 101);
        QCOMPARE(l.alignment, 2);
        QCOMPARE(l.color, 0x0000FF);
        QLabel *shown = layer->labelWidget(0);
        QVERIFY(shown->font().bold());
        QVERIFY(shown->font().underline());
        QCOMPARE(shown->font().pointSize(), 20);
        QCOMPARE(shown->palette().color(QPalette::WindowText), QColor(255, 0, 0));
        QTest::mouseClick(toolbox->boldButton(), Qt::LeftButton); // bold again: off
        QCOMPARE(f.page().FlowLabels[0].style, 100);

        // The picture: its link is held to the record count; a colour changes nothing.
        QTest::mouseClick(layer->imageWidget(0), Qt::LeftButton, {}, QPoint(3, 3));
        QCOMPARE(f.tools().selected().kind, FlowElement::Kind::Image);
        QVERIFY(!toolbox->boldButton()->isEnabled());
        QTest::mouseClick(toolbox->colourButton(8), Qt::LeftButton);
        QLineEdit *link = toolbox->linkBox();
        link->setFocus();
        link->selectAll();
        QTest::keyClicks(link, QStringLiteral("99"));
        QTest::keyClick(link, Qt::Key_Return);
        QCOMPARE(f.page().FlowImages[0].FlowImageLink, 2);
        QCOMPARE(link->text(), QStringLiteral("2"));
        // Dragging a linked picture moves it; only a plain click follows the link.
        PageToolsFixture::drag(layer->imageWidget(0), QPoint(3, 3), QPoint(20, 20));
        QCOMPARE(f.window->database().store().CurrentRecord(), 1);
        QCOMPARE(f.page().FlowImages[0].left, 4 * 1440); // 396 px on the half-inch grid: 4 inches
        QCOMPARE(f.page().FlowLabels[0].color, 0x0000FF);

        // Delete from the toolbox: the picture goes from the page and from the saved record.
        QTest::mouseClick(toolbox->deleteButton(), Qt::LeftButton);
        QCOMPARE(f.page().FlowImages.size(), 0);
        QCOMPARE(layer->imageCount(), 0);
        QVERIFY(!f.tools().sizingHandle()->isVisible());
        // The page's menu deletes the label.
        QTest::mouseClick(layer->labelWidget(0), Qt::LeftButton, {}, QPoint(2, 2));
        f.chooseFromPageMenu(QStringLiteral("Delete..."));
        QCOMPARE(f.page().FlowLabels.size(), 0);
        QVERIFY(f.window->database().store().SaveIfDirty());
        const QJsonObject first = f.storedRecords()[0].toObject();
        QVERIFY(first[QStringLiteral("labels")].toArray().isEmpty());
        QVERIFY(first[QStringLiteral("images")].toArray().isEmpty());

        // Closing the toolbox returns to the pointer.
        QTest::mouseClick(toolbox->labelToolButton(), Qt::LeftButton);
        toolbox->close();
        QCOMPARE(f.tools().tool(), PageTool::Pointer);
    }

    void aDesignWithoutTheFlagOffersNoEditing()
    {
        QTemporaryDir dir;
        const QString image = testsupport::buildContactsVariant(dir.path(), [](Design &d) { d.FlowPageEnabled = 0; });
        auto window = testsupport::openActive(image);
        QVERIFY(!window->pageTools());
        QTest::mouseClick(window->canvas(), Qt::RightButton, {}, QPoint(50, 50));
        QVERIFY(!QApplication::activePopupWidget());
        QVERIFY(window->database().page().FlowLabels.isEmpty());
    }
};

QTEST_MAIN(PageToolsTest)
#include "test_page_tools.moc"
