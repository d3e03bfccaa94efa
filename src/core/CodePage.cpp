#include "core/CodePage.h"

#include <QHash>
#include <QMutex>
#include <QStringDecoder>
#include <QStringEncoder>

namespace ff {

const char *CodePage::nameForCharset(int fontCharset)
{
    switch (fontCharset) {
    case 238: return "windows-1250";
    case 204: return "windows-1251";
    case 161: return "windows-1253";
    case 162: return "windows-1254";
    case 177: return "windows-1255";
    case 178: return "windows-1256";
    case 186: return "windows-1257";
    case 128: return "windows-31j"; // Windows' Shift-JIS, not glibc's
    case 134: return "GBK";
    case 136: return "Big5";
    default: return "windows-1252";
    }
}

// Single-byte pages are decoded through a 256-entry table built once per page.
static std::shared_ptr<const QString> singleByteTable(const char *name)
{
    static QMutex mutex;
    static QHash<QByteArray, std::shared_ptr<const QString>> cache;
    QMutexLocker lock(&mutex);
    auto it = cache.find(name);
    if (it != cache.end())
        return *it;
    // Each byte on its own, so that a byte the page leaves undefined keeps its Latin-1 meaning
    // instead of shifting the whole table.
    QString decoded(256, QChar(0));
    for (int i = 0; i < 256; ++i) {
        const char byte = static_cast<char>(i);
        QStringDecoder decoder(name, QStringDecoder::Flag::Stateless);
        const QString one = decoder.isValid() ? decoder.decode(QByteArrayView(&byte, 1)) : QString();
        decoded[i] = (one.size() == 1 && one[0] != QChar::ReplacementCharacter) ? one[0] : QChar(i);
    }
    auto table = std::make_shared<const QString>(decoded);
    cache.insert(name, table);
    return table;
}

CodePage::CodePage(int fontCharset)
    : charset_(fontCharset), name_(nameForCharset(fontCharset))
{
    singleByte_ = charset_ != 128 && charset_ != 134 && charset_ != 136;
    if (singleByte_)
        table_ = singleByteTable(name_);
}

QString CodePage::decode(const QByteArray &bytes) const { return decode(bytes.constData(), bytes.size()); }

QString CodePage::decode(const char *data, qsizetype size) const
{
    QString out;
    appendDecoded(out, data, size);
    return out;
}

void CodePage::appendDecoded(QString &text, const char *data, qsizetype size) const
{
    if (size <= 0)
        return;
    if (singleByte_) {
        const qsizetype at = text.size();
        text.resize(at + size);
        QChar *out = text.data() + at;
        const QChar *table = table_->constData();
        const auto *p = reinterpret_cast<const uint8_t *>(data);
        for (qsizetype i = 0; i < size; ++i)
            out[i] = table[p[i]];
        return;
    }
    QStringDecoder decoder(name_);
    if (!decoder.isValid()) {
        text += QLatin1String(data, size);
        return;
    }
    text += decoder.decode(QByteArrayView(data, size));
}

QByteArray CodePage::encode(const QString &text) const
{
    if (singleByte_) {
        // Reverse lookup through the table; characters outside the page become '?'.
        QByteArray out(text.size(), '?');
        const QString &table = *table_;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text[i];
            if (c.unicode() < 0x80) {
                out[i] = static_cast<char>(c.unicode());
                continue;
            }
            const qsizetype at = table.indexOf(c, 0x80);
            if (at >= 0)
                out[i] = static_cast<char>(at);
        }
        return out;
    }
    QStringEncoder encoder(name_);
    if (!encoder.isValid())
        return text.toLatin1();
    return encoder.encode(text);
}

} // namespace ff
