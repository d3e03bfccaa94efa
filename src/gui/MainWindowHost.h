#pragma once
// What the engine asks of the main window: the record store's and the formulas' message box, the
// event loop's turn during writes, and the entry rules' calls (lock, save, navigate, new record,
// end, the desktop). One object answers all three interfaces so that the window's own class keeps
// to its widgets.

#include "entry/FormulaEntryHost.h"
#include "formula/FormulaHost.h"
#include "store/StoreHost.h"

#include <functional>

class QWidget;

namespace ff {
class Database;
}

namespace ff::gui {

class MainWindowHost : public FormulaEntryHost, public StoreHost, public FormulaHost {
public:
    MainWindowHost(Database &db, FormulaContext &context, QWidget *window);

    // Set by the window: what happens after the record on the page changed (record box, status),
    // when the program is to end at once, and a search line from a page button.
    std::function<void()> recordShown;
    std::function<void()> endNow;
    std::function<void(const QString &)> searchLine;

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
    void showMessage(const QString &text) override;

    // StoreHost
    void ShowMessage(const QString &caption, const QString &text, int color) override;
    void YieldToEvents() override;

    // FormulaHost (same signature as the store's message box)
    // ShowMessage above serves both.

    // Every "open" handed to the desktop, in order (the offscreen platform launches nothing, so
    // tests read this).
    QStringList opened;

private:
    void shown();
    Database &db_;
    QWidget *window_;
};

} // namespace ff::gui
