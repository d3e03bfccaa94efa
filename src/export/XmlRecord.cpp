#include "export/XmlRecord.h"

#include "formula/DateReader.h"
#include "formula/NumberText.h"
#include "store/RecordCodec.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ff {

namespace {

const QLatin1String kLineEnd("\r\n");
const QLatin1String kFlowOpen("<FLOWPage>");
const QLatin1String kFlowClose("</FLOWPage>");

// No more flow items than the record's flow area can hold: a label takes at least 20 bytes of it,
// a picture 25.
constexpr int kMaxFlowLabels = 10000 / 20;
constexpr int kMaxFlowImages = 10000 / 25;

bool pictureCarriesName(const Design &design, size_t i) { return design.Pictures[i].Stretch; }

// The value between the first "<tag>" and the first "</tag>" of `text`; nothing when either is
// missing or the closing tag does not come after the opening one.
std::optional<QString> taggedValue(const QString &text, const QString &tag)
{
    if (tag.isEmpty())
        return std::nullopt; // a nameless element cannot be told apart from any other
    const QString open = QLatin1Char('<') + tag + QLatin1Char('>');
    const QString close = QLatin1String("</") + tag + QLatin1Char('>');
    const qsizetype p = text.indexOf(open);
    if (p < 0)
        return std::nullopt;
    const qsizetype q = text.indexOf(close);
    const qsizetype start = p + open.size();
    if (q < start)
        return std::nullopt;
    return XmlRecord::XmlUnescape(text.mid(start, q - start));
}

// A number of a flow line: Val's leading-number rule, kept within 32 bits.
int32_t lineNumber(const QString &item)
{
    const double v = Val(item.trimmed());
    if (!std::isfinite(v))
        return 0;
    return static_cast<int32_t>(std::clamp(std::trunc(v), double(std::numeric_limits<int32_t>::min()),
                                           double(std::numeric_limits<int32_t>::max())));
}

uint8_t lineByte(const QString &item) { return static_cast<uint8_t>(std::clamp(lineNumber(item), 0, 255)); }

bool lineTruth(const QString &item) { return lineNumber(item) != 0; }

QString truth(bool on) { return on ? QStringLiteral("-1") : QStringLiteral("0"); }

// A record picture's name is a plain file name inside the picture folder: a name that would
// reach elsewhere is not taken.
bool plainFileName(const QString &name)
{
    return !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\')) && name != QLatin1String(".")
           && name != QLatin1String("..");
}

} // namespace

QString XmlRecord::XmlEscape(const QString &text)
{
    QString out = text;
    out.replace(QLatin1Char('"'), QLatin1String("&quot;"));
    out.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    out.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    out.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    return out;
}

QString XmlRecord::XmlUnescape(const QString &text)
{
    QString out = text;
    out.replace(QLatin1String("&quot;"), QLatin1String("\""));
    out.replace(QLatin1String("&amp;"), QLatin1String("&"));
    out.replace(QLatin1String("&lt;"), QLatin1String("<"));
    out.replace(QLatin1String("&gt;"), QLatin1String(">"));
    return out;
}

QString XmlRecord::recordTag(const Page &page, int record)
{
    return page.design().AppTitle + QLatin1String("_Record_") + QString::number(record);
}

QString XmlRecord::fieldLines(const Page &page, const QVector<XmlElementChoice> *chosen)
{
    const Design &d = page.design();
    auto wanted = [chosen](ElementKind kind, int index) {
        if (!chosen)
            return true;
        return std::any_of(chosen->begin(), chosen->end(),
                           [&](const XmlElementChoice &c) { return c.kind == kind && c.index == index; });
    };
    QString out;
    auto line = [&out](const QString &tag, const QString &value) {
        out += QLatin1String("  <") + tag + QLatin1Char('>') + XmlEscape(value) + QLatin1String("</") + tag
               + QLatin1Char('>') + kLineEnd;
    };
    for (size_t i = 1; i < d.Fields.size(); ++i)
        if (wanted(ElementKind::Field, int(i)))
            line(d.Fields[i].Tag, page.FieldText.value(qsizetype(i)));
    for (size_t i = 1; i < d.Combos.size(); ++i)
        if (wanted(ElementKind::Combo, int(i)))
            line(d.Combos[i].Tag, page.ComboText.value(qsizetype(i)));
    for (size_t i = 0; i < d.Checks.size(); ++i)
        if (wanted(ElementKind::Check, int(i)))
            line(d.Checks[i].Tag, QString::number(page.CheckValue.value(qsizetype(i))));
    for (size_t i = 1; i < d.Notes.size(); ++i)
        if (wanted(ElementKind::Note, int(i)))
            line(d.Notes[i].Tag, page.NoteText.value(qsizetype(i)));
    for (size_t i = 0; i < d.Pictures.size(); ++i)
        if (pictureCarriesName(d, i) && wanted(ElementKind::Picture, int(i)))
            line(d.Pictures[i].PictureName, page.PictureRecordName.value(qsizetype(i)));
    return out;
}

