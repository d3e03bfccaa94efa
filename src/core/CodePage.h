#pragma once
// Record and design texts are 8-bit, one character per byte, in the code page that the design's
// FontCharset names. This is the one place where such bytes become QString and back.

#include <QByteArray>
#include <QString>
#include <memory>

namespace ff {

class CodePage {
public:
    // 0 → Windows-1252, 238 → 1250, 204 → 1251, 161 → 1253, 162 → 1254, 177 → 1255, 178 → 1256,
    // 186 → 1257, 128 → CP932, 134 → CP936, 136 → CP950; anything else → Windows-1252.
    explicit CodePage(int fontCharset = 0);
    static const char *nameForCharset(int fontCharset);

    int charset() const { return charset_; }
    QString decode(const QByteArray &bytes) const;
    QString decode(const char *data, qsizetype size) const;
    // Appends the decoded bytes to `text`, with no text of their own in between.
    void appendDecoded(QString &text, const char *data, qsizetype size) const;
    QByteArray encode(const QString &text) const;

private:
    int charset_;
    bool singleByte_;
    const char *name_;
    std::shared_ptr<const QString> table_; // 256 characters for single-byte pages
};

} // namespace ff
