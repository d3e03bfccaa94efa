#include "search/CaseFold.h"

namespace ff {

CaseFold::CaseFold(const CodePage &codePage)
{
    for (int c = 0; c < 256; ++c)
        table_[c] = static_cast<uint8_t>(c);
    for (int c = 'A'; c <= 'Z'; ++c)
        table_[c] = static_cast<uint8_t>(c + 32);
    const int charset = codePage.charset();
    const bool multiByte = charset == 128 || charset == 134 || charset == 136;
    if (multiByte)
        return;
    for (int c = 128; c < 256; ++c) {
        const char byte = static_cast<char>(c);
        const QString text = codePage.decode(&byte, 1);
        if (text.size() != 1)
            continue;
        const QString lower = text.toLower();
        if (lower == text || lower.size() != 1)
            continue;
        const QByteArray back = codePage.encode(lower);
        // Only a letter whose small form is one byte of the same page folds.
        if (back.size() == 1 && codePage.decode(back) == lower)
            table_[c] = static_cast<uint8_t>(back[0]);
    }
}

CaseFold CaseFold::identity()
{
    CaseFold f;
    for (int c = 0; c < 256; ++c)
        f.table_[c] = static_cast<uint8_t>(c);
    f.identity_ = true;
    return f;
}

QByteArray CaseFold::fold(QByteArray bytes) const
{
    if (identity_)
        return bytes;
    for (char &c : bytes)
        c = static_cast<char>(table_[static_cast<uint8_t>(c)]);
    return bytes;
}

} // namespace ff
