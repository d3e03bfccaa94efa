#pragma once
// Turns the page into record bytes and back, by the record layout. Pure: no file access, so the
// search, the statistics and the fuzz target use it on raw records too.
//
// Text is 8-bit in the design's code page, space padded and cut by its slot. Floats and 32-bit
// integers are little-endian; money and dates are 64-bit integers of value times 10,000. The whole
// record is scrambled byte by byte when the design says so.

#include "core/CodePage.h"
#include "core/Result.h"
#include "design/Page.h"
#include "store/FormulaHooks.h"
#include "store/RecordLayout.h"

#include <QByteArray>

namespace ff {

class RecordCodec {
public:
    RecordCodec(const Design &design, const RecordLayout &layout, const FormulaHooks &hooks, QChar decimalSeparator);

    const RecordLayout &layout() const { return layout_; }
    const CodePage &codePage() const { return codePage_; }
    void setHooks(const FormulaHooks &hooks) { hooks_ = &hooks; }
    void setDecimalSeparator(QChar separator) { decimalSeparator_ = separator; }
    QChar decimalSeparator() const { return decimalSeparator_; }

    // RecordLength spaces, as stored (scrambled when the design scrambles records).
    QByteArray blankRecord() const;

    // The page as a stored record. Overflow when a whole number or an amount does not fit.
    Result<QByteArray> pack(const Page &page) const;
    // Element i of the page (a field, combo, check or note) into its slot of the plain record
    // `b`; Overflow as pack.
    Status packElement(QByteArray &b, ElementKind kind, size_t i, const Page &page) const;
    Status packField(QByteArray &b, size_t i, const Page &page) const;
    // Puts a stored record on the page: values, write-once locks, picture names, the stamp, the
    // record number label and the flow layer. Does not run formulas.
    void unpack(const QByteArray &stored, Page &page, int currentRecord, bool recordIsNew) const;

    // Unscrambled copy of a stored record, for readers of raw records.
    QByteArray plain(const QByteArray &stored) const;
    // The text field `index` shows for the plain record bytes (number formats and ShowZeros applied).
    QString fieldDisplayText(const QByteArray &plainRecord, int index, double *date = nullptr) const;

    // Label texts: the stamp by StampFormat, and the record number as seven digits.
    static QString StampText(double stamp, int stampFormat);
    static QString RecordNumberText(int record);
    // A flow label's style byte: units digit bold, tens italic, hundreds underline.
    static bool StyleBold(uint8_t style) { return style % 10 != 0; }
    static bool StyleItalic(uint8_t style) { return (style / 10) % 10 != 0; }
    static bool StyleUnderline(uint8_t style) { return (style / 100) % 10 != 0; }

    // Little-endian readers and writers of the slots.
    static double readDouble(const QByteArray &b, int offset1);
    static int64_t readInt64(const QByteArray &b, int offset1);
    static int32_t readInt32(const QByteArray &b, int offset1);
    static void writeDouble(QByteArray &b, int offset1, double v);
    static void writeInt64(QByteArray &b, int offset1, int64_t v);
    static void writeInt32(QByteArray &b, int offset1, int32_t v);

private:
    void putText(QByteArray &b, int offset1, int size, const QString &text) const;
    QString getText(const QByteArray &b, int offset1, int size) const;
    void packFlow(QByteArray &b, const Page &page) const;
    void unpackFlow(const QByteArray &b, Page &page) const;
    bool zeroShownEmpty(const QString &text) const;

    const Design &design_;
    const RecordLayout &layout_;
    const FormulaHooks *hooks_;
    CodePage codePage_;
    QChar decimalSeparator_;
};

} // namespace ff
