// The readable design file: both directions, defaults, colours, numbering and errors.

#include "RichDesign.h"

#include "design/DesignJson.h"
#include "design/DesignReader.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

using namespace ff;
using namespace ff::testsupport;

namespace {

QJsonObject minimal()
{
    return QJsonObject{{QStringLiteral("format"), QStringLiteral("flatform-design")}, {QStringLiteral("version"), 1}};
}

QString errorOf(const QJsonObject &o)
{
    Result<Design> r = DesignJson::fromJson(o);
    return r.ok() ? QString() : r.error().text;
}

} // namespace

TEST(DesignJsonFile, ARichDesignSurvivesJsonAndBack)
{
    for (bool hints : {true, false}) {
        Design d = RichDesign(hints);
        DesignWriter::setCounts(d);
        DeriveDesignValues(d);
        const QJsonObject json = DesignJson::toJson(d);
        Result<Design> back = DesignJson::fromJson(json);
        ASSERT_TRUE(back.ok()) << back.error().text.toStdString();
        EXPECT_EQ(DesignJson::toJson(*back), json);
        EXPECT_EQ(DesignJson::toText(*back), DesignJson::toText(d));
    }
}

TEST(DesignJsonFile, NumberingAndOmittedPadding)
{
    Design d = RichDesign(true);
    DesignWriter::setCounts(d);
    DeriveDesignValues(d);
    const QJsonObject json = DesignJson::toJson(d);
    // Fields start at element 1: no template entry.
    const QJsonArray fields = json[QStringLiteral("Fields")].toArray();
    ASSERT_EQ(fields.size(), 3);
    EXPECT_EQ(fields[0].toObject()[QStringLiteral("MaxLength")].toInt(), 20);
    EXPECT_EQ(fields[0].toObject()[QStringLiteral("Frame")].toObject()[QStringLiteral("color")].toInt(), 0x00AABBCC);
    // Three labels written, not the padding up to index 5.
    EXPECT_EQ(json[QStringLiteral("Titles")].toArray().size(), 3);
    EXPECT_EQ(json[QStringLiteral("Checks")].toArray().size(), 0);
    EXPECT_EQ(json[QStringLiteral("CheckCount")].toInt(), -1);
    // A report with no caption carries nothing else.
    EXPECT_EQ(json[QStringLiteral("Reports")].toArray()[1].toObject().keys(), QStringList{QStringLiteral("Caption")});
    EXPECT_EQ(json[QStringLiteral("format")].toString(), QStringLiteral("flatform-design"));
    // Floats are written in their shortest form.
    EXPECT_EQ(json[QStringLiteral("Shapes")].toArray()[0].toObject()[QStringLiteral("Width")].toDouble(), 1000.5);
}

TEST(DesignJsonFile, OmittedMembersTakeTheDefaults)
{
    Result<Design> r = DesignJson::fromJson(minimal());
    ASSERT_TRUE(r.ok()) << r.error().text.toStdString();
    const Design defaults;
    EXPECT_EQ(r->HasHints, defaults.HasHints);
    EXPECT_EQ(r->ShapeCount, -1);
    EXPECT_EQ(r->FieldCount, 0);
    EXPECT_EQ(r->Fields.size(), 1u);
    EXPECT_EQ(r->Titles.size(), size_t(kMinLabels));
    EXPECT_TRUE(r->MessageText[59].isEmpty());
}

