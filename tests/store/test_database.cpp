// Opening and closing a database without a window: creating a missing file, read-only files and
// users, the per-user file and the record picture folder.

#include "core/Scramble.h"
#include "store/Database.h"
#include "store/UserFile.h"
#include "store/VariantFile.h"
#include "support/StoreFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

struct Session {
    RecordingStoreHost host;
    Database db;
    Session(const QTemporaryDir &dir, Design d, const QStringList &args = {})
        : db(std::move(d), ParseCommandLine(dir.filePath(QStringLiteral("shop")), args), &host)
    {
        db.start();
    }
};

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

TEST(Database, MissingFileIsCreatedThenReopened)
{
    QTemporaryDir dir;
    {
        Session s(dir, fullDesign());
        // Named after the image, in proper case, beside it.
        EXPECT_EQ(s.db.DataFileName, dir.filePath(QStringLiteral("Shop.dat")));
        s.db.DataFileName = dir.filePath(QStringLiteral("shop.dat"));
        ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
        EXPECT_TRUE(s.host.texts().isEmpty());
        EXPECT_EQ(s.db.store().RecordCount(), 1);
        EXPECT_EQ(s.db.store().RecordPictureFolder(), dir.filePath(QStringLiteral("ShopPics/")));
        EXPECT_TRUE(QFileInfo(s.db.store().RecordPictureFolder()).isDir());
        s.db.page().FieldText[1] = QStringLiteral("first");
        EXPECT_TRUE(s.db.store().LockRecord());
        s.db.page().FieldText[10] = QStringLiteral("glob");
        ASSERT_TRUE(s.db.shutdown()); // saves the dirty record and writes the per-user file
    }
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("shop.cfg"))));
    Session again(dir, fullDesign());
    again.db.DataFileName = dir.filePath(QStringLiteral("shop.dat"));
    EXPECT_EQ(again.db.page().FieldText[10], QStringLiteral("glob"));
    ASSERT_TRUE(again.db.OpenDatabase(OpenMode::Open));
    EXPECT_EQ(again.db.store().RecordCount(), 1);
    EXPECT_EQ(again.db.page().FieldText[1], QStringLiteral("first"));
    EXPECT_FALSE(again.db.store().ReadOnlyMode());
}

TEST(Database, ReadOnlyFileAndReadOnlyUser)
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("ro.dat"));
    {
        Session s(dir, smallDesign());
        s.db.DataFileName = data;
        ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Create));
        s.db.page().FieldText[1] = QStringLiteral("kept");
        EXPECT_TRUE(s.db.store().LockRecord());
        ASSERT_TRUE(s.db.shutdown());
    }
    const QByteArray before = readAll(data);
    QFile::setPermissions(data, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    {
        Session s(dir, smallDesign());
        s.db.DataFileName = data;
        ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
        EXPECT_TRUE(s.db.store().ReadOnlyMode());
        EXPECT_TRUE(s.db.page().FieldLocked[1]);
        EXPECT_EQ(s.db.page().FieldText[1], QStringLiteral("kept"));
        EXPECT_TRUE(s.db.store().LockRecord());
        s.db.page().FieldText[1] = QStringLiteral("lost");
        EXPECT_TRUE(s.db.store().NewRecord());
        EXPECT_TRUE(s.db.shutdown());
    }
    EXPECT_EQ(readAll(data), before);
    QFile::setPermissions(data, QFileDevice::ReadOwner | QFileDevice::WriteOwner);

    // A user with read rights only: the file is writable, nothing is written.
    Session s(dir, smallDesign());
    s.db.users().UserName[3] = CodeText(QStringLiteral("ann"), s.db.codePage());
    s.db.users().UserRights[3] = 1;
    s.db.applyLogin(3, QString());
    EXPECT_EQ(s.db.MainCaption, QStringLiteral("Small        Login : ann"));
    s.db.DataFileName = data;
    ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
    EXPECT_TRUE(s.db.store().ViewOnlyMode());
    EXPECT_TRUE(s.db.store().LockRecord());
    s.db.page().FieldText[1] = QStringLiteral("lost");
    EXPECT_TRUE(s.db.shutdown());
    EXPECT_EQ(readAll(data), before);
}

