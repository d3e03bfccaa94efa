#include "core/Scramble.h"

#include <gtest/gtest.h>

#include <set>

using namespace ff;

TEST(Scramble, TableIsTheSharedPermutation)
{
    const auto &t = BuildScrambleTables();
    std::set<int> seen;
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(t.ScrambleTable[i], (i * 167 + 13) % 256);
        seen.insert(t.ScrambleTable[i]);
    }
    EXPECT_EQ(seen.size(), 256u);
    // A space scrambles to one fixed byte, so a blank record is one repeated byte.
    EXPECT_EQ(static_cast<uint8_t>(ScrambleText(QByteArray("  ")).at(0)), (32 * 167 + 13) % 256);
}

TEST(Scramble, RoundTripsEveryByteAndLeavesEmptyAlone)
{
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<char>(i);
    EXPECT_EQ(UnscrambleText(ScrambleText(all)), all);
    EXPECT_EQ(ScrambleText(UnscrambleText(all)), all);
    EXPECT_NE(ScrambleText(all), all);
    EXPECT_TRUE(ScrambleText(QByteArray()).isEmpty());
}
