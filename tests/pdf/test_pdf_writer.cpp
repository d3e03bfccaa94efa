// The PDF writer judged by poppler: texts of three scripts come back where their boxes and
// alignments put them, a background placed on every page is stored once and fills the page, and
// a file that cannot be written is an error value, not an exception.

#include "pdf/PdfDocumentWriter.h"
#include "support/Programs.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ff;
using pdf::PdfDocumentWriter;

namespace {

struct Word {
    QString text;
    double xMin, yMin, xMax, yMax;
};

// The words poppler finds on the first page, with their boxes in points.
std::vector<Word> wordsOf(const QString &pdf)
{
    const testsupport::ProgramRun run =
        testsupport::runProgram(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), QStringLiteral("-f"), QStringLiteral("1"),
                                                               QStringLiteral("-l"), QStringLiteral("1"), pdf, QStringLiteral("-")});
    std::vector<Word> words;
    static const QRegularExpression word(
        QString::fromLatin1(R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re"));
    for (auto it = word.globalMatch(QString::fromUtf8(run.out)); it.hasNext();) {
        const auto m = it.next();
        words.push_back({m.captured(5), m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(),
                         m.captured(4).toDouble()});
    }
    return words;
}

// qpdf's structural check of a written file: its syntax, streams and cross references.
void expectQpdfPasses(const QString &pdf)
{
    if (QStandardPaths::findExecutable(QStringLiteral("qpdf")).isEmpty())
        return;
    const testsupport::ProgramRun check = testsupport::runProgram(QStringLiteral("qpdf"), {QStringLiteral("--check"), pdf});
    EXPECT_EQ(check.exitCode, 0) << check.out.toStdString() << check.err.toStdString();
}

bool havePoppler()
{
    return !QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()
           && !QStandardPaths::findExecutable(QStringLiteral("pdfimages")).isEmpty();
}

} // namespace

TEST(PdfWriter, TextsOfThreeScriptsComeBackInTheirBoxes)
{
    if (!havePoppler())
        GTEST_SKIP() << "poppler-utils are needed";
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("texts.pdf"));
    PdfDocumentWriter writer;
    ASSERT_TRUE(writer.StartDocument(path, QStringLiteral("Texts"), QStringLiteral("Texts/Flatform"), 12000, 8000).ok());
    // Boxes in twips: 1440 wide from x 1440 (72 to 144 points), one a line.
    struct Case {
        const char *text;
        int alignment;
        double top;
        bool bold;
    };
    const std::vector<Case> cases{{"Ligne", 0, 1000, false}, {"Γραμμή", 1, 2000, true}, {"Строка", 2, 3000, false},
                                  {"Ёжик", 1, 4000, false}};
    for (const Case &c : cases) {
        writer.setFont({QStringLiteral("DejaVu Sans"), 12, c.bold, false, false, false});
        ASSERT_TRUE(writer.TextBox(QRectF(1440, c.top, 1440, 400), c.alignment, QString::fromUtf8(c.text)).ok());
    }
    writer.setFont({QStringLiteral("No Such Family"), 10, false, true, false, false});
    ASSERT_TRUE(writer.TextBox(QRectF(1440, 5000, 4000, 800), 0, QStringLiteral("two\r\nlines")).ok());
    ASSERT_TRUE(writer.EndDocument().ok());

    expectQpdfPasses(path);
    const std::vector<Word> words = wordsOf(path);
    ASSERT_EQ(words.size(), cases.size() + 2);
    for (size_t i = 0; i < cases.size(); ++i) {
        const Word &w = words[i];
        EXPECT_EQ(w.text, QString::fromUtf8(cases[i].text));
        const double left = 72, right = 144;
        switch (cases[i].alignment) {
        case 0: EXPECT_NEAR(w.xMin, left, 1) << w.text.toStdString(); break;
        case 1: EXPECT_NEAR(w.xMax, right, 1) << w.text.toStdString(); break;
        default: EXPECT_NEAR((w.xMin + w.xMax) / 2, (left + right) / 2, 1) << w.text.toStdString();
        }
        // The first line stands at the top of its box: its letters start below it, within a line.
        EXPECT_GE(w.yMin, cases[i].top / 20 - 1);
        EXPECT_LE(w.yMax, cases[i].top / 20 + 20);
    }
    // A family the system lacks still writes its text; the second line is one line lower.
    EXPECT_EQ(words[cases.size()].text, QStringLiteral("two"));
    EXPECT_EQ(words[cases.size() + 1].text, QStringLiteral("lines"));
    EXPECT_GT(words[cases.size() + 1].yMin, words[cases.size()].yMax - 2);
}

TEST(PdfWriter, OneBackgroundFillsEveryPageAndIsStoredOnce)
{
    if (!havePoppler())
        GTEST_SKIP() << "poppler-utils are needed";
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("pages.pdf"));
    QImage background(800, 400, QImage::Format_RGB32);
    background.fill(QColor(200, 220, 240));
    QImage mark(13, 13, QImage::Format_RGB32);
    mark.fill(Qt::red);
    PdfDocumentWriter writer;
    ASSERT_TRUE(writer.StartDocument(path, QString(), QString(), 12000, 6000).ok());
    for (int page = 0; page < 3; ++page) {
        if (page > 0) {
            ASSERT_TRUE(writer.NewPage().ok());
        }
        ASSERT_TRUE(writer.PlaceBitmap(background, 0, 0).ok());
        ASSERT_TRUE(writer.PlaceBitmap(mark.copy(), 1500, 1500).ok()); // a copy of its own each time
    }
    ASSERT_TRUE(writer.EndDocument().ok());
    EXPECT_EQ(writer.pageCount(), 3);
    expectQpdfPasses(path);

    const testsupport::ProgramRun list = testsupport::runProgram(QStringLiteral("pdfimages"), {QStringLiteral("-list"), path});
    ASSERT_EQ(list.exitCode, 0);
    // page num type width height ... object ID: the background is one object on all pages, the
    // marks three; the background fills 600 by 300 points at 96 dpi.
    QMap<QString, int> objectsOfSize;
    QSet<QString> backgroundObjects;
    for (const QByteArray &line : list.out.split('\n').mid(2)) {
        const QStringList f = QString::fromLatin1(line).simplified().split(QLatin1Char(' '));
        if (f.size() < 12)
            continue;
        ++objectsOfSize[f[3] + QLatin1Char('x') + f[4]];
        if (f[3] == QLatin1String("800")) {
            backgroundObjects.insert(f[10]);
            EXPECT_EQ(f[12].toInt(), 96) << "x-ppi";
        }
    }
    EXPECT_EQ(objectsOfSize.value(QStringLiteral("800x400")), 3);
    EXPECT_EQ(objectsOfSize.value(QStringLiteral("13x13")), 3);
    EXPECT_EQ(backgroundObjects.size(), 1);
}

TEST(PdfWriter, AFileThatCannotBeWrittenIsAnErrorValue)
{
    PdfDocumentWriter writer;
    ASSERT_TRUE(writer.StartDocument(QStringLiteral("/nonexistent-folder/x.pdf"), QString(), QString(), 12000, 6000).ok());
    writer.setFont({QStringLiteral("DejaVu Sans"), 10, false, false, false, false});
    ASSERT_TRUE(writer.TextBox(QRectF(0, 0, 1000, 300), 0, QStringLiteral("text")).ok());
    const Status ended = writer.EndDocument();
    EXPECT_FALSE(ended.ok());
    EXPECT_FALSE(writer.documentOpen());
    EXPECT_FALSE(writer.NewPage().ok()) << "nothing is open after the failure";
}

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
