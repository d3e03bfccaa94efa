#pragma once
// What the entry rules need from the rest of the program. The window implements it over the record
// store, the formula library, the search window and the desktop; the command line and the tests
// implement it with their own recorders. Every call is made on the user-interface thread.
// Messages go through the MessageSink's ShowMessage with an empty caption: the program's own.

#include "core/MessageSink.h"
#include "core/Result.h"

#include <QString>

namespace ff {

class EntryHost : public virtual MessageSink {
public:
    virtual ~EntryHost() = default;

    // Either of the two read-only flags (a read-only file, a user who may only read): while true,
    // nothing typed reaches the record.
    virtual bool readOnly() const = 0;

    // LockRecord: marks the record dirty and takes its lock. PermissionDenied when another user
    // holds it; the host has then shown the stored record again and the edit is thrown away.
    virtual Status lockRecord() = 0;
    // The saving rule: a dirty record is written before the page leaves it. A failure has been
    // shown; the record stays on the page, and the action that wanted to leave it stops.
    virtual Status saveIfDirty() = 0;
    // RunFormulas over the record on the page.
    virtual void runFormulas() = 0;

    // NavigateRecord with button 0 (first), 1 (ten back), 2 (one back), 3 (one on), 4 (ten on),
    // 5 (last). Saves by the rule itself.
    virtual void navigate(int button) = 0;
    // NewRecord: saves a dirty record first.
    virtual void newRecord() = 0;
    // Ends the program at once: nothing is saved and the per-user file is not written.
    virtual void endProgram() = 0;
    // CopyAll: the record as XML on the clipboard, for a program started with "-paste".
    virtual void copyRecordToClipboard() = 0;

    // Formula language: the tags of a free text filled in (SubstituteTags); a button line with its
    // references and V numbers replaced (InsertV); one line run as an IF line (RunIf) or as
    // assignments (RunAssignments).
    virtual QString substituteTags(const QString &text) = 0;
    virtual QString insertV(const QString &line) = 0;
    virtual Status runIf(const QString &line) = 0;
    virtual Status runAssignments(const QString &line) = 0;

    // Runs `line` as the SearchLine of a new, silent results window.
    virtual void runSearchLine(const QString &line) = 0;

    // Desktop: whether a file exists, and "open" of a file, address or program with parameters.
    virtual bool fileExists(const QString &path) = 0;
    virtual void openWithDesktop(const QString &target, const QString &parameters) = 0;
};

} // namespace ff
