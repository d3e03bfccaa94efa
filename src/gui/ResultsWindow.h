#pragma once
// The results window: one per search. It runs its search line while it is made (with the wait
// window, whose stop keeps what was found), then lists the hits of a select or a plain find in a
// sortable list whose column captions are the labels of the listed fields. A click on a row shows
// that record in the main window. Sum, count and replace end with their message (none for a page
// button's silent line) and list nothing. A line typed into the window's own box searches again
// among its hits. Each window stands a little lower and further right than the one before.

#include "search/SearchEngine.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace ff::toolkit {
class WaitWindow;
class SortableList;
} // namespace ff::toolkit

namespace ff::gui {

class MainWindow;
class SearchSession;

class ResultsWindow : public QWidget {
    Q_OBJECT
public:
    struct Request {
        QString line;
        bool forward = false;
        bool matchCase = false;
        bool silent = false;   // a page button's line: no message
        SearchField focus;     // the field of a plain find
        QVector<SearchField> picked; // fields picked with the right button: a find looks in these
    };

    // Makes a results window for `request` and runs it. A select or a find shows the window and
    // returns it; sum, count, replace and a line with nothing to do close it and return null.
    static ResultsWindow *start(MainWindow &main, const Request &request);

    ResultsWindow(MainWindow &main, Request request);
    ~ResultsWindow() override;

    // Runs `line` over all records, or over this window's hits when `withinHits`.
    void runSearch(const QString &line, bool withinHits);

    const SearchResult &result() const { return result_; }
    toolkit::SortableList *list() const { return list_; }
    QString searchLabelText() const;
    QLineEdit *lineBox() const { return lineBox_; }
    QPushButton *stopButton() const { return stopButton_; }
    QPushButton *exitButton() const { return exitButton_; }
    // The columns listed, for the captions (result().columns holds the fields).
    QStringList captions() const;

    // The caption of a field's column: its tool tip (the label the designer gave it), else its
    // name, else its kind and number.
    static QString fieldCaption(const Design &design, const SearchField &field);

private:
    void setUpColumns();
    // The width of the record number column for the hits listed.
    int numberColumnWidth() const;
    void showRecord(int32_t record);
    void showResult();

    MainWindow &main_;
    SearchSession &session_; // the main window's: shared with the other results windows
    Request request_;
    SearchResult result_;
    QLabel *searchLabel_;
    QLineEdit *lineBox_;
    QPushButton *stopButton_; // stop
    QPushButton *exitButton_;
    QPushButton *exportButton_;
    QPushButton *reportButton_;
    QPushButton *printButton_;
    toolkit::SortableList *list_;
    toolkit::WaitWindow *wait_;
    bool running_ = false;
};

} // namespace ff::gui
