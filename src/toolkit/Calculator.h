#pragma once
// The four-function pocket calculator beside the record. Keys work as well as the buttons.

#include "toolkit/CalculatorEngine.h"

#include <QDialog>

class QLabel;

namespace ff::toolkit {

class Calculator : public QDialog {
    Q_OBJECT
public:
    explicit Calculator(QWidget *parent = nullptr);
    const CalculatorEngine &engine() const { return engine_; }
    QString readoutText() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void refresh();
    CalculatorEngine engine_;
    QLabel *readout_;
};

} // namespace ff::toolkit
