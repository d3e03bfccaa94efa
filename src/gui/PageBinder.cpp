#include "gui/PageBinder.h"

#include "entry/FieldEntry.h"
#include "entry/PageActions.h"
#include "gui/PageCanvas.h"
#include "pagetools/PictureNaming.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace ff::gui {

namespace {

// The character a key gives to the key-press rules: Ctrl with a letter is its control code
// (Ctrl+Q is 17) whatever text the platform attaches, Escape is 27, otherwise the key's text.
// Tab moves the focus and Delete edits without a character, so neither gives one; copying and
// selecting change nothing and stay with the widget.
QChar typedCharacter(const QKeyEvent *key)
{
    if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll))
        return QChar();
    if ((key->modifiers() & Qt::ControlModifier) && key->key() >= Qt::Key_A && key->key() <= Qt::Key_Z)
        return QChar(char16_t(key->key() - Qt::Key_A + 1));
    if (key->key() == Qt::Key_Escape)
        return QChar(27);
    const QString t = key->text();
    if (t.size() != 1)
        return QChar();
    const ushort c = t[0].unicode();
    return c == 9 || c == 127 ? QChar() : t[0];
}

bool isKeyPressCharacter(const QKeyEvent *key) { return !typedCharacter(key).isNull(); }

bool isEditWithoutCharacter(const QKeyEvent *key)
{
    return key->key() == Qt::Key_Delete || key->matches(QKeySequence::Paste) || key->matches(QKeySequence::Cut)
        || key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo);
}

} // namespace

PageBinder::PageBinder(PageCanvas &canvas, Page &page, FieldEntry &entry, PageActions &actions, QObject *parent)
    : QObject(parent), canvas_(canvas), page_(page), entry_(entry), actions_(actions)
{
    const Design &d = page.design();
    for (int i = 1; i < int(d.Fields.size()); ++i) {
        auto *edit = qobject_cast<QLineEdit *>(canvas.fieldWidget(i));
        if (!edit)
            continue;
        watch(edit, Kind::Field, i);
        connect(edit, &QLineEdit::textEdited, this, [this, i](const QString &text) {
            if (!refreshing_)
                page_.FieldText[i] = text;
        });
    }
    for (int i = 1; i < int(d.Combos.size()); ++i) {
        auto *combo = qobject_cast<QComboBox *>(canvas.comboWidget(i));
        if (!combo)
            continue;
        watch(combo, Kind::Combo, i);
        connect(combo->lineEdit(), &QLineEdit::textEdited, this, [this, i](const QString &text) {
            if (!refreshing_)
                page_.ComboText[i] = text;
        });
        connect(combo, &QComboBox::activated, this, [this, i, combo](int row) {
            if (!refreshing_ && entry_.beginEdit())
                entry_.comboChosen(i, combo->itemText(row));
            refreshCombo(i);
        });
    }
    for (int i = 1; i < int(d.Notes.size()); ++i) {
        auto *note = qobject_cast<QPlainTextEdit *>(canvas.noteWidget(i));
        if (!note)
            continue;
        watch(note, Kind::Note, i);
        connect(note, &QPlainTextEdit::textChanged, this, [this, i, note] {
            if (!refreshing_)
                page_.NoteText[i] = storedNoteText(note->toPlainText());
        });
    }
    for (int i = 0; i < int(d.Checks.size()); ++i)
        if (QWidget *box = canvas.checkWidget(i))
            watch(box, Kind::Check, i);
    for (int i = 0; i < int(d.Titles.size()); ++i)
        if (QWidget *label = canvas.titleWidget(i))
            watch(label, Kind::Title, i);
    for (int i = 0; i < int(d.Pictures.size()); ++i)
        if (QWidget *picture = canvas.pictureWidget(i))
            watch(picture, Kind::Picture, i);
    for (int i = 0; i < int(d.Buttons.size()); ++i)
        if (auto *button = qobject_cast<QPushButton *>(canvas.buttonWidget(i)))
            connect(button, &QPushButton::clicked, this, [this, i] { actions_.buttonPressed(i); });

    connect(&page_, &Page::elementChanged, this, &PageBinder::refresh);
    connect(&page_, &Page::reset, this, &PageBinder::refreshAll);
    connect(&page_, &Page::pageChanged, this, [this](int p) { canvas_.showPage(p); });
}

