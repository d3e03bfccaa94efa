// The XML record text: its exact line forms, the escapes in their order, the reading of fields by
// tag and of the FLOWPage section, and a record carried between two different designs.

#include "export/XmlRecord.h"
#include "support/StoreFixture.h"

#include <QLocale>

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

// a text, b date, c float; combo d; checks e, f; note g; record picture h; flow layer on.
Design designA()
{
    Design d;
    d.AppTitle = QStringLiteral("Alpha");
    d.FlowPageEnabled = 1;
    d.Fields.resize(4);
    d.Fields[1] = makeField(0, 20);
    d.Fields[1].Tag = QStringLiteral("a");
    d.Fields[2] = makeField(7);
    d.Fields[2].Tag = QStringLiteral("b");
    d.Fields[3] = makeField(1);
    d.Fields[3].Tag = QStringLiteral("c");
    d.FieldCount = 3;
    d.Combos.resize(2);
    d.Combos[1].Tag = QStringLiteral("d");
    d.ComboCount = 1;
    d.Checks.resize(2);
    d.Checks[0].Tag = QStringLiteral("e");
    d.Checks[1].Tag = QStringLiteral("f");
    d.CheckCount = 1;
    d.Notes.resize(2);
    d.Notes[1].Tag = QStringLiteral("g");
    d.NoteCount = 1;
    d.Pictures.resize(2);
    d.Pictures[0].PictureName = QStringLiteral("logo"); // a fixed picture: not in the text
    d.Pictures[1].PictureName = QStringLiteral("h");
    d.Pictures[1].Stretch = true;
    d.PictureCount = 1;
    addLabels(d, 6);
    return d;
}

TEST(XmlEscapes, InTheirOrder)
{
    const struct {
        const char *text, *escaped, *back;
    } cases[] = {
        {"a<b>&c", "a&lt;b&gt;&amp;c", "a<b>&c"},
        // The double quote is escaped first and its "&" again: it reads back as "&quot;".
        {"say \"hi\"", "say &amp;quot;hi&amp;quot;", "say &quot;hi&quot;"},
        {"line\r\nnext", "line\r\nnext", "line\r\nnext"},
        // "&amp;" goes ahead of "&lt;": an escaped "&lt;" reads back as "<".
        {"&lt;", "&amp;lt;", "<"},
    };
    for (const auto &c : cases) {
        const QString escaped = XmlRecord::XmlEscape(QString::fromUtf8(c.text));
        EXPECT_EQ(escaped, QString::fromUtf8(c.escaped)) << c.text;
        EXPECT_EQ(XmlRecord::XmlUnescape(escaped), QString::fromUtf8(c.back)) << c.text;
    }
    EXPECT_EQ(XmlRecord::XmlUnescape(QStringLiteral("&quot;&amp;quot;&lt;")), QStringLiteral("\"&quot;<"));
}

TEST(XmlRecordText, ExactLineForms)
{
    const Design d = designA();
    Page page(d);
    page.FieldText[1] = QStringLiteral("x<y");
    page.FieldText[2] = QStringLiteral("1/2/2003");
    page.FieldText[3] = QStringLiteral("1.5");
    page.ComboText[1] = QStringLiteral("red");
    page.CheckValue[0] = 1;
    page.CheckValue[1] = 0;
    page.NoteText[1] = QStringLiteral("one\r\ntwo");
    page.PictureRecordName[1] = QStringLiteral("0000007");
    FlowLabel label;
    label.text = QStringLiteral("Hi, you");
    label.alignment = 2;
    label.fontSize = 12;
    label.style = 101; // bold and underlined
    label.left = 100;
    label.top = 200;
    label.page = 1;
    page.FlowLabels.push_back(label);
    FlowImage image;
    image.FlowImageId = 4;
    image.FlowImageLink = 9;
    image.page = 0;
    image.left = 10;
    image.top = 20;
    image.width = 30;
    image.height = 40;
    page.FlowImages.push_back(image);
    const QString expected = QStringLiteral(
        "<?xml version=\"1.0\" ?>\r\n"
        "<Alpha_Record_12>\r\n"
        "  <a>x&lt;y</a>\r\n"
        "  <b>1/2/2003</b>\r\n"
        "  <c>1.5</c>\r\n"
        "  <d>red</d>\r\n"
        "  <e>1</e>\r\n"
        "  <f>0</f>\r\n"
        "  <g>one\r\ntwo</g>\r\n"
        "  <h>0000007</h>\r\n"
        "<FLOWPage>\r\n"
        "  Label,Hi, you,2,12,-1,0,-1,100,200,0,1\r\n"
        "  Image,4,9,0,10,20,30,40\r\n"
        "</FLOWPage>\r\n"
        "</Alpha_Record_12>\r\n");
    EXPECT_EQ(XmlRecord::CopyAll(page, 12), expected);

    // The chosen fields alone; the whole page chosen is the whole record.
    const QString some = XmlRecord::CopyData(page, 12, {{ElementKind::Combo, 1}, {ElementKind::Field, 1}});
    EXPECT_EQ(some, QStringLiteral("  <a>x&lt;y</a>\r\n  <d>red</d>\r\n"));
    QVector<XmlElementChoice> all = {{ElementKind::Field, 1}, {ElementKind::Field, 2}, {ElementKind::Field, 3},
                                     {ElementKind::Combo, 1}, {ElementKind::Check, 0}, {ElementKind::Check, 1},
                                     {ElementKind::Note, 1}, {ElementKind::Picture, 1}};
    EXPECT_EQ(XmlRecord::CopyData(page, 12, all), expected);

    // Without page work there is no FLOWPage section.
    Design plain = designA();
    plain.FlowPageEnabled = 0;
    Page plainPage(plain);
    EXPECT_FALSE(XmlRecord::CopyAll(plainPage, 1).contains(QLatin1String("FLOWPage")));
}

