#pragma once
// A design with something in every table, built in code for the round-trip tests, and a head of
// varied bytes to append its block to.

#include "design/Design.h"
#include "design/DesignWriter.h"

#include <QByteArray>
#include <QString>

namespace ff::testsupport {

// A fake executable head: varied bytes, including zeros and 0xFF, so that salts differ.
inline QByteArray FakeHead(int size = 4096, uint32_t seed = 12345)
{
    QByteArray head(size, '\0');
    uint32_t x = seed;
    for (int i = 0; i < size; ++i) {
        x = x * 1103515245u + 12345u;
        head[i] = static_cast<char>((x >> 16) & 0xFF);
    }
    return head;
}

inline Design RichDesign(bool hints)
{
    Design d;
    d.AppTitle = QStringLiteral("Kundenkartei Ärzte");
    d.Pattern = 3;
    d.ScrollColor = 0x00C0FFEE;
    d.HasHints = hints;
    d.TextExtension = QStringLiteral("csv");
    d.FlowPageEnabled = 1;
    d.PageWidth = 11906.5;
    d.PageHeight = 16838;
    d.DesignMark = 42.25;
    d.MainWindowNumber = -7;
    d.StatsTip = QStringLiteral("Statistik");
    for (int i = 0; i < 7; ++i)
        d.ChartTexts[size_t(i)] = QStringLiteral("chart %1").arg(i);
    d.ScrambleRecords = 1;
    d.MainCap = QStringLiteral("Main caption");
    d.ReportLineMode = 6;
    d.AppFontName = QStringLiteral("DejaVu Sans");
    d.FontCharset = 238; // Windows-1250: "ř" and "ő" only survive with the right page
    d.WindowState = 2;
    for (int i = 0; i < 60; ++i)
        d.MessageText[size_t(i)] = QStringLiteral("message %1 ř").arg(i);

    ShapeElement s;
    s.ShapePage = 1; s.ShapePrint = 1; s.BackColor = 0xFF; s.BorderColor = 0xFF00; s.FillColor = 0xFF0000;
    s.BorderStyle = 2; s.BorderWidth = 3; s.FillStyle = 1; s.Width = 1000.5f; s.Height = 500; s.Shape = 4;
    s.Top = 10; s.Left = 20;
    d.Shapes = {s, s};
    d.Shapes[1].Shape = 2;
    d.Shapes[1].ShapePage = 7; // on no page
    LineElement l;
    l.LinePage = 2; l.X1 = 1; l.Y1 = 2; l.X2 = 3; l.Y2 = 4.5f; l.BorderColor = 0x123456; l.LinePrint = 1;
    d.Lines = {l};

    PictureElement p;
    p.PictureName = QStringLiteral("logo"); p.PicturePage = 0; p.PicturePrint = 1;
    p.FileName = QStringLiteral("logo.gif"); p.Top = 100; p.Left = 200; p.ToolTip = hints ? QStringLiteral("tip") : QString();
    p.PictureHint = hints ? QStringLiteral("hint") : QString(); p.Border = 1; p.Stretch = false;
    p.Height = 300; p.Width = 400; p.ZOrder = 2; p.PictureLink = QStringLiteral("http://example.org/");
    PictureElement q = p;
    q.PictureName = QStringLiteral("photo"); q.FileName.clear(); q.Stretch = true; q.PictureLink.clear();
    PictureElement evil = p;
    evil.PictureName = QStringLiteral("evil"); evil.FileName = QStringLiteral("../escaped.gif");
    d.Pictures = {p, q, evil};

    // Three labels: the table still has room for indexes 0 to 5.
    for (int i = 0; i < 3; ++i) {
        TitleElement t;
        t.TitlePage = int16_t(i); t.TitlePrint = 1; t.FontName = QStringLiteral("Arial"); t.FontItalic = i == 1;
        t.FontBold = true; t.FontUnderline = i == 2; t.FontSize = 9.5f; t.ForeColor = 0x80;
        t.Left = 10.0f * i; t.Top = 20; t.Caption = QStringLiteral("Label %1 ő").arg(i); t.Alignment = 1;
        t.Tag = i == 0 ? QStringLiteral("click") : QString();
        if (hints) { t.ToolTip = QStringLiteral("tt%1").arg(i); t.TitleHint = QStringLiteral("th%1").arg(i); }
        t.present = true;
        d.Titles.push_back(t);
    }

    d.Fields.emplace_back(); // the template
    for (int i = 1; i <= 3; ++i) {
        FieldElement f;
        f.FieldMenu = true; f.FieldGlobal = i == 3; f.FieldDefault = 1; f.FieldWriteOnce = 0;
        f.FieldPage = int16_t(i - 1); f.FieldPrint = 1; f.FieldNoSearch = i == 3 ? 1 : 0; f.Locked = 0;
        f.MaxLength = 20 * i; f.Top = 100.0f * i; f.Left = 50; f.FontName = QStringLiteral("Tahoma");
        f.ForeColor = 1; f.FontBold = i == 2; f.FontItalic = false; f.BackColor = 0xFFFFFF; f.FontSize = 10;
        f.Tag = QStringLiteral("#,##0.00"); f.FieldTabOrder = int16_t(i); f.Border = 1;
        if (hints) { f.ToolTip = QStringLiteral("field tip %1").arg(i); f.FieldHint = QStringLiteral("field hint %1").arg(i); }
        f.FieldDisplay = int16_t(-i); f.FieldCase = uint8_t(i); f.FieldType = uint8_t(i == 2 ? 23 : i);
        if (i == 2) f.MaxLength = 10;
        f.FieldFormula = QStringLiteral("F1+F%1*2").arg(i); f.Height = 300; f.Width = 2000; f.Alignment = 2;
        f.FieldBox = i != 2;
        if (f.FieldBox) f.Frame = {0x00AABBCC, 3};
        d.Fields.push_back(f);
    }
    d.Combos.emplace_back();
    ComboElement c;
    c.List = {QStringLiteral("one"), QString(), QStringLiteral("three ř")};
    c.ComboMenu = true; c.TextCase = 1; c.MaxLength = 30; c.ComboPage = 1; c.ComboWriteOnce = 1;
    c.ComboPrint = 1; c.ComboNoSearch = 0; c.ComboFormat = 2; c.Top = 1; c.Left = 2;
    c.FontName = QStringLiteral("Arial"); c.ForeColor = 3; c.FontBold = true; c.FontItalic = true;
    c.BackColor = 4; c.FontSize = 11; c.Tag = QStringLiteral("ctag"); c.ComboTabOrder = 5;
    if (hints) { c.ToolTip = QStringLiteral("ctip"); c.ComboHint = QStringLiteral("chint"); }
    c.Width = 1500; c.Frame = {6, 7};
    d.Combos.push_back(c);
    ComboElement empty = c;
    empty.List.clear();
    d.Combos.push_back(empty);
    d.Notes.emplace_back();
    NoteElement n;
    n.NotePage = 2; n.NoteWriteOnce = 1; n.NotePrint = 1; n.NoteNoSearch = 1; n.MaxLength = 1000;
    n.Top = 5; n.Left = 6; n.ForeColor = 7; n.FontName = QStringLiteral("Courier"); n.FontBold = true;
    n.BackColor = 8; n.FontSize = 12; n.Tag = QStringLiteral("ntag"); n.NoteTabOrder = 9; n.Border = 1;
    if (hints) { n.ToolTip = QStringLiteral("ntip"); n.NoteHint = QStringLiteral("nhint"); }
    n.Height = 900; n.Width = 3000; n.Alignment = 0; n.NoteBox = true; n.Frame = {11, 12};
    d.Notes.push_back(n);
    // No check boxes: a count of -1.
    ButtonElement b;
    b.ButtonPage = 4; b.Caption = QStringLiteral("&Go"); b.Tag = QStringLiteral("btag"); b.FontName = QStringLiteral("Arial");
    b.ToolTip = QStringLiteral("always there"); b.FontSize = 9; b.Border = 1; b.Top = 1; b.Left = 2; b.Width = 3;
    b.Height = 4; b.BackColor = 5; b.RenderColor = 6; b.ButtonMode = 2; b.ButtonScript = QStringLiteral("search F1=\"x\"");
    d.Buttons = {b};

    d.ClockFormat = 2; d.AboutInfoVisible = false; d.Aboutme = QStringLiteral("About me"); d.Image4Visible = false;
    d.AdminPassword = QStringLiteral("s3cret");
    for (int i = 0; i < kCaptionRunRows; ++i)
        d.CaptionRun[size_t(i)] = i % 5 == 3 ? QString() : QStringLiteral("&Row %1").arg(i + 1);
    d.StampFormat = 3; d.AboutLabel1 = QStringLiteral("label1"); d.Finden3Caption = QStringLiteral("find 3");
    for (int i = 0; i < 5; ++i)
        d.PageCaptions[size_t(i)] = QStringLiteral("Page %1").arg(i);
    d.TileMode = 1; d.ExportingVisible = false;
    for (int i = 0; i < 81; ++i)
        d.UiText[size_t(i)] = QStringLiteral("ui %1").arg(i);
    for (int i = 0; i < 12; ++i)
        d.SelectiveText[size_t(i)] = QStringLiteral("sel %1").arg(i);
    for (int i = 0; i < 11; ++i)
        d.SearchSetting[size_t(i)] = 1000 * i - 3;
    d.ResultListText = QStringLiteral("list"); d.ResultListFlag = true; d.ResultImage2Visible = false;
    d.ResultExportVisible = false; d.ResultSetting = 77; d.ResultMode = 1; d.Frame3Stretch = true;
    d.Frame3Height = 123; d.Frame3Width = 456; d.FieldSeparator = QStringLiteral(";");
    d.DataExtension = QStringLiteral("dat"); d.Frame1Visible = false; d.AutoRunButton = 1;
    d.MailIconVisible = false; d.MailAddressField = 2; d.MailNameField = 1; d.ShowZeros = 1;
    d.HtmlStyles = {{QStringLiteral("plain"), 0}, {QStringLiteral("boxed"), 1}};
    d.Templates[0] = {QStringLiteral("*.txt"), QStringLiteral("Dear [F1]")};
    d.Templates[3] = {QStringLiteral("*.htm"), QStringLiteral("<p>[F2]</p>")};
    for (int i = 0; i < 5; ++i)
        d.PageBackColor[size_t(i)] = 0x00F0F0F0 + i;

    ReportDefinition r;
    r.Caption = QStringLiteral("Address labels");
    r.WindowWidth = 8000; r.WindowHeight = 6000; r.PageWidth = 11906; r.PageHeight = 16838;
    ReportShape rs; rs.BorderWidth = 2; rs.FillColor = 0x10; rs.Height = 1; rs.Width = 2; rs.Top = 3; rs.Left = 4;
    r.Shapes = {rs};
    ReportLine rl; rl.BorderColor = 9; rl.X2 = 100;
    r.Lines = {rl, rl};
    ReportPicture rp; rp.Top = 1; rp.Left = 2; rp.Height = 3; rp.Width = 4; rp.Flag = 1; rp.ImageField = 0; rp.ImageRow = 2;
    r.Pictures = {rp};
    ReportLabel fixed; fixed.FontName = QStringLiteral("Arial"); fixed.FontBold = true; fixed.FontSize = 14;
    fixed.Width = 2000; fixed.Height = 300; fixed.LabelFixed = -1; fixed.Text = QStringLiteral("Dear F3=1$ ř"); fixed.LabelRow = 1;
    ReportLabel bound = fixed; bound.LabelFixed = 2; bound.Text = QStringLiteral("F"); bound.LabelRow = 3; bound.AutoSize = -1;
    r.Labels = {fixed, bound};
    ReportDefinition noCaption; // an empty caption: no definition follows
    ReportDefinition bare; bare.Caption = QStringLiteral("Empty page"); // a definition with no elements
    d.Reports = {r, noCaption, bare};
    d.BackgroundPicture = QStringLiteral("tile.gif");
    return d;
}

inline DesignWriter::Files RichFiles()
{
    DesignWriter::Files files;
    files.insert(QStringLiteral("logo.gif"), QByteArray("GIF89a-logo-data\0\1\2", 19));
    files.insert(QStringLiteral("../escaped.gif"), QByteArray("must never be written"));
    files.insert(QStringLiteral("tile.gif"), QByteArray("GIF89a-tile"));
    return files;
}

} // namespace ff::testsupport
