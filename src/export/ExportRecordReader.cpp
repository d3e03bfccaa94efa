#include "export/ExportRecordReader.h"

#include "core/Scramble.h"
#include "formula/FieldFormat.h"

#include <cstring>

namespace ff {

ExportSource::ExportSource(RecordStore &store, const FormulaContext &formulaContext)
    : design(store.design()), layout(store.layout()), file(store.file()), recordCount(store.RecordCount()),
      decimalSeparator(store.codec().decimalSeparator()), context(formulaContext), livePage(store.page()),
      recordPictureFolder(store.RecordPictureFolder()), NextPictureNumber(store.NextPictureNumber()), codePage(store.design().FontCharset)
{
    for (size_t i = 1; i < design.Fields.size(); ++i)
        if (!design.Fields[i].FieldFormula.isEmpty())
            formulas = true;
}

std::unique_ptr<StoredValueText> storedValueText(const ExportSource &source, const RecordCodec &codec)
{
    std::vector<int> fields;
    for (size_t i = 1; i < source.design.Fields.size(); ++i)
        fields.push_back(int(i));
    return std::make_unique<StoredValueText>(source.design, codec, fields,
                                             StoredValueText::DateForms(source.context.locale, &DatePattern));
}

namespace {

void copyValues(const Page &from, Page &to)
{
    to.FieldText = from.FieldText;
    to.FieldDate = from.FieldDate;
    to.ComboText = from.ComboText;
    to.CheckValue = from.CheckValue;
    to.NoteText = from.NoteText;
    to.PictureRecordName = from.PictureRecordName;
    to.TitleCaption = from.TitleCaption;
    to.RecordStamp = from.RecordStamp;
}

bool givesBytesBack(const CodePage &codePage)
{
    for (int b = 0; b < 256; ++b) {
        const char c = char(b);
        const QByteArray back = codePage.encode(codePage.decode(&c, 1));
        if (back.size() != 1 || back[0] != c)
            return false;
    }
    return true;
}

} // namespace

ExportRecordReader::ExportRecordReader(const ExportSource &source, Mode mode, Access access,
                                       const StoredValueText *values)
    : source_(source), context_(source.context), hooks_(context_),
      scanner_(source.file, source.recordCount, source.design.ScrambleRecords == 1),
      access_(access == Access::InOrder ? RecordScanner::Access::Forward : RecordScanner::Access::Random),
      values_(values)
{
    // Formulas that run during an export show no messages: there would be one for each record.
    context_.host = nullptr;
    codec_ = std::make_unique<RecordCodec>(source.design, source.layout, hooks_, source.decimalSeparator);
    page_ = std::make_unique<Page>(source.design);
    copyValues(source.livePage, *page_);
    valueMode_ = mode == Mode::Values && !source.formulas;
    if (valueMode_) {
        if (!values_) {
            ownValues_ = storedValueText(source, *codec_);
            values_ = ownValues_.get();
        }
        textsAsStored_ = givesBytesBack(source.codePage);
    }
}

Status ExportRecordReader::load(int record)
{
    plain_ = scanner_.record(record, access_);
    if (!plain_)
        return makeError(ErrorCode::PathError, QStringLiteral("record %1 cannot be read").arg(record));
    record_ = record;
    if (valueMode_)
        return {};
    // UnpackRecord on the reader's own page: the stored form, unpacked, then the formulas.
    QByteArray stored(reinterpret_cast<const char *>(plain_), source_.layout.RecordLength);
    if (source_.design.ScrambleRecords == 1)
        ScrambleBytes(stored.data(), stored.size());
    codec_->unpack(stored, *page_, record, false);
    hooks_.RunFormulas(*page_, record);
    return {};
}

void ExportRecordReader::appendConstant(const QString &text, std::string &out) const
{
    const QByteArray bytes = source_.codePage.encode(text);
    out.append(bytes.constData(), size_t(bytes.size()));
}

void ExportRecordReader::appendStoredText(const uint8_t *p, int size, std::string &out) const
{
    // Trailing blanks eight at a time: texts are padded to their slot.
    static const char blanks[8] = {' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '};
    while (size >= 8 && std::memcmp(p + size - 8, blanks, 8) == 0)
        size -= 8;
    while (size > 0 && p[size - 1] == ' ')
        --size;
    if (textsAsStored_) {
        out.append(reinterpret_cast<const char *>(p), size_t(size));
        return;
    }
    appendConstant(source_.codePage.decode(reinterpret_cast<const char *>(p), size), out);
}

void ExportRecordReader::appendValue(const ExportColumn &column, std::string &out)
{
    const size_t i = size_t(column.index);
    const RecordLayout &layout = source_.layout;
    if (!valueMode_ || !plain_) {
        if (column.kind == ElementKind::Check)
            out += std::to_string(page_->CheckValue.value(column.index));
        else
            appendConstant(text(column), out);
        return;
    }
    switch (column.kind) {
    case ElementKind::Field: {
        const int at = layout.FieldOffset[i];
        if (at == 0) {
            appendConstant(page_->FieldText.value(column.index), out);
            return;
        }
        const int type = source_.design.Fields[i].FieldType;
        if (type >= 1 && type <= 9)
            values_->append(column.index, plain_, out, *codec_, dates_);
        else
            appendStoredText(plain_ + at - 1, layout.FieldSize[i], out);
        return;
    }
    case ElementKind::Combo:
        if (layout.ComboOffset[i])
            appendStoredText(plain_ + layout.ComboOffset[i] - 1, layout.ComboSize[i], out);
        else
            appendConstant(page_->ComboText.value(column.index), out);
        return;
    case ElementKind::Note:
        if (layout.NoteOffset[i])
            appendStoredText(plain_ + layout.NoteOffset[i] - 1, layout.NoteSize[i], out);
        else
            appendConstant(page_->NoteText.value(column.index), out);
        return;
    case ElementKind::Check:
        if (layout.CheckOffset[i]) {
            const uint8_t c = plain_[layout.CheckOffset[i] - 1];
            out += (c >= '0' && c <= '9') ? char(c) : '0';
        } else {
            out += std::to_string(page_->CheckValue.value(column.index));
        }
        return;
    case ElementKind::Picture: {
        if (!layout.PictureOffset[i])
            return;
        const uint8_t *p = plain_ + layout.PictureOffset[i] - 1;
        int lead = 0;
        while (lead < kPictureNameLength && p[lead] == ' ')
            ++lead;
        if (textsAsStored_)
            out.append(reinterpret_cast<const char *>(p + lead), size_t(kPictureNameLength - lead));
        else
            appendConstant(source_.codePage.decode(reinterpret_cast<const char *>(p + lead), kPictureNameLength - lead), out);
        return;
    }
    default: return;
    }
}

QString ExportRecordReader::text(const ExportColumn &column)
{
    if (valueMode_ && plain_) {
        if (column.kind == ElementKind::Check) {
            std::string one;
            appendValue(column, one);
            return QString::fromLatin1(one.data(), qsizetype(one.size()));
        }
        std::string bytes;
        appendValue(column, bytes);
        return source_.codePage.decode(bytes.data(), qsizetype(bytes.size()));
    }
    switch (column.kind) {
    case ElementKind::Field: return page_->FieldText.value(column.index);
    case ElementKind::Combo: return page_->ComboText.value(column.index);
    case ElementKind::Note: return page_->NoteText.value(column.index);
    case ElementKind::Check: return QString::number(page_->CheckValue.value(column.index));
    case ElementKind::Picture: return page_->PictureRecordName.value(column.index);
    default: return QString();
    }
}

} // namespace ff
