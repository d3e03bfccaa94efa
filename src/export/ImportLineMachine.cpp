#include "export/ImportLineMachine.h"

#include <cstring>

#include <emmintrin.h>

namespace ff {

// ---- rows ----

void ImportRows::clear()
{
    bytes_.clear();
    valueStart_.clear();
    valueEnd_.clear();
    rowStart_.clear();
}

int ImportRows::valueCount(int row) const
{
    if (row < 0 || row >= rowCount())
        return 0;
    const size_t end = row + 1 < rowCount() ? rowStart_[size_t(row) + 1] : valueStart_.size();
    return int(end - rowStart_[size_t(row)]);
}

std::string_view ImportRows::value(int row, int column) const
{
    if (column < 0 || column >= valueCount(row))
        return {};
    const size_t k = rowStart_[size_t(row)] + size_t(column);
    return std::string_view(bytes_.data() + valueStart_[k], valueEnd_[k] - valueStart_[k]);
}

// ---- the machine ----

ImportLineMachine::ImportLineMachine(QByteArray separator, int fontCharset)
    : separator_(separator.isEmpty() ? QByteArray(",") : std::move(separator))
{
    const char sep = separator_[0];
    fastPath_ = separator_.size() == 1 && fontCharset != 128 && fontCharset != 134 && fontCharset != 136
                && !QByteArray("\"<}>~").contains(sep);
    for (const char c : {'"', '~', '>', sep})
        special_[uint8_t(c)] = true;
    // Lead bytes of the double-byte pages: Shift-JIS (932), GBK (936), Big5 (950).
    if (fontCharset == 128) {
        doubleByte_ = true;
        for (int c = 0x81; c <= 0x9F; ++c)
            leadBytes_[c] = true;
        for (int c = 0xE0; c <= 0xFC; ++c)
            leadBytes_[c] = true;
    } else if (fontCharset == 134 || fontCharset == 136) {
        doubleByte_ = true;
        for (int c = 0x81; c <= 0xFE; ++c)
            leadBytes_[c] = true;
    }
}

bool ImportLineMachine::separatorAt(const char *p, const char *end) const
{
    const qsizetype n = separator_.size();
    return end - p >= n && (n == 1 ? *p == separator_[0] : std::memcmp(p, separator_.constData(), size_t(n)) == 0);
}

// Steps 1 to 3, each over the whole line in turn, into work_.
void ImportLineMachine::pairsAndTriples(const char *line, qsizetype size)
{
    const qsizetype sep = separator_.size();
    // Step 1: """ + delimiter -> <}> + "
    swap_.assign(line, line + size);
    work_.clear();
    for (size_t i = 0; i < swap_.size();) {
        const char *p = swap_.data() + i, *end = swap_.data() + swap_.size();
        if (lead(uint8_t(*p)) && end - p >= 2) {
            work_.insert(work_.end(), p, p + 2);
            i += 2;
        } else if (end - p >= 3 + sep && p[0] == '"' && p[1] == '"' && p[2] == '"' && separatorAt(p + 3, end)) {
            work_.insert(work_.end(), {'<', '}', '>', '"'});
            i += size_t(3 + sep);
        } else {
            work_.push_back(*p);
            ++i;
        }
    }
    // Step 2: delimiter + """ -> " + <}>
    swap_.swap(work_);
    work_.clear();
    for (size_t i = 0; i < swap_.size();) {
        const char *p = swap_.data() + i, *end = swap_.data() + swap_.size();
        if (lead(uint8_t(*p)) && end - p >= 2) {
            work_.insert(work_.end(), p, p + 2);
            i += 2;
        } else if (separatorAt(p, end) && end - p >= sep + 3 && p[sep] == '"' && p[sep + 1] == '"' && p[sep + 2] == '"') {
            work_.insert(work_.end(), {'"', '<', '}', '>'});
            i += size_t(sep + 3);
        } else {
            work_.push_back(*p);
            ++i;
        }
    }
    // Step 3: "" -> <}>, but a pair that is a whole value outside quotes stays an empty value.
    swap_.swap(work_);
    work_.clear();
    bool inside = inQuote_;
    const char *begin = swap_.data(), *end = swap_.data() + swap_.size();
    for (const char *p = begin; p < end;) {
        if (lead(uint8_t(*p)) && end - p >= 2) {
            work_.insert(work_.end(), p, p + 2);
            p += 2;
        } else if (end - p >= 2 && p[0] == '"' && p[1] == '"') {
            const bool valueStarts = p == begin || (p - begin >= sep && std::memcmp(p - sep, separator_.constData(), size_t(sep)) == 0);
            const bool valueEnds = p + 2 == end || separatorAt(p + 2, end);
            if (!inside && valueStarts && valueEnds)
                work_.insert(work_.end(), {'"', '"'});
            else
                work_.insert(work_.end(), {'<', '}', '>'});
            p += 2;
        } else {
            if (*p == '"')
                inside = !inside;
            work_.push_back(*p);
            ++p;
        }
    }
}

static bool hasQuotePair(const char *line, qsizetype size)
{
    for (qsizetype i = 0; i + 1 < size; ++i) {
        const void *q = std::memchr(line + i, '"', size_t(size - i - 1));
        if (!q)
            return false;
        i = static_cast<const char *>(q) - line;
        if (line[i + 1] == '"')
            return true;
    }
    return false;
}

bool ImportLineMachine::feedLine(const char *line, qsizetype size, ImportRows &rows)
{
    const char *p = line;
    qsizetype n = size;
    // A row that starts and ends on this line is taken apart in one pass. That pass stops at two
    // quotes in a row, which need steps 1 to 3 first; a line it finds open at its end has none.
    const bool rowStarts = carry_.empty() && !inQuote_;
    bool pairs;
    if (rowStarts && fastPath_) {
        const OneLine tried = oneLineRow(line, size, rows, false);
        if (tried == OneLine::Row)
            return true;
        pairs = tried == OneLine::Pairs;
    } else {
        pairs = hasQuotePair(line, size);
    }
    if (pairs) {
        pairsAndTriples(line, size);
        p = work_.data();
        n = qsizetype(work_.size());
        if (rowStarts && fastPath_ && oneLineRow(p, n, rows, true) == OneLine::Row)
            return true;
    }
    // Steps 4 and 5: onto the carry-over, delimiters inside quotes made "~".
    const char *end = p + n;
    carry_.reserve(carry_.size() + size_t(n) + 2);
    while (p < end) {
        const char c = *p;
        if (lead(uint8_t(c)) && end - p >= 2) {
            carry_.insert(carry_.end(), p, p + 2);
            p += 2;
        } else if (c == '"') {
            inQuote_ = !inQuote_;
            carry_.push_back(c);
            ++p;
        } else if (inQuote_ && separatorAt(p, end)) {
            carry_.push_back('~');
            p += separator_.size();
        } else {
            carry_.push_back(c);
            ++p;
        }
    }
    // Step 6: the quoted value goes on in the next line.
    if (inQuote_) {
        carry_.push_back('\r');
        carry_.push_back('\n');
        return false;
    }
    takeRow(carry_.data(), qsizetype(carry_.size()), rows);
    carry_.clear();
    return true;
}

// Steps 5, 7 and 8 at once, for a delimiter of one byte that is none of the marks, on a single-byte
// page: a quoted delimiter and a "~" are the delimiter in the value, an unquoted delimiter ends the
// value, quotes go, and "<}>" (quotes left out) is a quote. Nothing is added when the line ends
// inside quotes (Pending: the row goes on in the next line) or, unless `pairsDone`, when two
// quotes stand together (Pairs: steps 1 to 3 come first).
ImportLineMachine::OneLine ImportLineMachine::oneLineRow(const char *p, qsizetype n, ImportRows &rows,
                                                         bool pairsDone) const
{
    std::vector<char> &out = rows.bytes_;
    const size_t rowStart = out.size();
    const size_t valuesBefore = rows.valueStart_.size();
    const char sep = separator_[0];
    out.resize(rowStart + size_t(n));
    char *o = out.data() + rowStart;
    char *const oBegin = out.data();
    size_t valueStart = rowStart;
    bool quoted = false, text = false;
    const char *end = p + n;
    const __m128i quote = _mm_set1_epi8('"'), tilde = _mm_set1_epi8('~'), greater = _mm_set1_epi8('>'),
                  delimiter = _mm_set1_epi8(sep);
    while (p < end) {
        // A run of ordinary bytes in one copy, found sixteen at a time.
        const char *run = p;
        for (;;) {
            if (end - p < 16) {
                while (p < end && !special_[uint8_t(*p)])
                    ++p;
                break;
            }
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
            const __m128i hit = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, quote), _mm_cmpeq_epi8(v, tilde)),
                                             _mm_or_si128(_mm_cmpeq_epi8(v, greater), _mm_cmpeq_epi8(v, delimiter)));
            const int mask = _mm_movemask_epi8(hit);
            if (mask != 0) {
                p += __builtin_ctz(unsigned(mask));
                break;
            }
            p += 16;
        }
        if (p > run) {
            std::memcpy(o, run, size_t(p - run));
            o += p - run;
            text = true;
        }
        if (p == end)
            break;
        const char c = *p++;
        if (c == '"') {
            if (!pairsDone && p < end && *p == '"') {
                out.resize(rowStart);
                rows.valueStart_.resize(valuesBefore);
                rows.valueEnd_.resize(valuesBefore);
                return OneLine::Pairs;
            }
            quoted = !quoted;
            continue;
        }
        text = true;
        if (c == sep && !quoted) {
            rows.valueStart_.push_back(uint32_t(valueStart));
            rows.valueEnd_.push_back(uint32_t(o - oBegin));
            valueStart = size_t(o - oBegin);
        } else if (c == sep || c == '~') {
            *o++ = sep;
        } else { // '>'
            *o++ = c;
            if (size_t(o - oBegin) - valueStart >= 3 && o[-2] == '}' && o[-3] == '<') {
                o -= 3;
                *o++ = '"';
            }
        }
    }
    if (quoted) {
        out.resize(rowStart);
        rows.valueStart_.resize(valuesBefore);
        rows.valueEnd_.resize(valuesBefore);
        return OneLine::Pending;
    }
    out.resize(size_t(o - oBegin));
    if (!text) {
        rows.valueStart_.resize(valuesBefore);
        rows.valueEnd_.resize(valuesBefore);
        return OneLine::Row; // an empty row is passed over
    }
    rows.valueStart_.push_back(uint32_t(valueStart));
    rows.valueEnd_.push_back(uint32_t(out.size()));
    rows.rowStart_.push_back(uint32_t(valuesBefore));
    return OneLine::Row;
}