void PageBinder::watch(QObject *object, Kind kind, int index)
{
    object->installEventFilter(this);
    targets_.insert(object, Target{kind, index});
}

void PageBinder::setPictureFolder(const QString &folder, const QPixmap &blank)
{
    pictureFolder_ = folder;
    blank_ = blank;
}

void PageBinder::refreshAll()
{
    const Design &d = page_.design();
    for (int i = 1; i < int(d.Fields.size()); ++i)
        refreshField(i);
    for (int i = 1; i < int(d.Combos.size()); ++i)
        refreshCombo(i);
    for (int i = 1; i < int(d.Notes.size()); ++i)
        refreshNote(i);
    for (int i = 0; i < int(d.Checks.size()); ++i)
        refreshCheck(i);
    for (int i = 0; i < int(d.Titles.size()); ++i)
        refreshTitle(i);
    for (int i = 0; i < int(d.Pictures.size()); ++i)
        refreshPicture(i);
    if (canvas_.currentPage() != page_.CurrentPage)
        canvas_.showPage(page_.CurrentPage);
}

void PageBinder::refresh(ElementKind kind, int index)
{
    switch (kind) {
    case ElementKind::Field: refreshField(index); break;
    case ElementKind::Combo: refreshCombo(index); break;
    case ElementKind::Note: refreshNote(index); break;
    case ElementKind::Check: refreshCheck(index); break;
    case ElementKind::Title: refreshTitle(index); break;
    case ElementKind::Picture: refreshPicture(index); break;
    default: break;
    }
}

void PageBinder::refreshField(int i)
{
    auto *edit = qobject_cast<QLineEdit *>(canvas_.fieldWidget(i));
    if (!edit || i >= page_.FieldText.size())
        return;
    refreshing_ = true;
    if (edit->text() != page_.FieldText[i]) {
        const int caret = edit->cursorPosition();
        edit->setText(page_.FieldText[i]);
        if (edit->hasFocus())
            edit->setCursorPosition(qMin(caret, int(page_.FieldText[i].size())));
    }
    edit->setReadOnly(page_.FieldLocked.value(i));
    refreshing_ = false;
}

void PageBinder::refreshCombo(int i)
{
    auto *combo = qobject_cast<QComboBox *>(canvas_.comboWidget(i));
    if (!combo || i >= page_.ComboText.size())
        return;
    refreshing_ = true;
    if (combo->currentText() != page_.ComboText[i])
        combo->setEditText(page_.ComboText[i]);
    combo->lineEdit()->setReadOnly(page_.ComboLocked.value(i));
    refreshing_ = false;
}

// A note keeps its line breaks as CR LF, as records of other programs and the text export's
// quoting rule expect; the text box shows and types bare line feeds.
QString PageBinder::storedNoteText(QString typed)
{
    return typed.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\n'), QLatin1String("\r\n"));
}

