#include "toolkit/Calculator.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace ff::toolkit {

Calculator::Calculator(QWidget *parent) : QDialog(parent), readout_(new QLabel(this))
{
    setWindowTitle(tr("Calculator"));
    auto *grid = new QGridLayout(this);
    readout_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    readout_->setFrameShape(QFrame::Panel);
    readout_->setFrameShadow(QFrame::Sunken);
    readout_->setMinimumWidth(220);
    readout_->setAccessibleName(tr("readout_"));
    QFont big = readout_->font();
    big.setPointSizeF(14);
    readout_->setFont(big);
    grid->addWidget(readout_, 0, 0, 1, 5);

    const auto add = [&](const QString &text, int row, int col, auto action, int span = 1) {
        auto *b = new QPushButton(text, this);
        b->setFocusPolicy(Qt::NoFocus);
        b->setAccessibleName(text);
        connect(b, &QPushButton::clicked, this, [this, action] {
            action();
            refresh();
        });
        grid->addWidget(b, row, col, 1, span);
    };
    const int digitPos[10][2] = {{4, 0}, {3, 0}, {3, 1}, {3, 2}, {2, 0}, {2, 1}, {2, 2}, {1, 0}, {1, 1}, {1, 2}};
    for (int d = 0; d <= 9; ++d)
        add(QString::number(d), digitPos[d][0], digitPos[d][1], [this, d] { engine_.digit(d); });
    add(QLocale().decimalPoint(), 4, 1, [this] { engine_.decimal(); });
    add(QStringLiteral("="), 4, 2, [this] { engine_.op(QLatin1Char('=')); });
    add(QStringLiteral("÷"), 1, 3, [this] { engine_.op(QChar(u'÷')); });
    add(QStringLiteral("×"), 2, 3, [this] { engine_.op(QChar(u'×')); });
    add(QStringLiteral("-"), 3, 3, [this] { engine_.op(QLatin1Char('-')); });
    add(QStringLiteral("+"), 4, 3, [this] { engine_.op(QLatin1Char('+')); });
    add(QStringLiteral("C"), 1, 4, [this] { engine_.cancel(); });
    add(QStringLiteral("CE"), 2, 4, [this] { engine_.cancelEntry(); });
    add(QStringLiteral("%"), 3, 4, [this] { engine_.percent(); });
    add(tr("Close"), 4, 4, [this] { close(); });
    refresh();
}

QString Calculator::readoutText() const { return readout_->text(); }

void Calculator::refresh()
{
    readout_->setText(engine_.readout());
    QFont f = readout_->font();
    f.setPointSizeF(engine_.smallFont() ? 8.25 : 14);
    readout_->setFont(f);
}

void Calculator::keyPressEvent(QKeyEvent *event)
{
    const QString t = event->text();
    if (t.size() == 1 && t[0].isDigit())
        engine_.digit(t[0].digitValue());
    else if (t == QLatin1String(".") || t == QLatin1String(","))
        engine_.decimal();
    else if (t == QLatin1String("+") || t == QLatin1String("-"))
        engine_.op(t[0]);
    else if (t == QLatin1String("*"))
        engine_.op(QChar(u'×'));
    else if (t == QLatin1String("/"))
        engine_.op(QChar(u'÷'));
    else if (t == QLatin1String("=") || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        engine_.op(QLatin1Char('='));
    else if (t == QLatin1String("%"))
        engine_.percent();
    else if (event->key() == Qt::Key_Delete)
        engine_.cancelEntry();
    else if (event->key() == Qt::Key_Escape) {
        if (engine_.lastInput() == QLatin1String("NONE"))
            QDialog::keyPressEvent(event);
        engine_.cancel();
    } else {
        QDialog::keyPressEvent(event);
        return;
    }
    refresh();
}

} // namespace ff::toolkit
