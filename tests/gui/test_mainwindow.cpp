// The first window over the shipped contacts design: every element where the design puts it, the
// tabs of the pages in use, and a damaged design that still opens and says so.

#include "WindowDriver.h"
#include "gui/Twips.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTemporaryDir>
#include <QtTest>

using namespace ff;

namespace {

AppPaths pathsIn(const QTemporaryDir &dir)
{
    return ParseCommandLine(dir.filePath(QStringLiteral("contacts.exe")), {});
}

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void showsEveryElementAtItsDesignGeometry()
    {
        QTemporaryDir dir;
        const auto built = testsupport::buildExample(QStringLiteral("contacts"), dir.path());
        DesignLoad load = testsupport::loadImage(built.path);
        QVERIFY2(load.complete(), qPrintable(load.error.text));
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("logo.gif")))); // extracted beside the image

        gui::MainWindow window(pathsIn(dir), std::move(load));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const Design &d = window.design();
        QCOMPARE(window.windowTitle(), QStringLiteral("Contacts book"));
        // The data file is made beside the image on first start, named after it.
        QCOMPARE(window.statusText(), QStringLiteral("Contacts.dat: record 1 of 1"));
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("Contacts.dat"))));

        // Two pages in use: two tabs with the design's captions.
        QCOMPARE(window.pageTabs()->count(), 2);
        QCOMPARE(window.pageTabs()->tabText(0), QStringLiteral("Contact"));
        QCOMPARE(window.pageTabs()->tabText(1), QStringLiteral("Notes"));

        gui::PageCanvas *canvas = window.canvas();
        const double tpp = canvas->twipsPerPixel();
        QCOMPARE(canvas->size(), QSize(gui::toPixels(d.PageWidth, tpp), gui::toPixels(d.PageHeight, tpp)));
        for (int i = 1; i <= d.FieldCount; ++i) {
            const FieldElement &f = d.Fields[size_t(i)];
            QWidget *w = canvas->fieldWidget(i);
            QVERIFY(w);
            QCOMPARE(w->geometry(), gui::twipsRect(f.Left, f.Top, f.Width, f.Height, tpp));
            QCOMPARE(w->isVisible(), f.FieldPage == 0);
        }
        // The note stands on the second page: hidden until its tab is chosen.
        QWidget *note = canvas->noteWidget(1);
        QVERIFY(!note->isVisible());
        window.pageTabs()->setCurrentIndex(1);
        QVERIFY(note->isVisible());
        QVERIFY(!canvas->fieldWidget(1)->isVisible());
        QCOMPARE(note->geometry(), gui::twipsRect(d.Notes[1].Left, d.Notes[1].Top, d.Notes[1].Width,
                                                  d.Notes[1].Height, tpp));
        window.pageTabs()->setCurrentIndex(0);

        // Labels carry their captions at their positions; the logo shows its extracted picture.
        auto *first = qobject_cast<QLabel *>(canvas->titleWidget(6));
        QVERIFY(first);
        QCOMPARE(first->text(), d.Titles[6].Caption);
        QCOMPARE(first->pos(), QPoint(gui::toPixels(d.Titles[6].Left, tpp), gui::toPixels(d.Titles[6].Top, tpp)));
        auto *logo = qobject_cast<QLabel *>(canvas->pictureWidget(0));
        QVERIFY(logo && !logo->pixmap().isNull());
        // Page 0 is painted with its tiled background: the grab differs from a plain fill.
        const QImage shot = canvas->grab().toImage();
        QVERIFY(shot.pixelColor(2, 2) != shot.pixelColor(40, 2) || shot.pixelColor(2, 2) != shot.pixelColor(2, 40));
    }

    // An imported or pasted picture is stored under its number: the record holds "0000007" and
    // the picture folder the file "0000007.jpg", which the picture reader finds by its suffix.
    void aStoredPictureNumberShowsItsJpegFile()
    {
        QTemporaryDir dir;
        const auto built = testsupport::buildExample(QStringLiteral("contacts"), dir.path());
        gui::MainWindow window(pathsIn(dir), testsupport::loadImage(built.path));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        RecordStore &store = window.database().store();
        QVERIFY(!store.RecordPictureFolder().isEmpty());
        QImage photo(40, 30, QImage::Format_RGB32);
        photo.fill(Qt::red);
        QVERIFY(QDir().mkpath(store.RecordPictureFolder()));
        QVERIFY(photo.save(QDir(store.RecordPictureFolder()).filePath(QStringLiteral("0000007.jpg"))));
        store.page().PictureRecordName[1] = QStringLiteral("0000007");
        store.page().notifyAll();
        auto *shown = qobject_cast<QLabel *>(window.canvas()->pictureWidget(1));
        QVERIFY(shown && !shown->pixmap().isNull());
        // A name of its own is taken as it stands.
        store.page().PictureRecordName[1] = QStringLiteral("nobody");
        store.page().notifyAll();
        QVERIFY(shown->pixmap().isNull());
    }

    void functionKeysFillTheFieldWithTheExamplesTexts()
    {
        QTemporaryDir dir;
        const auto window = testsupport::openActive(testsupport::buildExample(QStringLiteral("contacts"), dir.path()).path);
        // A click in the company field puts the caret there; the keys go where the focus is.
        QLineEdit *company = testsupport::field(*window, 3);
        QVERIFY(company);
        QTest::mouseClick(company, Qt::LeftButton);
        QCOMPARE(QApplication::focusWidget(), company);
        const struct {
            Qt::Key key;
            const char *text;
        } keys[] = {{Qt::Key_F1, "Yes"}, {Qt::Key_F2, "No"}, {Qt::Key_F3, "n/a"}, {Qt::Key_F6, "Dr"}};
        for (const auto &k : keys) {
            QTest::keyClick(QApplication::focusWidget(), k.key);
            QCOMPARE(company->text(), QString::fromLatin1(k.text));
        }
    }

    void aDamagedDesignOpensWithWhatWasRead()
    {
        QTemporaryDir dir;
        const auto built = testsupport::buildExample(QStringLiteral("contacts"));
        // Cut off the last quarter of the block and give it a tail that points at its start.
        const qsizetype blockSize = built.bytes.size() - built.headSize - 4;
        QByteArray cut = built.bytes.left(built.headSize + blockSize * 3 / 4);
        const qint32 distance = static_cast<qint32>(blockSize * 3 / 4);
        cut.append(reinterpret_cast<const char *>(&distance), 4);
        DesignLoad load = ReadDesignFromBytes(cut, {});
        QVERIFY(!load.complete());
        QVERIFY2(load.design.FieldCount > 0, qPrintable(load.error.text)); // the elements before the cut were read
        gui::MainWindow window(pathsIn(dir), std::move(load));
        window.show();
        QVERIFY(window.statusText().startsWith(QStringLiteral("The design could not be read completely")));
        QVERIFY(window.canvas()->fieldWidget(1));
    }
};

QTEST_MAIN(MainWindowTest)
#include "test_mainwindow.moc"
