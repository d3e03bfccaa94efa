#pragma once
// A message sink that keeps every message shown, for tests of the store, the formulas, the search
// and the entry rules.

#include "core/MessageSink.h"

#include <QStringList>
#include <QVector>

namespace ff::testsupport {

class RecordingMessages : public virtual MessageSink {
public:
    struct Shown {
        QString caption;
        QString text;
        int colour = 0;
    };
    QVector<Shown> shown;

    void ShowMessage(const QString &caption, const QString &text, int colour) override
    {
        shown.append({caption, text, colour});
    }

    // The texts alone, in order.
    QStringList texts() const
    {
        QStringList out;
        for (const Shown &s : shown)
            out << s.text;
        return out;
    }
};

} // namespace ff::testsupport
