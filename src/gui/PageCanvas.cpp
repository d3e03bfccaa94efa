#include "gui/PageCanvas.h"

#include "gui/Twips.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

namespace ff::gui {

namespace {

Qt::Alignment alignmentOf(int16_t alignment)
{
    switch (alignment) {
    case 1: return Qt::AlignRight | Qt::AlignVCenter;
    case 2: return Qt::AlignHCenter | Qt::AlignVCenter;
    default: return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

void setColors(QWidget *w, int32_t fore, int32_t back, bool paintBack = true)
{
    QPalette pal = w->palette();
    const QColor f = colorFromLong(fore, pal.color(QPalette::Text));
    pal.setColor(QPalette::Text, f);
    pal.setColor(QPalette::WindowText, f);
    pal.setColor(QPalette::ButtonText, f);
    if (paintBack) {
        const QColor b = colorFromLong(back, pal.color(QPalette::Base));
        pal.setColor(QPalette::Base, b);
        pal.setColor(QPalette::Button, b);
    }
    w->setPalette(pal);
}

} // namespace

PageCanvas::PageCanvas(const Design &design, const QString &pictureFolder, QWidget *parent)
    : QWidget(parent), design_(design), pictureFolder_(pictureFolder), tpp_(ff::gui::twipsPerPixel(this))
{
    // The page's elements take their colours from the design, never from the scroll area around it
    // (whose dark background would otherwise turn label text light).
    setBackgroundRole(QPalette::Window);
    setForegroundRole(QPalette::WindowText);
    setFixedSize(qMax(1, toPixels(design.PageWidth, tpp_)), qMax(1, toPixels(design.PageHeight, tpp_)));
    buildBackground();
    buildElements();
    showPage(0);
}

QFont PageCanvas::elementFont(const QString &name, double size, bool bold, bool italic, bool underline) const
{
    QFont f(name.isEmpty() ? design_.AppFontName : name);
    if (size > 0)
        f.setPointSizeF(size);
    f.setBold(bold);
    f.setItalic(italic);
    f.setUnderline(underline);
    return f;
}

void PageCanvas::buildBackground()
{
    if (design_.BackgroundPicture.isEmpty())
        return;
    const QPixmap tile(QDir(pictureFolder_).filePath(design_.BackgroundPicture));
    if (tile.isNull())
        return;
    // Painted once from the top left corner in steps of the picture's own size: 0 tiles the whole
    // page, 1 repeats down the left edge, 2 along the top edge, anything else paints nothing.
    if (design_.TileMode < 0 || design_.TileMode > 2)
        return;
    background_ = QPixmap(size());
    background_.fill(Qt::transparent);
    QPainter p(&background_);
    const int stepX = tile.width(), stepY = tile.height();
    const int maxX = design_.TileMode == 1 ? 1 : width();
    const int maxY = design_.TileMode == 2 ? 1 : height();
    for (int y = 0; y < maxY; y += stepY)
        for (int x = 0; x < maxX; x += stepX)
            p.drawPixmap(x, y, tile);
}

void PageCanvas::buildElements()
{
    const auto place = [this](QWidget *w, double left, double top, double width, double height) {
        w->setGeometry(twipsRect(left, top, width, height, tpp_));
    };

    fields_.resize(design_.Fields.size());
    for (size_t i = 1; i < design_.Fields.size(); ++i) {
        const FieldElement &f = design_.Fields[i];
        auto *edit = new QLineEdit(this);
        edit->setFont(elementFont(f.FontName, f.FontSize, f.FontBold, f.FontItalic));
        setColors(edit, f.ForeColor, f.BackColor);
        edit->setAlignment(alignmentOf(f.Alignment));
        edit->setFrame(f.Border != 0);
        edit->setToolTip(f.ToolTip);
        edit->setAccessibleName(!f.Tag.isEmpty() ? f.Tag : !f.FieldHint.isEmpty() ? f.FieldHint : QStringLiteral("Field %1").arg(i));
        // Text formats keep their slot's length; numbers and dates take expressions and long forms.
        const bool storedAsText = f.FieldType == 0 || f.FieldType >= 10;
        if (storedAsText && f.MaxLength > 0)
            edit->setMaxLength(f.MaxLength);
        place(edit, f.Left, f.Top, f.Width, f.Height);
        fields_[i] = {edit, f.FieldPage};
    }

    combos_.resize(design_.Combos.size());
    for (size_t i = 1; i < design_.Combos.size(); ++i) {
        const ComboElement &c = design_.Combos[i];
        auto *combo = new QComboBox(this);
        combo->setEditable(true);
        combo->addItems(c.List);
        combo->setCurrentIndex(-1);
        combo->setFont(elementFont(c.FontName, c.FontSize, c.FontBold, c.FontItalic));
        setColors(combo, c.ForeColor, c.BackColor);
        combo->setToolTip(c.ToolTip);
        combo->setAccessibleName(!c.Tag.isEmpty() ? c.Tag : !c.ComboHint.isEmpty() ? c.ComboHint : QStringLiteral("Combo %1").arg(i));
        combo->move(toPixels(c.Left, tpp_), toPixels(c.Top, tpp_));
        combo->resize(qMax(1, toPixels(c.Width, tpp_)), combo->sizeHint().height());
        combos_[i] = {combo, static_cast<int>(c.ComboPage)};
    }

    notes_.resize(design_.Notes.size());
    for (size_t i = 1; i < design_.Notes.size(); ++i) {
        const NoteElement &n = design_.Notes[i];
        auto *note = new QPlainTextEdit(this);
        note->setFont(elementFont(n.FontName, n.FontSize, n.FontBold, n.FontItalic));
        setColors(note, n.ForeColor, n.BackColor);
        note->setFrameShape(n.Border != 0 ? QFrame::StyledPanel : QFrame::NoFrame);
        note->setToolTip(n.ToolTip);
        note->setAccessibleName(!n.Tag.isEmpty() ? n.Tag : !n.NoteHint.isEmpty() ? n.NoteHint : QStringLiteral("Note %1").arg(i));
        place(note, n.Left, n.Top, n.Width, n.Height);
        notes_[i] = {note, n.NotePage};
    }

    checks_.resize(design_.Checks.size());
    for (size_t i = 0; i < design_.Checks.size(); ++i) {
        const CheckElement &c = design_.Checks[i];
        QAbstractButton *box = c.OptionBx == 1 ? static_cast<QAbstractButton *>(new QRadioButton(this))
                                                : new QCheckBox(this);
        box->setAutoExclusive(false);
        box->setChecked(c.CheckDefault != 0);
        box->setToolTip(c.ToolTip);
        box->setAccessibleName(c.Tag.isEmpty() ? QStringLiteral("Check %1").arg(i) : c.Tag);
        box->move(toPixels(c.Left, tpp_), toPixels(c.Top, tpp_));
        box->resize(box->sizeHint());
        checks_[i] = {box, c.CheckPage};
    }

    pictures_.resize(design_.Pictures.size());
    for (size_t i = 0; i < design_.Pictures.size(); ++i) {
        const PictureElement &p = design_.Pictures[i];
        auto *label = new QLabel(this);
        label->setToolTip(p.ToolTip);
        label->setAccessibleName(p.PictureName);
        if (p.Border != 0)
            label->setFrameShape(QFrame::Box);
        QRect r = twipsRect(p.Left, p.Top, p.Width, p.Height, tpp_);
        if (!p.FileName.isEmpty()) {
            QPixmap pix(QDir(pictureFolder_).filePath(p.FileName));
            if (!pix.isNull())
                label->setPixmap(p.Stretch ? pix.scaled(r.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                           : pix);
        }
        label->setScaledContents(p.Stretch);
        // Without Stretch the picture keeps its own size and the box takes it, as the design's
        // picture boxes do; with Stretch the picture fills the box the design gives.
        if (!p.Stretch && label->pixmap().width() > 0)
            r.setSize(label->pixmap().size());
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        if (!p.PictureLink.isEmpty())
            label->setCursor(Qt::WhatsThisCursor);
        label->setGeometry(r);
        pictures_[i] = {label, p.PicturePage};
    }

    titles_.resize(design_.Titles.size());
    for (size_t i = 0; i < design_.Titles.size(); ++i) {
        const TitleElement &t = design_.Titles[i];
        if (!t.present)
            continue;
        auto *label = new QLabel(t.Caption, this);
        label->setTextFormat(Qt::PlainText);
        label->setFont(elementFont(t.FontName, t.FontSize, t.FontBold, t.FontItalic, t.FontUnderline));
        setColors(label, t.ForeColor, 0, false);
        label->setAlignment(alignmentOf(t.Alignment));
        label->setToolTip(t.ToolTip);
        label->setAccessibleName(t.Tag.isEmpty() ? t.Caption : t.Tag);
        if (!t.Tag.isEmpty())
            label->setCursor(Qt::ArrowCursor);
        label->move(toPixels(t.Left, tpp_), toPixels(t.Top, tpp_));
        label->resize(label->sizeHint());
        titles_[i] = {label, t.TitlePage};
    }

    buttons_.resize(design_.Buttons.size());
    for (size_t i = 0; i < design_.Buttons.size(); ++i) {
        const ButtonElement &b = design_.Buttons[i];
        auto *button = new QPushButton(b.Caption, this);
        button->setFont(elementFont(b.FontName, b.FontSize, false, false));
        setColors(button, 0, b.BackColor);
        button->setToolTip(b.ToolTip);
        button->setAccessibleName(b.Caption);
        place(button, b.Left, b.Top, b.Width, b.Height);
        buttons_[i] = {button, b.ButtonPage};
    }
}

void PageCanvas::showPage(int page)
{
    page_ = page;
    for (auto *list : {&fields_, &combos_, &notes_, &checks_, &titles_, &pictures_, &buttons_})
        for (const Placed &p : *list)
            if (p.widget)
                p.widget->setVisible(p.page == page && Design::onPage(p.page));
    update();
}

void PageCanvas::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    int32_t back = design_.PageBackColor[size_t(qBound(0, page_, 4))];
    if (back == 0 && page_ != 0)
        back = design_.PageBackColor[0];
    p.fillRect(rect(), colorFromLong(back, palette().color(QPalette::Window)));
    if (!background_.isNull())
        p.drawPixmap(0, 0, background_);
    p.setRenderHint(QPainter::Antialiasing);

    for (const ShapeElement &s : design_.Shapes) {
        if (s.ShapePage != page_)
            continue;
        QRectF r = twipsRect(s.Left, s.Top, s.Width, s.Height, tpp_);
        if (s.Shape == 1 || s.Shape == 3 || s.Shape == 5) { // square kinds keep the shorter side
            const double side = qMin(r.width(), r.height());
            r = QRectF(r.center().x() - side / 2, r.center().y() - side / 2, side, side);
        }
        QPen pen(colorFromLong(s.BorderColor), qMax<int32_t>(1, s.BorderWidth), penStyleOf(s.BorderStyle));
        p.setPen(pen);
        p.setBrush(QBrush(colorFromLong(s.FillColor), brushStyleOf(s.FillStyle)));
        const double inset = pen.widthF() / 2;
        r.adjust(inset, inset, -inset, -inset);
        switch (s.Shape) {
        case 2:
        case 3: p.drawEllipse(r); break;
        case 4:
        case 5: {
            const double radius = qMin(r.width(), r.height()) / 8;
            p.drawRoundedRect(r, radius, radius);
            break;
        }
        default: p.drawRect(r);
        }
    }
    for (const LineElement &l : design_.Lines) {
        if (l.LinePage != page_)
            continue;
        p.setPen(QPen(colorFromLong(l.BorderColor), 1));
        p.drawLine(QPointF(l.X1 / tpp_, l.Y1 / tpp_), QPointF(l.X2 / tpp_, l.Y2 / tpp_));
    }
    // Frames of fields and notes that ask for one, and every combo's frame, 5 pixels out.
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setBrush(Qt::NoBrush);
    const auto frame = [&](QWidget *w, const FrameStyle &style) {
        if (!w || !w->isVisible())
            return;
        p.setPen(QPen(colorFromLong(style.color), 1));
        p.drawRect(w->geometry().adjusted(-5, -5, 4, 4));
    };
    for (size_t i = 1; i < design_.Fields.size(); ++i)
        if (design_.Fields[i].FieldBox)
            frame(fields_[i].widget, design_.Fields[i].Frame);
    for (size_t i = 1; i < design_.Notes.size(); ++i)
        if (design_.Notes[i].NoteBox)
            frame(notes_[i].widget, design_.Notes[i].Frame);
    for (size_t i = 1; i < design_.Combos.size(); ++i)
        frame(combos_[i].widget, design_.Combos[i].Frame);
}

} // namespace ff::gui
