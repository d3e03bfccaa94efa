#pragma once
// The order of the design block, item by item, written once for both directions. The block has no
// tags and no index: a value's meaning is its place in the stream, so the reader (BlockReader) and
// the writer (BlockWriter) run through this one function and cannot drift apart.
//
// An IO provides:
//   static constexpr bool reading;
//   bool ok() const;                  false after the first failure; every later call is a no-op
//   void step(int n);                 names the step for error messages
//   void fail(ErrorCode, QString);
//   void item(T &) for bool, uint8_t, int16_t, int32_t, float, double: one 16-byte slot
//   void skipItem(); void skipText(); a value of the order that nothing uses
//   void text(QString &);             salted text
//   void scrambled(QString &);        salted text through the byte substitution
//   void plain(QString &);            unsalted text (report definitions only)
//   void embedded(QString &name, bool last); salted name, then the file's data when not empty
//   void charsetKnown(int charset);   FontCharset has been read: texts so far can be decoded
//
// When writing, the counts of the element tables are taken from the Design's count members, which
// DesignWriter sets from the vectors before it calls transfer().

#include "core/Result.h"
#include "design/Design.h"

#include <algorithm>

namespace ff {

class DesignLayout {
public:
    template <class IO>
    static void transfer(IO &io, Design &d)
    {
        io.step(1);
        io.scrambled(d.AppTitle);
        io.step(2);
        io.item(d.Pattern);
        io.step(3);
        io.item(d.ScrollColor);
        io.step(4);
        io.item(d.HasHints);
        io.step(5);
        io.text(d.TextExtension);
        io.step(6);
        io.item(d.FlowPageEnabled);
        io.step(7);
        io.item(d.PageWidth);
        io.step(8);
        io.item(d.PageHeight);
        io.step(9);
        io.skipItem();
        io.step(10);
        io.item(d.DesignMark);
        io.step(11);
        io.item(d.MainWindowNumber);
        io.step(12);
        io.skipText();
        io.step(13);
        io.text(d.StatsTip);
        io.step(14);
        for (auto &t : d.ChartTexts)
            io.text(t);
        io.step(15);
        io.item(d.ScrambleRecords);
        io.step(16);
        io.text(d.MainCap);
        io.step(17);
        io.item(d.ReportLineMode);
        io.step(18);
        io.text(d.AppFontName);
        io.step(19);
        io.item(d.FontCharset);
        if (io.ok())
            io.charsetKnown(d.FontCharset);
        io.step(20);
        io.item(d.WindowState);
        io.step(21);
        for (auto &t : d.MessageText)
            io.text(t);

        io.step(22);
        elements(io, d.Shapes, d.ShapeCount, 0, [&](ShapeElement &e) { shape(io, e); });
        io.step(23);
        elements(io, d.Lines, d.LineCount, 0, [&](LineElement &e) { line(io, e); });
        io.step(24);
        elements(io, d.Pictures, d.PictureCount, 0, [&](PictureElement &e) { picture(io, d, e); });
        io.step(25);
        elements(io, d.Titles, d.TitleCount, 0, [&](TitleElement &e) { title(io, d, e); });
        io.step(26);
        elements(io, d.Fields, d.FieldCount, 1, [&](FieldElement &e) { field(io, d, e); });
        io.step(27);
        elements(io, d.Combos, d.ComboCount, 1, [&](ComboElement &e) { combo(io, d, e); });
        io.step(28);
        elements(io, d.Notes, d.NoteCount, 1, [&](NoteElement &e) { note(io, d, e); });
        io.step(29);
        elements(io, d.Checks, d.CheckCount, 0, [&](CheckElement &e) { check(io, d, e); });
        io.step(30);
        elements(io, d.Buttons, d.ButtonCount, 0, [&](ButtonElement &e) { button(io, e); });

        io.step(31);
        io.item(d.ClockFormat);
        io.step(32);
        io.skipItem();
        io.step(33);
        io.item(d.AboutInfoVisible);
        io.step(34);
        io.scrambled(d.Aboutme);
        io.step(35);
        io.item(d.Image4Visible);
        io.step(36);
        io.skipText();
        io.step(37);
        io.scrambled(d.AdminPassword);
        io.step(38);
        for (auto &t : d.CaptionRun)
            io.text(t);
        io.step(39);
        io.item(d.StampFormat);
        io.step(40);
        io.scrambled(d.AboutLabel1);
        io.step(41);
        io.text(d.Finden3Caption);
        io.step(42);
        for (auto &t : d.PageCaptions)
            io.text(t);
        io.step(43);
        io.item(d.TileMode);
        io.step(44);
        io.item(d.ExportingVisible);
        io.step(45);
        for (auto &t : d.UiText)
            io.text(t);
        // Step 46 is the login, which takes nothing from the stream.
        io.step(47);
        io.skipItem();
        io.step(48);
        for (auto &t : d.SelectiveText)
            io.text(t);
        io.step(49);
        for (auto &v : d.SearchSetting)
            io.item(v);
        io.step(50);
        io.text(d.ResultListText);
        io.step(51);
        io.item(d.ResultListFlag);
        io.step(52);
        io.item(d.ResultImage2Visible);
        io.step(53);
        io.item(d.ResultExportVisible);
        io.step(54);
        io.item(d.ResultSetting);
        io.step(55);
        io.item(d.ResultMode);
        io.step(56);
        io.item(d.Frame3Stretch);
        io.step(57);
        io.item(d.Frame3Height);
        io.step(58);
        io.item(d.Frame3Width);
        io.step(59);
        io.skipItem();
        io.skipItem();
        io.step(60);
        io.text(d.FieldSeparator);
        io.step(61);
        io.text(d.DataExtension);
        io.step(62);
        io.item(d.Frame1Visible);
        io.step(63);
        io.skipText();
        io.step(64);
        io.item(d.AutoRunButton);
        io.step(65);
        io.item(d.MailIconVisible);
        io.step(66);
        io.item(d.MailAddressField);
        io.step(67);
        io.item(d.MailNameField);
        io.step(68);
        io.item(d.ShowZeros);
        io.step(69);
        htmlStyles(io, d);
        io.step(70);
        io.skipText();
        io.step(71);
        for (auto &t : d.Templates) {
            // The block holds the bare extension; the design keeps it as "*.ext".
            if constexpr (IO::reading) {
                io.text(t.TemplateExtension);
                if (!t.TemplateExtension.isEmpty())
                    t.TemplateExtension.prepend(QLatin1String("*."));
            } else {
                QString bare = t.TemplateExtension;
                if (bare.startsWith(QLatin1String("*.")))
                    bare.remove(0, 2);
                io.text(bare);
            }
            io.text(t.TemplateText);
            io.skipText();
        }
        io.step(72);
        for (auto &c : d.PageBackColor)
            io.item(c);
        io.step(73);
        reports(io, d);
        io.step(74);
        io.embedded(d.BackgroundPicture, true);
    }

private:
    // A block of elements: a 16-bit count, then one record per index from `first` to the count.
    // For the kinds from 0 the count is the highest index (-1 for none); for fields, combos and
    // notes it is the number of elements, and index 0 is the unused template.
    template <class IO, class E, class F>
    static void elements(IO &io, std::vector<E> &v, int16_t &count, int first, F one)
    {
        int16_t n = count;
        io.item(n);
        if constexpr (IO::reading) {
            v.clear();
            if (first == 1)
                v.emplace_back();
            if (!io.ok())
                return;
            if (std::is_same_v<E, PictureElement> && n >= kMaxPictures) {
                io.fail(ErrorCode::SubscriptOutOfRange,
                        QStringLiteral("%1 pictures, at most %2 fit").arg(int(n) + 1).arg(kMaxPictures));
                return;
            }
            for (int i = first; i <= n && io.ok(); ++i) {
                v.emplace_back();
                one(v.back());
            }
            count = static_cast<int16_t>(v.size() - 1);
            if (first == 1 && count < 0)
                count = 0;
        } else {
            for (int i = first; i <= n && i < static_cast<int>(v.size()); ++i)
                one(v[i]);
        }
    }

