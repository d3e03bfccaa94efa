#include "web/RecordPageWriter.h"

#include "design/RecordPictureFile.h"

#include "export/ExportKinds.h"
#include "formula/SubstituteTags.h"
#include "web/HtmlText.h"
#include "web/PagePictures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QImage>

namespace ff::web {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

QString num(int v) { return QString::number(v); }

// An element stands on page `k` when its page is k or -1 (every page).
bool onPage(int elementPage, int k) { return elementPage == k || elementPage == -1; }

QString alignWord(int alignment)
{
    return alignment == 1 ? QStringLiteral("right;") : alignment == 2 ? QStringLiteral("center;") : QStringLiteral("left;");
}

// A note's text inside a Textarea: as it stands, but with the marks that would end the element or
// turn into other characters written as entities, so that it shows exactly as typed.
QString textareaText(const QString &text)
{
    QString out = text;
    out.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    out.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    out.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    return out;
}

} // namespace

RecordPageWriter::RecordPageWriter(const Design &design, const QString &pictureFolder, const QString &recordPictureFolder)
    : design_(design), codePage_(design.FontCharset), pictureFolder_(pictureFolder), recordPictureFolder_(recordPictureFolder)
{
}

RecordPageWriter::~RecordPageWriter() = default;

void RecordPageWriter::setTarget(const QString &exportFolder, const QString &exportName, bool currentRecordNames)
{
    folder_ = exportFolder;
    exportName_ = exportName;
    currentRecordNames_ = currentRecordNames;
}

QString RecordPageWriter::pageFile(int record, int k) const
{
    static const char *const letters[] = {"", "b", "c", "d", "e"};
    const QLatin1String letter(letters[qBound(0, k, 4)]);
    if (currentRecordNames_)
        return letter + exportName_;
    return num(record) + letter + QStringLiteral(".htm");
}

const TextWidths &RecordPageWriter::metricsFor(const QString &family, double points, bool bold, bool italic, bool underline)
{
    const QString &name = family.isEmpty() ? design_.AppFontName : family;
    // A design uses a handful of fonts: they are looked for one by one.
    const int style = (bold ? 1 : 0) | (italic ? 2 : 0) | (underline ? 4 : 0);
    for (const FontWidths &known : metrics_) {
        if (known.points == points && known.style == style && known.family == name)
            return *known.widths;
    }
    QFont font(name);
    if (points > 0)
        font.setPointSizeF(points);
    font.setBold(bold);
    font.setItalic(italic);
    font.setUnderline(underline);
    // Measured for a 96 dpi device, the unit the pages are written in.
    static const QImage device = [] {
        QImage image(1, 1, QImage::Format_RGB32);
        image.setDotsPerMeterX(3780);
        image.setDotsPerMeterY(3780);
        return image;
    }();
    metrics_.push_back(FontWidths{name, points, style, std::make_unique<TextWidths>(font, &device)});
    return *metrics_.back().widths;
}

