#pragma once
// The search line window: an editable list of lines (the stored ones, then samples built from the
// page's own fields), a label that stores or removes the line shown, the forward and match-case
// options and labels that name the field a plain find looks in. Enter or the search button hands
// the line to a new results window and hides this one. Stored lines are one settings text,
// "Settings" / "SQLcommands", of the form {line}{line}; nothing is escaped, so a line holding "}"
// comes back cut there.

#include "search/SearchQuery.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace ff::gui {

class ResultsWindow;
class MainWindow;

class SearchLineWindow : public QWidget {
    Q_OBJECT
public:
    explicit SearchLineWindow(MainWindow &main);

    // Shows the window for the field that has the focus on the page.
    void open();

    // The lines of a stored text: "{" removed, cut at "}", the last (empty) piece dropped.
    static QStringList storedLines(const QString &stored);
    // The settings store's application key of this design.
    QString applicationKey() const;

    // Stores the line shown, or removes it when it is stored (the storeLineLink_ label's click).
    void storeOrRemoveLine();
    // Starts the search of the line shown (Enter or the search button).
    void startSearch();

    QComboBox *lineBox() const { return lineBox_; }
    QString commLinesText() const { return commLinesText_; }
    QCheckBox *forwardBox() const { return forwardBox_; }
    QCheckBox *matchCaseBox() const { return matchCaseBox_; }
    QPushButton *searchButton() const { return searchButton_; }
    QString subjectText() const;
    QString storedText() const { return stored_; }
    // The results window of the last search started here (null when it listed nothing).
    ResultsWindow *lastResults() const { return lastResults_; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void lineChanged(const QString &text);
    void addSampleLines();
    void showSubject();
    SearchField focusField() const;

    MainWindow &main_;
    QComboBox *lineBox_;
    QLabel *storeLineLink_;
    QCheckBox *forwardBox_;
    QCheckBox *matchCaseBox_;
    QLabel *fieldKindLabel_;
    QLabel *fieldNameLabel_;
    QLabel *searchLabel_;
    QPushButton *searchButton_;
    QString stored_;
    QString commLinesText_;
    int lastFormat_ = 0;
    QPointer<ResultsWindow> lastResults_;
};

} // namespace ff::gui
