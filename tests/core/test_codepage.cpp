#include "core/CodePage.h"

#include <gtest/gtest.h>

using namespace ff;

TEST(CodePage, SingleBytePagesRoundTripTheirCharacters)
{
    struct Case { int charset; QByteArray bytes; QString text; };
    const Case cases[] = {
        {0, QByteArray("caf\xE9 \x80"), QStringLiteral("café €")},
        {238, QByteArray("\x8A\xE8"), QStringLiteral("Šč")},
        {204, QByteArray("\xCF\xF0\xE8"), QStringLiteral("При")},
        {161, QByteArray("\xC1"), QStringLiteral("Α")},
    };
    for (const auto &c : cases) {
        CodePage page(c.charset);
        EXPECT_EQ(page.decode(c.bytes), c.text) << c.charset;
        EXPECT_EQ(page.encode(c.text), c.bytes) << c.charset;
    }
}

TEST(CodePage, EveryByteDecodesToOneCharacterAndBack)
{
    for (int charset : {0, 238, 204, 161, 162, 177, 178, 186}) {
        CodePage page(charset);
        QByteArray all(256, '\0');
        for (int i = 0; i < 256; ++i)
            all[i] = static_cast<char>(i);
        const QString text = page.decode(all);
        ASSERT_EQ(text.size(), 256) << charset;
        EXPECT_EQ(page.encode(text), all) << charset;
    }
}

TEST(CodePage, MultiBytePagesAndUnknownCharacters)
{
    CodePage japanese(128);
    EXPECT_EQ(japanese.decode(japanese.encode(QStringLiteral("日本"))), QStringLiteral("日本"));
    EXPECT_EQ(japanese.encode(QStringLiteral("日本")).size(), 4);
    // A character the page cannot hold becomes '?', never a shift of the following bytes.
    EXPECT_EQ(CodePage(0).encode(QStringLiteral("a日b")), QByteArray("a?b"));
}