QString XmlRecord::flowSection(const Page &page)
{
    QString out = kFlowOpen + kLineEnd;
    const QLatin1Char comma(',');
    for (const FlowLabel &l : page.FlowLabels) {
        // A flow label sizes itself to its text; it keeps no width of its own.
        out += QLatin1String("  Label") + comma + XmlEscape(l.text) + comma + QString::number(l.alignment) + comma
               + QString::number(l.fontSize) + comma + truth(RecordCodec::StyleBold(l.style)) + comma
               + truth(RecordCodec::StyleItalic(l.style)) + comma + truth(RecordCodec::StyleUnderline(l.style)) + comma
               + QString::number(l.left) + comma + QString::number(l.top) + comma + QStringLiteral("0") + comma
               + QString::number(l.page) + kLineEnd;
    }
    for (const FlowImage &im : page.FlowImages) {
        out += QLatin1String("  Image") + comma + QString::number(im.FlowImageId) + comma
               + QString::number(im.FlowImageLink) + comma + QString::number(im.page) + comma
               + QString::number(im.left) + comma + QString::number(im.top) + comma + QString::number(im.width)
               + comma + QString::number(im.height) + kLineEnd;
    }
    return out + kFlowClose + kLineEnd;
}

QString XmlRecord::CopyAll(const Page &page, int record)
{
    const QString tag = recordTag(page, record);
    QString out = QLatin1String("<?xml version=\"1.0\" ?>") + kLineEnd;
    out += QLatin1Char('<') + tag + QLatin1Char('>') + kLineEnd;
    out += fieldLines(page, nullptr);
    if (page.design().FlowPageEnabled == 1)
        out += flowSection(page);
    out += QLatin1String("</") + tag + QLatin1Char('>') + kLineEnd;
    return out;
}

QString XmlRecord::CopyData(const Page &page, int record, const QVector<XmlElementChoice> &chosen)
{
    const Design &d = page.design();
    auto has = [&chosen](ElementKind kind, int index) {
        return std::any_of(chosen.begin(), chosen.end(),
                           [&](const XmlElementChoice &c) { return c.kind == kind && c.index == index; });
    };
    bool whole = true;
    for (size_t i = 1; whole && i < d.Fields.size(); ++i)
        whole = has(ElementKind::Field, int(i));
    for (size_t i = 1; whole && i < d.Combos.size(); ++i)
        whole = has(ElementKind::Combo, int(i));
    for (size_t i = 0; whole && i < d.Checks.size(); ++i)
        whole = has(ElementKind::Check, int(i));
    for (size_t i = 1; whole && i < d.Notes.size(); ++i)
        whole = has(ElementKind::Note, int(i));
    for (size_t i = 0; whole && i < d.Pictures.size(); ++i)
        whole = !pictureCarriesName(d, i) || has(ElementKind::Picture, int(i));
    if (whole)
        return CopyAll(page, record);
    return fieldLines(page, &chosen);
}

