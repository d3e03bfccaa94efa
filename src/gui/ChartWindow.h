#pragma once
// The chart window of one element: a 3D pie, a 2D pie or, for a number field, the histogram panel
// with its statistics, the list of groups or ranges beside it with their colours, and a print
// button. The values are read straight from the record files when the window opens; the reading
// lets events through every 600 records, and closing the window stops it.

#include "charts/ChartModel.h"

#include <QWidget>
#include <array>

class QButtonGroup;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTreeWidget;

namespace ff {
class RecordStore;
}

namespace ff::gui {

class PrintActions;

class ChartWindow : public QWidget {
    Q_OBJECT
public:
    // The chart types: the buttons' indexes.
    enum Type { Pie3D = 0, Pie2D = 1, Histogram = 2 };

    ChartWindow(RecordStore &store, charts::ChartKind kind, int index, PrintActions *printing, QWidget *parent = nullptr);

    // Reads the records and shows the chart; false when the window was closed meanwhile.
    bool run();

    const charts::ChartModel &model() const { return model_; }
    int chartType() const { return type_; }
    void setChartType(int type);
    QPushButton *typeButton(int type) const { return typeButtons_[size_t(type)]; }
    QPushButton *printButton() const { return printButton_; }
    // The pie shown, or the 3D one while the histogram is.
    QWidget *pieView() const { return type_ == Pie2D ? pie2D_ : pie3D_; }
    QWidget *histogramPanel() const { return histogram_; }
    QTreeWidget *list() const { return list_; }
    QLabel *header() const { return header_; }

    // Prints the pie with its list, or the window's panel as it stands: the printer and the copies
    // through the print options.
    void print();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    class Reading;
    void fillList();

    RecordStore &store_;
    charts::ChartKind kind_;
    int index_;
    PrintActions *printing_;
    charts::ChartModel model_;
    std::vector<int> slices_;
    int type_ = Pie3D;
    bool running_ = false;
    bool stop_ = false;

    QLabel *header_ = nullptr;
    std::array<QPushButton *, 3> typeButtons_{};
    QButtonGroup *types_ = nullptr;
    QStackedWidget *stack_ = nullptr;
    QWidget *pie3D_ = nullptr;
    QWidget *pie2D_ = nullptr;
    QWidget *histogram_ = nullptr;
    QTreeWidget *list_ = nullptr;
    QProgressBar *progress_ = nullptr;
    QPushButton *printButton_ = nullptr;
};

} // namespace ff::gui
