#include "store/RecordCodec.h"

#include "core/Scramble.h"

#include <QLocale>

#include <cmath>
#include <limits>
#include <cstring>
#include <tuple>

namespace ff {

RecordCodec::RecordCodec(const Design &design, const RecordLayout &layout, const FormulaHooks &hooks,
                         QChar decimalSeparator)
    : design_(design), layout_(layout), hooks_(&hooks), codePage_(design.FontCharset),
      decimalSeparator_(decimalSeparator)
{
}

QByteArray RecordCodec::blankRecord() const
{
    QByteArray b(layout_.RecordLength, ' ');
    if (design_.ScrambleRecords == 1)
        ScrambleBytes(b.data(), b.size());
    return b;
}

QByteArray RecordCodec::plain(const QByteArray &stored) const
{
    QByteArray b = stored;
    b.resize(layout_.RecordLength, ' ');
    if (design_.ScrambleRecords == 1)
        UnscrambleBytes(b.data(), b.size());
    return b;
}

// ---- little-endian slots ----

static bool fits(const QByteArray &b, int offset1, int size) { return offset1 >= 1 && offset1 - 1 + size <= b.size(); }

int64_t RecordCodec::readInt64(const QByteArray &b, int offset1)
{
    if (!fits(b, offset1, 8))
        return 0;
    uint64_t v = 0;
    for (int k = 7; k >= 0; --k)
        v = (v << 8) | static_cast<uint8_t>(b[offset1 - 1 + k]);
    return static_cast<int64_t>(v);
}

int32_t RecordCodec::readInt32(const QByteArray &b, int offset1)
{
    if (!fits(b, offset1, 4))
        return 0;
    uint32_t v = 0;
    for (int k = 3; k >= 0; --k)
        v = (v << 8) | static_cast<uint8_t>(b[offset1 - 1 + k]);
    return static_cast<int32_t>(v);
}

double RecordCodec::readDouble(const QByteArray &b, int offset1)
{
    const uint64_t bits = static_cast<uint64_t>(readInt64(b, offset1));
    double v;
    std::memcpy(&v, &bits, 8);
    return v;
}

void RecordCodec::writeInt64(QByteArray &b, int offset1, int64_t v)
{
    if (!fits(b, offset1, 8))
        return;
    auto u = static_cast<uint64_t>(v);
    for (int k = 0; k < 8; ++k, u >>= 8)
        b[offset1 - 1 + k] = static_cast<char>(u & 0xFF);
}

void RecordCodec::writeInt32(QByteArray &b, int offset1, int32_t v)
{
    if (!fits(b, offset1, 4))
        return;
    auto u = static_cast<uint32_t>(v);
    for (int k = 0; k < 4; ++k, u >>= 8)
        b[offset1 - 1 + k] = static_cast<char>(u & 0xFF);
}

void RecordCodec::writeDouble(QByteArray &b, int offset1, double v)
{
    uint64_t bits;
    std::memcpy(&bits, &v, 8);
    writeInt64(b, offset1, static_cast<int64_t>(bits));
}

void RecordCodec::putText(QByteArray &b, int offset1, int size, const QString &text) const
{
    if (size <= 0 || !fits(b, offset1, size))
        return;
    const QByteArray bytes = codePage_.encode(text);
    const int n = std::min<int>(size, bytes.size());
    std::memcpy(b.data() + offset1 - 1, bytes.constData(), n);
    std::memset(b.data() + offset1 - 1 + n, ' ', size - n);
}

QString RecordCodec::getText(const QByteArray &b, int offset1, int size) const
{
    if (size <= 0 || !fits(b, offset1, size))
        return {};
    int n = size;
    while (n > 0 && b[offset1 - 2 + n] == ' ')
        --n;
    return codePage_.decode(b.constData() + offset1 - 1, n);
}

// ---- money and dates: value times 10,000 ----

static Result<int64_t> toCurrency(double v)
{
    const double scaled = std::nearbyint(v * 10000.0);
    if (!std::isfinite(scaled) || std::fabs(scaled) >= 9.2233720368547e18)
        return makeError(ErrorCode::Overflow, QStringLiteral("amount out of range"));
    return static_cast<int64_t>(scaled);
}

static double fromCurrency(int64_t v) { return static_cast<double>(v) / 10000.0; }

// ---- pack ----

Status RecordCodec::packField(QByteArray &b, size_t i, const Page &page) const
{
    const int at = layout_.FieldOffset[i];
    if (at == 0)
        return Status();
    const int type = design_.Fields[i].FieldType;
    const QString text = i < size_t(page.FieldText.size()) ? page.FieldText[i] : QString();
    switch (type) {
    case 1: {
        // The largest doubles show with 15 digits, rounded past the range of a double: such a text
        // reads as an infinity and is kept as the largest double of its sign, so that a record
        // saves as it shows. Nothing that is not a number is ever written.
        double value = hooks_->NumberValue(text, decimalSeparator_);
        if (std::isinf(value))
            value = std::copysign(std::numeric_limits<double>::max(), value);
        else if (std::isnan(value))
            value = 0;
        writeDouble(b, at, value);
        break;
    }
    case 2: case 3: case 4: {
        Result<int64_t> c = toCurrency(hooks_->NumberValue(text, decimalSeparator_));
        if (!c)
            return c.error();
        writeInt64(b, at, *c);
        break;
    }
    case 5: {
        const double v = std::nearbyint(hooks_->NumberValue(text, decimalSeparator_));
        if (!(v >= INT32_MIN && v <= INT32_MAX))
            return makeError(ErrorCode::Overflow, QStringLiteral("whole number out of range in field %1").arg(i));
        writeInt32(b, at, static_cast<int32_t>(v));
        break;
    }
    case 6: case 7: case 8: case 9: {
        Result<int64_t> c = toCurrency(i < size_t(page.FieldDate.size()) ? page.FieldDate[i] : 0.0);
        if (!c)
            return c.error();
        writeInt64(b, at, *c);
        break;
    }
    default:
        putText(b, at, layout_.FieldSize[i], text);
        break;
    }
    return Status();
}

Status RecordCodec::packElement(QByteArray &b, ElementKind kind, size_t i, const Page &page) const
{
    switch (kind) {
    case ElementKind::Field:
        return i < design_.Fields.size() ? packField(b, i, page) : Status();
    case ElementKind::Combo:
        if (i < design_.Combos.size() && layout_.ComboOffset[i])
            putText(b, layout_.ComboOffset[i], layout_.ComboSize[i], page.ComboText.value(qsizetype(i)));
        break;
    case ElementKind::Check:
        if (i < design_.Checks.size() && layout_.CheckOffset[i]) {
            const int v = page.CheckValue.value(qsizetype(i));
            b[layout_.CheckOffset[i] - 1] = static_cast<char>('0' + (v >= 0 && v <= 9 ? v : 1));
        }
        break;
    case ElementKind::Note:
        if (i < design_.Notes.size() && layout_.NoteOffset[i])
            putText(b, layout_.NoteOffset[i], layout_.NoteSize[i], page.NoteText.value(qsizetype(i)));
        break;
    default:
        break;
    }
    return Status();
}

Result<QByteArray> RecordCodec::pack(const Page &page) const
{
    QByteArray b(layout_.RecordLength, ' ');
    for (size_t i = 1; i < design_.Fields.size(); ++i) {
        if (Status packed = packField(b, i, page); !packed)
            return packed.error();
    }
    for (size_t i = 1; i < design_.Combos.size(); ++i)
        std::ignore = packElement(b, ElementKind::Combo, i, page); // only fields can fail
    for (size_t i = 0; i < design_.Checks.size(); ++i)
        std::ignore = packElement(b, ElementKind::Check, i, page);
    for (size_t i = 0; i < design_.Pictures.size(); ++i) {
        const int at = layout_.PictureOffset[i];
        if (!at)
            continue;
        // The name stands right-aligned in its 8 characters and is read back with a left trim.
        QByteArray name = codePage_.encode(page.PictureRecordName.value(i)).left(kPictureNameLength);
        std::memset(b.data() + at - 1, ' ', kPictureNameLength);
        std::memcpy(b.data() + at - 1 + kPictureNameLength - name.size(), name.constData(), name.size());
    }
    for (size_t i = 1; i < design_.Notes.size(); ++i)
        std::ignore = packElement(b, ElementKind::Note, i, page);
    if (layout_.StampOffset) {
        Result<int64_t> c = toCurrency(page.RecordStamp);
        if (!c)
            return c.error();
        writeInt64(b, layout_.StampOffset, *c);
    }
    if (layout_.FlowOffset)
        packFlow(b, page);
    if (design_.ScrambleRecords == 1)
        ScrambleBytes(b.data(), b.size());
    return b;
}

void RecordCodec::packFlow(QByteArray &b, const Page &page) const
{
    const int length = layout_.RecordLength;
    int p = layout_.FlowOffset - 1; // 0-based
    const int countAt = p + 1;
    p += 4;
    int32_t labels = 0;
    for (const FlowLabel &l : page.FlowLabels) {
        if (l.text.trimmed().isEmpty())
            continue;
        const QByteArray text = codePage_.encode(l.text);
        // A label is written when it fits. Room for the image count is kept while there are
        // images to write: a label that fills the area to its end (written so by another writer)
        // is read back with no images, and is saved again as it was read.
        const int countRoom = page.FlowImages.isEmpty() ? 0 : 4;
        if (p + 20 + text.size() + countRoom > length)
            break;
        b[p] = static_cast<char>(l.page);
        b[p + 1] = static_cast<char>(l.style);
        b[p + 2] = static_cast<char>(l.fontSize);
        b[p + 3] = static_cast<char>(l.alignment);
        writeInt32(b, p + 5, static_cast<int32_t>(text.size()));
        std::memcpy(b.data() + p + 8, text.constData(), text.size());
        p += 8 + text.size();
        writeInt32(b, p + 1, l.color);
        writeInt32(b, p + 5, l.left);
        writeInt32(b, p + 9, l.top);
        p += 12;
        ++labels;
    }
    writeInt32(b, countAt, labels);
    if (p + 4 > length)
        return; // no room for the image count: read back as no images
    const int imageCountAt = p + 1;
    p += 4;
    int32_t images = 0;
    for (const FlowImage &im : page.FlowImages) {
        if (p + 25 > length)
            break;
        b[p] = static_cast<char>(im.page);
        writeInt32(b, p + 2, im.left);
        writeInt32(b, p + 6, im.top);
        writeInt32(b, p + 10, im.width);
        writeInt32(b, p + 14, im.height);
        writeInt32(b, p + 18, im.FlowImageId);
        writeInt32(b, p + 22, im.FlowImageLink);
        p += 25;
        ++images;
    }
    writeInt32(b, imageCountAt, images);
}

// ---- unpack ----

bool RecordCodec::zeroShownEmpty(const QString &text) const
{
    if (text == QLatin1String("0"))
        return true;
    const QString zero = QLatin1String("0") + decimalSeparator_;
    for (int decimals = 2; decimals <= 4; ++decimals)
        if (text == zero + QString(decimals, QLatin1Char('0')))
            return true;
    return false;
}

QString RecordCodec::fieldDisplayText(const QByteArray &b, int i, double *date) const
{
    const int at = layout_.FieldOffset[i];
    const int type = design_.Fields[i].FieldType;
    if (date)
        *date = 0;
    if (at == 0)
        return {};
    QString text;
    switch (type) {
    case 1: {
        // NaN and the infinities are no number a user can type, so the packer never writes them:
        // a damaged slot holding one shows as 0, which is also what saving it writes.
        const double value = readDouble(b, at);
        text = hooks_->FormatFieldValue(design_, i, std::isfinite(value) ? value : 0.0);
        break;
    }
    case 2: case 3: case 4:
        text = hooks_->FormatFieldValue(design_, i, fromCurrency(readInt64(b, at)));
        break;
    case 5:
        text = hooks_->FormatFieldValue(design_, i, readInt32(b, at));
        break;
    case 6: case 7: case 8: case 9: {
        const double d = fromCurrency(readInt64(b, at));
        if (date)
            *date = d;
        return d == 0 ? QString() : hooks_->FormatFieldValue(design_, i, d);
    }
    default:
        return getText(b, at, layout_.FieldSize[i]);
    }
    if (design_.ShowZeros == 0 && zeroShownEmpty(text))
        text.clear();
    return text;
}

void RecordCodec::unpack(const QByteArray &stored, Page &page, int currentRecord, bool recordIsNew) const
{
    const QByteArray b = plain(stored);
    for (size_t i = 1; i < design_.Fields.size() && i < size_t(page.FieldText.size()); ++i) {
        if (layout_.FieldOffset[i] == 0)
            continue; // global fields and fields on no page are not touched
        double date = 0;
        page.FieldText[i] = fieldDisplayText(b, int(i), &date);
        const int type = design_.Fields[i].FieldType;
        if (type >= 6 && type <= 9)
            page.FieldDate[i] = date;
        page.FieldLocked[i] = design_.Fields[i].FieldWriteOnce == 1 && !recordIsNew;
    }
    for (size_t i = 1; i < design_.Combos.size() && i < size_t(page.ComboText.size()); ++i) {
        if (!layout_.ComboOffset[i])
            continue;
        page.ComboText[i] = getText(b, layout_.ComboOffset[i], layout_.ComboSize[i]);
        page.ComboLocked[i] = design_.Combos[i].ComboWriteOnce == 1 && !recordIsNew;
    }
    for (size_t i = 0; i < design_.Checks.size() && i < size_t(page.CheckValue.size()); ++i) {
        if (!layout_.CheckOffset[i])
            continue;
        const char c = b[layout_.CheckOffset[i] - 1];
        page.CheckValue[i] = (c >= '0' && c <= '9') ? c - '0' : 0;
        page.CheckLocked[i] = design_.Checks[i].CheckWriteOnce == 1 && !recordIsNew;
    }
    for (size_t i = 0; i < design_.Pictures.size() && i < size_t(page.PictureRecordName.size()); ++i) {
        page.PictureRecordName[i].clear();
        if (!layout_.PictureOffset[i])
            continue;
        QByteArray name = b.mid(layout_.PictureOffset[i] - 1, kPictureNameLength);
        qsizetype lead = 0;
        while (lead < name.size() && name[lead] == ' ')
            ++lead;
        page.PictureRecordName[i] = codePage_.decode(name.mid(lead));
    }
    for (size_t i = 1; i < design_.Notes.size() && i < size_t(page.NoteText.size()); ++i) {
        if (!layout_.NoteOffset[i])
            continue;
        page.NoteText[i] = getText(b, layout_.NoteOffset[i], layout_.NoteSize[i]);
        page.NoteLocked[i] = design_.Notes[i].NoteWriteOnce == 1 && !recordIsNew;
    }
    if (layout_.StampOffset) {
        page.RecordStamp = fromCurrency(readInt64(b, layout_.StampOffset));
        if (page.TitleCaption.size() > 4)
            page.TitleCaption[4] = design_.Titles[4].Caption + StampText(page.RecordStamp, design_.StampFormat);
    }
    if (page.TitleCaption.size() > 2)
        page.TitleCaption[2] = design_.Titles[2].Caption + RecordNumberText(currentRecord);
    page.FlowLabels.clear();
    page.FlowImages.clear();
    if (layout_.FlowOffset)
        unpackFlow(b, page);
}

void RecordCodec::unpackFlow(const QByteArray &b, Page &page) const
{
    const int length = std::min<int>(layout_.RecordLength, b.size());
    int p = layout_.FlowOffset - 1;
    if (p + 4 > length)
        return;
    const int32_t labels = readInt32(b, p + 1);
    p += 4;
    for (int32_t k = 0; k < labels; ++k) {
        if (p + 8 > length)
            return;
        const int32_t textLength = readInt32(b, p + 5);
        if (textLength < 0 || textLength > length - p - 20)
            return; // a damaged area: keep what was read, and no images can be found past it
        FlowLabel l;
        l.page = static_cast<uint8_t>(b[p]);
        l.style = static_cast<uint8_t>(b[p + 1]);
        l.fontSize = static_cast<uint8_t>(b[p + 2]);
        l.alignment = static_cast<uint8_t>(b[p + 3]);
        l.text = codePage_.decode(b.constData() + p + 8, textLength);
        p += 8 + textLength;
        l.color = readInt32(b, p + 1);
        l.left = readInt32(b, p + 5);
        l.top = readInt32(b, p + 9);
        p += 12;
        // A label of blanks shows nothing and is never stored: one that comes from another writer
        // or from damage is passed over, as saving the record would drop it.
        if (!l.text.trimmed().isEmpty())
            page.FlowLabels.push_back(l);
    }
    if (p + 4 > length)
        return;
    const int32_t images = readInt32(b, p + 1);
    p += 4;
    for (int32_t k = 0; k < images && p + 25 <= length; ++k) {
        FlowImage im;
        im.page = static_cast<uint8_t>(b[p]);
        im.left = readInt32(b, p + 2);
        im.top = readInt32(b, p + 6);
        im.width = readInt32(b, p + 10);
        im.height = readInt32(b, p + 14);
        im.FlowImageId = readInt32(b, p + 18);
        im.FlowImageLink = readInt32(b, p + 22);
        p += 25;
        page.FlowImages.push_back(im);
    }
}

// ---- labels ----

QString RecordCodec::StampText(double stamp, int stampFormat)
{
    const QLocale locale;
    const QDate date = FormulaHooks::ToDateTime(stamp).date();
    switch (stampFormat) {
    case 0: return locale.toString(date, QStringLiteral("dddd dd-MMM-yyyy"));
    case 1: return locale.toString(date, QStringLiteral("dd-MMMM-yyyy"));
    case 2: return locale.toString(date, QStringLiteral("dd-MM-yyyy"));
    case 3: return locale.toString(date, QStringLiteral("MM-dd-yyyy"));
    case 4: return locale.toString(date, QStringLiteral("yyyy-MM-dd"));
    default: return locale.toString(date, QLocale::ShortFormat);
    }
}

QString RecordCodec::RecordNumberText(int record)
{
    const QString digits = QStringLiteral("%1").arg(record, 7, 10, QLatin1Char('0'));
    return digits.right(7);
}

} // namespace ff