XmlImportResult XmlRecord::XMLimport(Page &page, const QString &text, bool keep)
{
    const Design &d = page.design();
    XmlImportResult result;
    for (size_t i = 1; i < d.Fields.size() && qsizetype(i) < page.FieldText.size(); ++i) {
        if (d.Fields[i].Locked != 0 || page.FieldLocked.value(qsizetype(i)))
            continue;
        const std::optional<QString> value = taggedValue(text, d.Fields[i].Tag);
        if (!value)
            continue;
        page.setFieldText(int(i), *value);
        // A date field keeps the date behind its text, as typing it would.
        const int type = d.Fields[i].FieldType;
        if (type >= 6 && type <= 9 && qsizetype(i) < page.FieldDate.size())
            page.FieldDate[qsizetype(i)] = ReadDate(*value, QLocale()).value_or(0.0);
        ++result.valuesSet;
    }
    for (size_t i = 1; i < d.Combos.size() && qsizetype(i) < page.ComboText.size(); ++i) {
        if (page.ComboLocked.value(qsizetype(i)))
            continue;
        if (const std::optional<QString> value = taggedValue(text, d.Combos[i].Tag)) {
            page.setComboText(int(i), *value);
            ++result.valuesSet;
        }
    }
    for (size_t i = 0; i < d.Checks.size() && qsizetype(i) < page.CheckValue.size(); ++i) {
        if (page.CheckLocked.value(qsizetype(i)))
            continue;
        if (const std::optional<QString> value = taggedValue(text, d.Checks[i].Tag)) {
            // One box: any number but 0 is on.
            page.setCheckValue(int(i), lineNumber(*value) != 0 ? 1 : 0);
            ++result.valuesSet;
        }
    }
    for (size_t i = 1; i < d.Notes.size() && qsizetype(i) < page.NoteText.size(); ++i) {
        if (page.NoteLocked.value(qsizetype(i)))
            continue;
        if (const std::optional<QString> value = taggedValue(text, d.Notes[i].Tag)) {
            page.setNoteText(int(i), *value);
            ++result.valuesSet;
        }
    }
    for (size_t i = 0; i < d.Pictures.size() && qsizetype(i) < page.PictureRecordName.size(); ++i) {
        if (!pictureCarriesName(d, i))
            continue;
        const std::optional<QString> value = taggedValue(text, d.Pictures[i].PictureName);
        if (!value || !plainFileName(value->trimmed()))
            continue;
        page.PictureRecordName[qsizetype(i)] = value->trimmed();
        ++result.valuesSet;
    }
    if (d.FlowPageEnabled == 1)
        readFlowSection(page, text, result);
    result.markChanged = !keep;
    page.notifyAll();
    return result;
}

void XmlRecord::readFlowSection(Page &page, const QString &text, XmlImportResult &result)
{
    const qsizetype open = text.indexOf(kFlowOpen);
    const qsizetype close = text.indexOf(kFlowClose);
    if (open < 0 || close <= open)
        return;
    const qsizetype start = open + kFlowOpen.size();
    const QString section = text.mid(start, std::max<qsizetype>(0, close - start));
    for (const QString &line : section.split(kLineEnd)) {
        if (line.trimmed().isEmpty())
            continue;
        QStringList items = line.split(QLatin1Char(','));
        const QString kind = items.first().trimmed();
        if (kind == QLatin1String("Label")) {
            // Label, caption, alignment, size, bold, italic, underline, left, top, width, page. A
            // caption that holds commas splits into more items: they are joined back, and the
            // other values are taken from the end of the line.
            constexpr int kAfterCaption = 9;
            if (items.size() < 2 + kAfterCaption)
                return; // too few items: the reading ends here, what was read stays
            if (page.FlowLabels.size() >= kMaxFlowLabels)
                return;
            const qsizetype rest = items.size() - kAfterCaption;
            const QString caption = QStringList(items.mid(1, rest - 1)).join(QLatin1Char(','));
            auto at = [&](int k) { return items.at(rest + k); };
            FlowLabel l;
            l.text = XmlUnescape(caption);
            l.alignment = lineByte(at(0));
            l.fontSize = lineByte(at(1));
            l.style = static_cast<uint8_t>((lineTruth(at(2)) ? 1 : 0) + (lineTruth(at(3)) ? 10 : 0)
                                           + (lineTruth(at(4)) ? 100 : 0));
            l.left = lineNumber(at(5));
            l.top = lineNumber(at(6));
            // at(7) is the width the label had where the text was made; a flow label sizes itself.
            l.page = lineByte(at(8));
            page.FlowLabels.push_back(l);
            ++result.labelsAdded;
        } else if (kind == QLatin1String("Image")) {
            // Image, image number, link, page, left, top, width, height.
            if (items.size() < 8)
                return;
            if (page.FlowImages.size() >= kMaxFlowImages)
                return;
            FlowImage im;
            im.FlowImageId = lineNumber(items.at(1));
            im.FlowImageLink = lineNumber(items.at(2));
            im.page = lineByte(items.at(3));
            im.left = lineNumber(items.at(4));
            im.top = lineNumber(items.at(5));
            im.width = lineNumber(items.at(6));
            im.height = lineNumber(items.at(7));
            page.FlowImages.push_back(im);
            ++result.imagesAdded;
        }
    }
}

} // namespace ff