    template <class IO>
    static void hints(IO &io, const Design &d, QString &toolTip, QString &hint)
    {
        if (d.HasHints) {
            io.text(toolTip);
            io.text(hint);
        }
    }

    template <class IO>
    static void shape(IO &io, ShapeElement &e)
    {
        io.item(e.ShapePage);
        io.item(e.ShapePrint);
        io.item(e.BackColor);
        io.item(e.BorderColor);
        io.item(e.FillColor);
        io.item(e.BorderStyle);
        io.item(e.BorderWidth);
        io.item(e.FillStyle);
        io.item(e.Width);
        io.item(e.Height);
        io.item(e.Shape);
        io.item(e.Top);
        io.item(e.Left);
    }

    template <class IO>
    static void line(IO &io, LineElement &e)
    {
        io.item(e.LinePage);
        io.item(e.X1);
        io.item(e.Y1);
        io.item(e.X2);
        io.item(e.Y2);
        io.item(e.BorderColor);
        io.item(e.LinePrint);
    }

    template <class IO>
    static void picture(IO &io, const Design &d, PictureElement &e)
    {
        io.text(e.PictureName);
        io.item(e.PicturePage);
        io.item(e.PicturePrint);
        io.embedded(e.FileName, false);
        io.item(e.Top);
        io.item(e.Left);
        hints(io, d, e.ToolTip, e.PictureHint);
        io.item(e.Border);
        io.item(e.Stretch);
        io.item(e.Height);
        io.item(e.Width);
        io.item(e.ZOrder);
        io.text(e.PictureLink);
    }

