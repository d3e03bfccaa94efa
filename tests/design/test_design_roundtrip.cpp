// Design → writer → reader over a design with something in every table.

#include "RichDesign.h"

#include "design/DesignJson.h"
#include "design/DesignReader.h"
#include "design/DesignWriter.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtEndian>

using namespace ff;
using namespace ff::testsupport;

namespace {

// What the reader gives back for a design: counts from the vectors and the derived values.
Design asLoaded(Design d)
{
    DesignWriter::setCounts(d);
    DeriveDesignValues(d);
    return d;
}

::testing::AssertionResult sameDesign(const Design &a, const Design &b)
{
    const QByteArray ja = DesignJson::toText(a), jb = DesignJson::toText(b);
    if (ja == jb)
        return ::testing::AssertionSuccess();
    // Name the first differing line rather than dumping both designs.
    const QList<QByteArray> la = ja.split('\n'), lb = jb.split('\n');
    for (qsizetype i = 0; i < std::min(la.size(), lb.size()); ++i)
        if (la[i] != lb[i])
            return ::testing::AssertionFailure() << "line " << i + 1 << ": " << la[i].toStdString() << " vs " << lb[i].toStdString();
    return ::testing::AssertionFailure() << "lengths differ";
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<absent>");
}

} // namespace

class RoundTrip : public ::testing::TestWithParam<bool> {};

TEST_P(RoundTrip, EveryValueComesBackInItsPlace)
{
    const bool hints = GetParam();
    const Design design = RichDesign(hints);
    const QByteArray head = FakeHead();
    Result<QByteArray> image = DesignWriter::writeImage(design, head, RichFiles());
    ASSERT_TRUE(image.ok()) << image.error().text.toStdString();

    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("app"));
    QDir().mkpath(folder);
    DesignReadOptions options;
    options.extractFolder = folder;
    options.collectFiles = true;
    DesignLoad load = ReadDesignFromBytes(*image, options);
    ASSERT_TRUE(load.complete()) << load.error.text.toStdString();
    EXPECT_EQ(load.blockStart, head.size());
    EXPECT_EQ(load.blockEnd, image->size() - 4); // the whole block, up to the tail
    EXPECT_TRUE(sameDesign(load.design, asLoaded(design)));

    // Derived while loading.
    EXPECT_EQ(load.design.PageCount, 4);           // the button's page; the shape on page 7 is on none
    EXPECT_TRUE(load.design.HasRecordPictures);    // the stretched picture
    EXPECT_EQ(load.design.TitleCount, 2);
    EXPECT_EQ(load.design.Titles.size(), size_t(kMinLabels));
    EXPECT_FALSE(load.design.Titles[5].present);
    EXPECT_EQ(load.design.CheckCount, -1);
    EXPECT_TRUE(load.design.Checks.empty());
    EXPECT_EQ(load.design.FieldCount, 3);
    EXPECT_EQ(load.design.Buttons[0].ToolTip, QStringLiteral("always there"));
    EXPECT_EQ(load.design.Reports.size(), 3u);
    EXPECT_TRUE(load.design.Reports[1].Labels.empty());
    EXPECT_EQ(load.design.Reports[0].Labels[1].LabelRow, 3);

    // Embedded files: extracted beside the program, the hostile name refused and never written.
    EXPECT_EQ(readFile(QDir(folder).filePath(QStringLiteral("logo.gif"))), RichFiles().value(QStringLiteral("logo.gif")));
    EXPECT_EQ(readFile(QDir(folder).filePath(QStringLiteral("tile.gif"))), QByteArray("GIF89a-tile"));
    EXPECT_FALSE(QFile::exists(root.filePath(QStringLiteral("escaped.gif"))));
    EXPECT_EQ(load.refusedFiles, QStringList{QStringLiteral("../escaped.gif")});
    EXPECT_EQ(load.embeddedFiles, RichFiles());
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutHints, RoundTrip, ::testing::Values(true, false));