TEST(DesignJsonFile, ColoursTemplatesAndShortTables)
{
    QJsonObject o = minimal();
    o[QStringLiteral("ScrollColor")] = QStringLiteral("#102030");
    o[QStringLiteral("PageBackColor")] = QJsonArray{QStringLiteral("#FF0000"), 255};
    o[QStringLiteral("MessageText")] = QJsonArray{QStringLiteral("File * not found")};
    o[QStringLiteral("Templates")] = QJsonArray{QJsonObject{{QStringLiteral("TemplateExtension"), QStringLiteral("txt")}}};
    o[QStringLiteral("Fields")] = QJsonArray{QJsonObject{{QStringLiteral("FieldType"), 23}, {QStringLiteral("MaxLength"), 40},
                                                          {QStringLiteral("BackColor"), QStringLiteral("#00ff00")}}};
    Result<Design> r = DesignJson::fromJson(o);
    ASSERT_TRUE(r.ok()) << r.error().text.toStdString();
    EXPECT_EQ(r->ScrollColor, 0x302010); // 0x00BBGGRR
    EXPECT_EQ(r->PageBackColor[0], 0x0000FF);
    EXPECT_EQ(r->PageBackColor[1], 255);
    EXPECT_EQ(r->PageBackColor[4], 0);
    EXPECT_EQ(r->MessageText[0], QStringLiteral("File * not found"));
    EXPECT_EQ(r->Templates[0].TemplateExtension, QStringLiteral("*.txt"));
    EXPECT_EQ(r->FieldCount, 1);
    EXPECT_EQ(r->Fields[1].BackColor, 0x00FF00);
    EXPECT_EQ(r->Fields[1].MaxLength, 10); // as the loader forces it for type 23
}

TEST(DesignJsonFile, ErrorsNameTheBadKey)
{
    auto with = [](const QString &key, const QJsonValue &v) {
        QJsonObject o = minimal();
        o[key] = v;
        return o;
    };
    EXPECT_TRUE(errorOf(with(QStringLiteral("Pattern"), 40000)).startsWith(QLatin1String("Pattern:")));
    EXPECT_TRUE(errorOf(with(QStringLiteral("Pattern"), 1.5)).startsWith(QLatin1String("Pattern:")));
    EXPECT_TRUE(errorOf(with(QStringLiteral("AppTitle"), 3)).startsWith(QLatin1String("AppTitle:")));
    EXPECT_TRUE(errorOf(with(QStringLiteral("ShowZeros"), -1)).startsWith(QLatin1String("ShowZeros:")));
    EXPECT_TRUE(errorOf(with(QStringLiteral("ScrollColor"), QStringLiteral("red"))).contains(QLatin1String("#RRGGBB")));
    EXPECT_TRUE(errorOf(with(QStringLiteral("Patern"), 1)).contains(QLatin1String("Patern: unknown key")));
    EXPECT_TRUE(errorOf(with(QStringLiteral("_comment"), QStringLiteral("fine"))).isEmpty());
    EXPECT_TRUE(errorOf(with(QStringLiteral("ChartTexts"), QJsonArray{1})).startsWith(QLatin1String("ChartTexts[0]:")));
    QJsonArray tooMany;
    for (int i = 0; i < 8; ++i)
        tooMany.append(QStringLiteral("x"));
    EXPECT_TRUE(errorOf(with(QStringLiteral("ChartTexts"), tooMany)).contains(QLatin1String("at most 7")));
    const QJsonArray fields{QJsonObject{}, QJsonObject{{QStringLiteral("Frame"), QJsonObject{{QStringLiteral("colour"), 1}}}}};
    EXPECT_EQ(errorOf(with(QStringLiteral("Fields"), fields)), QStringLiteral("Fields[1].Frame.colour: unknown key"));
    const QJsonArray reports{QJsonObject{{QStringLiteral("Caption"), QStringLiteral("r")},
                                         {QStringLiteral("Labels"), QJsonArray{QJsonObject{{QStringLiteral("FontSize"), QStringLiteral("big")}}}}}};
    EXPECT_EQ(errorOf(with(QStringLiteral("Reports"), reports)), QStringLiteral("Reports[0].Labels[0].FontSize: expected a number"));
    QJsonArray pictures;
    for (int i = 0; i < 54; ++i)
        pictures.append(QJsonObject{});
    EXPECT_TRUE(errorOf(with(QStringLiteral("Pictures"), pictures)).contains(QLatin1String("at most 53")));
    QJsonObject wrong = minimal();
    wrong[QStringLiteral("version")] = 2;
    EXPECT_TRUE(errorOf(wrong).startsWith(QLatin1String("version")));
    EXPECT_TRUE(DesignJson::fromText("{ \"format\": ").error().text.startsWith(QLatin1String("line 1")));
}
