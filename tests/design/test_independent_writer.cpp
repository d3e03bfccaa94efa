// Reads an image made by tests/support/independent_design_writer.py, a writer made from the block
// format alone, and checks every value it wrote at the place it names.

#include "design/DesignJson.h"
#include "design/DesignReader.h"
#include "support/Programs.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace ff;
using namespace ff::testsupport;

namespace {

// Follows a path such as "Reports[0].Labels[1].Text" through the design's JSON form.
QJsonValue resolve(const QJsonObject &root, const QString &path)
{
    static const QRegularExpression part(QStringLiteral("^([A-Za-z0-9_]+)(?:\\[(\\d+)\\])?$"));
    QJsonValue v = root;
    for (const QString &piece : path.split(QLatin1Char('.'))) {
        const auto m = part.match(piece);
        if (!m.hasMatch() || !v.isObject())
            return QJsonValue(QJsonValue::Undefined);
        v = v.toObject().value(m.captured(1));
        if (!m.captured(2).isEmpty()) {
            const QJsonArray a = v.toArray();
            const int i = m.captured(2).toInt();
            // Short string and number tables leave out their trailing empty entries.
            v = i < a.size() ? a[i] : QJsonValue(QString());
        }
    }
    return v;
}

std::string show(const QJsonValue &v)
{
    return QJsonDocument(QJsonArray{v}).toJson(QJsonDocument::Compact).toStdString();
}

class IndependentWriter : public ::testing::TestWithParam<bool> {};

} // namespace

TEST_P(IndependentWriter, EveryValueIsReadAtItsPlace)
{
    const bool hints = GetParam();
    QTemporaryDir dir;
    const QString image = dir.filePath(QStringLiteral("app.exe")), expectedPath = dir.filePath(QStringLiteral("expected.json"));
    QStringList args{image, expectedPath};
    if (!hints)
        args << QStringLiteral("--no-hints");
    const ProgramRun python = runSupportScript(QStringLiteral("independent_design_writer.py"), args);
    ASSERT_EQ(python.exitCode, 0) << python.err.toStdString();

    QFile f(expectedPath);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QJsonObject expected = QJsonDocument::fromJson(f.readAll()).object();
    const QJsonObject values = expected[QStringLiteral("values")].toObject();
    ASSERT_GT(values.size(), 400);

    DesignReadOptions options;
    options.collectFiles = true;
    const DesignLoad load = ReadDesign(image, options);
    ASSERT_TRUE(load.complete()) << load.error.text.toStdString();
    EXPECT_EQ(load.blockStart, expected[QStringLiteral("blockStart")].toInt());
    const QJsonObject actual = DesignJson::toJson(load.design);

    int checked = 0;
    for (auto it = values.begin(); it != values.end(); ++it) {
        const QString path = it.key();
        if (path.startsWith(QLatin1Char('#'))) {
            EXPECT_EQ(actual.value(path.mid(1)).toArray().size(), it.value().toInt()) << path.toStdString();
            continue;
        }
        const QJsonValue got = resolve(actual, path);
        if (it.value().isDouble())
            EXPECT_DOUBLE_EQ(got.toDouble(std::nan("")), it.value().toDouble()) << path.toStdString();
        else
            EXPECT_EQ(got, it.value()) << path.toStdString() << ": " << show(got) << " instead of " << show(it.value());
        ++checked;
    }
    EXPECT_EQ(checked + 2, values.size());
    const QJsonObject files = expected[QStringLiteral("files")].toObject();
    for (auto it = files.begin(); it != files.end(); ++it)
        EXPECT_EQ(load.embeddedFiles.value(it.key()), QByteArray::fromHex(it.value().toString().toLatin1())) << it.key().toStdString();
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutHints, IndependentWriter, ::testing::Values(true, false));