void RecordPageWriter::measureHeights(const Page &page)
{
    heights_.fill(0);
    const auto keep = [this](int elementPage, double topTwips, double heightTwips) {
        const int bottom = HtmlText::px(topTwips) + HtmlText::px(heightTwips);
        for (int k = 0; k <= design_.PageCount && k < 5; ++k)
            if (onPage(elementPage, k))
                heights_[size_t(k)] = qMax(heights_[size_t(k)], bottom);
    };
    const auto keepPx = [this](int elementPage, int top, int height) {
        for (int k = 0; k <= design_.PageCount && k < 5; ++k)
            if (onPage(elementPage, k))
                heights_[size_t(k)] = qMax(heights_[size_t(k)], top + height);
    };
    const Design &d = design_;
    for (const PictureElement &p : d.Pictures)
        keep(p.PicturePage, p.Top, p.Height);
    for (const FlowImage &im : page.FlowImages)
        keep(im.page, im.top, im.height);
    for (size_t i = 2; i < d.Titles.size(); ++i)
        if (d.Titles[i].present) {
            const TitleElement &t = d.Titles[i];
            const TextWidths &m = metricsFor(t.FontName, t.FontSize, t.FontBold, t.FontItalic);
            keepPx(t.TitlePage, HtmlText::px(t.Top), int(std::ceil(m.height())));
        }
    for (const FlowLabel &l : page.FlowLabels)
        keepPx(l.page, HtmlText::px(l.top), int(std::ceil(metricsFor(QString(), l.fontSize, false, false).height())));
    for (size_t i = 1; i < d.Fields.size(); ++i)
        keep(d.Fields[i].FieldPage, d.Fields[i].Top, d.Fields[i].Height);
    for (size_t i = 1; i < d.Combos.size(); ++i) {
        const ComboElement &c = d.Combos[i];
        keepPx(c.ComboPage, HtmlText::px(c.Top), int(std::ceil(metricsFor(c.FontName, c.FontSize, false, false).height())) + 8);
    }
    for (size_t i = 1; i < d.Notes.size(); ++i)
        keep(d.Notes[i].NotePage, d.Notes[i].Top, d.Notes[i].Height);
    for (const CheckElement &c : d.Checks)
        keepPx(c.CheckPage, HtmlText::px(c.Top), PagePictures::CheckSize);
}

Status RecordPageWriter::WriteRecordPages(int &argument, const Page &page, const FormulaContext &context)
{
    const bool formMode = argument < 0;
    const int record = formMode ? 0 : argument;
    measureHeights(page);
    offset_ = 0;
    QString out;
    out.reserve(8192);
    const int pages = qBound(0, design_.PageCount, 4);
    for (int k = 0; k <= pages; ++k) {
        if (!formMode)
            out.clear();
        if (argument != -2)
            writeHead(out, k, formMode, argument);
        writeMap(out, k, page, context);
        if (!formMode && pages > 0)
            writeTabs(out, record, k);
        if (!formMode)
            writePictures(out, k, page);
        if (Status s = writeCheckPictures(k); !s)
            return s;
        writeFlowImages(out, k, page);
        writeLabels(out, k, record, page, context);
        writeFlowLabels(out, k, page);
        writeFields(out, k, formMode, page);
        writeCombos(out, k, formMode, page);
        writeNotes(out, k, formMode, page);
        writeChecks(out, k, page);
        if (formMode) {
            offset_ += heights_[size_t(k)];
            continue;
        }
        for (const HtmlStyle &style : design_.HtmlStyles)
            if (style.HtmlStyleFlag == k && !style.HtmlStyleName.isEmpty()) {
                QString text = style.HtmlStyleName;
                SubstituteTags(text, page, context);
                out += text + kCrLf;
            }
        out += QStringLiteral("</body></html>") + kCrLf;
        if (Status s = writeFile(folder_ + pageFile(record, k), out); !s)
            return s;
    }
    if (formMode) {
        const int half = HtmlText::px(design_.PageWidth) / 2;
        out += QStringLiteral("<input type=\"Submit\" value=\"Send\" style=\"Left:%1px; POSITION:absolute; Top:%2px;\">")
                   .arg(half)
                   .arg(offset_ + 20) +
               kCrLf;
        out += QStringLiteral("</form>") + kCrLf + QStringLiteral("</body></html>") + kCrLf;
        return writeFile(folder_ + exportName_, out);
    }
    return {};
}

