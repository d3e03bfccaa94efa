// The record codec: layout, every field type, the display rules, the flow area and scrambling.

#include "core/Scramble.h"
#include "store/RecordCodec.h"
#include "support/StoreFixture.h"

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

struct Codec {
    Design design;
    RecordLayout layout;
    FormulaHooks hooks;
    RecordCodec codec;
    Page page;
    explicit Codec(Design d)
        : design(std::move(d)), layout(ComputeRecordLayout(design)), codec(design, layout, hooks, QLatin1Char('.')),
          page(design)
    {
    }
    QByteArray packed() { return codec.plain(*codec.pack(page)); }
};

} // namespace

TEST(RecordLayout, OffsetsFollowTheKindsInOrder)
{
    const Design d = fullDesign();
    const RecordLayout l = ComputeRecordLayout(d);
    const std::vector<int> fields = {0, 1, 11, 19, 27, 35, 39, 47, 55, 63, 0, 0, 73, 79};
    for (size_t i = 1; i < fields.size(); ++i)
        EXPECT_EQ(l.FieldOffset[i], fields[i]) << "field " << i;
    EXPECT_EQ(l.FieldSize[14], 0);
    EXPECT_EQ(l.ComboOffset[1], 87);
    EXPECT_EQ(l.ComboOffset[2], 95);
    EXPECT_EQ(l.CheckOffset[0], 99);
    EXPECT_EQ(l.CheckOffset[1], 100);
    EXPECT_EQ(l.CheckOffset[2], 0);
    EXPECT_EQ(l.PictureOffset[0], 0);
    EXPECT_EQ(l.PictureOffset[1], 101);
    EXPECT_EQ(l.PictureOffset[2], 109); // a record picture keeps its bytes on no page
    EXPECT_EQ(l.NoteOffset[1], 117);
    EXPECT_EQ(l.StampOffset, 147);
    EXPECT_EQ(l.FlowOffset, 0);
    EXPECT_EQ(l.RecordLength, 155);
    EXPECT_EQ(l.ColumnCount, 14 + 2 + 3 + 3 + 1 + 15);
    const RecordLayout withFlow = ComputeRecordLayout(fullDesign(true));
    EXPECT_EQ(withFlow.FlowOffset, 155);
    EXPECT_EQ(withFlow.RecordLength, 10155);
    EXPECT_EQ(ComputeRecordLayout(smallDesign()).RecordLength, 17);
}

