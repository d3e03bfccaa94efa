#pragma once
// One open database for the length of a run: the design (read once, then fixed), the page, the
// record store and the users, with the start-up and shutdown steps that need no window. The
// window and the command line each make one and take what they need from it.

#include "core/CodePage.h"
#include "core/Result.h"
#include "design/AppPaths.h"
#include "design/Design.h"
#include "design/Page.h"
#include "store/FormulaHooks.h"
#include "store/RecordStore.h"
#include "store/StoreHost.h"
#include "store/UserTable.h"

#include <QString>
#include <functional>
#include <memory>

namespace ff {

class Database {
public:
    Database(Design design, AppPaths paths, StoreHost *host = nullptr, FormulaHooks *hooks = nullptr);
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const Design &design() const { return *design_; }
    const AppPaths &paths() const { return paths_; }
    const CodePage &codePage() const { return codePage_; }
    Page &page() { return *page_; }
    RecordStore &store() { return *store_; }
    UserTable &users() { return users_; }
    void setHooks(FormulaHooks *hooks) { store_->setHooks(hooks); }
    // The clock of TodayDate and of the store's stamps; set before start().
    void setClock(const Clock &clock) { store_->setClock(clock); }
    const Clock &clock() const { return store_->clock(); }

    QChar DecimalSeparator;
    double TodayDate = 0;
    QString DataFileName; // the first file of the record set
    QString DataFileBase; // DataFileName cut at its last dot
    QString MainCaption;  // the main window's caption (the title, or the login line)
    int LoginUser = -1;

    // Start-up without the window: the decimal separator, today, the administrator's password from
    // the design, the per-user file and the data file's name. Errors here are passed over.
    void start();
    bool loginRequired() const { return users_.loginRequired(); }
    // After the login window accepted `user`; `passwordBox` is what was typed in the password box.
    void applyLogin(int user, const QString &passwordBox);
    bool administrator() const { return administrator_; }

    // Opens or creates DataFileName and shows the first record. A missing file is created
    // without a message. A file error (70, 53, 75) shows MessageText(1) with the name under the
    // application's title, and the opening goes on with what it has; the first such error is
    // returned. With AutoRunButton 1, `autoRun` (a press on button 0) runs before the first record
    // is shown.
    Status OpenDatabase(OpenMode mode, const std::function<void()> &autoRun = {});

    // Saves a dirty record, closes the files and rewrites the per-user file. When the record
    // cannot be saved, nothing is closed and the save's error comes back.
    Status shutdown();

    QString userFilePath() const { return paths_.userFilePath(); }
    QString recordPictureFolderFor(const QString &dataFileName) const;
    // The read-only attribute: no write permission for the owner, or no write access at all.
    static bool fileIsReadOnly(const QString &path);

private:
    std::unique_ptr<Design> design_;
    AppPaths paths_;
    CodePage codePage_;
    StoreHost *host_;
    std::unique_ptr<Page> page_;
    std::unique_ptr<RecordStore> store_;
    UserTable users_;
    bool administrator_ = false;
};

} // namespace ff
