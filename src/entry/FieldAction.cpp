#include "entry/FieldAction.h"

#include <initializer_list>

namespace ff {

namespace {

bool holdsAnywhere(const QString &upper, std::initializer_list<const char *> marks)
{
    for (const char *mark : marks)
        if (upper.contains(QLatin1String(mark)))
            return true;
    return false;
}

// An extension counts from the second character on.
bool holdsExtension(const QString &upper, std::initializer_list<const char *> extensions)
{
    for (const char *extension : extensions)
        if (upper.indexOf(QLatin1String(extension), 1) >= 1)
            return true;
    return false;
}

FieldAction make(FieldAction::Kind kind, const char *tip, const char *prefix = "")
{
    FieldAction action;
    action.kind = kind;
    action.tip = QLatin1String(tip);
    action.prefix = QLatin1String(prefix);
    return action;
}

} // namespace

bool FieldAction::opensFile() const
{
    return kind == Kind::Document || kind == Kind::Pdf || kind == Kind::Sound || kind == Kind::Picture
           || kind == Kind::Zip;
}

FieldAction FieldAction::choose(const QString &text, int fieldType)
{
    const QString upper = text.toUpper();
    if (holdsAnywhere(upper, {".HTM", "WWW."}))
        return make(Kind::Internet, "Internet...", "http://");
    if (upper.contains(QLatin1Char('@')))
        return make(Kind::Mail, "E-mail...", "mailto:");
    if (holdsExtension(upper, {".TXT", ".RTF", ".DOC"}))
        return make(Kind::Document, "View Doc...");
    if (holdsExtension(upper, {".PDF"}))
        return make(Kind::Pdf, "View PDF...");
    if (holdsExtension(upper, {".MP3", ".MID", ".WAV"}))
        return make(Kind::Sound, "Play Wave...");
    if (holdsExtension(upper, {".BMP", ".GIF", ".JPG"}))
        return make(Kind::Picture, "Show Picture...");
    if (holdsExtension(upper, {".ZIP"}))
        return make(Kind::Zip, "View Zip...");
    if (isTimeFormat(fieldType))
        return make(Kind::StopWatch, "Stop Watch...");
    return FieldAction();
}

} // namespace ff
