#include "toolkit/MessageWindow.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

namespace ff::toolkit {

MessageWindow::MessageWindow(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), captionLabel_(new QLabel(this)), textLabel_(new QLabel(this)),
      okButton_(new QPushButton(tr("OK"), this))
{
    setModal(true);
    QFont bold = captionLabel_->font();
    bold.setBold(true);
    captionLabel_->setFont(bold);
    captionLabel_->setAccessibleName(tr("Caption"));
    textLabel_->setTextFormat(Qt::PlainText);
    textLabel_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    textLabel_->setAccessibleName(tr("Message"));
    okButton_->setDefault(true);
    connect(okButton_, &QPushButton::clicked, this, &QDialog::accept);
}

void MessageWindow::setMessage(const QString &caption, const QString &message, int colour)
{
    // The band is as wide as the screen; the message is centred in it and the button stands under
    // the message's right edge.
    const QScreen *screen = parentWidget() ? parentWidget()->screen() : QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    const int margin = 12;
    captionLabel_->setText(caption);
    captionLabel_->adjustSize();
    captionLabel_->move(margin, margin);
    QString text = message;
    text.replace(QLatin1Char('|'), QLatin1Char('\n'));
    textLabel_->setText(text);
    textLabel_->setMaximumWidth(area.width() - 2 * margin);
    textLabel_->adjustSize();
    const int textTop = captionLabel_->y() + captionLabel_->height() + margin;
    textLabel_->move((area.width() - textLabel_->width()) / 2, textTop);
    okButton_->adjustSize();
    okButton_->resize(qMax(okButton_->width(), 90), okButton_->height());
    const int buttonTop = textLabel_->y() + textLabel_->height() + 10; // 150 twips
    okButton_->move(qMax(margin, textLabel_->x() + textLabel_->width() - okButton_->width()), buttonTop);
    const auto c = static_cast<unsigned>(colour);
    okButton_->setStyleSheet(QStringLiteral("QPushButton { background-color: rgb(%1,%2,%3); padding: 4px 16px; }")
                                 .arg(c & 0xFF).arg((c >> 8) & 0xFF).arg((c >> 16) & 0xFF));
    setFixedSize(area.width(), buttonTop + okButton_->height() + margin);
    move(area.x(), area.y() + (area.height() - height()) / 3);
    setWindowTitle(caption);
}

QString MessageWindow::messageText() const { return textLabel_->text(); }

void ShowMessage(QWidget *parent, const QString &caption, const QString &message, int colour)
{
    MessageWindow box(parent);
    box.setMessage(caption, message, colour);
    box.exec();
}

} // namespace ff::toolkit