QString PageBinder::shownNoteText(QString stored)
{
    return stored.replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

void PageBinder::refreshNote(int i)
{
    auto *note = qobject_cast<QPlainTextEdit *>(canvas_.noteWidget(i));
    if (!note || i >= page_.NoteText.size())
        return;
    refreshing_ = true;
    const QString shown = shownNoteText(page_.NoteText[i]);
    if (note->toPlainText() != shown)
        note->setPlainText(shown);
    note->setReadOnly(page_.NoteLocked.value(i));
    refreshing_ = false;
}

void PageBinder::refreshCheck(int i)
{
    auto *box = qobject_cast<QAbstractButton *>(canvas_.checkWidget(i));
    if (!box || i >= page_.CheckValue.size())
        return;
    const QSignalBlocker block(box);
    box->setChecked(page_.CheckValue[i] != 0);
    box->setEnabled(true);
}

void PageBinder::refreshTitle(int i)
{
    auto *label = qobject_cast<QLabel *>(canvas_.titleWidget(i));
    if (!label || i >= page_.TitleCaption.size() || label->text() == page_.TitleCaption[i])
        return;
    label->setText(page_.TitleCaption[i]);
    label->resize(label->sizeHint());
}

QImage PageBinder::pictureImage(int i) const
{
    const Design &d = page_.design();
    if (i < 0 || size_t(i) >= d.Pictures.size())
        return QImage();
    if (d.Pictures[size_t(i)].Stretch) {
        // The record's own file, in its own size, not the copy fitted to the element.
        const QString name = page_.PictureRecordName.value(i).trimmed();
        return name.isEmpty() || pictureFolder_.isEmpty() ? QImage() : QImage(PictureNaming::filePath(pictureFolder_, name));
    }
    const auto *label = qobject_cast<const QLabel *>(canvas_.pictureWidget(i));
    return label ? label->pixmap().toImage() : QImage();
}

void PageBinder::refreshPicture(int i)
{
    const Design &d = page_.design();
    if (i < 0 || size_t(i) >= d.Pictures.size() || !d.Pictures[size_t(i)].Stretch)
        return; // only per-record pictures change with the record
    auto *label = qobject_cast<QLabel *>(canvas_.pictureWidget(i));
    if (!label)
        return;
    const QString name = page_.PictureRecordName.value(i).trimmed();
    // A name kept without its extension stands for its JPEG (or its file of another type).
    QPixmap pix = name.isEmpty() || pictureFolder_.isEmpty() ? blank_ : QPixmap(PictureNaming::filePath(pictureFolder_, name));
    if (pix.isNull())
        label->clear();
    else
        label->setPixmap(pix.scaled(label->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

bool PageBinder::applyKeyRule(QWidget *widget, QKeyEvent *key, const std::function<QChar(QChar)> &rule)
{
    if (isEditWithoutCharacter(key))
        return !entry_.beginEdit();
    if (!isKeyPressCharacter(key))
        return false;
    const QChar typed = typedCharacter(key);
    const QChar out = rule(typed);
    if (out.isNull())
        return true;
    if (out == typed)
        return false;
    // A control key that stands for a special character: put that character in instead.
    if (auto *edit = qobject_cast<QLineEdit *>(widget))
        edit->insert(QString(out));
    else if (auto *combo = qobject_cast<QComboBox *>(widget))
        combo->lineEdit()->insert(QString(out));
    else if (auto *note = qobject_cast<QPlainTextEdit *>(widget))
        note->insertPlainText(QString(out));
    return true;
}

bool PageBinder::keyDownHandled(const FieldEntry::KeyDown &down, const std::function<void()> &filled)
{
    if (down.action == FieldEntry::KeyDown::Action::Filled) {
        filled();
        return true;
    }
    if (down.action == FieldEntry::KeyDown::Action::Scroll) {
        Q_EMIT scrollWanted(down.scrollBy);
        return true;
    }
    return false;
}

bool PageBinder::eventFilter(QObject *watched, QEvent *event)
{
    const auto it = targets_.constFind(watched);
    if (it == targets_.constEnd())
        return false;
    const Target t = *it;
    switch (t.kind) {
    case Kind::Field: return fieldEvent(t.index, event);
    case Kind::Combo: return comboEvent(t.index, event);
    case Kind::Note: return noteEvent(t.index, event);
    case Kind::Check: return checkEvent(t.index, event);
    case Kind::Title:
        if (event->type() == QEvent::MouseButtonPress)
            actions_.labelPressed(t.index);
        return false;
    case Kind::Picture:
        if (event->type() == QEvent::MouseButtonPress && actions_.picturePressed(t.index))
            Q_EMIT pictureEditorWanted(t.index);
        if (event->type() == QEvent::MouseButtonDblClick) {
            const QImage picture = pictureImage(t.index);
            if (!picture.isNull())
                Q_EMIT fullViewWanted(picture);
        }
        return false;
    }
    return false;
}

bool PageBinder::fieldEvent(int i, QEvent *event)
{
    auto *edit = qobject_cast<QLineEdit *>(canvas_.fieldWidget(i));
    switch (event->type()) {
    case QEvent::FocusIn: {
        const FieldAction action = entry_.fieldGotFocus(i);
        Q_EMIT actionChanged(action);
        return false;
    }
    case QEvent::FocusOut:
        page_.FieldText[i] = edit->text();
        entry_.fieldLostFocus(i);
        refreshField(i);
        return false;
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (keyDownHandled(entry_.fieldKeyDown(i, key->key(), key->modifiers()), [&] {
                refreshField(i);
                edit->end(false); // typing goes on after the filled text
            }))
            return true;
        const bool handled = applyKeyRule(edit, key, [&](QChar c) { return entry_.fieldKeyPress(i, c); });
        if (handled)
            page_.FieldText[i] = edit->text();
        return handled;
    }
    case QEvent::KeyRelease: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (!isKeyPressCharacter(key) || edit->isReadOnly())
            return false;
        page_.FieldText[i] = edit->text();
        if (const auto cased = entry_.fieldKeyUp(i, edit->text(), edit->cursorPosition())) {
            refreshing_ = true;
            edit->setText(cased->text);
            edit->setCursorPosition(cased->caret);
            refreshing_ = false;
        }
        return false;
    }
    case QEvent::MouseButtonDblClick:
        if (entry_.fieldWantsDatePicker(i)) {
            Q_EMIT datePickerWanted(i);
            return true;
        }
        return false;
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            entry_.pickForSearch(FocusKind::Field, i);
            return true;
        }
        return false;
    default: return false;
    }
}

bool PageBinder::comboEvent(int i, QEvent *event)
{
    auto *combo = qobject_cast<QComboBox *>(canvas_.comboWidget(i));
    switch (event->type()) {
    case QEvent::FocusIn:
        entry_.comboGotFocus(i);
        Q_EMIT actionChanged(FieldAction());
        return false;
    case QEvent::FocusOut:
        if (combo->hasFocus())
            return false; // the focus moved into the combo's own line
        page_.ComboText[i] = combo->currentText();
        entry_.comboLostFocus(i);
        refreshCombo(i);
        return false;
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (keyDownHandled(entry_.comboKeyDown(i, key->key(), key->modifiers()), [&] { refreshCombo(i); }))
            return true;
        const bool handled = applyKeyRule(combo, key, [&](QChar c) { return entry_.comboKeyPress(i, c); });
        if (handled)
            page_.ComboText[i] = combo->currentText();
        return handled;
    }
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            entry_.pickForSearch(FocusKind::Combo, i);
            return true;
        }
        return false;
    default: return false;
    }
}