TEST(XmlImport, FieldsByTheirTags)
{
    Design d = designA();
    d.Fields[3].Tag = QStringLiteral("a"); // two fields of one tag: the first position serves both
    d.Checks[1].Tag = QStringLiteral("e");
    Page page(d);
    page.FieldText[2] = QStringLiteral("untouched");
    const QString text = QStringLiteral(
        "<r>\r\n  <a>x &lt;tag&gt; &amp;quot;</a>\r\n  <a>second</a>\r\n  <d>blue</d>\r\n"
        "  <e>5</e>\r\n  <g>n1\r\nn2</g>\r\n  <h>12.jpg</h>\r\n</r>\r\n");
    const XmlImportResult result = XmlRecord::XMLimport(page, text, false);
    EXPECT_EQ(page.FieldText[1], QStringLiteral("x <tag> &quot;"));
    EXPECT_EQ(page.FieldText[3], QStringLiteral("x <tag> &quot;"));
    EXPECT_EQ(page.FieldText[2], QStringLiteral("untouched")); // no <b>: left alone
    EXPECT_EQ(page.ComboText[1], QStringLiteral("blue"));
    EXPECT_EQ(page.CheckValue[0], 1);
    EXPECT_EQ(page.CheckValue[1], 1);
    EXPECT_EQ(page.NoteText[1], QStringLiteral("n1\r\nn2"));
    EXPECT_EQ(page.PictureRecordName[1], QStringLiteral("12.jpg"));
    EXPECT_EQ(result.valuesSet, 7);
    EXPECT_TRUE(result.markChanged);
    EXPECT_FALSE(XmlRecord::XMLimport(page, text, true).markChanged);
}

TEST(XmlImport, LockedFieldsAndBadNamesAreLeftAlone)
{
    Design d = designA();
    d.Fields[1].Locked = 1;
    Page page(d);
    page.FieldText[1] = QStringLiteral("design lock");
    page.FieldLocked[3] = true; // a write-once field of a stored record
    page.FieldText[3] = QStringLiteral("once");
    page.PictureRecordName[1] = QStringLiteral("keep");
    XmlRecord::XMLimport(page, QStringLiteral("<a>new</a><c>new</c><b>2003-01-02</b><h>../../etc/x</h>"), false);
    EXPECT_EQ(page.FieldText[1], QStringLiteral("design lock"));
    EXPECT_EQ(page.FieldText[3], QStringLiteral("once"));
    EXPECT_EQ(page.PictureRecordName[1], QStringLiteral("keep"));
    EXPECT_EQ(page.FieldText[2], QStringLiteral("2003-01-02"));
    EXPECT_EQ(page.FieldDate[2], 37623.0); // the date behind the text
    // A closing tag ahead of the opening one, or an opening tag alone, is no value.
    XmlRecord::XMLimport(page, QStringLiteral("</b>x<b>"), false);
    XmlRecord::XMLimport(page, QStringLiteral("<b>cut off"), false);
    EXPECT_EQ(page.FieldText[2], QStringLiteral("2003-01-02"));
}

