#pragma once
// Binds the widgets of the page box to the core page. A change of the page shows in its widget; a
// key, a click or a focus change on a widget goes through the entry rules, which change the page.
// The widgets hold no record state of their own.

#include "design/Page.h"
#include "entry/FieldAction.h"
#include "entry/FieldEntry.h"

#include <QHash>
#include <QObject>
#include <QImage>
#include <QPixmap>
#include <functional>

class QKeyEvent;
class QWidget;

namespace ff {
class PageActions;
} // namespace ff

namespace ff::gui {

class PageCanvas;

class PageBinder : public QObject {
    Q_OBJECT
public:
    PageBinder(PageCanvas &canvas, Page &page, FieldEntry &entry, PageActions &actions, QObject *parent = nullptr);

    // Where per-record pictures are and the blank picture for a record without one.
    void setPictureFolder(const QString &folder, const QPixmap &blank);

    // Every widget from the page.
    void refreshAll();

Q_SIGNALS:
    // The action the focused field offers (the action button); an empty one when focus leaves.
    void actionChanged(const FieldAction &action);
    // A date field's double click: the calendar.
    void datePickerWanted(int field);
    // An arrow key asks the page box to scroll by `delta` pixels.
    void scrollWanted(int delta);
    // A click on a per-record picture that may be changed. Left unconnected until the picture
    // editor exists: the click does nothing else.
    void pictureEditorWanted(int picture);
    // A double click on a picture: the picture in its own size, for the full-picture window.
    void fullViewWanted(const QImage &picture);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Kind { Field, Combo, Note, Check, Title, Picture };
    struct Target {
        Kind kind;
        int index;
    };
    void watch(QObject *object, Kind kind, int index);
    void refresh(ElementKind kind, int index);
    void refreshField(int index);
    void refreshCombo(int index);
    void refreshNote(int index);
    static QString storedNoteText(QString typed);
    static QString shownNoteText(QString stored);
    void refreshCheck(int index);
    void refreshTitle(int index);
    void refreshPicture(int index);
    QImage pictureImage(int index) const;
    bool fieldEvent(int index, QEvent *event);
    bool comboEvent(int index, QEvent *event);
    bool noteEvent(int index, QEvent *event);
    bool checkEvent(int index, QEvent *event);
    // Runs a key through a key-press rule: false to let the widget have it, true when it was
    // dropped or replaced.
    bool applyKeyRule(QWidget *widget, QKeyEvent *key, const std::function<QChar(QChar)> &rule);
    // An F-key fill or an arrow's scroll was done: the key goes no further.
    bool keyDownHandled(const FieldEntry::KeyDown &down, const std::function<void()> &filled);

    PageCanvas &canvas_;
    Page &page_;
    FieldEntry &entry_;
    PageActions &actions_;
    QString pictureFolder_;
    QPixmap blank_;
    QHash<QObject *, Target> targets_;
    bool refreshing_ = false;
};

} // namespace ff::gui