bool PageBinder::noteEvent(int i, QEvent *event)
{
    auto *note = qobject_cast<QPlainTextEdit *>(canvas_.noteWidget(i));
    switch (event->type()) {
    case QEvent::FocusIn:
        entry_.noteGotFocus(i);
        Q_EMIT actionChanged(FieldAction());
        return false;
    case QEvent::KeyPress:
        return applyKeyRule(note, static_cast<QKeyEvent *>(event), [&](QChar c) { return entry_.noteKeyPress(i, c); });
    case QEvent::MouseButtonPress:
        if (static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            entry_.pickForSearch(FocusKind::Note, i);
            return true;
        }
        return false;
    default: return false;
    }
}

bool PageBinder::checkEvent(int i, QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
        entry_.checkGotFocus(i);
        Q_EMIT actionChanged(FieldAction());
        return false;
    case QEvent::MouseButtonPress:
        // The page decides: the left button toggles, the right one only takes the focus.
        canvas_.checkWidget(i)->setFocus(Qt::MouseFocusReason);
        entry_.checkMouseDown(i, static_cast<QMouseEvent *>(event)->button(), static_cast<QMouseEvent *>(event)->buttons());
        refreshCheck(i);
        return true;
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick: return true;
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() != Qt::Key_Space)
            return false;
        entry_.checkKeyDown(i, key->key());
        refreshCheck(i);
        return true;
    }
    case QEvent::KeyRelease: return static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space;
    default: return false;
    }
}

} // namespace ff::gui
