#pragma once
// What a press on the page does beyond typing: the action button of the focused field (open an
// address or file, run the stop watch), labels and buttons that act by their Tag or script, and
// pictures with a link. The decisions are made here; the host carries them out.

#include "design/Page.h"
#include "entry/EntryHost.h"
#include "entry/EntryState.h"
#include "entry/StopWatch.h"

#include <QLocale>
#include <QString>

namespace ff {

class PageActions {
public:
    PageActions(Page &page, EntryHost &host, EntryState &state, const Clock &clock = Clock::system());

    // Labels below this number have fixed jobs and never act.
    static constexpr int kFirstActingLabel = 6;

    // A click on the action button, for the action set up when the focused field got the focus.
    // A file that is not there gives the " file not found" message and opens nothing. For the stop
    // watch, returns whether it runs now (the window enables its tick timer by it); otherwise false.
    bool actionButtonClicked();
    // A tick of the stop watch timer: the running time goes into the field that started it, text
    // and stored value, and the record is locked as by typing. Stops the watch when another user
    // holds the record.
    void stopWatchTick();
    StopWatch &stopWatch() { return stopWatch_; }

    // A press on label Title(index).
    void labelPressed(int index);
    // A press on the page button with this index.
    void buttonPressed(int index);

    // A press on picture Pixbox(index): its hint goes to the status line and its link is opened.
    // Returns true when the window should open the picture editor: a per-record picture, for which
    // the record has been locked; false when another user holds it.
    bool picturePressed(int index);

private:
    // A label's or button's text after SubstituteTags, opened with the split at ".exe ".
    void openTagText(const QString &tag);
    void runScript(const QString &script);

    Page &page_;
    EntryHost &host_;
    EntryState &state_;
    StopWatch stopWatch_;
};

} // namespace ff
