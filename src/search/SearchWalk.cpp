#include "search/SearchWalk.h"

namespace ff::walk {

namespace {

bool compareFixed(int64_t value, ConditionOp op, int64_t target)
{
    switch (op) {
    case ConditionOp::Equal: return value == target;
    case ConditionOp::NotEqual: return value != target;
    case ConditionOp::LessEqual: return value <= target;
    case ConditionOp::GreaterEqual: return value >= target;
    case ConditionOp::Less: return value < target;
    case ConditionOp::Greater: return value > target;
    case ConditionOp::Name: return false;
    }
    return false;
}

bool compareFind(int64_t value, const FindTerm &t)
{
    switch (t.op) {
    case FindOp::Equal: return value == t.low;
    case FindOp::Greater: return value > t.low;
    case FindOp::Less: return value < t.low;
    case FindOp::NotEqual: return value != t.low;
    case FindOp::LessEqual: return value <= t.low;
    case FindOp::GreaterEqual: return value >= t.low;
    case FindOp::Between: return value >= t.low && value <= t.high;
    }
    return false;
}

} // namespace

ConditionTester::ConditionTester(const FieldReader &reader, const uint8_t *fold, const QVector<ConditionRow> &rows)
    : reader_(reader), fold_(fold), rows_(rows)
{
    for (const ConditionRow &row : rows) {
        const bool contains = row.op == ConditionOp::Equal && row.field.value == ValueKind::Text
                              && row.pattern.shape() == SearchPattern::Shape::Contains
                              && !row.pattern.literal().endsWith(' '); // found within the padded slice
        contains_.push_back(contains ? std::make_unique<FoldedNeedle>(row.pattern.literal(), fold) : nullptr);
    }
}

bool ConditionTester::holds(const ConditionRow &row, const uint8_t *record) const
{
    if (row.op == ConditionOp::Name)
        return false; // a bare name has no test
    const SearchField &f = row.field;
    if (f.value != ValueKind::Text) {
        int64_t v = 0;
        if (!reader_.fixedValue(f, record, v))
            return false;
        return compareFixed(v, row.op, row.fixed);
    }
    const uint8_t *p = record + f.offset;
    const StoredBytes &stored = reader_.stored();
    if (row.op == ConditionOp::Equal)
        return row.pattern.matchesPadded(p, f.length, fold_, stored.blank());
    if (row.op == ConditionOp::NotEqual) {
        const int n = stored.trimmedLength(p, f.length);
        if (n != row.text.size())
            return true;
        const auto *t = reinterpret_cast<const uint8_t *>(row.text.constData());
        for (int k = 0; k < n; ++k)
            if (fold_[p[k]] != t[k])
                return true;
        return false;
    }
    return compareFixed(FieldReader::toFixed(reader_.storedVal(p, f.length)), row.op, row.fixed);
}

FindTester::FindTester(const CompiledQuery &query, const FieldReader &reader, const uint8_t *fold, int recordLength)
    : query_(query), reader_(reader), recordLength_(recordLength)
{
    for (const FindTerm &t : query.terms) {
        needles_.emplace_back(t.text, fold);
        trimForTerms_ = trimForTerms_ || t.text.isEmpty() || t.text.endsWith(' ');
    }
}

bool FindTester::matches(const uint8_t *record) const
{
    const CompiledQuery &q = query_;
    if (q.comparison) {
        int64_t v = 0;
        if (!reader_.fixedValue(q.findField, record, v))
            return false;
        for (const FindTerm &t : q.terms) {
            const bool ok = compareFind(v, t);
            if (ok != q.allTerms)
                return ok; // the first failing "+" term, or the first "or" term that holds
        }
        return q.allTerms;
    }
    const uint8_t *hay = q.wholeRecord ? record : record + q.findField.offset;
    const int full = q.wholeRecord ? recordLength_ : q.findField.length;
    // The slice is right-trimmed; that can only matter to a term ending in a blank.
    const int n = trimForTerms_ ? reader_.stored().trimmedLength(hay, full) : full;
    for (const FoldedNeedle &needle : needles_) {
        const bool ok = needle.foundIn(hay, n);
        if (ok != q.allTerms)
            return ok; // the first missing "+" term, or the first "or" term found
    }
    return q.allTerms;
}

} // namespace ff::walk
