#include "gui/MainWindowHost.h"

#include "export/XmlRecord.h"
#include "store/Database.h"
#include "toolkit/MessageWindow.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace ff::gui {

MainWindowHost::MainWindowHost(Database &db, FormulaContext &context, QWidget *window)
    : FormulaEntryHost(db.page(), context), db_(db), window_(window)
{
}

void MainWindowHost::shown() { Q_EMIT recordShown(); }

bool MainWindowHost::readOnly() const { return !db_.store().writingAllowed(); }

Status MainWindowHost::lockRecord()
{
    const Status s = db_.store().LockRecord();
    if (!s.ok())
        shown(); // the stored record is back on the page
    return s;
}

// A failed save has been shown by the store; the record stays on the page, dirty.
Status MainWindowHost::saveIfDirty() { return db_.store().SaveIfDirty(); }

void MainWindowHost::navigate(int button)
{
    if (button < 0 || button > 5)
        return;
    // A failed save has been shown by the store; a record that cannot be read leaves the page as
    // it was. The record box and the status line show which record is there either way.
    std::ignore = db_.store().NavigateRecord(static_cast<NavigationButton>(button));
    shown();
}

void MainWindowHost::newRecord()
{
    // As navigate(): a failed save or a full file has been shown; the page says where it is.
    std::ignore = db_.store().NewRecord();
    shown();
}

void MainWindowHost::endProgram() { Q_EMIT endNow(); }

void MainWindowHost::copyRecordToClipboard()
{
    // CopyAll: the record on the page as XML text, for Paste here or a program started with "-paste".
    setClipboardText(XmlRecord::CopyAll(db_.page(), db_.store().CurrentRecord()));
}

void MainWindowHost::setClipboardText(const QString &text) { QGuiApplication::clipboard()->setText(text); }

QString MainWindowHost::clipboardText() const { return QGuiApplication::clipboard()->text(); }

void MainWindowHost::runSearchLine(const QString &line) { Q_EMIT searchLine(line); }

bool MainWindowHost::fileExists(const QString &path)
{
    QFileInfo info(path);
    if (info.isRelative())
        info = QFileInfo(QDir(db_.paths().AppFolder), path);
    return info.exists();
}

void MainWindowHost::openWithDesktop(const QString &target, const QString &parameters)
{
    opened.append(parameters.isEmpty() ? target : target + QLatin1Char(' ') + parameters);
    if (!parameters.isEmpty()) {
        // A program with its parameters: "other.exe -paste" starts that app image.
        QString program = target;
        if (QFileInfo(program).isRelative())
            program = QDir(db_.paths().AppFolder).filePath(program);
        QProcess::startDetached(program, QProcess::splitCommand(parameters), db_.paths().AppFolder);
        return;
    }
    QUrl url = QUrl::fromUserInput(target, db_.paths().AppFolder, QUrl::AssumeLocalFile);
    QDesktopServices::openUrl(url);
}

void MainWindowHost::ShowMessage(const QString &caption, const QString &text, int colour)
{
    QString title = caption;
    if (title.isEmpty())
        title = db_.MainCaption.isEmpty() ? db_.design().MainCap : db_.MainCaption;
    toolkit::ShowMessage(window_, title, text, colour);
}

void MainWindowHost::YieldToEvents()
{
    // Writes give the event loop a turn, but no user input: a key must not reach a record that is
    // half written.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace ff::gui
