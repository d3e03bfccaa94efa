#pragma once
// What a typed character becomes in a text field, a combo or a note, and how the text of a plain
// field is turned to its case while typed. Pure rules over characters: the read-only flags, the
// record lock and the change flag are the caller's (FieldEntry).

#include "core/CodePage.h"

#include <QChar>
#include <QString>

namespace ff {

class KeyRules {
public:
    static constexpr int kBackspace = 8;
    static constexpr int kEnter = 13;

    // The special character a control key gives (Ctrl+Q cent, Ctrl+W pound, ..., Escape division
    // sign) as a byte of the design's code page, or 0 when `code` is no such key.
    static int controlCharacterByte(int code);

    // Formats whose fields take only expression characters: the numbers 1 to 5 and the short time.
    static bool isMaskedFormat(int format);

    // A character typed into a text field of `format`, or into a combo with its ComboFormat. The
    // result is what goes into the field; a null QChar drops the key. Enter is dropped, control keys
    // give their special characters, and masked formats keep only "(" to "9", backspace, ":" and
    // the decimal separator; format 5 drops ".".
    static QChar fieldCharacter(int format, QChar typed, QChar decimalSeparator, const CodePage &codePage);

    // A character typed into a note: control keys give their special characters, Enter goes through.
    static QChar noteCharacter(QChar typed, const CodePage &codePage);

    // FieldCase: 0 none, 1 upper case, 2 capital at the start of each word, 3 lower case.
    struct CaseResult {
        QString text;
        int caret = 0;
    };
    // The text of a plain-text field after a key was released, with the caret where it was.
    static CaseResult applyFieldCase(const QString &text, int fieldCase, int caret);
    static QString properCase(const QString &text);
};

} // namespace ff