TEST(XmlImport, FlowItemsAreAddedToThoseThere)
{
    const Design d = designA();
    Page page(d);
    FlowLabel there;
    there.text = QStringLiteral("there");
    page.FlowLabels.push_back(there);
    const QString text = QStringLiteral(
        "<FLOWPage>\r\n"
        "  Label,a &lt;b&gt;, c,1,10,-1,-1,0,5,6,999,2\r\n"
        "  Image,3,7,1,1,2,3,4\r\n"
        "  Shape,whatever\r\n"
        "\r\n"
        "  Label,short,1\r\n"
        "  Image,9,9,9,9,9,9,9\r\n"
        "</FLOWPage>\r\n");
    const XmlImportResult result = XmlRecord::XMLimport(page, text, false);
    // The short label line ends the reading: what came before it stays.
    EXPECT_EQ(result.labelsAdded, 1);
    EXPECT_EQ(result.imagesAdded, 1);
    ASSERT_EQ(page.FlowLabels.size(), 2);
    EXPECT_EQ(page.FlowLabels[0].text, QStringLiteral("there"));
    const FlowLabel &l = page.FlowLabels[1];
    EXPECT_EQ(l.text, QStringLiteral("a <b>, c"));
    EXPECT_EQ(l.alignment, 1);
    EXPECT_EQ(l.fontSize, 10);
    EXPECT_EQ(l.style, 11);
    EXPECT_EQ(l.left, 5);
    EXPECT_EQ(l.top, 6);
    EXPECT_EQ(l.page, 2);
    ASSERT_EQ(page.FlowImages.size(), 1);
    EXPECT_EQ(page.FlowImages[0].FlowImageId, 3);
    EXPECT_EQ(page.FlowImages[0].FlowImageLink, 7);
    EXPECT_EQ(page.FlowImages[0].page, 1);
    EXPECT_EQ(page.FlowImages[0].height, 4);

    // No closing mark: no flow items.
    Page other(d);
    XmlRecord::XMLimport(other, QStringLiteral("<FLOWPage>\r\n  Image,1,1,1,1,1,1,1\r\n"), false);
    EXPECT_TRUE(other.FlowImages.isEmpty());
}

TEST(XmlImport, ARecordGoesOverToAnotherDesign)
{
    // Design B has the tags of A in another order and kind, one of its own, and A's flow layer.
    Design b;
    b.AppTitle = QStringLiteral("Beta");
    b.FlowPageEnabled = 1;
    b.Fields.resize(4);
    b.Fields[1] = makeField(0, 30);
    b.Fields[1].Tag = QStringLiteral("g"); // A's note as a text field
    b.Fields[2] = makeField(9);
    b.Fields[2].Tag = QStringLiteral("b");
    b.Fields[3] = makeField(0, 5);
    b.Fields[3].Tag = QStringLiteral("only_b");
    b.FieldCount = 3;
    b.Combos.resize(2);
    b.Combos[1].Tag = QStringLiteral("a");
    b.ComboCount = 1;
    b.Checks.resize(1);
    b.Checks[0].Tag = QStringLiteral("f");
    b.CheckCount = 0;
    b.Notes.resize(2);
    b.Notes[1].Tag = QStringLiteral("c");
    b.NoteCount = 1;
    addLabels(b, 6);

    const Design a = designA();
    Page from(a);
    from.FieldText[1] = QStringLiteral("Tom & \"Jerry\" <3");
    from.FieldText[2] = QStringLiteral("2/29/2024");
    from.FieldDate[2] = 45351;
    from.FieldText[3] = QStringLiteral("3.25");
    from.CheckValue[1] = 1;
    from.NoteText[1] = QStringLiteral("note,\r\nwith lines");
    for (int k = 0; k < 3; ++k) {
        FlowLabel l;
        l.text = QStringLiteral("label %1, <%1>").arg(k);
        l.left = 100 * k;
        l.top = 7;
        l.style = 10;
        l.fontSize = 9;
        l.page = uint8_t(k);
        from.FlowLabels.push_back(l);
    }
    Page to(b);
    to.FieldText[3] = QStringLiteral("mine");
    const QString text = XmlRecord::CopyAll(from, 3);
    XmlRecord::XMLimport(to, text, false);
    EXPECT_EQ(to.ComboText[1], QStringLiteral("Tom & &quot;Jerry&quot; <3")); // the quote's own rule
    EXPECT_EQ(to.FieldText[1], QStringLiteral("note,\r\nwith lines"));
    EXPECT_EQ(to.FieldDate[2], 45351.0);
    EXPECT_EQ(to.NoteText[1], QStringLiteral("3.25"));
    EXPECT_EQ(to.CheckValue[0], 1);
    EXPECT_EQ(to.FieldText[3], QStringLiteral("mine"));
    ASSERT_EQ(to.FlowLabels.size(), 3);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(to.FlowLabels[k].text, from.FlowLabels[k].text);
        EXPECT_EQ(to.FlowLabels[k].left, from.FlowLabels[k].left);
        EXPECT_EQ(to.FlowLabels[k].style, from.FlowLabels[k].style);
        EXPECT_EQ(to.FlowLabels[k].fontSize, from.FlowLabels[k].fontSize);
        EXPECT_EQ(to.FlowLabels[k].page, from.FlowLabels[k].page);
    }
    // Pasted twice, the labels are added again.
    XmlRecord::XMLimport(to, text, false);
    EXPECT_EQ(to.FlowLabels.size(), 6);
}

} // namespace
