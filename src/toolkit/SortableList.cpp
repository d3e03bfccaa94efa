#include "toolkit/SortableList.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableView>
#include <QVBoxLayout>

namespace ff::toolkit {

// The table the view reads: column 0 is the record number (with the row's mark), columns 1 to 11
// the texts, each place showing the row that RowOrder puts there.
class SortableListModel : public QAbstractTableModel {
public:
    explicit SortableListModel(SortableList &owner) : QAbstractTableModel(&owner), owner_(owner) {}

    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : owner_.list_.rowCount();
    }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : ListSort::kColumns + 1;
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid() || index.row() >= owner_.list_.rowCount())
            return {};
        const int row = owner_.list_.rowAt(index.row());
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
            if (index.column() == 0)
                return QString::number(owner_.list_.GetContentNo(row));
            return owner_.list_.column(row, index.column());
        }
        if (role == Qt::CheckStateRole && index.column() == 0 && owner_.mSelect != 0)
            return owner_.list_.isMarked(row) ? Qt::Checked : Qt::Unchecked;
        if (role == Qt::TextAlignmentRole) {
            const ColumnKind kind = owner_.list_.columnKind(index.column());
            if (index.column() == 0 || kind == ColumnKind::Currency || kind == ColumnKind::Whole)
                return int(Qt::AlignRight | Qt::AlignVCenter);
        }
        return {};
    }

    bool setData(const QModelIndex &index, const QVariant &value, int role) override
    {
        if (role != Qt::CheckStateRole || index.column() != 0 || owner_.mSelect == 0)
            return false;
        owner_.setMarked(owner_.list_.rowAt(index.row()), value.toInt() == Qt::Checked);
        return true;
    }

    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (index.column() == 0 && owner_.mSelect != 0)
            f |= Qt::ItemIsUserCheckable;
        return f;
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || section < 0 || section > ListSort::kColumns)
            return {};
        if (role == Qt::DisplayRole) {
            QString caption = owner_.captions_[size_t(section)];
            if (section != 0 && section == owner_.list_.SortColumn())
                caption += owner_.descending_ ? QStringLiteral(" \u25BC") : QStringLiteral(" \u25B2");
            return caption;
        }
        if (role == Qt::ToolTipRole && section != 0)
            return QObject::tr("Sort by this column; press again to reverse");
        return {};
    }

    void resetAll()
    {
        beginResetModel();
        endResetModel();
    }
    void refreshAll()
    {
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ListSort::kColumns));
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, ListSort::kColumns);
    }
    void refreshRow(int place)
    {
        Q_EMIT dataChanged(index(place, 0), index(place, ListSort::kColumns));
    }

private:
    SortableList &owner_;
};

SortableList::SortableList(QWidget *parent) : QWidget(parent), view_(new QTableView(this)), model_(new SortableListModel(*this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    view_->setModel(model_);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setAlternatingRowColors(true);
    view_->setWordWrap(false);
    view_->setTabKeyNavigation(false);
    view_->setAccessibleName(tr("Result list"));
    // Fixed row heights keep the view from measuring every row of a long list.
    view_->verticalHeader()->hide();
    view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    view_->horizontalHeader()->setSectionsClickable(true);
    view_->horizontalHeader()->setHighlightSections(false);
    view_->horizontalHeader()->setStretchLastSection(true);
    view_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    view_->setColumnWidth(0, 80);
    connect(view_->horizontalHeader(), &QHeaderView::sectionClicked, this, &SortableList::SortButton);
    connect(view_, &QTableView::clicked, this, &SortableList::choose);
    view_->installEventFilter(this);
    setFocusProxy(view_);
    updateColumnVisibility();
}

SortableList::~SortableList()
{
    // The view asks the model for its header while it is taken down, and the model reads this
    // list: the view goes first, while the list is still whole.
    delete view_;
}

void SortableList::AddArray(const QStringList &rows)
{
    list_.AddArray(rows);
    descending_ = false;
    model_->resetAll();
    updateColumnVisibility();
}

void SortableList::NameButton(int column, const QString &text)
{
    if (column < 0 || column > ListSort::kColumns)
        return;
    captions_[size_t(column)] = text;
    Q_EMIT model_->headerDataChanged(Qt::Horizontal, column, column);
    updateColumnVisibility();
}

QString SortableList::buttonCaption(int column) const
{
    return model_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
}

void SortableList::setColumnWidthPx(int column, int width) { view_->setColumnWidth(column, width); }

void SortableList::SortButton(int column)
{
    const int before = list_.SortColumn();
    // Keep the same row current across the new order.
    const int current = currentRow();
    if (!list_.pressColumn(column))
        return;
    descending_ = before == column ? !descending_ : false;
    model_->refreshAll();
    if (current >= 0) {
        const auto &order = list_.RowOrder();
        const auto it = std::find(order.begin(), order.end(), current);
        setCurrentPlace(int(it - order.begin()));
    }
    Q_EMIT sorted(column);
}

int SortableList::currentRow() const
{
    const QModelIndex index = view_->currentIndex();
    if (!index.isValid() || index.row() >= list_.rowCount())
        return -1;
    return list_.rowAt(index.row());
}

void SortableList::setCurrentPlace(int place)
{
    if (place < 0 || place >= list_.rowCount())
        return;
    const int column = view_->currentIndex().isValid() ? view_->currentIndex().column() : 0;
    view_->setCurrentIndex(model_->index(place, column));
    view_->scrollTo(model_->index(place, column));
}

int32_t SortableList::GetArrayItem() const
{
    const int row = currentRow();
    return row < 0 ? -1 : list_.GetContentNo(row);
}

QString SortableList::GetItem() const
{
    const int row = currentRow();
    return row < 0 ? QString() : list_.column(row, 1);
}

int SortableList::RemoveText(const QString &name)
{
    const int removed = list_.RemoveText(name);
    if (removed > 0)
        model_->resetAll();
    return removed;
}

void SortableList::setMarked(int row, bool marked)
{
    if (mSelect == 0 || row < 0 || row >= list_.rowCount())
        return;
    if (marked && cSelect != 0)
        list_.clearMarks();
    list_.setMarked(row, marked);
    if (cSelect != 0)
        model_->refreshAll();
    else {
        const auto &order = list_.RowOrder();
        model_->refreshRow(int(std::find(order.begin(), order.end(), row) - order.begin()));
    }
}

void SortableList::REFscreen() { view_->viewport()->update(); }

void SortableList::choose(const QModelIndex &index)
{
    if (!index.isValid() || index.row() >= list_.rowCount())
        return;
    const int row = list_.rowAt(index.row());
    Q_EMIT rowChosen(list_.GetContentNo(row), row);
}

bool SortableList::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == view_ && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const QModelIndex index = view_->currentIndex();
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && index.isValid()) {
            choose(index);
            return true;
        }
        if (key->key() == Qt::Key_Space && index.isValid() && mSelect != 0) {
            const int row = list_.rowAt(index.row());
            setMarked(row, !list_.isMarked(row));
            return true;
        }
        if (key->key() == Qt::Key_S && key->modifiers() == Qt::ControlModifier && index.isValid()) {
            SortButton(index.column());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SortableList::updateColumnVisibility()
{
    // A column shows when it has a caption or any text; the record number always shows.
    for (int c = 1; c <= ListSort::kColumns; ++c) {
        bool used = !captions_[size_t(c)].isEmpty();
        for (int r = 0; !used && r < list_.rowCount(); ++r)
            used = !list_.column(r, c).isEmpty();
        view_->setColumnHidden(c, !used);
    }
}

} // namespace ff::toolkit