    template <class IO>
    static void title(IO &io, const Design &d, TitleElement &e)
    {
        io.item(e.TitlePage);
        io.item(e.TitlePrint);
        io.text(e.FontName);
        io.item(e.FontItalic);
        io.item(e.FontBold);
        io.item(e.FontUnderline);
        io.item(e.FontSize);
        io.item(e.ForeColor);
        io.item(e.Left);
        io.item(e.Top);
        io.scrambled(e.Caption);
        io.item(e.Alignment);
        io.text(e.Tag);
        hints(io, d, e.ToolTip, e.TitleHint);
        e.present = true;
    }

    template <class IO>
    static void field(IO &io, const Design &d, FieldElement &e)
    {
        io.item(e.FieldMenu);
        io.item(e.FieldGlobal);
        io.item(e.FieldDefault);
        io.item(e.FieldWriteOnce);
        io.item(e.FieldPage);
        io.item(e.FieldPrint);
        io.item(e.FieldNoSearch);
        io.item(e.Locked);
        io.item(e.MaxLength);
        io.item(e.Top);
        io.item(e.Left);
        io.text(e.FontName);
        io.item(e.ForeColor);
        io.item(e.FontBold);
        io.item(e.FontItalic);
        io.item(e.BackColor);
        io.item(e.FontSize);
        io.text(e.Tag);
        io.item(e.FieldTabOrder);
        io.item(e.Border);
        hints(io, d, e.ToolTip, e.FieldHint);
        io.item(e.FieldDisplay);
        io.item(e.FieldCase);
        io.item(e.FieldType);
        io.scrambled(e.FieldFormula);
        io.item(e.Height);
        io.item(e.Width);
        io.item(e.Alignment);
        io.item(e.FieldBox);
        if (e.FieldBox) {
            io.item(e.Frame.color);
            io.item(e.Frame.fill);
        }
    }

    template <class IO>
    static void note(IO &io, const Design &d, NoteElement &e)
    {
        io.item(e.NotePage);
        io.item(e.NoteWriteOnce);
        io.item(e.NotePrint);
        io.item(e.NoteNoSearch);
        io.item(e.MaxLength);
        io.item(e.Top);
        io.item(e.Left);
        io.item(e.ForeColor);
        io.text(e.FontName);
        io.item(e.FontBold);
        io.item(e.FontItalic);
        io.item(e.BackColor);
        io.item(e.FontSize);
        io.text(e.Tag);
        io.item(e.NoteTabOrder);
        io.item(e.Border);
        hints(io, d, e.ToolTip, e.NoteHint);
        io.item(e.Height);
        io.item(e.Width);
        io.item(e.Alignment);
        io.item(e.NoteBox);
        if (e.NoteBox) {
            io.item(e.Frame.color);
            io.item(e.Frame.fill);
        }
    }

    template <class IO>
    static void combo(IO &io, const Design &d, ComboElement &e)
    {
        // The list count is the number of entries that follow.
        int32_t n = static_cast<int32_t>(e.List.size());
        io.item(n);
        if constexpr (IO::reading) {
            e.List.clear();
            for (int32_t i = 0; i < n && io.ok(); ++i) {
                QString entry;
                io.text(entry);
                e.List.append(entry);
            }
        } else {
            for (auto &entry : e.List)
                io.text(entry);
        }
        io.item(e.ComboMenu);
        io.item(e.TextCase);
        io.item(e.MaxLength);
        io.item(e.ComboPage);
        io.item(e.ComboWriteOnce);
        io.item(e.ComboPrint);
        io.item(e.ComboNoSearch);
        io.item(e.ComboFormat);
        io.item(e.Top);
        io.item(e.Left);
        io.text(e.FontName);
        io.item(e.ForeColor);
        io.item(e.FontBold);
        io.item(e.FontItalic);
        io.item(e.BackColor);
        io.item(e.FontSize);
        io.text(e.Tag);
        io.item(e.ComboTabOrder);
        hints(io, d, e.ToolTip, e.ComboHint);
        io.item(e.Width);
        io.item(e.Frame.color);
        io.item(e.Frame.fill);
    }

    template <class IO>
    static void check(IO &io, const Design &d, CheckElement &e)
    {
        io.item(e.CheckMenu);
        io.item(e.CheckPage);
        io.item(e.CheckPrint);
        io.item(e.CheckNoSearch);
        io.item(e.CheckWriteOnce);
        io.item(e.Top);
        io.item(e.Left);
        hints(io, d, e.ToolTip, e.CheckHint);
        io.text(e.Tag);
        io.item(e.CheckTabOrder);
        io.item(e.OptionBx);
        io.item(e.ForeStyle);
        io.item(e.CheckDefault);
    }

