#include "toolkit/Msgbox8.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

namespace ff::toolkit {

Msgbox8::Msgbox8(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), L1(new QLabel(this)), L2(new QLabel(this)),
      OKButtton(new QPushButton(tr("OK"), this))
{
    setModal(true);
    QFont bold = L1->font();
    bold.setBold(true);
    L1->setFont(bold);
    L1->setAccessibleName(tr("Caption"));
    L2->setTextFormat(Qt::PlainText);
    L2->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    L2->setAccessibleName(tr("Message"));
    OKButtton->setDefault(true);
    connect(OKButtton, &QPushButton::clicked, this, &QDialog::accept);
}

void Msgbox8::setMessage(const QString &caption, const QString &message, int colour)
{
    // The band is as wide as the screen; the message is centred in it and the button stands under
    // the message's right edge.
    const QScreen *screen = parentWidget() ? parentWidget()->screen() : QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    const int margin = 12;
    L1->setText(caption);
    L1->adjustSize();
    L1->move(margin, margin);
    QString text = message;
    text.replace(QLatin1Char('|'), QLatin1Char('\n'));
    L2->setText(text);
    L2->setMaximumWidth(area.width() - 2 * margin);
    L2->adjustSize();
    const int textTop = L1->y() + L1->height() + margin;
    L2->move((area.width() - L2->width()) / 2, textTop);
    OKButtton->adjustSize();
    OKButtton->resize(qMax(OKButtton->width(), 90), OKButtton->height());
    const int buttonTop = L2->y() + L2->height() + 10; // 150 twips
    OKButtton->move(qMax(margin, L2->x() + L2->width() - OKButtton->width()), buttonTop);
    const auto c = static_cast<unsigned>(colour);
    OKButtton->setStyleSheet(QStringLiteral("QPushButton { background-color: rgb(%1,%2,%3); padding: 4px 16px; }")
                                 .arg(c & 0xFF).arg((c >> 8) & 0xFF).arg((c >> 16) & 0xFF));
    setFixedSize(area.width(), buttonTop + OKButtton->height() + margin);
    move(area.x(), area.y() + (area.height() - height()) / 3);
    setWindowTitle(caption);
}

QString Msgbox8::messageText() const { return L2->text(); }

void ShowMessage(QWidget *parent, const QString &caption, const QString &message, int colour)
{
    Msgbox8 box(parent);
    box.setMessage(caption, message, colour);
    box.exec();
}

} // namespace ff::toolkit
