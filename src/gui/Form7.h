#pragma once
// Find and replace on one field over all records: the field is the one that had the focus when
// the window opened. Every occurrence of the old text in the field's stored text is replaced by
// the new one, exactly in case; with match case off a record whose text holds the old text in
// another case is found but stays as it was. The result is padded with blanks to the field's
// length and cut to it. Records another user holds are left alone. The same file has the sort
// commands Finden(1) and Finden(2), which build the sort index of the focused field and browse
// in its order, ascending or from its end.

#include "search/SearchQuery.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace ff::gui {

class MainWindow;

class Form7 : public QWidget {
    Q_OBJECT
public:
    explicit Form7(MainWindow &main);

    // Shows the window for the element that has the focus on the page.
    void open();

    struct Outcome {
        bool ran = false;   // false: an empty text, no field that takes text, or read-only
        bool aborted = false;
        int found = 0;      // records whose field holds the text
        int changed = 0;    // records written
    };
    // Command1: replaces over all records.
    Outcome replaceAll();

    // The field's text after the replacement, or a null string when `find` is not in it.
    static QString replacedText(const QString &text, const QString &find, const QString &with, bool matchCase);

    // Finden(1) and Finden(2): the sort index of the focused element, then browsing in its order
    // (SortMode 1 ascending, 2 from the end). A stop in the wait window leaves file order.
    static void sortByFocusedField(MainWindow &main, int mode);

    QComboBox *findBox() const { return Combo1; }
    QComboBox *replaceBox() const { return Combo2; }
    QCheckBox *matchCaseBox() const { return Check1; }
    QPushButton *startButton() const { return Command1; }
    QString progressText() const;
    QString fieldText() const;
    const SearchField &field() const { return field_; }

private:
    MainWindow &main_;
    SearchField field_;
    QComboBox *Combo1;
    QComboBox *Combo2;
    QCheckBox *Check1;
    QLabel *Label1;
    QLabel *Label2;
    QLabel *mLabel;
    QLabel *fieldLabel_;
    QPushButton *Command1;
    QPushButton *ExitNow;
};

} // namespace ff::gui
