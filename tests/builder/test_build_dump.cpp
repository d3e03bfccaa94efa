// flatform-build and `flatform-cli dump-design` as whole processes: a design file with pictures is
// built onto a run-time and dumped back.

#include "design/DesignJson.h"
#include "support/Programs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace ff;
using namespace ff::testsupport;

namespace {

void writeFile(const QString &path, const QByteArray &data)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(data);
}

const char *kDesign = R"({
  "format": "flatform-design", "version": 1,
  "_comment": "two pages, a picture, a report",
  "AppTitle": "Recipes", "FontCharset": 0, "HasHints": false, "ScrollColor": "#336699",
  "MessageText": ["File * not found"], "PageCaptions": ["Main", "Notes"],
  "DataExtension": "rcp", "FieldSeparator": ";", "AdminPassword": "chef",
  "BackgroundPicture": "tile.gif",
  "Pictures": [{"PictureName": "logo", "FileName": "logo.gif", "Width": 500, "Height": 400},
               {"PictureName": "photo", "Stretch": true}],
  "Titles": [{"Caption": "Recipe"}, {}],
  "Fields": [{"FieldType": 0, "MaxLength": 40, "Top": 100, "Left": 100, "Width": 3000, "Height": 300,
              "FieldFormula": "", "ToolTip": "", "FieldBox": true, "Frame": {"color": "#000000", "fill": 1}},
             {"FieldType": 5, "FieldPage": 1, "FieldFormula": "F1*2"}],
  "Combos": [{"List": ["soup", "cake"], "Width": 1200}],
  "Buttons": [{"Caption": "Find", "ToolTip": "find soups", "ButtonScript": "F1=soup"}],
  "Reports": [{"Caption": "List", "Labels": [{"LabelFixed": 1, "Text": "F", "LabelRow": 1}]}, {"Caption": ""}]
})";

class BuildAndDump : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString runtime, design, image;
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        // A stand-in run-time: a few kilobytes of varied bytes.
        QByteArray head(8192, '\0');
        for (int i = 0; i < head.size(); ++i)
            head[i] = static_cast<char>((i * 7919 + 17) >> 3);
        runtime = dir.filePath(QStringLiteral("runtime"));
        writeFile(runtime, head);
        design = dir.filePath(QStringLiteral("recipes.json"));
        writeFile(design, kDesign);
        writeFile(dir.filePath(QStringLiteral("logo.gif")), "GIF89a logo");
        writeFile(dir.filePath(QStringLiteral("tile.gif")), "GIF89a tile");
        QDir().mkpath(dir.filePath(QStringLiteral("out")));
        image = dir.filePath(QStringLiteral("out/recipes.exe"));
    }
    ProgramRun build(const QStringList &extra = {})
    {
        return runProgram(QStringLiteral(FLATFORM_BUILD_EXE), QStringList{design, QStringLiteral("-o"), image} + extra);
    }
};

} // namespace

TEST_F(BuildAndDump, TheDumpIsTheDesignThatWasBuilt)
{
    ProgramRun b = build({QStringLiteral("--runtime"), runtime});
    ASSERT_EQ(b.exitCode, 0) << b.err.toStdString();
    EXPECT_TRUE(QFileInfo(image).isExecutable());
    QFile out(image);
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    const QByteArray bytes = out.readAll();
    QFile rt(runtime);
    ASSERT_TRUE(rt.open(QIODevice::ReadOnly));
    EXPECT_TRUE(bytes.startsWith(rt.readAll())); // a copy of the run-time with the block behind it

    ProgramRun d = runProgram(QStringLiteral(FLATFORM_CLI_EXE), {QStringLiteral("dump-design"), image});
    ASSERT_EQ(d.exitCode, 0) << d.err.toStdString();
    const QJsonDocument dumped = QJsonDocument::fromJson(d.out);
    ASSERT_TRUE(dumped.isObject()) << d.out.toStdString();
    Result<Design> expected = DesignJson::fromText(kDesign);
    ASSERT_TRUE(expected.ok()) << expected.error().text.toStdString();
    EXPECT_EQ(dumped.object(), DesignJson::toJson(*expected));
    EXPECT_EQ(dumped.object()[QStringLiteral("ScrollColor")].toInt(), 0x996633);
    EXPECT_EQ(dumped.object()[QStringLiteral("Fields")].toArray()[1].toObject()[QStringLiteral("FieldFormula")].toString(),
              QStringLiteral("F1*2"));
    // The dump is stable and never extracts the embedded pictures.
    EXPECT_EQ(runProgram(QStringLiteral(FLATFORM_CLI_EXE), {QStringLiteral("dump-design"), image}).out, d.out);
    EXPECT_EQ(QDir(dir.filePath(QStringLiteral("out"))).entryList(QDir::Files), QStringList{QStringLiteral("recipes.exe")});

    // A damaged image: the same file cut inside its block.
    const QString damaged = dir.filePath(QStringLiteral("out/damaged.exe"));
    QByteArray cut = bytes.left(bytes.size() - 300) + bytes.right(4);
    writeFile(damaged, cut);
    ProgramRun bad = runProgram(QStringLiteral(FLATFORM_CLI_EXE), {QStringLiteral("dump-design"), damaged});
    EXPECT_NE(bad.exitCode, 0);
    EXPECT_TRUE(bad.out.isEmpty());
    EXPECT_TRUE(bad.err.contains("damaged.exe")) << bad.err.toStdString();
    EXPECT_NE(runProgram(QStringLiteral(FLATFORM_CLI_EXE), {QStringLiteral("dump-design"), runtime}).exitCode, 0); // no block at all
}

TEST_F(BuildAndDump, BadInputsGiveAMessageAndNoImage)
{
    // No run-time beside the builder and none given.
    ProgramRun noRuntime = build({QStringLiteral("--runtime"), dir.filePath(QStringLiteral("missing"))});
    EXPECT_NE(noRuntime.exitCode, 0);
    EXPECT_TRUE(noRuntime.err.contains("run-time")) << noRuntime.err.toStdString();

    QFile::remove(dir.filePath(QStringLiteral("logo.gif")));
    ProgramRun noPicture = build({QStringLiteral("--runtime"), runtime});
    EXPECT_NE(noPicture.exitCode, 0);
    EXPECT_TRUE(noPicture.err.contains("logo.gif")) << noPicture.err.toStdString();

    writeFile(design, R"({"format": "flatform-design", "version": 1, "Fields": [{"MaxLength": "long"}]})");
    ProgramRun badKey = build({QStringLiteral("--runtime"), runtime});
    EXPECT_NE(badKey.exitCode, 0);
    EXPECT_TRUE(badKey.err.contains("Fields[0].MaxLength")) << badKey.err.toStdString();

    writeFile(design, "{ not json");
    EXPECT_NE(build({QStringLiteral("--runtime"), runtime}).exitCode, 0);
    writeFile(design, R"({"format": "flatform-design", "version": 1, "BackgroundPicture": "../up.gif"})");
    EXPECT_NE(build({QStringLiteral("--runtime"), runtime}).exitCode, 0);
    EXPECT_FALSE(QFile::exists(image));
}
