#include "toolkit/CalendarWindow.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::toolkit {

int DaysInMonth(int month, int year)
{
    switch (month) {
    case 4:
    case 6:
    case 9:
    case 11: return 30;
    case 2: return QDate::isLeapYear(year) ? 29 : 28;
    default: return 31;
    }
}

std::array<int, 42> MonthCells(int month, int year, Qt::DayOfWeek firstDayOfWeek)
{
    std::array<int, 42> cells{};
    const QDate first(year, month, 1);
    if (!first.isValid())
        return cells;
    const int offset = (first.dayOfWeek() - int(firstDayOfWeek) + 7) % 7;
    const int days = DaysInMonth(month, year);
    for (int d = 1; d <= days; ++d)
        cells[size_t(offset + d - 1)] = d;
    return cells;
}

CalendarWindow::CalendarWindow(const Clock &clock, QDate start, QWidget *parent)
    : QDialog(parent), monthBox_(new QComboBox(this)), yearBox_(new QComboBox(this)), today_(clock.today())
{
    setWindowTitle(tr("Calendar"));
    if (!start.isValid())
        start = today_;
    const QLocale locale;
    for (int m = 1; m <= 12; ++m)
        monthBox_->addItem(locale.monthName(m, QLocale::LongFormat));
    // Years from two hundred before this year to two hundred after it.
    const int thisYear = today_.year();
    firstYear_ = thisYear - 200;
    for (int y = firstYear_; y <= thisYear + 200; ++y)
        yearBox_->addItem(QString::number(y));
    monthBox_->setAccessibleName(tr("Month"));
    yearBox_->setAccessibleName(tr("Year"));

    auto *layout = new QVBoxLayout(this);
    auto *top = new QHBoxLayout;
    auto *back = new QPushButton(QStringLiteral("<"), this);
    auto *forward = new QPushButton(QStringLiteral(">"), this);
    back->setAccessibleName(tr("Previous month"));
    forward->setAccessibleName(tr("Next month"));
    top->addWidget(back);
    top->addWidget(monthBox_, 1);
    top->addWidget(yearBox_);
    top->addWidget(forward);
    layout->addLayout(top);
    auto *grid = new QGridLayout;
    const Qt::DayOfWeek firstDay = locale.firstDayOfWeek();
    for (int c = 0; c < 7; ++c) {
        const int dow = (int(firstDay) - 1 + c) % 7 + 1;
        dayNames_[size_t(c)] = new QLabel(locale.dayName(dow, QLocale::ShortFormat), this);
        dayNames_[size_t(c)]->setAlignment(Qt::AlignCenter);
        grid->addWidget(dayNames_[size_t(c)], 0, c);
    }
    for (int i = 0; i < 42; ++i) {
        auto *cell = new QPushButton(this);
        cell->setFlat(true);
        cell->setMinimumWidth(32);
        connect(cell, &QPushButton::clicked, this, [this, cell] {
            const int day = cell->text().toInt();
            if (day <= 0)
                return;
            picked_ = QDate(year(), month(), day);
            Q_EMIT datePicked(picked_);
            accept();
        });
        dayButtons_[size_t(i)] = cell;
        grid->addWidget(cell, 1 + i / 7, i % 7);
    }
    layout->addLayout(grid);

    monthBox_->setCurrentIndex(start.month() - 1);
    yearBox_->setCurrentIndex(qBound(0, start.year() - firstYear_, yearBox_->count() - 1));
    connect(back, &QPushButton::clicked, this, [this] { stepMonth(-1); });
    connect(forward, &QPushButton::clicked, this, [this] { stepMonth(1); });
    connect(monthBox_, &QComboBox::currentIndexChanged, this, &CalendarWindow::CalcDate);
    connect(yearBox_, &QComboBox::currentIndexChanged, this, &CalendarWindow::CalcDate);
    CalcDate();
}

int CalendarWindow::month() const { return monthBox_->currentIndex() + 1; }
int CalendarWindow::year() const { return firstYear_ + yearBox_->currentIndex(); }

void CalendarWindow::stepMonth(int delta)
{
    int m = month() + delta, y = year();
    if (m < 1) {
        m = 12;
        --y;
    } else if (m > 12) {
        m = 1;
        ++y;
    }
    if (y < firstYear_ || y >= firstYear_ + yearBox_->count())
        return;
    const QSignalBlocker block(monthBox_);
    monthBox_->setCurrentIndex(m - 1);
    yearBox_->setCurrentIndex(y - firstYear_); // lays the month out
    CalcDate();
}

void CalendarWindow::CalcDate()
{
    const auto cells = MonthCells(month(), year(), QLocale().firstDayOfWeek());
    for (size_t i = 0; i < cells.size(); ++i) {
        QPushButton *cell = dayButtons_[i];
        const int day = cells[i];
        cell->setText(day ? QString::number(day) : QString());
        cell->setEnabled(day != 0);
        const bool isToday = day && today_ == QDate(year(), month(), day);
        QFont f = cell->font();
        f.setBold(isToday);
        cell->setFont(f);
        cell->setAccessibleName(day ? QStringLiteral("%1").arg(day) : QString());
    }
}

} // namespace ff::toolkit
