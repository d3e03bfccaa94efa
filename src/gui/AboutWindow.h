#pragma once
// The about window of the design: its caption, the design's own line about the application and the
// line under it, both from the design, and a button that closes it.

#include <QDialog>

class QLabel;

namespace ff {
struct Design;
}

namespace ff::gui {

class AboutWindow : public QDialog {
    Q_OBJECT
public:
    explicit AboutWindow(const Design &design, QWidget *parent = nullptr);

    QLabel *titleLabel() const { return title_; }
    QLabel *lineLabel() const { return line_; }

private:
    QLabel *title_ = nullptr;
    QLabel *line_ = nullptr;
};

} // namespace ff::gui