void RecordPageWriter::writeHead(QString &out, int page, bool formMode, int &argument) const
{
    out += QStringLiteral("<html>\r\n<head>\r\n<title>") + HtmlText::HtmlEscape(design_.MainCap) + QStringLiteral("</title>\r\n");
    const QString charset = HtmlText::CharsetName(design_.FontCharset);
    if (!charset.isEmpty())
        out += QStringLiteral("<meta http-equiv=\"Content-Type\" content=\"text/html; CHARSET=") + charset +
               QStringLiteral("\">\r\n");
    out += QStringLiteral("<STYLE type=\"text/css\">\r\n  a{text-decoration:none;}\r\n</STYLE>\r\n</head>\r\n");
    const QString back = formMode ? QStringLiteral("#FFFFFF")
                                  : HtmlText::ColorToHex(design_.PageBackColor[size_t(qBound(0, page, 4))]);
    out += QStringLiteral("<body  bgcolor=\"") + back + QStringLiteral("\">\r\n");
    if (formMode) {
        out += HtmlText::CentreScript(HtmlText::px(design_.PageWidth));
        out += QStringLiteral("<form action=\"../") + HtmlText::HtmlEscape(CutExportExtension(exportName_)) +
               QStringLiteral(".php\" method=\"POST\">\r\n");
        argument = -2;
    }
}

void RecordPageWriter::writeMap(QString &out, int k, const Page &page, const FormulaContext &context) const
{
    QString areas;
    for (const PictureElement &p : design_.Pictures) {
        if (!onPage(p.PicturePage, k) || p.PictureLink.isEmpty())
            continue;
        QString link = p.PictureLink;
        SubstituteTags(link, page, context);
        const int left = HtmlText::px(p.Left), top = HtmlText::px(p.Top) + offset_;
        areas += QStringLiteral("   <AREA SHAPE=\"RECT\" COORDS=\"%1,%2,%3,%4\" href=\"")
                     .arg(left)
                     .arg(top)
                     .arg(left + HtmlText::px(p.Width))
                     .arg(top + HtmlText::px(p.Height)) +
                 HtmlText::HtmlEscape(link) + QStringLiteral("\">") + kCrLf;
    }
    if (!areas.isEmpty())
        out += QStringLiteral("<Map name=\"PictureMap1\">") + kCrLf + areas + QStringLiteral("</Map>") + kCrLf;
    out += QStringLiteral("<div><img src=\"Background") + num(k) + QStringLiteral(".jpg\" style=\"Top:") + num(offset_) +
           QStringLiteral("px; POSITION:absolute; Left:0\"") +
           (areas.isEmpty() ? QString() : QStringLiteral(" usemap=\"#PictureMap1\"")) + QStringLiteral(">") + kCrLf;
}

void RecordPageWriter::writeTabs(QString &out, int record, int k) const
{
    static const int tabLeft[] = {1, 70, 140, 210, 280};
    static const int captionLeft[] = {10, 80, 150, 220, 290};
    const int pages = qBound(0, design_.PageCount, 4);
    QString text;
    for (int t = 0; t <= pages; ++t)
        text += QStringLiteral("<a href=\"") + HtmlText::HtmlEscape(pageFile(record, t)) + QStringLiteral("\"><img src=\"") +
                (t == k ? QStringLiteral("button2.gif") : QStringLiteral("button.gif")) + QStringLiteral("\" style=\"Left:") +
                num(tabLeft[t]) + QStringLiteral("px; POSITION:absolute; Top:0px;\" border=\"0\"></a>");
    const TextWidths &m = const_cast<RecordPageWriter *>(this)->metricsFor(QStringLiteral("Arial"), 8.25, false, false);
    for (int t = 0; t <= pages; ++t) {
        const QString caption = design_.PageCaptions[size_t(t)];
        const int x = int((61 - m.width(caption)) / 2) + captionLeft[t];
        text += QStringLiteral("<div><u><font face=\"Arial\"><Font color=\"#0000FF\"><a style=\"Font-Size:11px; POSITION:absolute; Left:") +
                num(x) + QStringLiteral("px; Top:0px;\" href=\"") + HtmlText::HtmlEscape(pageFile(record, t)) + QStringLiteral("\">") +
                HtmlText::HtmlEscape(caption) + QStringLiteral("</a></font></u></div>");
    }
    out += text + QStringLiteral("</div>") + kCrLf;
}