TEST(RoundTripRules, HintsOffLeavesHintTextsOutAndTheLoaderForcesItsFixedValues)
{
    Design d = RichDesign(false);
    d.Fields[1].FieldHint = QStringLiteral("not in the block");
    d.Titles[0].ToolTip = QStringLiteral("nor this");
    d.Fields[2].MaxLength = 55;   // type 23 is always 10 long
    d.Fields[3].FieldNoSearch = 0; // a global field is never searched
    d.Shapes[0].BorderWidth = 0;   // a stored 0 is 1
    d.Fields[1].FieldBox = false;  // no frame values follow...
    d.Fields[1].Frame = {99, 98};  // ...so these are not in the block
    Result<QByteArray> image = DesignWriter::writeImage(d, FakeHead(), RichFiles());
    ASSERT_TRUE(image.ok());
    DesignLoad load = ReadDesignFromBytes(*image);
    ASSERT_TRUE(load.complete()) << load.error.text.toStdString();
    EXPECT_TRUE(load.design.Fields[1].FieldHint.isEmpty());
    EXPECT_TRUE(load.design.Titles[0].ToolTip.isEmpty());
    EXPECT_EQ(load.design.Buttons[0].ToolTip, QStringLiteral("always there")); // the button's tip stays
    EXPECT_EQ(load.design.Fields[2].MaxLength, 10);
    EXPECT_EQ(load.design.Fields[3].FieldNoSearch, 1);
    EXPECT_EQ(load.design.Shapes[0].BorderWidth, 1);
    EXPECT_EQ(load.design.Fields[1].Frame.color, 0);
    EXPECT_EQ(load.design.Fields[2].FieldFormula, QStringLiteral("F1+F2*2")); // still in place after them
    EXPECT_EQ(load.design.Fields[3].FieldFormula, QStringLiteral("F1+F3*2"));
}

TEST(RoundTripRules, AnEmptyDesignHasCountsOfNone)
{
    Design empty;
    Result<QByteArray> image = DesignWriter::writeImage(empty, FakeHead(), {});
    ASSERT_TRUE(image.ok()) << image.error().text.toStdString();
    DesignLoad load = ReadDesignFromBytes(*image);
    ASSERT_TRUE(load.complete()) << load.error.text.toStdString();
    EXPECT_EQ(load.design.ShapeCount, -1);
    EXPECT_EQ(load.design.FieldCount, 0);
    EXPECT_EQ(load.design.Fields.size(), 1u);
    EXPECT_EQ(load.design.PageCount, 0);
    EXPECT_TRUE(sameDesign(load.design, asLoaded(empty)));
}

TEST(RoundTripRules, AnExistingBackgroundPictureEndsTheRead)
{
    QTemporaryDir dir;
    QFile tile(dir.filePath(QStringLiteral("tile.gif")));
    ASSERT_TRUE(tile.open(QIODevice::WriteOnly));
    tile.write("mine");
    tile.close();
    Result<QByteArray> image = DesignWriter::writeImage(RichDesign(true), FakeHead(), RichFiles());
    // Cut the image inside the background's data: with the file present nothing more is needed.
    QByteArray cut = image->left(image->size() - 4 - 6);
    QByteArray tail(4, '\0');
    qToLittleEndian<int32_t>(int32_t(cut.size() - FakeHead().size()), tail.data());
    DesignReadOptions options;
    options.extractFolder = dir.path();
    DesignLoad load = ReadDesignFromBytes(cut + tail, options);
    EXPECT_TRUE(load.complete()) << load.error.text.toStdString();
    EXPECT_EQ(readFile(tile.fileName()), QByteArray("mine"));
    EXPECT_FALSE(ReadDesignFromBytes(cut + tail, {QString(), true}).complete());
}

TEST(RoundTripRules, EveryCutOfTheBlockFailsCleanlyAndKeepsWhatWasRead)
{
    const QByteArray head = FakeHead();
    const Design design = RichDesign(true);
    QByteArray block = *DesignWriter::writeBlock(design, head, RichFiles());
    block.chop(4);
    int failures = 0;
    for (qsizetype n = 0; n < block.size(); n += 3) {
        QByteArray tail(4, '\0');
        qToLittleEndian<int32_t>(int32_t(n), tail.data());
        DesignLoad load = ReadDesignFromBytes(head + block.left(n) + tail, {QString(), true});
        // The tail's own bytes may complete the last item; short of that the load fails.
        if (!load.complete())
            ++failures;
        EXPECT_LE(load.blockEnd, head.size() + n + 4);
        if (n > 200) {
            EXPECT_EQ(load.design.AppTitle, design.AppTitle);
        }
    }
    EXPECT_GE(failures, int(block.size() / 3) - 2);
}

TEST(WriterLimits, TheHeadMustHoldASaltForEveryText)
{
    Result<QByteArray> r = DesignWriter::writeBlock(RichDesign(true), FakeHead(300), RichFiles());
    ASSERT_FALSE(r.ok());
    EXPECT_TRUE(r.error().text.contains(QLatin1String("too short")));
}

TEST(WriterLimits, WhatTheBlockCannotHoldIsRefused)
{
    Design d;
    d.Pictures.resize(54);
    EXPECT_EQ(DesignWriter::writeBlock(d, FakeHead(), {}).error().code, ErrorCode::Overflow);
    Design r;
    r.Reports.resize(256);
    EXPECT_EQ(DesignWriter::writeBlock(r, FakeHead(), {}).error().code, ErrorCode::Overflow);
    Design missing = RichDesign(true);
    EXPECT_EQ(DesignWriter::writeBlock(missing, FakeHead(), {}).error().code, ErrorCode::FileNotFound);
}
