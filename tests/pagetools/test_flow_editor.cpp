// Editing the flow layer on the page of a real record store: places, sizes, the grid, the
// toolbox's properties, deleting, the change flag that saves the layer with the record, another
// user's lock, and a layer too large for the record.

#include "pagetools/FlowEditor.h"
#include "support/StoreFixture.h"

#include <gtest/gtest.h>

using namespace ff;
using namespace ff::testsupport;

namespace {

constexpr double kCm = 1440.0 / 2.54;

// A new data file of the full design with its flow area; `records` records, record 1 shown.
struct FlowStore {
    QTemporaryDir dir;
    QString data = dir.filePath(QStringLiteral("Flow.dat"));
    StoreUser user{fullDesign(true)};
    explicit FlowStore(int records = 1)
    {
        EXPECT_TRUE(user.store.openFileSet(data, OpenMode::Create, QStringLiteral("Flow")));
        EXPECT_TRUE(user.store.showFirstRecord(OpenMode::Create, true));
        for (int r = 2; r <= records; ++r) {
            EXPECT_TRUE(user.store.NewRecord());
            EXPECT_TRUE(user.store.PackRecord());
        }
    }
    struct Layer {
        QVector<FlowLabel> FlowLabels;
        QVector<FlowImage> FlowImages;
    };
    // The record's layer as another user reads it from the file.
    Layer readBack(int record)
    {
        StoreUser other(fullDesign(true));
        EXPECT_TRUE(other.store.openFileSet(data, OpenMode::Open, QString()));
        EXPECT_TRUE(other.store.JumpToRecord(record));
        return {other.page.FlowLabels, other.page.FlowImages};
    }
};

} // namespace

TEST(FlowEditor, PlacesAndSizesOnAndOffTheGrid)
{
    Design d = fullDesign(true);
    Page page(d);
    page.CurrentPage = 1;
    FlowEditor editor(page);

    // A picture is centred on the click in its natural size and lands on the page shown.
    const FlowElement pic = editor.addImage(3000, 2000, 100001, QSize(900, 600), 0);
    ASSERT_TRUE(pic.valid());
    EXPECT_EQ(page.FlowImages[0].left, 2550);
    EXPECT_EQ(page.FlowImages[0].top, 1700);
    EXPECT_EQ(page.FlowImages[0].width, 900);
    EXPECT_EQ(page.FlowImages[0].page, 1);
    EXPECT_FALSE(editor.addImage(10, 10, 0, QSize(100, 100)).valid()) << "no picture chosen, nothing added";

    // With the grid off a drop stays where it was let go.
    ASSERT_TRUE(editor.moveTo(pic, 1474, 999));
    ASSERT_TRUE(editor.snapPlace(pic));
    EXPECT_EQ(page.FlowImages[0].left, 1474);
    EXPECT_EQ(page.FlowImages[0].top, 999);

    // On a 1 cm grid 2.6 cm lands at 3 cm; on a 1/4 inch grid the picture added snaps too.
    editor.setGrid(GridSnap::menuGrid(7));
    ASSERT_TRUE(editor.snapPlace(pic));
    EXPECT_EQ(page.FlowImages[0].left, int(std::lround(3 * kCm)));
    EXPECT_EQ(page.FlowImages[0].top, int(std::lround(2 * kCm)));
    editor.setGrid(GridSnap::menuGrid(2));
    const FlowElement second = editor.addImage(1000, 1000, 100002, QSize(300, 300));
    EXPECT_EQ(page.FlowImages[second.index].left, 720);  // 850 -> 2.36 steps -> 2
    EXPECT_EQ(page.FlowImages[second.index].top, 720);

    // Sizing: never below the least size; with the grid, whole steps and never none.
    struct Size { int w, h; bool snap; int ew, eh; };
    const Size sizes[] = {
        {50, -40, false, FlowEditor::MinimumSize, FlowEditor::MinimumSize},
        {1000, 700, false, 1000, 700},
        {1000, 700, true, 1080, 720},  // 2.78 and 1.94 quarter inches
        {130, 130, true, 360, 360},    // below half a step: one step
    };
    for (const Size &s : sizes) {
        ASSERT_TRUE(editor.resize(pic, s.w, s.h, s.snap));
        EXPECT_EQ(page.FlowImages[0].width, s.ew) << s.w;
        EXPECT_EQ(page.FlowImages[0].height, s.eh) << s.h;
    }
    // A label keeps the size given to it on screen.
    const FlowElement label = editor.addLabel(100, 200);
    ASSERT_TRUE(editor.resize(label, 2000, 400, false));
    EXPECT_EQ(page.FlowLabels[0].width, 2000);
    EXPECT_EQ(page.FlowLabels[0].page, 1);
    EXPECT_FALSE(editor.moveTo({FlowElement::Kind::Label, 5}, 0, 0));
}

