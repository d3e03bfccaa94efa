#pragma once
// The wait window of long walks: a running light of seven fading blocks, the percentage done and the
// only way to stop the walk. It implements ff::Progress, so a walk in the engine drives it directly.

#include "core/Progress.h"

#include <QDialog>
#include <array>

class QLabel;
class QPushButton;
class QTimer;

namespace ff::toolkit {

class WaitWindow : public QDialog, public ff::Progress {
    Q_OBJECT
public:
    explicit WaitWindow(QWidget *parent = nullptr);

    // Shows the window for a walk: clears the stop flag and the percentage.
    void begin(const QString &text = QString());
    void end();

    void setPercent(int percent) override;
    bool cancelled() override; // lets events through first
    bool ExportCancelled = false;

    QPushButton *stopButton() const { return stopButton_; }
    QString percentText() const;
    int lightStep() const { return counter_; }
    // One tick of the running light (the timer's work; public for tests).
    void tick();
    // The two greys of block k: all channels 240 - 25k and 250 - 25k.
    static std::array<int, 2> blockGreys(int k) { return {240 - 25 * k, 250 - 25 * k}; }

private:
    std::array<QLabel *, 7> lightBlocks_{};
    QLabel *percentLabel_;
    QPushButton *stopButton_;
    QTimer *lightTimer_;
    int counter_ = 0;
};

} // namespace ff::toolkit
