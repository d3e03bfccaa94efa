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

class Form4 : public QDialog, public ff::Progress {
    Q_OBJECT
public:
    explicit Form4(QWidget *parent = nullptr);

    // Shows the window for a walk: clears the stop flag and the percentage.
    void begin(const QString &text = QString());
    void end();

    void setPercent(int percent) override;
    bool cancelled() override; // lets events through first
    bool ExportCancelled = false;

    QPushButton *stopButton() const { return Command1; }
    QString percentText() const;
    int lightStep() const { return counter_; }
    // One tick of the running light (the timer's work; public for tests).
    void tick();
    // The two greys of block k: all channels 240 - 25k and 250 - 25k.
    static std::array<int, 2> blockGreys(int k) { return {240 - 25 * k, 250 - 25 * k}; }

private:
    std::array<QLabel *, 7> Shape1{};
    QLabel *Label1;
    QPushButton *Command1;
    QTimer *WaitGo;
    int counter_ = 0;
};

} // namespace ff::toolkit