void RecordPageWriter::writePictures(QString &out, int k, const Page &page)
{
    for (size_t i = 0; i < design_.Pictures.size(); ++i) {
        const PictureElement &p = design_.Pictures[i];
        if (!onPage(p.PicturePage, k))
            continue;
        QString source;
        if (p.Stretch) {
            const QString name = qsizetype(i) < page.PictureRecordName.size() ? page.PictureRecordName[qsizetype(i)].trimmed() : QString();
            if (IsPlainFileName(name))
                source = RecordPictureFile(recordPictureFolder_, name);
        } else if (!p.FileName.isEmpty() && IsPlainFileName(p.FileName)) {
            source = QDir(pictureFolder_).filePath(p.FileName);
        }
        if (source.isEmpty() || !QFileInfo::exists(source))
            continue;
        const QString fileName = QFileInfo(source).fileName();
        const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
        const QString extension = dot > 0 ? fileName.right(4) : QStringLiteral(".jpg");
        ++PictureCounter;
        const QString copy = QStringLiteral("Pictures/") + num(PictureCounter) + extension;
        QFile::remove(folder_ + copy);
        // A picture that cannot be copied leaves its img element in place.
        std::ignore = QFile::copy(source, folder_ + copy);
        out += QStringLiteral("<img src=\"") + HtmlText::HtmlEscape(copy) + QStringLiteral("\" style=\"Left:") +
               num(HtmlText::px(p.Left)) + QStringLiteral("px; POSITION:absolute; Top:") + num(HtmlText::px(p.Top) + offset_) +
               QStringLiteral("px;\" width=\"") + num(HtmlText::px(p.Width)) + QStringLiteral("\" Height=\"") +
               num(HtmlText::px(p.Height)) + QStringLiteral("\" border=\"1\">") + kCrLf;
    }
}

namespace {

int checkStyle(const CheckElement &c)
{
    // An option box without a style of its own takes the round pictures.
    return c.OptionBx == 1 && c.ForeStyle < 4 ? 13 : c.ForeStyle;
}

} // namespace

Status RecordPageWriter::writeCheckPictures(int k)
{
    for (const CheckElement &c : design_.Checks) {
        if (!onPage(c.CheckPage, k))
            continue;
        const auto [off, on] = PagePictures::checkPair(checkStyle(c));
        for (const int number : {off, on}) {
            bool &written = checkWritten_[size_t(number - PagePictures::FirstCheck)];
            if (written)
                continue;
            const QString path = folder_ + QStringLiteral("Checkbox") + num(number) + QStringLiteral(".gif");
            QFile file(path);
            const QByteArray bytes = PagePictures::checkPicture(number);
            if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
                return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
            written = true;
        }
    }
    return {};
}

void RecordPageWriter::writeFlowImages(QString &out, int k, const Page &page) const
{
    for (const FlowImage &im : page.FlowImages) {
        if (!onPage(im.page, k))
            continue;
        out += QStringLiteral("<p>");
        if (im.FlowImageLink > 0)
            out += QStringLiteral(" <a href=\"") + num(im.FlowImageLink) + QStringLiteral(".htm\">");
        out += QStringLiteral("   <img src=\"Images/") + num(im.FlowImageId) + QStringLiteral(".gif\" style=\"Left:") +
               num(HtmlText::px(im.left)) + QStringLiteral("px; POSITION:absolute; Top:") + num(HtmlText::px(im.top) + offset_) +
               QStringLiteral("px;\" width=\"") + num(HtmlText::px(im.width)) + QStringLiteral("\" Height=\"") +
               num(HtmlText::px(im.height)) + QStringLiteral("\" border=\"0\">");
        if (im.FlowImageLink > 0)
            out += QStringLiteral(" </a>");
        out += QStringLiteral("</p>") + kCrLf;
    }
}

