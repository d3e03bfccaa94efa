#pragma once
// The reading side of the design block: the primitives (16-byte slots, salted and plain texts,
// embedded files) over an image held in memory, and the IO that DesignLayout::transfer drives.
// After the first failure every call is a no-op, so a damaged block stops the load where it is.

#include "core/CodePage.h"
#include "core/Result.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace ff {

class BlockReader {
public:
    static constexpr bool reading = true;

    // The value of one slot before it is narrowed to the width the reading order names.
    struct Slot {
        uint16_t tag = 0;
        bool isFloat = false;
        int64_t integer = 0;
        double real = 0;
    };

    BlockReader(const QByteArray &image, qint64 blockStart);

    // Embedded files go into `folder` when it is not empty and the file is absent there; with
    // `collect` their data is also kept in files().
    void setExtraction(const QString &folder, bool collect);

    bool ok() const { return error_.code == ErrorCode::None; }
    const Error &error() const { return error_; }
    qint64 position() const { return pos_; }
    void step(int n) { step_ = n; }
    void fail(ErrorCode code, const QString &text);

    // Primitives.
    bool readSlot(Slot &slot);
    bool readTextBytes(QByteArray &bytes);      // salted
    bool readPlainTextBytes(QByteArray &bytes); // 16-bit length, no salt
    // Both text forms after their length is known: a negative length fails, else the bytes follow.
    bool takeTextBytes(int16_t length, QByteArray &bytes);

    // The IO of DesignLayout.
    void item(bool &value);
    void item(uint8_t &value) { integer(value); }
    void item(int16_t &value) { integer(value); }
    void item(int32_t &value) { integer(value); }
    void item(float &value);
    void item(double &value);
    void skipItem();
    void skipText();
    void text(QString &target) { decodedText(target, false); }
    void scrambled(QString &target) { decodedText(target, true); }
    void plain(QString &target);
    void embedded(QString &name, bool last);
    void charsetKnown(int charset);
    // Texts read before FontCharset keep a Windows-1252 reading when the block ends before it.
    void finish();

    const QStringList &extractedFiles() const { return extracted_; }
    const QStringList &refusedFiles() const { return refused_; }
    const QMap<QString, QByteArray> &files() const { return files_; }

    // A name that could land outside the extraction folder: absolute, "." or "..", a slash or a
    // backslash, a drive letter, a NUL.
    static bool isSafeFileName(const QString &name);

private:
    template <class T>
    void integer(T &value);
    bool need(qint64 bytes);
    void decodedText(QString &target, bool scrambled);

    const QByteArray &image_;
    const uint8_t *data_;
    qint64 size_;
    qint64 blockStart_;
    qint64 pos_;
    qint64 saltPos_ = 100; // 1-based position in the image of the last salt taken
    int step_ = 0;
    Error error_;
    CodePage codePage_{0};
    bool charsetKnown_ = false;
    struct Pending {
        QString *target;
        QByteArray bytes;
    };
    std::vector<Pending> pending_;
    QString folder_;
    bool collect_ = false;
    QStringList extracted_, refused_;
    QMap<QString, QByteArray> files_;
};

} // namespace ff
