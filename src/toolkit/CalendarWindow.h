#pragma once
// The calendar that picks a date for a date field: month and year lists, arrows a month back and
// forward, the day cells of one month with today marked. A click on a day picks it and closes.
// "Today" and the span of the year list come from the clock it is given.

#include "core/Clock.h"

#include <QDate>
#include <QDialog>
#include <array>

class QComboBox;
class QPushButton;
class QLabel;

namespace ff::toolkit {

// Days of a month: 31, 30, or for February 29 in a leap year and 28 otherwise.
int DaysInMonth(int month, int year);

// The 42 day cells of a month laid out in weeks that start on `firstDayOfWeek`: 0 for an empty
// cell, else the day number.
std::array<int, 42> MonthCells(int month, int year, Qt::DayOfWeek firstDayOfWeek);

class CalendarWindow : public QDialog {
    Q_OBJECT
public:
    // Opens on the month of `start`, or of today when `start` is not valid.
    explicit CalendarWindow(const Clock &clock, QDate start = QDate(), QWidget *parent = nullptr);

    QDate pickedDate() const { return picked_; }
    int month() const;
    int year() const;
    QComboBox *yearList() const { return yearBox_; }
    QPushButton *dayCell(int index) const { return dayButtons_[size_t(index)]; }
    void stepMonth(int delta); // the two arrows

Q_SIGNALS:
    void datePicked(QDate date);

private:
    void CalcDate();
    QComboBox *monthBox_;
    QComboBox *yearBox_;
    std::array<QPushButton *, 42> dayButtons_{};
    std::array<QLabel *, 7> dayNames_{};
    QDate picked_;
    QDate today_;
    int firstYear_;
};

} // namespace ff::toolkit