TEST(FlowEditor, ToolboxPropertiesGoToLabelsAndLinksToPictures)
{
    Design d = fullDesign(true);
    Page page(d);
    FlowEditor editor(page);
    const FlowElement label = editor.addLabel(0, 0);
    const FlowElement pic = editor.addImage(500, 500, 100000, QSize(300, 300));

    // The style byte keeps its decimal digits: bold units, italic tens, underline hundreds.
    struct Flag { uint8_t flag; bool on; uint8_t style; };
    const Flag flags[] = {{FlowEditor::Bold, true, 1},   {FlowEditor::Underline, true, 101}, {FlowEditor::Italic, true, 111},
                          {FlowEditor::Bold, true, 111}, {FlowEditor::Bold, false, 110},     {FlowEditor::Underline, false, 10}};
    for (const Flag &f : flags) {
        ASSERT_TRUE(editor.setStyleFlag(label, f.flag, f.on));
        EXPECT_EQ(page.FlowLabels[0].style, f.style);
    }
    EXPECT_FALSE(editor.setStyleFlag(label, 2, true)) << "not a style digit";
    EXPECT_EQ(page.FlowLabels[0].style, 10);

    ASSERT_TRUE(editor.setFontSize(label, 14));
    EXPECT_EQ(page.FlowLabels[0].fontSize, 14);
    EXPECT_FALSE(editor.setFontSize(label, 300));
    ASSERT_TRUE(editor.setAlignment(label, FlowAlignment::Centre));
    EXPECT_EQ(page.FlowLabels[0].alignment, 2);
    ASSERT_TRUE(editor.setColour(label, 0x0000FF));
    EXPECT_EQ(page.FlowLabels[0].color, 0x0000FF);

    // A picture has no font and no colour; a label has no link.
    EXPECT_FALSE(editor.setColour(pic, 0x00FF00));
    EXPECT_FALSE(editor.setFontSize(pic, 20));
    EXPECT_FALSE(editor.setStyleFlag(pic, FlowEditor::Bold, true));
    struct Link { int asked, count, kept; };
    const Link links[] = {{3, 10, 3}, {25, 10, 10}, {-4, 10, 0}, {0, 10, 0}, {5, 0, 0}};
    for (const Link &l : links) {
        EXPECT_EQ(editor.setLink(pic, l.asked, l.count), l.kept);
        EXPECT_EQ(page.FlowImages[0].FlowImageLink, l.kept);
    }
    editor.setLink(label, 4, 10);
    EXPECT_EQ(page.FlowImages[0].FlowImageLink, 0);

    EXPECT_EQ(FlowEditor::rowImageNumber(0, 0), 100000);
    EXPECT_EQ(FlowEditor::rowImageNumber(7, 3), 100010);
}