    template <class IO>
    static void button(IO &io, ButtonElement &e)
    {
        io.item(e.ButtonPage);
        io.text(e.Caption);
        io.text(e.Tag);
        io.text(e.FontName);
        io.text(e.ToolTip); // a button's tool tip stands in the block whatever HasHints says
        io.item(e.FontSize);
        io.skipItem();
        io.skipItem();
        io.item(e.Border);
        io.item(e.Top);
        io.item(e.Left);
        io.item(e.Width);
        io.item(e.Height);
        io.item(e.BackColor);
        io.item(e.RenderColor);
        io.item(e.ButtonMode);
        io.text(e.ButtonScript);
    }

    template <class IO>
    static void htmlStyles(IO &io, Design &d)
    {
        int16_t n = static_cast<int16_t>(static_cast<int>(d.HtmlStyles.size()) - 1);
        io.item(n);
        if constexpr (IO::reading) {
            d.HtmlStyles.clear();
            for (int i = 0; i <= n && io.ok(); ++i) {
                d.HtmlStyles.emplace_back();
                io.text(d.HtmlStyles.back().HtmlStyleName);
                io.item(d.HtmlStyles.back().HtmlStyleFlag);
            }
        } else {
            for (auto &s : d.HtmlStyles) {
                io.text(s.HtmlStyleName);
                io.item(s.HtmlStyleFlag);
            }
        }
    }

    template <class IO>
    static void reports(IO &io, Design &d)
    {
        uint8_t n = static_cast<uint8_t>(d.Reports.size());
        io.item(n);
        if constexpr (IO::reading) {
            d.Reports.clear();
            for (int i = 0; i < n && io.ok(); ++i) {
                d.Reports.emplace_back();
                report(io, d.Reports.back());
            }
        } else {
            for (auto &r : d.Reports)
                report(io, r);
        }
    }

    // A report: its caption (a salted text) and, only when that is not empty, its definition, whose
    // strings are all unsalted.
    template <class IO>
    static void report(IO &io, ReportDefinition &r)
    {
        io.text(r.Caption);
        if (r.Caption.isEmpty() || !io.ok())
            return;
        io.item(r.WindowWidth);
        io.item(r.WindowHeight);
        io.item(r.PageWidth);
        io.item(r.PageHeight);
        // Shapes, lines and pictures: the count is the highest index from 0, -1 for none.
        list(io, r.Shapes, 1, [&](ReportShape &s) {
            io.item(s.Visible);
            io.item(s.BorderWidth);
            io.item(s.FillStyle);
            io.item(s.BorderStyle);
            io.item(s.Shape);
            io.item(s.FillColor);
            io.item(s.BorderColor);
            io.item(s.Height);
            io.item(s.Width);
            io.item(s.Top);
            io.item(s.Left);
        });
        list(io, r.Lines, 1, [&](ReportLine &l) {
            io.item(l.Visible);
            io.item(l.BorderColor);
            io.item(l.X1);
            io.item(l.Y1);
            io.item(l.X2);
            io.item(l.Y2);
        });
        list(io, r.Pictures, 1, [&](ReportPicture &p) {
            io.item(p.Visible);
            io.item(p.Top);
            io.item(p.Left);
            io.item(p.Height);
            io.item(p.Width);
            io.item(p.Flag);
            io.item(p.ImageField);
            io.item(p.ImageRow);
        });
        // Labels: the count is the number of labels, numbered from 1.
        list(io, r.Labels, 0, [&](ReportLabel &l) {
            io.item(l.Visible);
            io.plain(l.FontName);
            io.item(l.FontBold);
            io.item(l.FontItalic);
            io.item(l.FontUnderline);
            io.item(l.FontSize);
            io.item(l.ForeColor);
            io.item(l.Top);
            io.item(l.Left);
            io.item(l.Width);
            io.item(l.Height);
            io.item(l.Alignment);
            io.item(l.AutoSize);
            io.item(l.LabelFixed);
            io.plain(l.Text);
            io.item(l.LabelRow);
        });
    }

    // A report's list: a 16-bit count that is the number of entries minus `offset`.
    template <class IO, class E, class F>
    static void list(IO &io, std::vector<E> &v, int offset, F one)
    {
        int16_t n = static_cast<int16_t>(static_cast<int>(v.size()) - offset);
        io.item(n);
        if constexpr (IO::reading) {
            v.clear();
            for (int i = 0; i < int(n) + offset && io.ok(); ++i) {
                v.emplace_back();
                one(v.back());
            }
        } else {
            for (auto &e : v)
                one(e);
        }
    }
};

} // namespace ff