TEST(RecordCodec, EveryFieldTypeRoundTripsAndShowsByItsFormat)
{
    Codec c(fullDesign());
    Page &p = c.page;
    p.FieldText[1] = QStringLiteral("Zoë Müller"); // 8-bit in Windows-1252
    p.FieldText[2] = QStringLiteral("1,234.5");
    p.FieldText[3] = QStringLiteral("-1234.567");
    p.FieldText[4] = QStringLiteral("0.12345");
    p.FieldText[5] = QStringLiteral("41.5");
    p.FieldDate[6] = 45000.75;
    p.FieldText[6] = QStringLiteral("ignored: dates pack FieldDate");
    p.FieldDate[7] = 45001;
    p.FieldText[8] = QStringLiteral("12:34:56");
    p.FieldText[9] = QStringLiteral("a text longer than ten");
    p.FieldText[10] = QStringLiteral("global");
    p.FieldText[11] = QStringLiteral("nopage");
    p.FieldText[12] = QStringLiteral("once");
    p.FieldDate[13] = 45002;
    p.ComboText[1] = QStringLiteral("Red");
    p.ComboText[2] = QStringLiteral("toolong");
    p.CheckValue[0] = 1;
    p.CheckValue[1] = 0;
    p.PictureRecordName[1] = QStringLiteral("7.jpg");
    p.NoteText[1] = QStringLiteral("line one\r\nline two");
    p.RecordStamp = 45003;

    const QByteArray b = c.packed();
    ASSERT_EQ(b.size(), 155);
    EXPECT_EQ(b.mid(0, 10), QByteArray("Zo\xEB M\xFCller", 10));
    EXPECT_DOUBLE_EQ(RecordCodec::readDouble(b, 11), 1234.5);
    EXPECT_EQ(RecordCodec::readInt64(b, 19), -12345670); // currency keeps four decimals
    EXPECT_EQ(RecordCodec::readInt64(b, 27), 1234);     // 0.12345 rounds to even at four decimals
    EXPECT_EQ(RecordCodec::readInt32(b, 35), 42);        // 41.5 rounds to even
    EXPECT_EQ(RecordCodec::readInt64(b, 39), 450007500);
    EXPECT_EQ(b.mid(62, 10), QByteArray("a text lon"));
    EXPECT_EQ(b.mid(94, 4), QByteArray("tool"));
    EXPECT_EQ(b.mid(98, 2), QByteArray("10"));
    EXPECT_EQ(b.mid(100, 8), QByteArray("   7.jpg")); // right-aligned, read back by a left trim
    EXPECT_EQ(b.mid(108, 8), QByteArray(8, ' '));
    EXPECT_EQ(RecordCodec::readInt64(b, 147), 450030000);
    EXPECT_EQ(b.at(154), ' '); // the spare byte
    EXPECT_FALSE(b.contains("global"));
    EXPECT_FALSE(b.contains("nopage"));

    Page back(c.design);
    back.FieldText[10] = QStringLiteral("kept");
    c.codec.unpack(*c.codec.pack(p), back, 1234, false);
    EXPECT_EQ(back.FieldText[1], QStringLiteral("Zoë Müller"));
    EXPECT_EQ(back.FieldText[2], QStringLiteral("1234.5"));
    EXPECT_EQ(back.FieldText[3], QStringLiteral("-1,234.57"));
    EXPECT_EQ(back.FieldText[4], QStringLiteral("0.1234"));
    EXPECT_EQ(back.FieldText[5], QStringLiteral("42"));
    EXPECT_DOUBLE_EQ(back.FieldDate[6], 45000.75);
    EXPECT_EQ(back.FieldText[7], QLocale().toString(QDate(2023, 3, 16), QLocale::ShortFormat));
    EXPECT_EQ(back.FieldText[8], QStringLiteral("12:34:56"));
    EXPECT_EQ(back.FieldText[9], QStringLiteral("a text lon"));
    EXPECT_EQ(back.FieldText[10], QStringLiteral("kept")); // global fields are not touched
    EXPECT_EQ(back.FieldText[13], QStringLiteral("Friday, March 17, 2023"));
    EXPECT_EQ(back.ComboText[2], QStringLiteral("tool"));
    EXPECT_EQ(back.CheckValue[0], 1);
    EXPECT_EQ(back.CheckValue[1], 0);
    EXPECT_EQ(back.PictureRecordName[1], QStringLiteral("7.jpg"));
    EXPECT_EQ(back.NoteText[1], QStringLiteral("line one\r\nline two"));
    EXPECT_EQ(back.TitleCaption[2], QStringLiteral("No. 0001234"));
    EXPECT_EQ(back.TitleCaption[4], QStringLiteral("Stamp: Saturday 18-Mar-2023"));
    EXPECT_EQ(back.FieldLocked[12], true); // write-once, not new
    EXPECT_EQ(back.ComboLocked[2], true);
    EXPECT_EQ(back.FieldLocked[1], false);
    c.codec.unpack(*c.codec.pack(p), back, 1, true);
    EXPECT_EQ(back.FieldLocked[12], false); // a new record opens write-once elements
    EXPECT_EQ(back.ComboLocked[2], false);
}

TEST(RecordCodec, ZerosAndEmptyValues)
{
    Design d = fullDesign();
    Codec c(d);
    // Empty numbers pack as 0 and, with ShowZeros 0, come back empty; a zero date shows empty.
    Page back(c.design);
    c.codec.unpack(*c.codec.pack(c.page), back, 1, false);
    for (int i : {2, 3, 4, 5, 6, 7, 13})
        EXPECT_TRUE(back.FieldText[i].isEmpty()) << "field " << i;
    EXPECT_EQ(RecordCodec::readInt32(c.packed(), 35), 0);

    d.ShowZeros = 1;
    Codec shown(d);
    Page zeros(shown.design);
    shown.codec.unpack(*shown.codec.pack(shown.page), zeros, 1, false);
    EXPECT_EQ(zeros.FieldText[2], QStringLiteral("0"));
    EXPECT_EQ(zeros.FieldText[3], QStringLiteral("0.00"));
    EXPECT_EQ(zeros.FieldText[4], QStringLiteral("0.0000"));
    EXPECT_EQ(zeros.FieldText[5], QStringLiteral("0"));
    EXPECT_TRUE(zeros.FieldText[7].isEmpty()); // a zero date is empty whatever ShowZeros says

    // A whole number that does not fit is an overflow, and nothing is packed.
    c.page.FieldText[5] = QStringLiteral("3000000000");
    EXPECT_EQ(c.codec.pack(c.page).error().code, ErrorCode::Overflow);
    // On a decimal-comma system the point groups and the comma separates.
    c.codec.setDecimalSeparator(QLatin1Char(','));
    c.page.FieldText[5].clear();
    c.page.FieldText[3] = QStringLiteral("1.234,50");
    EXPECT_EQ(RecordCodec::readInt64(c.packed(), 19), 12345000);
}

