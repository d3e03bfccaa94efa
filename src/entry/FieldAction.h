#pragma once
// The one action the page offers for the text of the focused field, on the action button beside the
// toolbar: a web address, a mail address, a document, a sound, a picture, an archive, or the stop
// watch of a time field. The first test that fits wins; when none fits the button is hidden.

#include <QString>

namespace ff {

class FieldAction {
public:
    enum class Kind { None, Internet, Mail, Document, Pdf, Sound, Picture, Zip, StopWatch };

    Kind kind = Kind::None;
    QString tip;    // the button's tip text, "Internet..." and so on; empty when hidden
    QString prefix; // put before the text when it is opened: "http://", "mailto:" or empty

    bool visible() const { return kind != Kind::None; }
    // Document, PDF, sound, picture and archive actions open a file that must exist.
    bool opensFile() const;

    // The action for the text of a field of `fieldType`. File extensions count only from the
    // second character on: a text that starts with the extension is no file name.
    static FieldAction choose(const QString &text, int fieldType);
    // Formats that get the stop watch: the times 10, 11 and 12.
    static bool isTimeFormat(int fieldType) { return fieldType >= 10 && fieldType <= 12; }

    // The message for a file that is not there.
    static QString fileNotFoundMessage(const QString &name) { return name + QStringLiteral(" file not found"); }
};

} // namespace ff
