#include "pagetools/GridSnap.h"

#include <gtest/gtest.h>

using namespace ff;

TEST(GridSnap, PlacesLandOnTheNearestLineHalvesToTheEvenStep)
{
    constexpr double cm = 1440.0 / 2.54;
    struct Case { int twips; float step; GridScale scale; int expected; };
    const Case cases[] = {
        {1000, 0, GridScale::Centimetres, 1000},                  // no grid: left where dropped
        {int(2.6 * cm), 1, GridScale::Centimetres, int(3 * cm + 0.5)}, // 2.6 cm -> 3 cm
        {int(2.4 * cm), 1, GridScale::Centimetres, int(2 * cm + 0.5)},
        {400, 0.25f, GridScale::Inches, 360},                     // 0.278 in -> 1/4 in
        {180, 0.25f, GridScale::Inches, 0},                       // exactly half a step: to 0 steps (even)
        {540, 0.25f, GridScale::Inches, 720},                     // 1.5 steps -> 2 steps
        {900, 0.25f, GridScale::Inches, 720},                     // 2.5 steps -> 2 steps
        {1260, 0.5f, GridScale::Inches, 1440},                    // 1.75 steps -> 2 steps of 1/2 in
        {-180, 0.25f, GridScale::Inches, 0},                      // left of the page, half: even
        {-540, 0.25f, GridScale::Inches, -720},
        {int(0.76 * cm), 0.5f, GridScale::Centimetres, int(cm + 0.5)}, // 1.52 steps -> 2
        {int(1.25 * cm) + 1, 0.5f, GridScale::Centimetres, int(1.5 * cm + 0.5)},
    };
    for (const Case &c : cases)
        EXPECT_EQ(GridSnap::snap(c.twips, c.step, c.scale), c.expected) << c.twips << " on " << c.step;
}

TEST(GridSnap, HalfToEvenRounding)
{
    const std::pair<double, double> cases[] = {{0.5, 0}, {1.5, 2}, {2.5, 2}, {3.5, 4}, {-0.5, 0}, {-1.5, -2},
                                              {2.4999, 2}, {2.5001, 3}, {-2.6, -3}, {7, 7}};
    for (auto [in, out] : cases)
        EXPECT_EQ(GridSnap::roundHalfEven(in), out) << in;
}

TEST(GridSnap, TheMenuSwitchesGridsAndAnEntryChosenAgainSwitchesOff)
{
    int checked = -1;
    struct Step { int item; float step; GridScale scale; int checkedAfter; };
    const Step steps[] = {
        {2, 0.25f, GridScale::Inches, 2},
        {3, 0.5f, GridScale::Inches, 3},       // another entry: its grid, not off
        {3, 0, GridScale::Inches, -1},         // the checked one again: off
        {7, 1, GridScale::Centimetres, 7},
        {5, 0.25f, GridScale::Centimetres, 5},
        {6, 0.5f, GridScale::Centimetres, 6},
        {6, 0, GridScale::Centimetres, -1},
        {4, 0, GridScale::Centimetres, -1},    // a separator's place is no grid
    };
    for (const Step &s : steps) {
        const Grid g = GridSnap::choose(s.item, checked);
        EXPECT_EQ(g.GridX, s.step) << s.item;
        EXPECT_EQ(g.GridY, s.step) << s.item;
        EXPECT_EQ(g.on(), s.step > 0) << s.item;
        if (g.on()) {
            EXPECT_EQ(g.scale, s.scale) << s.item;
        }
        EXPECT_EQ(checked, s.checkedAfter) << s.item;
    }
}

TEST(GridSnap, RulerTicksEveryTenthLongerAtWholeUnits)
{
    const auto inch = GridSnap::rulerTicks(1440 * 2, GridScale::Inches);
    ASSERT_EQ(inch.size(), 21u); // 0, 0.1, ... 2.0 inches
    EXPECT_EQ(inch[0].position, 0);
    EXPECT_EQ(inch[0].length, 288); // 0.2 in at a whole unit
    EXPECT_EQ(inch[1].position, 144);
    EXPECT_EQ(inch[1].length, 144);
    EXPECT_EQ(inch[10].position, 1440);
    EXPECT_EQ(inch[10].length, 288);
    const auto cm = GridSnap::rulerTicks(1000, GridScale::Centimetres);
    ASSERT_EQ(cm.size(), 18u); // 1000 twips is 1.76 cm
    EXPECT_EQ(cm[10].position, 567);
    EXPECT_EQ(cm[10].length, 113);
    EXPECT_EQ(cm[17].position, 964);
    EXPECT_EQ(cm[17].length, 57);
}