QString RecordPageWriter::labelLink(const QString &caption, int record) const
{
    const int last = qMax(1, recordCount_);
    const auto page = [](int n) { return QString::number(n) + QStringLiteral(".htm"); };
    const QString c = caption.trimmed();
    if (c == QLatin1String("<"))
        return record <= 1 ? page(1) : page(record - 1);
    if (c == QLatin1String(">"))
        return record >= last ? page(record) : page(record + 1);
    if (c == QLatin1String("<<"))
        return record <= 10 ? page(1) : page(record - 10);
    if (c == QLatin1String(">>"))
        return record + 10 > last ? page(last) : page(record + 10);
    if (c == QLatin1String("<<<"))
        return page(1);
    if (c == QLatin1String(">>>"))
        return page(last);
    return QString();
}

namespace {

// The common part of a label's div: alignment, font, colour and place. `text` holds the caption's
// lines; the box is as wide as the widest line and as high as the lines.
QString labelDiv(const QString &font, double points, int32_t color, int alignment, int left, int top, const TextWidths &m,
                 const QString &text)
{
    int shift = 0;
    QString align = QStringLiteral("Left");
    if (alignment == 1) {
        align = QStringLiteral("Right");
        shift = 50;
    } else if (alignment == 2) {
        align = QStringLiteral("Center");
        shift = 25;
    }
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    double width = 0;
    for (const QString &line : lines)
        width = qMax(width, m.width(line));
    const int height = int(std::ceil(m.height() * double(lines.size())));
    return QStringLiteral("<div Align=\"") + align + QStringLiteral("\" style=\"font-family:") + HtmlText::HtmlEscape(font) +
           QStringLiteral("; Font-Size:") + HtmlText::fontPx(points) + QStringLiteral("px; color:") + HtmlText::ColorToHex(color) +
           QStringLiteral("; POSITION:absolute; Left:") + QString::number(left - shift) + QStringLiteral("px; Top:") +
           QString::number(top) + QStringLiteral("px; Width:") + QString::number(int(std::ceil(width)) + 50) +
           QStringLiteral("px; Height:") + QString::number(height) + QStringLiteral("px;\"");
}

QString styled(const QString &escaped, bool bold, bool italic, bool underline)
{
    QString out;
    if (underline)
        out += QStringLiteral("<u>");
    if (bold)
        out += QStringLiteral("<b>");
    if (italic)
        out += QStringLiteral("<i>");
    out += escaped;
    if (italic)
        out += QStringLiteral("</i>");
    if (bold)
        out += QStringLiteral("</b>");
    if (underline)
        out += QStringLiteral("</u>");
    return out;
}

} // namespace

void RecordPageWriter::writeLabels(QString &out, int k, int record, const Page &page, const FormulaContext &context)
{
    const bool formMode = record == 0;
    for (size_t i = 2; i < design_.Titles.size(); ++i) {
        const TitleElement &t = design_.Titles[i];
        if (!t.present || !onPage(t.TitlePage, k))
            continue;
        const QString caption = qsizetype(i) < page.TitleCaption.size() ? page.TitleCaption[qsizetype(i)] : t.Caption;
        if (caption.isEmpty())
            continue;
        const QString font = t.FontName.isEmpty() ? design_.AppFontName : t.FontName;
        const TextWidths &m = metricsFor(font, t.FontSize, t.FontBold, t.FontItalic, t.FontUnderline);
        out += labelDiv(font, t.FontSize, t.ForeColor, t.Alignment, HtmlText::px(t.Left), HtmlText::px(t.Top) + offset_, m, caption);
        if (!formMode) {
            // The caption picks a navigation link; a label whose link text is one of the navigation
            // marks (a caption such as "|<" over the mark "<<<") goes the same way.
            QString link = labelLink(caption, record);
            if (link.isEmpty())
                link = labelLink(t.Tag, record);
            if (link.isEmpty() && !t.Tag.isEmpty()) {
                link = t.Tag;
                SubstituteTags(link, page, context);
            }
            if (!link.isEmpty())
                out += QStringLiteral(" href=\"") + HtmlText::HtmlEscape(link) + QLatin1Char('"');
        }
        out += QLatin1Char('>') + styled(HtmlText::HtmlEscape(caption), t.FontBold, t.FontItalic, t.FontUnderline) +
               QStringLiteral("</div>") + kCrLf;
    }
}

