#pragma once
// An EntryHost that writes down every call, for the entry tests. Each call adds one line to
// `calls`, such as "navigate 2", "open notepad.exe|a.txt" or "message Error".

#include "entry/EntryHost.h"
#include "entry/FieldEntry.h"
#include "support/RecordingMessages.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

namespace ff::testsupport {

class RecordingEntryHost : public EntryHost, public RecordingMessages {
public:
    bool readOnlyFlag = false;
    Status lockResult;                   // what lockRecord returns
    Status saveResult;                   // what saveIfDirty returns
    std::function<void()> onLockFailure; // runs when lockResult is a failure (the store re-shows the record)
    QSet<QString> existingFiles;
    QStringList failingLines; // runIf / runAssignments fail on these lines
    std::function<QString(const QString &)> tagFiller = [](const QString &text) { return text; };
    std::function<QString(const QString &)> vFiller = [](const QString &line) { return line; };
    QStringList calls;

    int count(const QString &call) const { return static_cast<int>(calls.count(call)); }

    bool readOnly() const override { return readOnlyFlag; }
    Status lockRecord() override
    {
        calls << QStringLiteral("lock");
        if (!lockResult.ok() && onLockFailure)
            onLockFailure();
        return lockResult;
    }
    Status saveIfDirty() override
    {
        calls << QStringLiteral("save");
        return saveResult;
    }
    void runFormulas() override { calls << QStringLiteral("formulas"); }
    void navigate(int button) override { calls << QStringLiteral("navigate %1").arg(button); }
    void newRecord() override { calls << QStringLiteral("new"); }
    void endProgram() override { calls << QStringLiteral("end"); }
    void copyRecordToClipboard() override { calls << QStringLiteral("copy"); }
    QString substituteTags(const QString &text) override { return tagFiller(text); }
    QString insertV(const QString &line) override { return vFiller(line); }
    Status runIf(const QString &line) override { return run(QStringLiteral("if "), line); }
    Status runAssignments(const QString &line) override { return run(QStringLiteral("assign "), line); }
    void runSearchLine(const QString &line) override { calls << QStringLiteral("search ") + line; }
    bool fileExists(const QString &path) override { return existingFiles.contains(path); }
    void openWithDesktop(const QString &target, const QString &parameters) override
    {
        calls << QStringLiteral("open ") + target + QLatin1Char('|') + parameters;
    }
    void ShowMessage(const QString &caption, const QString &text, int colour) override
    {
        calls << QStringLiteral("message ") + text;
        RecordingMessages::ShowMessage(caption, text, colour);
    }

private:
    Status run(const QString &kind, const QString &line)
    {
        calls << kind + line;
        if (failingLines.contains(line))
            return makeError(ErrorCode::Invalid, QStringLiteral("bad line"));
        return {};
    }
};

// Focus, the keys one by one as the window would apply them, then leaving.
inline void typeInto(FieldEntry &entry, Page &page, int index, const QString &keys)
{
    entry.fieldGotFocus(index);
    page.FieldText[index].clear();
    for (QChar key : keys)
        if (const QChar c = entry.fieldKeyPress(index, key); !c.isNull())
            page.FieldText[index] += c;
    entry.fieldLostFocus(index);
}

} // namespace ff::testsupport
