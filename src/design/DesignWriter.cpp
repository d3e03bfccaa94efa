#include "design/DesignWriter.h"

#include "design/BlockWriter.h"
#include "design/DesignLayout.h"

#include <QtEndian>

namespace ff {

namespace {

int lastPresentTitle(const Design &d)
{
    for (int i = int(d.Titles.size()) - 1; i >= 0; --i)
        if (d.Titles[size_t(i)].present)
            return i;
    return -1;
}

} // namespace

void DesignWriter::setCounts(Design &d)
{
    auto highest = [](size_t size) { return static_cast<int16_t>(int(size) - 1); };
    auto fromOne = [](size_t size) { return static_cast<int16_t>(size == 0 ? 0 : int(size) - 1); };
    d.ShapeCount = highest(d.Shapes.size());
    d.LineCount = highest(d.Lines.size());
    d.PictureCount = highest(d.Pictures.size());
    d.TitleCount = static_cast<int16_t>(lastPresentTitle(d));
    d.FieldCount = fromOne(d.Fields.size());
    d.ComboCount = fromOne(d.Combos.size());
    d.NoteCount = fromOne(d.Notes.size());
    d.CheckCount = highest(d.Checks.size());
    d.ButtonCount = highest(d.Buttons.size());
}

Status DesignWriter::check(const Design &d)
{
    auto tooMany = [](const char *what, size_t n, size_t limit) {
        return makeError(ErrorCode::Overflow, QStringLiteral("%1 %2, at most %3 fit").arg(n).arg(QLatin1String(what)).arg(limit));
    };
    const size_t i16 = 32767;
    if (d.Pictures.size() > size_t(kMaxPictures))
        return tooMany("pictures", d.Pictures.size(), kMaxPictures);
    if (d.Shapes.size() > i16 + 1)
        return tooMany("shapes", d.Shapes.size(), i16 + 1);
    if (d.Lines.size() > i16 + 1)
        return tooMany("lines", d.Lines.size(), i16 + 1);
    if (d.Titles.size() > i16 + 1)
        return tooMany("labels", d.Titles.size(), i16 + 1);
    if (d.Checks.size() > i16 + 1)
        return tooMany("check boxes", d.Checks.size(), i16 + 1);
    if (d.Buttons.size() > i16 + 1)
        return tooMany("buttons", d.Buttons.size(), i16 + 1);
    if (d.Fields.size() > i16 + 1)
        return tooMany("fields", d.Fields.size() - 1, i16);
    if (d.Combos.size() > i16 + 1)
        return tooMany("combos", d.Combos.size() - 1, i16);
    if (d.Notes.size() > i16 + 1)
        return tooMany("notes", d.Notes.size() - 1, i16);
    if (d.HtmlStyles.size() > i16 + 1)
        return tooMany("HTML styles", d.HtmlStyles.size(), i16 + 1);
    if (d.Reports.size() > 255)
        return tooMany("reports", d.Reports.size(), 255);
    for (const auto &r : d.Reports) {
        if (r.Shapes.size() > i16 + 1 || r.Lines.size() > i16 + 1 || r.Pictures.size() > i16 + 1 || r.Labels.size() > i16)
            return makeError(ErrorCode::Overflow, QStringLiteral("report \"%1\" has more elements than its counts hold").arg(r.Caption));
    }
    return {};
}

Result<QByteArray> DesignWriter::writeBlock(const Design &design, const QByteArray &head, const Files &files)
{
    if (Status s = check(design); !s)
        return s.error();
    Design d = design;
    setCounts(d);
    BlockWriter writer(head, d.FontCharset, files);
    DesignLayout::transfer(writer, d);
    if (!writer.ok())
        return writer.error();
    QByteArray out = writer.block();
    // The tail: the distance from the block's first byte to the tail, which is the block's length.
    char tail[4];
    qToLittleEndian(static_cast<int32_t>(out.size()), tail);
    out.append(tail, 4);
    return out;
}

Result<QByteArray> DesignWriter::writeImage(const Design &design, const QByteArray &head, const Files &files)
{
    Result<QByteArray> block = writeBlock(design, head, files);
    if (!block)
        return block.error();
    return head + *block;
}

} // namespace ff
