// The picture library over a record's picture field, driven as a person does: a click on the
// field opens it, a file is chosen from the list and taken. The stored file is checked as a JPEG
// of the field's size (or a byte copy), named from the data file's picture counter, which is read
// from the file's header by the test itself; the field's former file goes; a file that is not a
// picture is refused with a message and nothing changes.

#include "DesignVariant.h"
#include "WindowDriver.h"
#include "core/SettingsStore.h"
#include "gui/PictureLibraryWindow.h"
#include "store/Database.h"
#include "support/RecordWriterLayout.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonObject>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using namespace ff;

namespace {

constexpr int kPhoto = 1; // the contacts design's per-record picture, 1800 x 2200 twips

struct LibraryFixture {
    QTemporaryDir dir;
    QTemporaryDir settings;
    QString sources;
    std::unique_ptr<gui::MainWindow> window;
    testsupport::MessageCatcher messages;

    bool open()
    {
        SettingsStore::setFolder(settings.path());
        const QString image = testsupport::buildContactsVariant(dir.path(), [](Design &) {});
        QJsonObject layout = testsupport::recordWriterLayout(testsupport::loadImage(image).design, 100000);
        layout[QStringLiteral("records")] = QJsonArray{QJsonObject{{"F1", QStringLiteral("Ada")}}};
        if (testsupport::runRecordWriter(QStringLiteral("write"), layout, dir.filePath(QStringLiteral("Contacts.dat"))).exitCode != 0)
            return false;
        // Pictures to choose from: a wide one, a GIF, and a text file that claims to be a JPEG.
        QDir(dir.path()).mkdir(QStringLiteral("sources"));
        sources = dir.filePath(QStringLiteral("sources"));
        QImage wide(400, 100, QImage::Format_RGB32);
        wide.fill(Qt::red);
        if (!wide.save(sources + QStringLiteral("/wide.png")))
            return false;
        if (!QFile::copy(testsupport::examplePath(QStringLiteral("contacts/logo.gif")), sources + QStringLiteral("/logo.gif")))
            return false;
        QFile text(sources + QStringLiteral("/notes.jpg"));
        if (!text.open(QIODevice::WriteOnly) || text.write("not a picture at all\n") <= 0)
            return false;
        text.close();
        window = testsupport::openActive(image);
        return true;
    }
    ~LibraryFixture() { SettingsStore::setFolder(QString()); }

    QString pictureFolder() { return window->database().store().RecordPictureFolder(); }
    QString recordName() { return window->database().page().PictureRecordName[kPhoto]; }
    // The counter as the data file's header holds it: 4 bytes little-endian from position 10.
    int storedCounter()
    {
        QFile f(dir.filePath(QStringLiteral("Contacts.dat")));
        if (!f.open(QIODevice::ReadOnly) || !f.seek(9))
            return -1;
        const QByteArray b = f.read(4);
        return int(uint8_t(b[0]) | uint8_t(b[1]) << 8 | uint8_t(b[2]) << 16 | uint8_t(b[3]) << 24);
    }

    // Clicks the photo field; `drive` works the library window that opens, then it is closed.
    void withLibrary(const std::function<void(gui::PictureLibraryWindow &)> &drive)
    {
        bool driven = false;
        QTimer poll;
        poll.setInterval(10);
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto *library = qobject_cast<gui::PictureLibraryWindow *>(QApplication::activeModalWidget());
            if (!library || driven)
                return;
            driven = true;
            drive(*library);
            if (library->isVisible())
                library->reject();
        });
        poll.start();
        QTest::mouseClick(window->canvas()->pictureWidget(kPhoto), Qt::LeftButton);
        QVERIFY(driven);
    }
    // Chooses `file` in the list and takes it with the switches given.
    void take(const QString &file, bool resize, bool ratio)
    {
        withLibrary([&](gui::PictureLibraryWindow &library) {
            library.setFolder(sources);
            library.resizeBox()->setChecked(resize);
            library.ratioBox()->setChecked(ratio);
            QVERIFY(library.selectFile(file));
            QTest::mouseClick(library.takeButton(), Qt::LeftButton);
        });
    }
};

} // namespace

class PictureLibraryTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aPictureIsFittedNumberedAndReplacesTheFormer()
    {
        LibraryFixture f;
        QVERIFY(f.open());
        QCOMPARE(f.storedCounter(), 0);
        QVERIFY(!f.window->database().store().RecordDirty());

        // Resized with the ratio kept: a JPEG of the field's size, the red band centred in white.
        f.take(QStringLiteral("wide.png"), true, true);
        QCOMPARE(f.recordName(), QStringLiteral("0000001"));
        QCOMPARE(f.storedCounter(), 1);
        const QString first = f.pictureFolder() + QStringLiteral("0000001.jpg");
        QImageReader reader(first);
        QCOMPARE(reader.format(), QByteArray("jpeg"));
        const QImage stored = reader.read();
        QCOMPARE(stored.size(), QSize(120, 147));
        const QColor middle = stored.pixelColor(60, 73), top = stored.pixelColor(60, 5);
        QVERIFY(middle.red() > 200 && middle.green() < 60);
        QVERIFY(top.red() > 200 && top.green() > 200 && top.blue() > 200);
        QVERIFY(f.window->database().store().RecordDirty());
        auto *field = qobject_cast<QLabel *>(f.window->canvas()->pictureWidget(kPhoto));
        QVERIFY(!field->pixmap().isNull());

        // A second picture: the next number, and the first file is gone.
        f.take(QStringLiteral("wide.png"), true, false);
        QCOMPARE(f.recordName(), QStringLiteral("0000002"));
        QCOMPARE(f.storedCounter(), 2);
        QVERIFY(!QFile::exists(first));
        const QImage stretched(f.pictureFolder() + QStringLiteral("0000002.jpg"));
        QCOMPARE(stretched.size(), QSize(120, 147));
        QVERIFY2(stretched.pixelColor(60, 5).green() < 60, "stretched: red to the top");

        // Not resized, a GIF is copied as it is under a name with its extension.
        f.take(QStringLiteral("logo.gif"), false, true);
        QCOMPARE(f.recordName(), QStringLiteral("0003.gif"));
        QCOMPARE(f.storedCounter(), 3);
        QFile copy(f.pictureFolder() + QStringLiteral("0003.gif")), source(f.sources + QStringLiteral("/logo.gif"));
        QVERIFY(copy.open(QIODevice::ReadOnly) && source.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), source.readAll());
        QVERIFY(!QFile::exists(f.pictureFolder() + QStringLiteral("0000002.jpg")));

        // The record keeps the name: saved, it is what the data file holds.
        QVERIFY(f.window->database().store().SaveIfDirty());
        Result<QByteArray> plain = f.window->database().store().readPlainRecord(1);
        QVERIFY(plain.ok());
        QVERIFY(plain->contains("0003.gif"));

        // The switches are kept for the next time.
        f.withLibrary([](gui::PictureLibraryWindow &library) {
            QVERIFY(!library.resizeBox()->isChecked());
            QVERIFY(library.ratioBox()->isChecked());
        });
    }

    void aFileThatIsNoPictureChangesNothing()
    {
        LibraryFixture f;
        QVERIFY(f.open());
        f.take(QStringLiteral("wide.png"), true, true);
        const QStringList before = QDir(f.pictureFolder()).entryList(QDir::Files);
        f.take(QStringLiteral("notes.jpg"), true, true);
        QCOMPARE(f.messages.texts.size(), 1);
        QVERIFY2(f.messages.texts[0].contains(QStringLiteral("notes.jpg")) && f.messages.texts[0].contains(QStringLiteral("not a picture")),
                 qPrintable(f.messages.texts[0]));
        QCOMPARE(f.recordName(), QStringLiteral("0000001"));
        QCOMPARE(f.storedCounter(), 1);
        QCOMPARE(QDir(f.pictureFolder()).entryList(QDir::Files), before);

        // The clipboard's picture, opened on the field's own file: always a JPEG, the next number.
        QImage copied(50, 50, QImage::Format_RGB32);
        copied.fill(Qt::blue);
        QGuiApplication::clipboard()->setImage(copied);
        f.withLibrary([](gui::PictureLibraryWindow &library) {
            QCOMPARE(library.fileList()->currentItem()->text(), QStringLiteral("0000001.jpg"));
            QTest::mouseClick(library.pasteButton(), Qt::LeftButton);
        });
        QCOMPARE(f.recordName(), QStringLiteral("0000002"));
        QCOMPARE(QDir(f.pictureFolder()).entryList(QDir::Files), QStringList{QStringLiteral("0000002.jpg")});

        // Deleting the picture empties the field and removes its file.
        f.withLibrary([](gui::PictureLibraryWindow &library) { QTest::mouseClick(library.deleteButton(), Qt::LeftButton); });
        QVERIFY(f.recordName().isEmpty());
        QVERIFY(QDir(f.pictureFolder()).entryList(QDir::Files).isEmpty());
        QCOMPARE(f.storedCounter(), 2); // a number is never given out twice
    }
};

QTEST_MAIN(PictureLibraryTest)
#include "test_picture_library.moc"