// Steps 7 and 8.
void ImportLineMachine::takeRow(const char *row, qsizetype size, ImportRows &rows) const
{
    std::vector<char> &out = rows.bytes_;
    const size_t start = out.size();
    // Every double quote goes (which also makes ",""," into ",,"), then "<}>" is a double quote.
    for (qsizetype i = 0; i < size; ++i) {
        const char c = row[i];
        if (c == '"')
            continue;
        out.push_back(c);
        if (c == '>' && out.size() - start >= 3 && out[out.size() - 2] == '}' && out[out.size() - 3] == '<') {
            out.resize(out.size() - 3);
            out.push_back('"');
        }
    }
    if (out.size() == start)
        return; // an empty row is passed over
    rows.rowStart_.push_back(uint32_t(rows.valueStart_.size()));
    const size_t end = out.size();
    const qsizetype sep = separator_.size();
    size_t valueStart = start;
    bool tilde = false;
    auto endValue = [&](size_t valueEnd) {
        if (!tilde) {
            rows.valueStart_.push_back(uint32_t(valueStart));
            rows.valueEnd_.push_back(uint32_t(valueEnd));
            return;
        }
        // "~" becomes the delimiter: in place when it is one byte, else as a new copy at the end.
        if (sep == 1) {
            for (size_t k = valueStart; k < valueEnd; ++k) {
                if (lead(uint8_t(out[k])) && k + 1 < valueEnd)
                    ++k;
                else if (out[k] == '~')
                    out[k] = separator_[0];
            }
            rows.valueStart_.push_back(uint32_t(valueStart));
            rows.valueEnd_.push_back(uint32_t(valueEnd));
            return;
        }
        std::vector<char> copy;
        for (size_t k = valueStart; k < valueEnd; ++k) {
            if (lead(uint8_t(out[k])) && k + 1 < valueEnd) {
                copy.push_back(out[k]);
                copy.push_back(out[++k]);
            } else if (out[k] == '~') {
                copy.insert(copy.end(), separator_.constBegin(), separator_.constEnd());
            } else {
                copy.push_back(out[k]);
            }
        }
        const size_t at = out.size();
        out.insert(out.end(), copy.begin(), copy.end());
        rows.valueStart_.push_back(uint32_t(at));
        rows.valueEnd_.push_back(uint32_t(out.size()));
    };
    for (size_t k = start; k < end;) {
        const char c = out[k];
        if (lead(uint8_t(c)) && k + 1 < end) {
            k += 2;
        } else if (separatorAt(out.data() + k, out.data() + end)) {
            endValue(k);
            k += size_t(sep);
            valueStart = k;
            tilde = false;
        } else {
            tilde = tilde || c == '~';
            ++k;
        }
    }
    endValue(end);
}

std::vector<QByteArray> ImportLineMachine::splitHeader(const char *line, qsizetype size) const
{
    QByteArray text;
    text.reserve(size);
    for (qsizetype i = 0; i < size; ++i)
        if (line[i] != '"')
            text.append(line[i]);
    std::vector<QByteArray> names;
    const char *begin = text.constData(), *end = begin + text.size(), *start = begin;
    for (const char *p = begin; p < end;) {
        if (lead(uint8_t(*p)) && end - p >= 2) {
            p += 2;
        } else if (separatorAt(p, end)) {
            names.emplace_back(start, p - start);
            p += separator_.size();
            start = p;
        } else {
            ++p;
        }
    }
    names.emplace_back(start, end - start);
    return names;
}

} // namespace ff