TEST(RecordCodec, StampFormatsAndRecordNumber)
{
    const double day = 45002; // Friday 17 March 2023
    const char *byFormat[] = {"Friday 17-Mar-2023", "17-March-2023", "17-03-2023", "03-17-2023", "2023-03-17"};
    for (int format = 0; format <= 4; ++format)
        EXPECT_EQ(RecordCodec::StampText(day, format), QLatin1String(byFormat[format])) << format;
    EXPECT_EQ(RecordCodec::StampText(day, 9), QLocale().toString(QDate(2023, 3, 17), QLocale::ShortFormat));
    EXPECT_EQ(RecordCodec::RecordNumberText(7), QStringLiteral("0000007"));
    EXPECT_EQ(RecordCodec::RecordNumberText(12345678), QStringLiteral("2345678"));
}

TEST(RecordCodec, FlowAreaRoundTripsAndStopsBeforeOverflowing)
{
    Codec c(fullDesign(true));
    FlowLabel l;
    l.page = 1;
    l.style = 111;
    l.fontSize = 12;
    l.alignment = 2;
    l.text = QStringLiteral("Größe");
    l.color = 0x123456;
    l.left = -20;
    l.top = 3000;
    c.page.FlowLabels = {l};
    FlowLabel blank = l;
    blank.text = QStringLiteral("   ");
    c.page.FlowLabels.push_back(blank); // a blank label is not stored
    FlowImage im{2, 10, 20, 300, 400, 17, 5};
    c.page.FlowImages = {im};
    Page back(c.design);
    c.codec.unpack(*c.codec.pack(c.page), back, 1, false);
    ASSERT_EQ(back.FlowLabels.size(), 1);
    EXPECT_EQ(back.FlowLabels[0].text, QStringLiteral("Größe"));
    EXPECT_EQ(back.FlowLabels[0].style, 111);
    EXPECT_TRUE(RecordCodec::StyleBold(111) && RecordCodec::StyleItalic(111) && RecordCodec::StyleUnderline(111));
    EXPECT_FALSE(RecordCodec::StyleBold(110) || RecordCodec::StyleItalic(101) || RecordCodec::StyleUnderline(11));
    EXPECT_EQ(back.FlowLabels[0].left, -20);
    EXPECT_EQ(back.FlowLabels[0].top, 3000);
    EXPECT_EQ(back.FlowLabels[0].color, 0x123456);
    ASSERT_EQ(back.FlowImages.size(), 1);
    EXPECT_EQ(back.FlowImages[0].FlowImageId, 17);
    EXPECT_EQ(back.FlowImages[0].FlowImageLink, 5);
    EXPECT_EQ(back.FlowImages[0].height, 400);

    // 1,000 labels of 80 characters cannot all fit: packing stops, the counts say what was made,
    // and the image after the labels still finds its room.
    FlowLabel big = l;
    big.text = QString(80, QLatin1Char('x'));
    c.page.FlowLabels = QVector<FlowLabel>(1000, big);
    const QByteArray b = c.packed();
    const int32_t stored = RecordCodec::readInt32(b, 155);
    EXPECT_EQ(stored, (10001 - 4 - 4) / 100);
    c.codec.unpack(*c.codec.pack(c.page), back, 1, false);
    EXPECT_EQ(back.FlowLabels.size(), stored);
    EXPECT_EQ(back.FlowImages.size(), 1);
    c.page.FlowImages = QVector<FlowImage>(10, im); // only the room left after the labels
    c.codec.unpack(*c.codec.pack(c.page), back, 1, false);
    EXPECT_EQ(back.FlowImages.size(), (10155 - (158 + stored * 100 + 4)) / 25);

    // A damaged area reads what fits: a slot never written has counts of spaces, and a label whose
    // text runs past the end is dropped.
    QByteArray damaged(c.layout.RecordLength, ' ');
    c.codec.unpack(damaged, back, 1, false);
    EXPECT_TRUE(back.FlowLabels.isEmpty());
    RecordCodec::writeInt32(damaged, 155, 1);
    RecordCodec::writeInt32(damaged, 155 + 4 + 4, 99999);
    c.codec.unpack(damaged, back, 1, false);
    EXPECT_TRUE(back.FlowLabels.isEmpty());
}

TEST(RecordCodec, ScrambledRecordsAreSubstitutedWhole)
{
    Codec c(fullDesign(false, true));
    c.page.FieldText[1] = QStringLiteral("secret");
    const QByteArray stored = *c.codec.pack(c.page);
    EXPECT_FALSE(stored.contains("secret"));
    const QByteArray blank = c.codec.blankRecord();
    EXPECT_EQ(blank.count(char((32 * 167 + 13) % 256)), blank.size()); // a blank record is one byte repeated
    Page back(c.design);
    c.codec.unpack(stored, back, 1, false);
    EXPECT_EQ(back.FieldText[1], QStringLiteral("secret"));
}
