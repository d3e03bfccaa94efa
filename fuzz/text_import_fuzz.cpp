// libFuzzer target for the delimited text import: the input is split into lines and fed to the
// line machine, once taking ordinary rows in one pass and once step by step, with the delimiter
// and code page chosen by the first byte. Both readings must agree row for row, value for value,
// and every value must lie inside the rows' bytes. Each value is then read as a number the way
// the number fields read it, and the head row split.

#include "core/CodePage.h"
#include "export/ImportLineMachine.h"
#include "export/ImportRecordMaker.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const uint8_t mode = data[0];
    ++data;
    --size;
    static const char *const separators[] = {",", ";", "\t", "|", "||", "~", "\"", ">"};
    const QByteArray separator(separators[mode & 7]);
    const int charset = (mode & 8) ? 128 : ((mode & 16) ? 134 : 0);
    const ff::CodePage codePage(charset);

    ff::ImportLineMachine fast(separator, charset), exact(separator, charset);
    exact.useStepByStepOnly();
    ff::ImportRows fastRows, exactRows;
    const char *p = reinterpret_cast<const char *>(data);
    const char *end = p + size;
    bool header = true;
    while (p <= end) {
        const char *lineEnd = static_cast<const char *>(std::memchr(p, '\n', size_t(end - p)));
        const char *stop = lineEnd ? lineEnd : end;
        qsizetype n = stop - p;
        if (n > 0 && p[n - 1] == '\r')
            --n;
        if (header) {
            header = false;
            const std::vector<QByteArray> names = fast.splitHeader(p, n);
            if (names.empty())
                std::abort();
        } else {
            const bool a = fast.feedLine(p, n, fastRows);
            const bool b = exact.feedLine(p, n, exactRows);
            if (a != b || fast.pending() != exact.pending())
                std::abort();
        }
        if (!lineEnd)
            break;
        p = lineEnd + 1;
    }
    if (fastRows.rowCount() != exactRows.rowCount())
        std::abort();
    for (int r = 0; r < fastRows.rowCount(); ++r) {
        if (fastRows.valueCount(r) != exactRows.valueCount(r))
            std::abort();
        for (int c = 0; c < fastRows.valueCount(r); ++c) {
            const std::string_view a = fastRows.value(r, c), b = exactRows.value(r, c);
            if (a != b)
                std::abort();
            volatile double v = ff::ImportRecordMaker::NumberFromBytes(a, (mode & 32) ? QChar(u',') : QChar(u'.'), codePage);
            (void)v;
        }
        if (fastRows.value(r, fastRows.valueCount(r)).size() != 0) // past the last value: nothing
            std::abort();
    }
    return 0;
}
