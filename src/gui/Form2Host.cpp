#include "gui/Form2Host.h"

#include "store/Database.h"
#include "toolkit/Msgbox8.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace ff::gui {

Form2Host::Form2Host(Database &db, FormulaContext &context, QWidget *window)
    : FormulaEntryHost(db.page(), context), db_(db), window_(window)
{
}

void Form2Host::shown()
{
    if (recordShown)
        recordShown();
}

bool Form2Host::readOnly() const { return !db_.store().writingAllowed(); }

Status Form2Host::lockRecord()
{
    const Status s = db_.store().LockRecord();
    if (!s.ok())
        shown(); // the stored record is back on the page
    return s;
}

void Form2Host::saveIfDirty() { db_.store().SaveIfDirty(); }

void Form2Host::navigate(int button)
{
    db_.store().NavigateRecord(button);
    shown();
}

void Form2Host::newRecord()
{
    db_.store().NewRecord();
    shown();
}

void Form2Host::endProgram()
{
    if (endNow)
        endNow();
}

void Form2Host::copyRecordToClipboard()
{
    // The record as XML on the clipboard belongs to the XML export; until it exists the program
    // started by the tag opens without a record to paste.
}

void Form2Host::runSearchLine(const QString &line)
{
    if (searchLine)
        searchLine(line);
}

bool Form2Host::fileExists(const QString &path)
{
    QFileInfo info(path);
    if (info.isRelative())
        info = QFileInfo(QDir(db_.paths().AppFolder), path);
    return info.exists();
}

void Form2Host::openWithDesktop(const QString &target, const QString &parameters)
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

void Form2Host::showMessage(const QString &text)
{
    ShowMessage(db_.MainCaption.isEmpty() ? db_.design().MainCap : db_.MainCaption, text, kFormulaMessageColour);
}

void Form2Host::ShowMessage(const QString &caption, const QString &text, int color)
{
    toolkit::ShowMessage(window_, caption, text, color);
}

void Form2Host::YieldToEvents()
{
    // Writes give the event loop a turn, but no user input: a key must not reach a record that is
    // half written.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace ff::gui
