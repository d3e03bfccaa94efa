#pragma once
// Drives ff_lock_probe, the second user that knows only the lock protocol (see lock_probe.cpp).

#include "support/RecordFileFormat.h"

#include <QByteArray>
#include <QProcess>
#include <QVector>

namespace ff::testsupport {

class LockProbe {
public:
    LockProbe() = default;
    LockProbe(const LockProbe &) = delete;
    LockProbe &operator=(const LockProbe &) = delete;
    ~LockProbe();

    // Takes the record's lock byte and keeps it: true when the probe says "locked". `onRelease`
    // (ASCII: it travels as a program argument) is written at the record's first byte when released.
    bool hold(const RecordPlace &place, const QByteArray &onRelease = QByteArray());
    // Lets go of a held byte: true when the probe wrote its bytes and ended cleanly.
    bool release();

    // Whether another user holds the record's lock byte.
    static bool held(const RecordPlace &place);

    struct Write {
        RecordPlace place;
        QByteArray bytes;
    };
    // Each write under the lock, in order; `wait` tries a held byte again. True when all written.
    static bool write(const QVector<Write> &writes, bool wait);
    // The same, running beside the test until finishWrites().
    void startWrites(const QVector<Write> &writes, bool wait);
    bool finishWrites(int timeoutMs = 30000);

private:
    QProcess process_;
};

} // namespace ff::testsupport
