#pragma once
// Takes delimited text apart, one physical line at a time, into rows of values. It works on the
// file's bytes (record text is code-page bytes), with the program's own rules:
//
// 1. three double quotes and a delimiter become "<}>" and a double quote (the delimiter goes: a
//    value ending in a quote merges with the next one);
// 2. a delimiter and three double quotes become a double quote and "<}>" (likewise);
// 3. each pair of double quotes becomes "<}>", the mark of a literal quote; but a pair that
//    stands alone as a value (between delimiters, outside quotes) is an empty value;
// 4. the line is added to the carry-over text;
// 5. a double quote flips the quoted state; a delimiter inside quotes becomes "~";
// 6. still inside quotes at the end of the line: CR LF is added to the carry-over and the value
//    goes on in the next line (a file that ends here gives no more rows);
// 7. otherwise the carry-over is the row: ",""," becomes ",,", every double quote goes, "<}>"
//    becomes a double quote; an empty row is passed over;
// 8. the row is split at the delimiter, and in each value "~" becomes the delimiter again (so a
//    "~" of the source comes in as the delimiter: there is no escape for it).
//
// With a double-byte code page (932, 936, 950) the second byte of a character is never taken for
// a quote, a delimiter or a "~".

#include <QByteArray>

#include <cstdint>
#include <string_view>
#include <vector>

namespace ff {

// Rows of values as spans of one byte buffer; filled by the line machine, read by the import.
class ImportRows {
public:
    void clear();
    int rowCount() const { return int(rowStart_.size()); }
    int valueCount(int row) const;
    std::string_view value(int row, int column) const; // empty when the row has no such column
    // Bytes held, to let the caller decide when a batch is full.
    size_t byteSize() const { return bytes_.size(); }

private:
    friend class ImportLineMachine;
    std::vector<char> bytes_;
    std::vector<uint32_t> valueStart_, valueEnd_; // per value
    std::vector<uint32_t> rowStart_;              // per row: its first value
};

class ImportLineMachine {
public:
    // `separator`: the design's FieldSeparator in the code page's bytes (empty: a comma).
    // `fontCharset`: the design's, to know the double-byte pages.
    ImportLineMachine(QByteArray separator, int fontCharset);

    // One physical line without its line end. True when it completed a row, which was added to
    // `rows` (unless it was empty); false while a quoted value runs on into the next line.
    bool feedLine(const char *line, qsizetype size, ImportRows &rows);
    // A quoted value is still open: the text so far waits for its next line.
    bool pending() const { return inQuote_; }
    size_t carrySize() const { return carry_.size(); }

    // Takes every row through the rules step by step, as a check on the one-pass reading of
    // ordinary rows.
    void useStepByStepOnly() { fastPath_ = false; }

    // The header line: upper case is the caller's; double quotes removed, split at the delimiter.
    std::vector<QByteArray> splitHeader(const char *line, qsizetype size) const;

private:
    bool lead(unsigned char c) const { return doubleByte_ && leadBytes_[c]; }
    bool separatorAt(const char *p, const char *end) const;
    void pairsAndTriples(const char *line, qsizetype size);
    void takeRow(const char *row, qsizetype size, ImportRows &rows) const;
    enum class OneLine { Row, Pending, Pairs };
    OneLine oneLineRow(const char *line, qsizetype size, ImportRows &rows, bool pairsDone) const;

    QByteArray separator_;
    bool doubleByte_ = false;
    bool leadBytes_[256] = {};
    bool inQuote_ = false;
    bool fastPath_ = false;
    bool special_[256] = {}; // the bytes the one-pass reading stops at
    std::vector<char> carry_;   // the row so far: lines with CR LF between them, after step 5
    std::vector<char> work_, swap_;
};

} // namespace ff
