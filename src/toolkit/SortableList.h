#pragma once
// The multi-column list of the results window: a record number and up to eleven text columns per
// row, a button per column that sorts on the first press and reverses on the next, row marks and a
// signal when a row is chosen. The content and order live in a ListSort; the view only reads them,
// so tens of thousands of rows cost one table of texts and one order array.
//
// Keys: Enter chooses the current row, Space marks or unmarks it (when marking is on), Ctrl+S
// presses the button of the current cell's column.

#include "toolkit/ListSort.h"

#include <QWidget>
#include <array>

class QTableView;
class QModelIndex;

namespace ff::toolkit {

class SortableListModel;

class SortableList : public QWidget {
    Q_OBJECT
public:
    explicit SortableList(QWidget *parent = nullptr);
    ~SortableList() override;

    // Content (see ListSort for the row text form).
    void AddArray(const QStringList &rows);
    Status ASearchTypes(int column, int kind) { return list_.ASearchTypes(column, kind); }
    void NameButton(int column, const QString &text);
    QString buttonCaption(int column) const;
    void setColumnWidthPx(int column, int width);

    // The press on a column's button: 0 does nothing, a new column sorts, the same one reverses.
    void SortButton(int column);

    QString ListCount() const { return list_.ListCount(); }
    int rowCount() const { return list_.rowCount(); }
    // The current row: the row shown at the view's current place, -1 when there is none.
    int currentRow() const;
    void setCurrentPlace(int place);
    int32_t GetArrayItem() const;
    QString GetItem() const;
    int32_t GetContentNo(int row) const { return list_.GetContentNo(row); }
    QString GetText(int row) const { return list_.GetText(row); }
    int RemoveText(const QString &name = QString());
    std::vector<int32_t> ImportReport() const { return list_.ImportReport(); }
    int32_t PrintSelection(int row) const { return list_.PrintSelection(row); }

    // Marks. mSelect non-zero lets rows be marked; cSelect non-zero keeps at most one mark.
    int16_t mSelect = 1;
    int16_t cSelect = 0;
    void setMarked(int row, bool marked);
    bool isMarked(int row) const { return list_.isMarked(row); }

    // Redraws the visible rows.
    void REFscreen();

    const ListSort &content() const { return list_; }
    ListSort &content() { return list_; }
    QTableView *view() const { return view_; }

Q_SIGNALS:
    // A row was clicked or Enter was pressed on it.
    void rowChosen(int32_t recordNumber, int row);
    void sorted(int column);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    friend class SortableListModel;
    ListSort list_;
    std::array<QString, ListSort::kColumns + 1> captions_;
    bool descending_ = false;
    QTableView *view_;
    SortableListModel *model_;

    void choose(const QModelIndex &index);
    void updateColumnVisibility();
};

} // namespace ff::toolkit
