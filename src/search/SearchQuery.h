#pragma once
// The compiled form of a search line: what the parser makes once and the walk reads for every
// record. Values are converted at parse time, so the walk only compares bytes and integers.

#include "search/SearchPattern.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>
#include <array>
#include <cstdint>

namespace ff {

// Element kinds as the search names them: the order of the four name lists, then pictures.
enum class SearchKind : int { None = 0, Field = 1, Combo = 2, Check = 3, Note = 4, Picture = 5 };

// How the walk reads a value out of a raw record.
enum class ValueKind : int {
    Text,        // bytes as they stand, right-trimmed
    Float,       // 64-bit float (field type 1)
    Currency,    // 64-bit value times 10,000 (money and dates)
    Whole,       // 32-bit integer (type 5)
    NumberText,  // Val of the text (a combo with a number format)
    TimeText,    // a time of day written as text (types 10 to 12)
    DateText,    // a date written as text (a combo with a date format)
    CheckByte,   // one byte "0".."9"
};

// One element of the record as the search sees it.
struct SearchField {
    SearchKind kind = SearchKind::None;
    int index = 0;
    int format = 0;   // FieldType, ComboFormat, or 0
    int offset = 0;   // 0-based offset in the record
    int length = 0;
    ValueKind value = ValueKind::Text;
    bool valid() const { return kind != SearchKind::None && length > 0; }
    bool numeric() const { return value != ValueKind::Text; }
};

// The comparison of a condition row; Name is a bare name (a sum's field, a select's column).
enum class ConditionOp { Name, Equal, NotEqual, LessEqual, GreaterEqual, Less, Greater };

struct ConditionRow {
    SearchField field;
    ConditionOp op = ConditionOp::Name;
    int64_t fixed = 0;   // the value in the 4-decimal fixed-point form
    QByteArray text;     // the value as record bytes, folded unless match-case is on
    SearchPattern pattern; // compiled from `text` for the "=" of text
};

struct ReplacementRow {
    SearchField field;
    QByteArray bytes; // exactly field.length bytes, scrambled when the records are
};

// The plain find's comparisons of a number, date or time.
enum class FindOp { Equal, Greater, Less, NotEqual, LessEqual, GreaterEqual, Between };

struct FindTerm {
    QByteArray text;    // a text term, folded unless match-case is on
    FindOp op = FindOp::Equal; // a comparison term
    int64_t low = 0, high = 0;
};

enum class CommandKind : int { Select = 0, Sum = 1, Replace = 2, Count = 3, Find = 4 };

constexpr int kColumnSlots = 10;

struct CompiledQuery {
    CommandKind command = CommandKind::Find;
    QString line;                 // the line as it was given
    std::array<SearchField, kColumnSlots> columns{}; // filled slots first
    int columnCount = 0;
    QVector<ConditionRow> conditions;
    QVector<ReplacementRow> replacements;

    // The plain find.
    SearchField findField;        // the focused element; not valid for a whole-record find
    bool wholeRecord = false;     // the line started with "!"
    bool allTerms = false;        // "+" terms: all must be found; otherwise any one is enough
    bool comparison = false;      // the terms are comparisons of a number, date or time
    QVector<FindTerm> terms;

    bool matchCase = false;

    // Names in the line that name no element (their rows were left out) and column patterns that
    // match none, as the line gives them. The search goes on without them; a script wants to know.
    QStringList unmatchedNames;

    // True when the walk has something to do: a command with condition rows, or a find with terms.
    bool runnable() const;
};

} // namespace ff