TEST(FlowEditor, EditsMarkTheRecordChangedAndTravelWithIt)
{
    FlowStore s(2);
    ASSERT_TRUE(s.user.store.JumpToRecord(2));
    ASSERT_FALSE(s.user.store.RecordDirty());
    FlowEditor editor(s.user.page, &s.user.store);
    const FlowElement label = editor.addLabel(1440, 720);
    EXPECT_TRUE(s.user.store.RecordDirty());
    ASSERT_TRUE(editor.setCaption(label, QStringLiteral("Checked \xe9")));
    ASSERT_TRUE(editor.setStyleFlag(label, FlowEditor::Italic, true));
    editor.addLabel(0, 0); // left without a caption: not stored
    const FlowElement gone = editor.addImage(2000, 2000, 100003, QSize(300, 300));
    const FlowElement kept = editor.addImage(4000, 4000, 100004, QSize(600, 300));
    editor.setLink(kept, 1, 2);
    ASSERT_TRUE(editor.remove(gone));
    ASSERT_TRUE(s.user.store.PackRecord());
    EXPECT_FALSE(s.user.store.RecordDirty());

    const FlowStore::Layer back = s.readBack(2);
    ASSERT_EQ(back.FlowLabels.size(), 1);
    EXPECT_EQ(back.FlowLabels[0].text, QStringLiteral("Checked \xe9"));
    EXPECT_EQ(back.FlowLabels[0].style, 10);
    EXPECT_EQ(back.FlowLabels[0].left, 1440);
    ASSERT_EQ(back.FlowImages.size(), 1) << "the deleted picture does not come back";
    EXPECT_EQ(back.FlowImages[0].FlowImageId, 100004);
    EXPECT_EQ(back.FlowImages[0].left, 3700);
    EXPECT_EQ(back.FlowImages[0].FlowImageLink, 1);
    EXPECT_TRUE(s.readBack(1).FlowLabels.isEmpty()) << "each record keeps its own layer";
}

TEST(FlowEditor, AnotherUsersLockRefusesTheChange)
{
    FlowStore s(2);
    ASSERT_TRUE(s.user.store.JumpToRecord(2));
    StoreUser other(fullDesign(true));
    ASSERT_TRUE(other.store.openFileSet(s.data, OpenMode::Open, QString()));
    ASSERT_TRUE(other.store.JumpToRecord(2));
    ASSERT_TRUE(other.store.LockRecord());

    FlowEditor editor(s.user.page, &s.user.store);
    EXPECT_FALSE(editor.addLabel(100, 100).valid());
    EXPECT_TRUE(s.user.page.FlowLabels.isEmpty());
    EXPECT_FALSE(s.user.store.RecordDirty());

    ASSERT_TRUE(other.store.UnlockRecord());
    EXPECT_TRUE(editor.addLabel(100, 100).valid());
}

TEST(FlowEditor, ALayerLargerThanTheRecordKeepsWhatFits)
{
    FlowStore s;
    FlowEditor editor(s.user.page, &s.user.store);
    for (int i = 0; i < 90; ++i) {
        const FlowElement l = editor.addLabel(i, i);
        ASSERT_TRUE(editor.setCaption(l, QString(100, QLatin1Char('a' + i % 26))));
    }
    editor.addImage(500, 500, 100001, QSize(300, 300));
    editor.addImage(900, 900, 100002, QSize(300, 300));
    ASSERT_TRUE(s.user.store.PackRecord());
    // The 10,000 bytes of the area: two counts of 4 bytes, 20 bytes and the text per label, 25 per
    // picture. 83 labels take 9,968 bytes; one picture still fits in the 32 left over (and the
    // spare byte at the record's end), a second does not.
    const FlowStore::Layer back = s.readBack(1);
    ASSERT_EQ(back.FlowLabels.size(), 83);
    EXPECT_EQ(back.FlowLabels[82].left, 82);
    EXPECT_EQ(back.FlowLabels[82].text, QString(100, QLatin1Char('a' + 82 % 26)));
    ASSERT_EQ(back.FlowImages.size(), 1);
    EXPECT_EQ(back.FlowImages[0].FlowImageId, 100001);
}
