#include "entry/KeyRules.h"

#include <QByteArray>

namespace ff {

int KeyRules::controlCharacterByte(int code)
{
    switch (code) {
    case 17: return 162; // Ctrl+Q cent sign
    case 23: return 163; // Ctrl+W pound sign
    case 5: return 169;  // Ctrl+E circled C
    case 18: return 174; // Ctrl+R registered sign
    case 20: return 185; // Ctrl+T superscript one
    case 25: return 178; // Ctrl+Y superscript two
    case 21: return 179; // Ctrl+U superscript three
    case 9: return 188;  // Ctrl+I one quarter
    case 15: return 189; // Ctrl+O one half
    case 16: return 190; // Ctrl+P three quarters
    case 27: return 247; // Escape division sign
    default: return 0;
    }
}

bool KeyRules::isMaskedFormat(int format) { return (format >= 1 && format <= 5) || format == 10; }

namespace {

QChar fromByte(int byte, const CodePage &codePage)
{
    const QString text = codePage.decode(QByteArray(1, static_cast<char>(byte)));
    return text.size() == 1 ? text.at(0) : QChar();
}

} // namespace

QChar KeyRules::fieldCharacter(int format, QChar typed, QChar decimalSeparator, const CodePage &codePage)
{
    if (typed.unicode() == kEnter)
        return QChar(); // a field takes no line breaks
    if (const int special = controlCharacterByte(typed.unicode()))
        typed = fromByte(special, codePage);
    if (typed.isNull() || !isMaskedFormat(format))
        return typed;
    if (typed == QLatin1Char('.') && format == 5)
        return QChar();
    const int code = typed.unicode();
    if (code >= 40 && code < 58)
        return typed; // "(", ")", "*", "+", ",", "-", ".", "/" and digits: an expression may be typed
    if (code == kBackspace || code == kEnter || code == 58)
        return typed;
    if (format != 5 && typed == decimalSeparator)
        return typed;
    return QChar();
}

QChar KeyRules::noteCharacter(QChar typed, const CodePage &codePage)
{
    if (const int special = controlCharacterByte(typed.unicode()))
        return fromByte(special, codePage);
    return typed;
}

QString KeyRules::properCase(const QString &text)
{
    QString out = text;
    bool wordStart = true;
    for (QChar &c : out) {
        if (c.isSpace() || c.isNull()) {
            wordStart = true;
            continue;
        }
        c = wordStart ? c.toUpper() : c.toLower();
        wordStart = false;
    }
    return out;
}

KeyRules::CaseResult KeyRules::applyFieldCase(const QString &text, int fieldCase, int caret)
{
    CaseResult result{text, caret};
    switch (fieldCase) {
    case 1: result.text = text.toUpper(); break;
    case 2: result.text = properCase(text); break;
    case 3: result.text = text.toLower(); break;
    default: break;
    }
    // A case change can alter the length (German sharp s): keep the caret inside the text.
    if (result.caret > result.text.size())
        result.caret = static_cast<int>(result.text.size());
    return result;
}

} // namespace ff
