#pragma once
// Shared pieces of the record store's tests: a pinned locale, a recording host and temporary data
// files.

#include "store/RecordFile.h"
#include "store/StoreHost.h"
#include "support/StoreDesigns.h"

#include <QLocale>
#include <QStringList>
#include <QTemporaryDir>

namespace ff::testing {

// Formats come from the default locale: pin it so that results are stable.
inline const bool kLocalePinned = [] {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return true;
}();

struct RecordingHost : StoreHost {
    QStringList messages;
    void ShowMessage(const QString &, const QString &text, int) override { messages << text; }
};

// Small parts for the length of one test.
struct SmallParts {
    explicit SmallParts(int64_t perPart) { RecordFile::SetRecordsPerPartForTesting(perPart); }
    ~SmallParts() { RecordFile::SetRecordsPerPartForTesting(0); }
};

} // namespace ff::testing
