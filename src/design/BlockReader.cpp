#include "design/BlockReader.h"

#include "core/Scramble.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

namespace ff {

namespace {

template <class T>
T little(const uint8_t *p)
{
    T value;
    std::memcpy(&value, p, sizeof(T)); // the platform is little-endian, as the block is
    return value;
}

const char *widthName(int bytes, bool isSigned)
{
    if (bytes == 1)
        return "byte";
    if (bytes == 2)
        return isSigned ? "16-bit integer" : "16-bit unsigned integer";
    return "32-bit integer";
}

} // namespace

BlockReader::BlockReader(const QByteArray &image, qint64 blockStart)
    : image_(image),
      data_(reinterpret_cast<const uint8_t *>(image.constData())),
      size_(image.size()),
      blockStart_(blockStart),
      pos_(blockStart)
{
}

void BlockReader::setExtraction(const QString &folder, bool collect)
{
    folder_ = folder;
    collect_ = collect;
}

void BlockReader::fail(ErrorCode code, const QString &text)
{
    if (!ok())
        return;
    error_ = makeError(code, QStringLiteral("step %1, block offset %2: %3").arg(step_).arg(pos_ - blockStart_).arg(text));
}

bool BlockReader::need(qint64 bytes)
{
    if (!ok())
        return false;
    if (pos_ < 0 || pos_ > size_ || bytes > size_ - pos_) {
        fail(ErrorCode::Truncated, QStringLiteral("the block ends before the %1 bytes of the next value").arg(bytes));
        return false;
    }
    return true;
}

bool BlockReader::readSlot(Slot &slot)
{
    if (!need(16))
        return false;
    const uint8_t *p = data_ + pos_;
    slot = Slot{};
    slot.tag = little<uint16_t>(p);
    const uint8_t *v = p + 2;
    switch (slot.tag) {
    case 0: break; // empty: reads as 0
    case 2: slot.integer = little<int16_t>(v); break;
    case 3: slot.integer = little<int32_t>(v); break;
    case 4: slot.isFloat = true; slot.real = little<float>(v); break;
    case 5: slot.isFloat = true; slot.real = little<double>(v); break;
    case 6: slot.isFloat = true; slot.real = static_cast<double>(little<int64_t>(v)) / 10000.0; break;
    case 7: slot.isFloat = true; slot.real = little<double>(v); break;
    case 11: slot.integer = little<int16_t>(v); break;
    case 17: slot.integer = v[0]; break;
    default:
        fail(ErrorCode::Invalid, QStringLiteral("unknown slot type tag %1").arg(slot.tag));
        return false;
    }
    pos_ += 16;
    return true;
}

template <class T>
void BlockReader::integer(T &value)
{
    Slot slot;
    if (!readSlot(slot))
        return;
    int64_t wide = slot.integer;
    if (slot.isFloat) {
        // A float goes to an integer width by rounding half to even, the platform's conversion.
        const double r = std::nearbyint(slot.real);
        if (!std::isfinite(r) || r < double(std::numeric_limits<T>::min()) || r > double(std::numeric_limits<T>::max())) {
            fail(ErrorCode::Overflow, QStringLiteral("%1 does not fit a %2").arg(slot.real).arg(QLatin1String(widthName(sizeof(T), std::is_signed_v<T>))));
            return;
        }
        wide = static_cast<int64_t>(r);
    }
    if (wide < int64_t(std::numeric_limits<T>::min()) || wide > int64_t(std::numeric_limits<T>::max())) {
        fail(ErrorCode::Overflow, QStringLiteral("%1 does not fit a %2").arg(wide).arg(QLatin1String(widthName(sizeof(T), std::is_signed_v<T>))));
        return;
    }
    value = static_cast<T>(wide);
}

template void BlockReader::integer<uint8_t>(uint8_t &);
template void BlockReader::integer<int16_t>(int16_t &);
template void BlockReader::integer<int32_t>(int32_t &);

void BlockReader::item(bool &value)
{
    Slot slot;
    if (readSlot(slot))
        value = slot.isFloat ? slot.real != 0 : slot.integer != 0;
}

void BlockReader::item(double &value)
{
    Slot slot;
    if (!readSlot(slot))
        return;
    const double v = slot.isFloat ? slot.real : double(slot.integer);
    if (!std::isfinite(v)) {
        fail(ErrorCode::Overflow, QStringLiteral("a number that is not finite"));
        return;
    }
    value = v;
}

void BlockReader::item(float &value)
{
    double wide = 0;
    item(wide);
    if (!ok())
        return;
    if (std::fabs(wide) > double(FLT_MAX)) {
        fail(ErrorCode::Overflow, QStringLiteral("%1 does not fit a 32-bit float").arg(wide));
        return;
    }
    value = static_cast<float>(wide);
}

void BlockReader::skipItem()
{
    Slot slot;
    readSlot(slot);
}

bool BlockReader::readTextBytes(QByteArray &bytes)
{
    if (!ok())
        return false;
    saltPos_ += 2;
    if (saltPos_ > size_) {
        fail(ErrorCode::Truncated, QStringLiteral("salt position %1 is past the end of the image").arg(saltPos_));
        return false;
    }
    const uint8_t salt = data_[saltPos_ - 1];
    if (!need(2))
        return false;
    const int16_t length = static_cast<int16_t>(static_cast<uint16_t>(little<uint16_t>(data_ + pos_) - salt));
    return takeTextBytes(length, bytes);
}

bool BlockReader::takeTextBytes(int16_t length, QByteArray &bytes)
{
    if (length < 0) {
        fail(ErrorCode::Invalid, QStringLiteral("text length %1 is negative").arg(length));
        return false;
    }
    pos_ += 2;
    if (!need(length))
        return false;
    bytes = QByteArray(reinterpret_cast<const char *>(data_ + pos_), length);
    pos_ += length;
    return true;
}

bool BlockReader::readPlainTextBytes(QByteArray &bytes)
{
    if (!need(2))
        return false;
    const int16_t length = little<int16_t>(data_ + pos_);
    return takeTextBytes(length, bytes);
}

void BlockReader::skipText()
{
    QByteArray unused;
    readTextBytes(unused);
}

void BlockReader::decodedText(QString &target, bool scrambled)
{
    QByteArray bytes;
    if (!readTextBytes(bytes))
        return;
    if (scrambled)
        UnscrambleBytes(bytes.data(), bytes.size());
    target = codePage_.decode(bytes);
    if (!charsetKnown_)
        pending_.push_back({&target, bytes});
}

void BlockReader::plain(QString &target)
{
    QByteArray bytes;
    if (readPlainTextBytes(bytes))
        target = codePage_.decode(bytes);
}

void BlockReader::charsetKnown(int charset)
{
    codePage_ = CodePage(charset);
    charsetKnown_ = true;
    for (const auto &p : pending_)
        *p.target = codePage_.decode(p.bytes);
    pending_.clear();
}

void BlockReader::finish() { pending_.clear(); }

bool BlockReader::isSafeFileName(const QString &name)
{
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return false;
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) || name.contains(QChar(0)))
        return false;
    if (name.size() >= 2 && name[1] == QLatin1Char(':'))
        return false;
    return true;
}