TEST(Database, FileErrorsShowTheMessage)
{
    QTemporaryDir dir;
    Session s(dir, fullDesign());
    s.db.DataFileName = dir.filePath(QStringLiteral("no/such/folder/x.dat"));
    EXPECT_FALSE(s.db.OpenDatabase(OpenMode::Open));
    ASSERT_EQ(s.host.texts().size(), 1);
    EXPECT_EQ(s.host.texts()[0], QStringLiteral("File %1 not found").arg(s.db.DataFileName));
}

TEST(Database, ACountPastTheRangeIsRecountedFromTheFirstRecordsPart)
{
    // Two further parts of 2^30 records each would make the count overflow (error 6): the last
    // part is worked out again from record 1 and the records are counted from that part.
    QTemporaryDir dir;
    SmallParts parts(int64_t(1) << 30);
    const QString data = dir.filePath(QStringLiteral("shop.dat"));
    {
        QFile f(data);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        ASSERT_TRUE(f.write(QByteArray(4 * 17 - 1, ' ')) == 4 * 17 - 1); // header and records 1 to 3
    }
    for (const char *part : {"shop0001", "shop0002"}) {
        QFile f(dir.filePath(QLatin1String(part)));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    Session s(dir, smallDesign());
    s.db.DataFileName = data;
    ASSERT_TRUE(s.db.OpenDatabase(OpenMode::Open));
    EXPECT_EQ(s.db.store().RecordCount(), 3);
    EXPECT_TRUE(s.host.texts().isEmpty());
}

TEST(UserFile, RoundTripInVariantForm)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("u.cfg"));
    const Design design = fullDesign();
    Page page(design);
    UserTable users;
    page.TitleCaption[0] = QStringLiteral("not kept");
    page.TitleCaption[6] = QStringLiteral("Größe");
    page.TitleCaption[7] = QString();
    page.FieldText[10] = QStringLiteral("global");
    users.UserName[0] = CodeText(QStringLiteral("admin"), CodePage());
    users.UserPassword[0] = CodeText(QStringLiteral("pw"), CodePage());
    users.UserRights[250] = 1;
    ASSERT_TRUE(UserFile::Write(path, page, users));

    // The file as another reader sees it: label 6 scrambled text, label 7, field 10, three arrays.
    VariantFile in(readAll(path));
    EXPECT_EQ(UnscrambleText(*in.readText()), QByteArray("Gr\xF6\xDF" "e"));
    EXPECT_EQ(*in.readText(), QByteArray());
    EXPECT_EQ(*in.readText(), QByteArray("global"));
    EXPECT_EQ(in.readTextArray()->size(), kUserCount);
    EXPECT_EQ(in.readTextArray()->at(0), users.UserPassword[0].toLatin1());
    const QByteArray rights = *in.readByteArray();
    EXPECT_EQ(rights.size(), kUserCount);
    EXPECT_EQ(rights.at(250), 1);
    EXPECT_TRUE(in.atEnd());

    Page back(design);
    UserTable backUsers;
    ASSERT_TRUE(UserFile::Read(path, back, backUsers));
    EXPECT_EQ(back.TitleCaption[0], design.Titles[0].Caption);
    EXPECT_EQ(back.TitleCaption[6], QStringLiteral("Größe"));
    EXPECT_EQ(back.FieldText[10], QStringLiteral("global"));
    EXPECT_EQ(backUsers.UserName[0], users.UserName[0]);
    EXPECT_EQ(backUsers.UserRights[250], 1);

    // A damaged file keeps what was read before the damage.
    QByteArray cut = readAll(path);
    cut.truncate(23 + 20); // labels and global field whole, the names array cut
    { QFile f(path); ASSERT_TRUE(f.open(QIODevice::WriteOnly)); f.write(cut); }
    Page partial(design);
    UserTable none;
    EXPECT_FALSE(UserFile::Read(path, partial, none));
    EXPECT_EQ(partial.TitleCaption[6], QStringLiteral("Größe"));
    EXPECT_EQ(partial.FieldText[10], QStringLiteral("global"));
    EXPECT_TRUE(none.UserName[0].isEmpty());
    // No file at all is no error.
    EXPECT_TRUE(UserFile::Read(dir.filePath(QStringLiteral("none.cfg")), partial, none));
}
