#pragma once
// Find and replace on one field over all records: the field is the one that had the focus when
// the window opened. Every occurrence of the old text in the field's text (see ReplaceableField:
// numbers and money on their stored value, dates on their shown text) is replaced by the new one,
// exactly in case; with match case off a record whose text holds the old text in
// another case is found but stays as it was. The result is padded with blanks to the field's
// length and cut to it. Records another user holds are left alone. The same file has the sort
// commands Finden(1) and Finden(2), which build the sort index of the focused field and browse
// in its order, ascending or from its end.

#include "gui/ReplaceableField.h"
#include "search/SearchQuery.h"
#include "store/RecordStore.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace ff::gui {

class MainWindow;

class FindReplaceWindow : public QWidget {
    Q_OBJECT
public:
    explicit FindReplaceWindow(MainWindow &main);

    // Shows the window for the element that has the focus on the page.
    void open();

    struct Outcome {
        bool ran = false;   // false: an empty text, no field that takes text, read-only, or the
                            // record on the page could not be saved
        bool aborted = false;
        int found = 0;      // records whose field holds the text
        int changed = 0;    // records written
    };
    // startButton_: replaces over all records.
    Outcome replaceAll();

    // The field's text after the replacement, or a null string when `find` is not in it.
    static QString replacedText(const QString &text, const QString &find, const QString &with, bool matchCase);

    // Finden(1) and Finden(2): the sort index of the focused element, then browsing in its order
    // (`order` SortIndexUp or SortIndexDown). A stop in the wait window leaves file order.
    static void sortByFocusedField(MainWindow &main, BrowseOrder order);

    QComboBox *findBox() const { return findBox_; }
    QComboBox *replaceBox() const { return replaceBox_; }
    QCheckBox *matchCaseBox() const { return matchCaseBox_; }
    QPushButton *startButton() const { return startButton_; }
    QString progressText() const;
    QString fieldText() const;
    const SearchField &field() const { return field_; }

private:
    // The focused field as the replacement reads and writes it.
    ReplaceableField replaceable() const;

    MainWindow &main_;
    SearchField field_;
    QComboBox *findBox_;
    QComboBox *replaceBox_;
    QCheckBox *matchCaseBox_;
    QLabel *findLabel_;
    QLabel *replaceLabel_;
    QLabel *progressLabel_;
    QLabel *fieldLabel_;
    QPushButton *startButton_;
    QPushButton *exitButton_;
};

} // namespace ff::gui
