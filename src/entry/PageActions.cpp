#include "entry/PageActions.h"

#include "entry/TagRules.h"

namespace ff {

PageActions::PageActions(Page &page, EntryHost &host, EntryState &state, const Clock &clock)
    : page_(page), host_(host), state_(state), stopWatch_(clock)
{
}

bool PageActions::actionButtonClicked()
{
    const FieldAction &action = state_.action;
    if (!action.visible())
        return false;
    if (action.kind == FieldAction::Kind::StopWatch)
        return stopWatch_.click(state_.focusIndex);
    const int index = state_.focusIndex;
    QString text;
    if (state_.focusKind == FocusKind::Field && index >= 0 && index < page_.FieldText.size())
        text = page_.FieldText[index];
    if (action.opensFile() && !host_.fileExists(text)) {
        host_.ShowMessage(QString(), FieldAction::fileNotFoundMessage(text), kMessageColour);
        return false;
    }
    host_.openWithDesktop(action.prefix + text, QString());
    return false;
}

void PageActions::stopWatchTick()
{
    if (!stopWatch_.running())
        return;
    const int field = stopWatch_.field();
    if (field < 1 || field >= page_.FieldText.size())
        return;
    // The timed value is an edit like any typing: it marks the record changed and takes its lock,
    // so that moving to another record saves it. A record another user holds stops the watch.
    if (!host_.lockRecord()) {
        stopWatch_.stop();
        return;
    }
    // A time field stores its day number, not its text: the watch's time goes there as well.
    const long long seconds = stopWatch_.elapsedSeconds();
    page_.FieldDate[field] = static_cast<double>(seconds) / 86400.0;
    page_.setFieldText(field, StopWatch::elapsedText(static_cast<double>(seconds)));
}

void PageActions::openTagText(const QString &tag)
{
    const TagRules::OpenTarget target = TagRules::splitProgram(host_.substituteTags(tag));
    host_.openWithDesktop(target.file, target.parameters);
}

void PageActions::labelPressed(int index)
{
    const auto &titles = page_.design().Titles;
    if (index < kFirstActingLabel || index >= static_cast<int>(titles.size()))
        return;
    const QString &tag = titles[static_cast<size_t>(index)].Tag;
    if (tag.isEmpty())
        return;
    if (const std::optional<int> button = TagRules::navigationButton(tag))
        host_.navigate(*button);
    else if (TagRules::isNewRecordTag(tag))
        host_.newRecord();
    else
        openTagText(tag);
}

void PageActions::buttonPressed(int index)
{
    const auto &buttons = page_.design().Buttons;
    if (index < 0 || index >= static_cast<int>(buttons.size()))
        return;
    const ButtonElement &button = buttons[static_cast<size_t>(index)];
    if (!button.ButtonScript.isEmpty()) {
        runScript(button.ButtonScript);
        return;
    }
    const QString &tag = button.Tag;
    if (tag.isEmpty())
        return;
    if (const std::optional<int> step = TagRules::navigationButton(tag)) {
        host_.navigate(*step);
    } else if (TagRules::isEndTag(tag)) {
        host_.endProgram();
    } else if (TagRules::isNewRecordTag(tag)) {
        if (host_.saveIfDirty())
            host_.newRecord();
    } else {
        if (!host_.saveIfDirty())
            return;
        if (TagRules::wantsPaste(tag))
            host_.copyRecordToClipboard(); // the program started by the tag takes it with "-paste"
        openTagText(tag);
    }
}

void PageActions::runScript(const QString &script)
{
    if (!host_.saveIfDirty())
        return;
    for (const QString &raw : TagRules::scriptLines(script)) {
        const QString line = host_.insertV(raw);
        Status status;
        if (TagRules::isSearchCommand(line))
            host_.runSearchLine(line);
        else if (TagRules::isIfLine(line))
            status = host_.runIf(line);
        else
            status = host_.runAssignments(line);
        if (!status.ok()) {
            host_.ShowMessage(QString(), QStringLiteral("Error"), kMessageColour);
            return;
        }
    }
    host_.runFormulas();
    // Refused: the host has put the stored record back, and the script's changes go with it.
    std::ignore = host_.lockRecord();
}

bool PageActions::picturePressed(int index)
{
    const auto &pictures = page_.design().Pictures;
    if (index < 0 || index >= static_cast<int>(pictures.size()))
        return false;
    const PictureElement &picture = pictures[static_cast<size_t>(index)];
    page_.setTitleCaption(1, picture.PictureHint);
    if (!picture.PictureLink.isEmpty())
        host_.openWithDesktop(host_.substituteTags(picture.PictureLink), QString());
    if (!picture.Stretch)
        return false;
    // The picture editor works on the record: only another user's lock keeps it closed, as it
    // throws a typed edit away.
    const Status locked = host_.lockRecord();
    return locked.ok() || locked.error().code != ErrorCode::PermissionDenied;
}

} // namespace ff