void BlockReader::embedded(QString &name, bool last)
{
    text(name);
    if (!ok() || name.isEmpty())
        return;
    const bool safe = isSafeFileName(name);
    QString target;
    bool absent = false;
    if (!folder_.isEmpty()) {
        if (safe) {
            target = QDir(folder_).filePath(name);
            absent = !QFileInfo::exists(target);
        } else {
            refused_.append(name);
        }
    }
    // The background picture is the last item: when its file is already there, nothing more is read.
    if (last && !target.isEmpty() && !absent)
        return;
    if (!need(4))
        return;
    const int32_t length = little<int32_t>(data_ + pos_);
    if (length < 0) {
        fail(ErrorCode::Invalid, QStringLiteral("embedded file \"%1\" has a negative length %2").arg(name).arg(length));
        return;
    }
    pos_ += 4;
    if (absent || collect_) {
        if (!need(length))
            return;
        const QByteArray data(reinterpret_cast<const char *>(data_ + pos_), length);
        if (collect_)
            files_.insert(name, data);
        if (absent) {
            QFile out(target);
            // NewOnly: never replace a file that appeared in the meantime. A failed write is passed
            // over; the element then shows no image.
            if (out.open(QIODevice::WriteOnly | QIODevice::NewOnly) && out.write(data) == data.size())
                extracted_.append(name);
        }
    }
    // One spare byte follows each file's data.
    pos_ += qint64(length) + 1;
}

} // namespace ff