void RecordPageWriter::writeFlowLabels(QString &out, int k, const Page &page)
{
    for (const FlowLabel &l : page.FlowLabels) {
        if (!onPage(l.page, k) || l.text.isEmpty())
            continue;
        const bool bold = l.style % 10 != 0, italic = (l.style / 10) % 10 != 0, underline = (l.style / 100) % 10 != 0;
        const TextWidths &m = metricsFor(design_.AppFontName, l.fontSize, bold, italic, underline);
        out += labelDiv(design_.AppFontName, l.fontSize, l.color, l.alignment, HtmlText::px(l.left), HtmlText::px(l.top) + offset_,
                        m, l.text) +
               QLatin1Char('>') + styled(HtmlText::HtmlEscape(l.text), bold, italic, underline) + QStringLiteral("</div>") + kCrLf;
    }
}

namespace {

bool looksLikeWebAddress(const QString &text)
{
    return text.contains(QLatin1String("WWW."), Qt::CaseInsensitive) ||
           text.indexOf(QLatin1String(".HTM"), 1, Qt::CaseInsensitive) >= 1;
}

// A fitted value as the page shows it: its div at the place its alignment gives, with a link for
// a web address or the e-mail field.
QString valueDiv(const QString &font, double points, int32_t fore, const QString &background, int left, int top, int width,
                 int inset, int alignment, double textWidth, bool bold, bool italic, const QString &escaped, bool mail)
{
    int x = left + inset;
    if (alignment == 1)
        x = left + width - int(std::lround(textWidth)) - inset;
    else if (alignment == 2)
        x = left + int(std::lround((width - textWidth) / 2));
    QString out = QStringLiteral("<div style=\"font-family:") + HtmlText::HtmlEscape(font) + QStringLiteral("; Font-Size:") +
                  HtmlText::fontPx(points) + QStringLiteral("px; color:") + HtmlText::ColorToHex(fore);
    if (!background.isEmpty())
        out += QStringLiteral("; Background-Color:") + background;
    out += QStringLiteral("; POSITION:absolute; Left:") + QString::number(x) + QStringLiteral("px; Top:") +
           QString::number(top + 2 * inset) + QStringLiteral("px; width:") + QString::number(width + 1) + QStringLiteral("px;\">");
    if (bold)
        out += QStringLiteral("<b>");
    if (italic)
        out += QStringLiteral("<i>");
    if (mail)
        out += QStringLiteral("<a href=\"mailto:") + escaped + QStringLiteral("\">") + escaped + QStringLiteral("</a>");
    else if (looksLikeWebAddress(escaped))
        out += QStringLiteral("<a href=\"http://") + escaped + QStringLiteral("\">") + escaped + QStringLiteral("</a>");
    else
        out += escaped;
    if (bold)
        out += QStringLiteral("</b>");
    if (italic)
        out += QStringLiteral("</i>");
    return out + QStringLiteral("</div>\r\n");
}

} // namespace

