#include "gui/AboutWindow.h"

#include "design/Design.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::gui {

AboutWindow::AboutWindow(const Design &design, QWidget *parent) : QDialog(parent)
{
    // The window's caption is the design's Aboutme; AboutLabel1 says what the application is and
    // row 12 of the caption run stands under it.
    setWindowTitle(design.Aboutme.isEmpty() ? design.MainCap : design.Aboutme);
    auto *layout = new QVBoxLayout(this);
    title_ = new QLabel(design.AboutLabel1, this);
    title_->setTextFormat(Qt::PlainText);
    title_->setWordWrap(true);
    QFont big = title_->font();
    big.setPointSizeF(big.pointSizeF() * 1.4);
    big.setBold(true);
    title_->setFont(big);
    line_ = new QLabel(design.CaptionRun[11], this);
    line_->setTextFormat(Qt::PlainText);
    line_->setWordWrap(true);
    title_->setVisible(!design.AboutLabel1.isEmpty());
    line_->setVisible(!design.CaptionRun[11].isEmpty());
    layout->addWidget(title_);
    layout->addWidget(line_);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    setMinimumWidth(320);
}

} // namespace ff::gui
