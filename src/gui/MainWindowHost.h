#pragma once
// What the engine asks of the main window: the message box of the store, the formulas, the search
// and the entry rules, the event loop's turn during writes, and the entry rules' calls (lock, save,
// navigate, new record, end, the desktop). One object answers all these interfaces so that the
// window's own class keeps to its widgets; what the window must do in turn it hears by signals.

#include "entry/FormulaEntryHost.h"
#include "store/StoreHost.h"

#include <QObject>
#include <QStringList>

class QWidget;

namespace ff {
class Database;
}

namespace ff::gui {

class MainWindowHost : public QObject, public FormulaEntryHost, public StoreHost {
    Q_OBJECT
public:
    MainWindowHost(Database &db, FormulaContext &context, QWidget *window);

    // For the windows that move the store themselves (results, find and replace): the record on
    // the page changed, as recordShown() tells.
    void announceRecordShown() { Q_EMIT recordShown(); }

    // EntryHost
    bool readOnly() const override;
    Status lockRecord() override;
    Status saveIfDirty() override;
    void navigate(int button) override;
    void newRecord() override;
    void endProgram() override;
    void copyRecordToClipboard() override;
    void runSearchLine(const QString &line) override;
    bool fileExists(const QString &path) override;
    void openWithDesktop(const QString &target, const QString &parameters) override;

    // MessageSink: the program's message box over the window; an empty caption is the window's.
    void ShowMessage(const QString &caption, const QString &text, int colour) override;

    // StoreHost
    void YieldToEvents() override;

    // The platform clipboard's text: what copying a record puts there and pasting reads.
    void setClipboardText(const QString &text);
    QString clipboardText() const;

    // Every "open" handed to the desktop, in order (the offscreen platform launches nothing, so
    // tests read this).
    QStringList opened;

Q_SIGNALS:
    // The record on the page changed (record box, status line).
    void recordShown();
    // "END": the program ends at once, nothing saved.
    void endNow();
    // A page button's search line, for a results window of its own.
    void searchLine(const QString &line);

private:
    void shown();
    Database &db_;
    QWidget *window_;
};

} // namespace ff::gui