void RecordPageWriter::writeFields(QString &out, int k, bool formMode, const Page &page)
{
    for (size_t i = 1; i < design_.Fields.size(); ++i) {
        const FieldElement &f = design_.Fields[i];
        if (!onPage(f.FieldPage, k))
            continue;
        const QString font = f.FontName.isEmpty() ? design_.AppFontName : f.FontName;
        const int left = HtmlText::px(f.Left), top = HtmlText::px(f.Top) + offset_;
        const int width = HtmlText::px(f.Width), height = HtmlText::px(f.Height);
        if (formMode) {
            out += QStringLiteral("<Input type=\"text\" name=\"") + HtmlText::HtmlEscape(f.Tag) + QStringLiteral("\" maxlength=\"") +
                   num(f.MaxLength) + QLatin1Char('"');
            if (!f.ToolTip.isEmpty())
                out += QStringLiteral(" Title=\"") + HtmlText::HtmlEscape(f.ToolTip) + QLatin1Char('"');
            out += QStringLiteral(" Style=\"Color:") + HtmlText::ColorToHex(f.ForeColor) + QStringLiteral("; Background-Color:") +
                   HtmlText::ColorToHex(f.BackColor) + QStringLiteral("; Text-align:") + alignWord(f.Alignment) +
                   QStringLiteral(" Font-Family:") + HtmlText::HtmlEscape(font) + QStringLiteral("; Font-Size:") +
                   HtmlText::fontPx(f.FontSize) + QStringLiteral("px; Line-Height:normal; border:0px;  Left:") + num(left) +
                   QStringLiteral("px; Width:") + num(width) + QStringLiteral("px; POSITION:absolute; Top:") + num(top) +
                   QStringLiteral("px; Height:") + num(height) + QStringLiteral("px;\">") + kCrLf;
            continue;
        }
        const QString text = qsizetype(i) < page.FieldText.size() ? page.FieldText[qsizetype(i)] : QString();
        if (text.isEmpty())
            continue;
        const TextWidths &m = metricsFor(font, f.FontSize, f.FontBold, f.FontItalic);
        const QString fitted = m.fit(text, width);
        out += valueDiv(font, f.FontSize, f.ForeColor, QString(), left, top, width, 0, f.Alignment, m.width(fitted),
                        f.FontBold, f.FontItalic, HtmlText::HtmlEscape(fitted), int(i) == design_.MailAddressField);
    }
}

void RecordPageWriter::writeCombos(QString &out, int k, bool formMode, const Page &page)
{
    for (size_t i = 1; i < design_.Combos.size(); ++i) {
        const ComboElement &c = design_.Combos[i];
        if (!onPage(c.ComboPage, k))
            continue;
        const QString font = c.FontName.isEmpty() ? design_.AppFontName : c.FontName;
        const TextWidths &m = metricsFor(font, c.FontSize, c.FontBold, c.FontItalic);
        const int left = HtmlText::px(c.Left), top = HtmlText::px(c.Top) + offset_, width = HtmlText::px(c.Width);
        if (formMode) {
            const int height = int(std::ceil(m.height())) + 8;
            out += QStringLiteral("<Select Name=\"") + HtmlText::HtmlEscape(c.Tag) + QStringLiteral("\" maxlength=\"") +
                   num(c.MaxLength) + QStringLiteral("\" Title=\"") + HtmlText::HtmlEscape(c.ToolTip) +
                   QStringLiteral("\" Style=\"Color:") + HtmlText::ColorToHex(c.ForeColor) + QStringLiteral("; Background-Color:") +
                   HtmlText::ColorToHex(c.BackColor) + QStringLiteral("; Font-Family:") + HtmlText::HtmlEscape(font) +
                   QStringLiteral(";Font-Size:") + HtmlText::fontPx(c.FontSize) + QStringLiteral("px;Line-Height:normal;Left:") +
                   num(left) + QStringLiteral("px; Width:") + num(width - 2) + QStringLiteral("px; POSITION:absolute; Top:") +
                   num(top) + QStringLiteral("px; Height:") + num(height - 2) + QStringLiteral("px;\">") + kCrLf;
            for (const QString &item : c.List) {
                const QString escaped = HtmlText::HtmlEscape(item);
                out += QStringLiteral("    <option value=\"") + escaped + QStringLiteral("\">") + escaped + kCrLf;
            }
            out += QStringLiteral("</Select>") + kCrLf;
            continue;
        }
        const QString text = qsizetype(i) < page.ComboText.size() ? page.ComboText[qsizetype(i)] : QString();
        if (text.isEmpty())
            continue;
        const int inset = c.ComboFormat == 0 ? 4 : 2;
        const QString fitted = m.fit(text, width);
        out += valueDiv(font, c.FontSize, c.ForeColor, HtmlText::ColorToHex(c.BackColor), left, top, width, inset, 0,
                        m.width(fitted), c.FontBold, c.FontItalic, HtmlText::HtmlEscape(fitted), false);
    }
}

