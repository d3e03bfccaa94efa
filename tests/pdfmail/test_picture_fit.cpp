#include "pdfmail/PictureFit.h"

#include <gtest/gtest.h>

using namespace ff;

TEST(PictureFit, PlacementKeepsTheRatioInsideTheFieldAndCentres)
{
    struct Case { QSize source, target; FitMode mode; QRect expected; };
    const Case cases[] = {
        // Wide into tall: the width sets the factor, the height is centred (175 / 2 = 87).
        {{400, 100}, {100, 200}, FitMode::KeepRatio, {0, 87, 100, 25}},
        // Tall into wide: the height sets it, the width is centred.
        {{100, 400}, {300, 100}, FitMode::KeepRatio, {137, 0, 25, 100}},
        // A small picture grows until one side meets the field.
        {{10, 10}, {50, 30}, FitMode::KeepRatio, {10, 0, 30, 30}},
        // Same ratio: the whole field, no offset.
        {{640, 480}, {320, 240}, FitMode::KeepRatio, {0, 0, 320, 240}},
        // A thin line never vanishes.
        {{1000, 1}, {100, 100}, FitMode::KeepRatio, {0, 49, 100, 1}},
        // Stretched: each axis on its own.
        {{400, 100}, {100, 200}, FitMode::Stretch, {0, 0, 100, 200}},
        {{0, 100}, {100, 200}, FitMode::KeepRatio, {}},
        {{100, 100}, {0, 200}, FitMode::Stretch, {}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(PictureFit::placement(c.source, c.target, c.mode), c.expected) << c.source.width() << "x"
                                                                                 << c.source.height();
}

TEST(PictureFit, FittedImageShowsThePictureOnTheBackground)
{
    QImage red(400, 100, QImage::Format_RGB32);
    red.fill(Qt::red);
    const QImage kept = PictureFit::fit(red, QSize(100, 200), FitMode::KeepRatio);
    ASSERT_EQ(kept.size(), QSize(100, 200));
    EXPECT_EQ(kept.pixelColor(50, 10), QColor(Qt::white));
    EXPECT_EQ(kept.pixelColor(50, 99), QColor(Qt::red));
    EXPECT_EQ(kept.pixelColor(50, 190), QColor(Qt::white));

    const QImage onGrey = PictureFit::fit(red, QSize(100, 200), FitMode::KeepRatio, Qt::gray);
    EXPECT_EQ(onGrey.pixelColor(0, 0), QColor(Qt::gray));

    const QImage stretched = PictureFit::fit(red, QSize(100, 200), FitMode::Stretch);
    EXPECT_EQ(stretched.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(stretched.pixelColor(99, 199), QColor(Qt::red));

    // Transparent parts show the background.
    QImage clear(10, 10, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    EXPECT_EQ(PictureFit::fit(clear, QSize(20, 20), FitMode::KeepRatio, Qt::blue).pixelColor(10, 10), QColor(Qt::blue));
    EXPECT_TRUE(PictureFit::fit(QImage(), QSize(20, 20), FitMode::KeepRatio).isNull());
}