void RecordPageWriter::writeNotes(QString &out, int k, bool formMode, const Page &page) const
{
    for (size_t i = 1; i < design_.Notes.size(); ++i) {
        const NoteElement &n = design_.Notes[i];
        if (!onPage(n.NotePage, k))
            continue;
        const QString font = HtmlText::HtmlEscape(n.FontName.isEmpty() ? design_.AppFontName : n.FontName);
        const QString left = num(HtmlText::px(n.Left)), top = num(HtmlText::px(n.Top) + offset_);
        const QString width = num(HtmlText::px(n.Width)), height = num(HtmlText::px(n.Height));
        if (formMode) {
            out += QStringLiteral("<Textarea name=\"") + HtmlText::HtmlEscape(n.Tag) + QStringLiteral("\" maxlength=\"") +
                   num(n.MaxLength) + QStringLiteral("\" Style=\"Color:") + HtmlText::ColorToHex(n.ForeColor) +
                   QStringLiteral("; Background-Color:") + HtmlText::ColorToHex(n.BackColor) + QStringLiteral("; Text-align:") +
                   alignWord(n.Alignment) + QStringLiteral(" Font-Family:") + font + QStringLiteral("; Font-Size:") +
                   HtmlText::fontPx(n.FontSize) + QStringLiteral("px; Left:") + left + QStringLiteral("px; Width:") + width +
                   QStringLiteral("px; POSITION:absolute; Top:") + top + QStringLiteral("px; Height:") + height +
                   QStringLiteral("px;\">") + kCrLf + kCrLf + QStringLiteral("</Textarea>") + kCrLf;
            continue;
        }
        const QString text = qsizetype(i) < page.NoteText.size() ? page.NoteText[qsizetype(i)] : QString();
        out += QStringLiteral("<p><Textarea style=\"Left:") + left + QStringLiteral("px; POSITION:absolute; TOP:") + top +
               QStringLiteral("px; Font-Family:") + font + QStringLiteral("; Font-Size:") + HtmlText::fontPx(n.FontSize) +
               QStringLiteral("px; Width:") + width + QStringLiteral("px; Height:") + height + QStringLiteral("px;\">") +
               textareaText(text) + QStringLiteral("</Textarea></p>") + kCrLf;
    }
}

void RecordPageWriter::writeChecks(QString &out, int k, const Page &page) const
{
    for (size_t i = 0; i < design_.Checks.size(); ++i) {
        const CheckElement &c = design_.Checks[i];
        if (!onPage(c.CheckPage, k))
            continue;
        const auto [off, on] = PagePictures::checkPair(checkStyle(c));
        const int value = qsizetype(i) < page.CheckValue.size() ? page.CheckValue[qsizetype(i)] : 0;
        out += QStringLiteral("<img src=\"Checkbox") + num(value > 0 ? on : off) + QStringLiteral(".gif\" style=\"Left:") +
               num(HtmlText::px(c.Left)) + QStringLiteral("px; POSITION:absolute; Top:") + num(HtmlText::px(c.Top) + offset_) +
               QStringLiteral("px;\" width=\"") + num(PagePictures::CheckSize) + QStringLiteral("\" Height=\"") +
               num(PagePictures::CheckSize) + QStringLiteral("\" border=\"0\">") + kCrLf;
    }
}

Status RecordPageWriter::writeFile(const QString &path, const QString &text) const
{
    if (files_)
        return files_->write(path, codePage_.encode(text));
    return FileWriter::writeNow(path, codePage_.encode(text));
}

} // namespace ff::web
