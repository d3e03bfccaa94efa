#include "print/ReportEngine.h"

#include "design/RecordPictureFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFontMetricsF>
#include <cmath>

namespace ff::print {

namespace {

// Text measured in twips: a picture at 1440 dots per inch, fonts without hinting, as on a sheet.
class TwipsMeasure {
public:
    explicit TwipsMeasure(const ReportLabel &label, const QString &fallbackFont) : device_(1, 1, QImage::Format_RGB32)
    {
        const int dotsPerMeter = int(std::lround(1440 / 0.0254));
        device_.setDotsPerMeterX(dotsPerMeter);
        device_.setDotsPerMeterY(dotsPerMeter);
        font_.setFamily(label.FontName.isEmpty() ? fallbackFont : label.FontName);
        font_.setPointSizeF(label.FontSize > 0 ? label.FontSize : 8);
        font_.setBold(label.FontBold);
        font_.setItalic(label.FontItalic);
        font_.setUnderline(label.FontUnderline);
        font_.setHintingPreference(QFont::PreferNoHinting);
    }
    double width(const QString &text) const { return QFontMetricsF(font_, &device_).horizontalAdvance(text); }
    double height() const { return QFontMetricsF(font_, &device_).height(); }

private:
    QImage device_;
    QFont font_;
};

// Val of the text: the leading number, 0 when there is none.
int leadingNumber(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i] == QLatin1Char(' '))
        ++i;
    const qsizetype start = i;
    while (i < text.size() && text[i].isDigit())
        ++i;
    return text.mid(start, i - start).toInt();
}

} // namespace

Result<ReportEngine> ReportEngine::ReportLoading(const Design &design, int index)
{
    if (index < 0 || size_t(index) >= design.Reports.size())
        return makeError(ErrorCode::SubscriptOutOfRange,
                         QStringLiteral("the design has no report %1 (it has %2)").arg(index + 1).arg(design.Reports.size()));
    const ReportDefinition &r = design.Reports[size_t(index)];
    if (r.Caption.isEmpty())
        return makeError(ErrorCode::Invalid, QStringLiteral("report %1 has no caption and no definition").arg(index + 1));
    if (r.Damaged)
        return makeError(ErrorCode::Truncated,
                         QStringLiteral("report %1 (\"%2\") is damaged in the design block and cannot be shown; "
                                        "the other reports and the records are not affected")
                             .arg(index + 1).arg(r.Caption));
    if (r.Pictures.size() > size_t(kMaxPictures))
        return makeError(ErrorCode::SubscriptOutOfRange,
                         QStringLiteral("report \"%1\" has %2 pictures; a report holds at most %3")
                             .arg(r.Caption).arg(r.Pictures.size()).arg(kMaxPictures));
    const auto sane = [](double v) { return std::isfinite(v) && v >= 0 && v < 1.0e7; };
    if (!sane(r.PageWidth) || !sane(r.PageHeight))
        return makeError(ErrorCode::Invalid, QStringLiteral("report \"%1\" has a damaged page size").arg(r.Caption));
    for (const ReportLabel &l : r.Labels)
        if (l.LabelRow < 0 || !sane(l.Width) || !sane(l.Height) || !std::isfinite(l.Top) || !std::isfinite(l.Left))
            return makeError(ErrorCode::Invalid, QStringLiteral("report \"%1\" has a damaged label").arg(r.Caption));
    for (const ReportPicture &p : r.Pictures)
        if (p.ImageRow < 0)
            return makeError(ErrorCode::Invalid, QStringLiteral("report \"%1\" has a damaged picture").arg(r.Caption));

    ReportEngine engine;
    engine.design_ = &design;
    engine.definition_ = r;
    if (!(engine.definition_.PageWidth > 0))
        engine.definition_.PageWidth = r.WindowWidth > 0 ? r.WindowWidth : 11906;
    if (!(engine.definition_.PageHeight > 0))
        engine.definition_.PageHeight = r.WindowHeight > 0 ? r.WindowHeight : 16838;
    engine.labels_.resize(r.Labels.size());
    for (size_t i = 0; i < r.Labels.size(); ++i) {
        const ReportLabel &l = r.Labels[i];
        LabelState &s = engine.labels_[i];
        s.LabelRow = l.LabelRow;
        if (l.LabelFixed == -1) {
            s.Caption = l.Text;
            if (l.Text.contains(QLatin1Char('=')) && l.Text.contains(QLatin1Char('$')))
                s.Tag = l.Text; // a template
        } else {
            s.Tag = l.Text.left(1); // the label's kind
        }
    }
    engine.pictures_.resize(r.Pictures.size());
    return engine;
}

void ReportEngine::setSource(ReportSource source, QVector<int> list)
{
    source_ = source;
    RecordList = std::move(list);
}

int ReportEngine::recordOfRow(int row, const ReportRecords &records) const
{
    const int position = row + firstOffset_;
    int record = 0;
    switch (source_) {
    case ReportSource::SearchList:
    case ReportSource::HitList:
        if (position - 1 < 0 || position - 1 >= RecordList.size())
            return 0; // past the end of the list: the row stays empty
        record = RecordList[position - 1];
        break;
    case ReportSource::AllRecords:
        if (sortMode_ == 1 || sortMode_ == 2) {
            const int at = sortMode_ == 1 ? position : records.RecordCount() - (position - 1);
            if (at < 0 || at >= sortIndex_.size())
                return 0;
            record = sortIndex_[at];
        } else {
            record = position;
        }
        break;
    }
    return record >= 1 && record <= records.RecordCount() ? record : 0;
}

Status ReportEngine::ReportStart(ReportRecords &records, int currentRecord)
{
    int record = currentRecord;
    sortMode_ = records.SortMode();
    sortIndex_ = records.SortIndex();
    if (source_ == ReportSource::SearchList || source_ == ReportSource::HitList) {
        record = 1;
        recordTotal_ = int(RecordList.size());
    } else {
        recordTotal_ = records.RecordCount();
    }
    const int remembered = records.CurrentRecord();

    rowsPerPage_ = 0;
    for (const ReportPicture &p : definition_.Pictures)
        rowsPerPage_ = qMax(rowsPerPage_, int(p.ImageRow));
    const Page &page = records.page();
    for (size_t i = 0; i < labels_.size(); ++i) {
        const ReportLabel &l = definition_.Labels[i];
        LabelState &s = labels_[i];
        if (l.LabelFixed == -1) {
            if (s.Caption == QLatin1String("P$")) {
                s.Tag = s.Caption;
            } else if (s.Caption == QLatin1String("T$")) {
                s.Tag = s.Caption;
                s.Caption = page.TitleCaption.value(2, design_->Titles.size() > 2 ? design_->Titles[2].Caption : QString());
            } else if (s.Caption == QLatin1String("D$")) {
                s.Tag = s.Caption;
                s.Caption = page.TitleCaption.value(3, design_->Titles.size() > 3 ? design_->Titles[3].Caption : QString());
            }
        }
        rowsPerPage_ = qMax(rowsPerPage_, s.LabelRow);
    }
    rowsPerPage_ = qMax(1, rowsPerPage_); // a report of fixed texts alone is one record a page
    navigationMode_ = recordTotal_ >= rowsPerPage_ ? 0 : 4;
    firstOffset_ = qMax(0, int(std::floor(double(record) / rowsPerPage_ - 0.1)) * rowsPerPage_);
    LoadReport(records);
    if (remembered >= 1 && remembered <= records.RecordCount())
        return records.load(remembered);
    return {};
}

QString ReportEngine::wrapNote(const ReportLabel &label, const QString &text) const
{
    const TwipsMeasure measure(label, design_->AppFontName);
    const QString crlf = QStringLiteral("\r\n");
    if (measure.width(text) <= label.Width)
        return text + crlf;
    QString result, line;
    double used = 0;
    const double lineHeight = measure.height();
    for (const QChar c : text) {
        if (used >= label.Height)
            break;
        if (c == QLatin1Char('\n')) {
            result += line + QLatin1Char('\n');
            line.clear();
            used += lineHeight;
            continue;
        }
        line += c;
        if (measure.width(line) > label.Width) {
            const qsizetype blank = line.lastIndexOf(QLatin1Char(' '));
            if (blank >= 0) {
                result += line.left(blank) + crlf;
                line = line.mid(blank + 1);
            } else {
                result += line + crlf;
                line.clear();
            }
            used += lineHeight;
        }
    }
    return result + line + crlf;
}

QImage ReportEngine::pictureOf(const ReportPicture &picture, const Page &page) const
{
    const int i = picture.ImageField;
    if (!design_ || i < 0 || size_t(i) >= design_->Pictures.size())
        return {};
    const PictureElement &p = design_->Pictures[size_t(i)];
    QImage image;
    if (p.Stretch) {
        const QString name = page.PictureRecordName.value(i).trimmed();
        if (const QString file = RecordPictureFile(recordPictureFolder_, name); !file.isEmpty())
            image.load(file);
    } else if (!p.FileName.isEmpty()) {
        image.load(QDir(pictureFolder_).filePath(p.FileName));
    }
    return image;
}

void ReportEngine::LoadReport(ReportRecords &records)
{
    LoadedRecord = 0;
    LabelPageStart.assign(labels_.size(), 0);
    const QString pageText = QString::number(pageNumber());
    const Page &page = records.page();

    for (size_t i = 0; i < labels_.size(); ++i)
        if (definition_.Labels[i].LabelFixed != -1) {
            labels_[i].Caption.clear();
            labels_[i].checked = false;
        }
    for (size_t k = 0; k < pictures_.size(); ++k)
        if (definition_.Pictures[k].Visible != 0 && definition_.Pictures[k].Flag != 0)
            pictures_[k] = QImage();

    const auto loadRow = [&](int record) {
        if (record == LoadedRecord)
            return;
        // A record that cannot be read leaves what the page held; the row is filled with that.
        std::ignore = records.load(record);
        LoadedRecord = record;
    };
    const auto fillPictures = [&](int row) {
        for (size_t k = 0; k < pictures_.size(); ++k) {
            const ReportPicture &p = definition_.Pictures[k];
            if (p.ImageRow == row && p.Flag != 0)
                pictures_[k] = pictureOf(p, page);
        }
    };

    for (size_t i = 0; i < labels_.size(); ++i) {
        const ReportLabel &l = definition_.Labels[i];
        LabelState &s = labels_[i];
        if (l.Visible == 0)
            continue;
        const bool fixed = l.LabelFixed == -1;
        if (fixed) {
            if (s.Tag == QLatin1String("P$")) {
                s.Caption = pageText;
                continue;
            }
            if (s.Tag == QLatin1String("T$") || s.Tag == QLatin1String("D$")) {
                const int title = s.Tag == QLatin1String("T$") ? 2 : 3;
                s.Caption = page.TitleCaption.value(title, size_t(title) < design_->Titles.size() ? design_->Titles[size_t(title)].Caption : QString());
                continue;
            }
            if (s.Tag.isEmpty())
                continue;
            s.Caption = s.Tag; // a template starts again from its tokens
            s.LabelRow = leadingNumber(s.Tag.mid(s.Tag.indexOf(QLatin1Char('=')) + 1));
        }
        const int record = recordOfRow(s.LabelRow, records);
        if (record == 0)
            continue;
        if (record != LoadedRecord) {
            loadRow(record);
            LabelPageStart[i] = firstOffset_;
        }
        fillPictures(s.LabelRow);
        if (fixed) {
            const QString row = QString::number(s.LabelRow);
            for (int k = 1; k < int(design_->Fields.size()); ++k)
                s.Caption.replace(QLatin1Char('F') + QString::number(k) + QLatin1Char('=') + row + QLatin1Char('$'),
                                  page.FieldText.value(k));
            for (int k = 1; k < int(design_->Combos.size()); ++k)
                s.Caption.replace(QLatin1Char('C') + QString::number(k) + QLatin1Char('=') + row + QLatin1Char('$'),
                                  page.ComboText.value(k));
        } else if (s.Tag == QLatin1String("F")) {
            s.Caption = page.FieldText.value(l.LabelFixed);
        } else if (s.Tag == QLatin1String("R")) {
            s.Caption = QString::number(record);
        } else if (s.Tag == QLatin1String("C")) {
            s.Caption = page.ComboText.value(l.LabelFixed);
        } else if (s.Tag == QLatin1String("M")) {
            s.Caption = wrapNote(l, page.NoteText.value(l.LabelFixed));
        } else if (s.Tag == QLatin1String("x")) {
            s.checked = page.CheckValue.value(l.LabelFixed) != 0;
        }
        if (cancelled())
            return;
    }
    // Pictures of rows that no label uses.
    for (int row = 1; row <= rowsPerPage_; ++row) {
        const int record = recordOfRow(row, records);
        if (record == 0)
            continue;
        bool wanted = false;
        for (const ReportPicture &p : definition_.Pictures)
            wanted = wanted || (p.ImageRow == row && p.Flag != 0);
        if (!wanted)
            continue;
        loadRow(record);
        fillPictures(row);
    }
}

bool ReportEngine::page(ReportPaging button, ReportRecords &records, int goToPage)
{
    if (navigationMode_ == 4)
        return false;
    const int old = firstOffset_;
    int offset = firstOffset_;
    switch (button) {
    case ReportPaging::First: offset = 0; break;
    case ReportPaging::Previous: offset = firstOffset_ - rowsPerPage_; break;
    case ReportPaging::Next: offset = firstOffset_ + rowsPerPage_; break;
    case ReportPaging::Last:
        if (rowsPerPage_ == 1)
            offset = (recordTotal_ / 1 - 1) * 1;
        offset = recordTotal_ / rowsPerPage_ * rowsPerPage_;
        break;
    case ReportPaging::GoTo: offset = (goToPage - 1) * rowsPerPage_; break;
    }
    if (offset < rowsPerPage_)
        offset = 0;
    if (offset >= recordTotal_) {
        offset = recordTotal_ / rowsPerPage_ * rowsPerPage_;
        if (offset >= recordTotal_ && rowsPerPage_ == 1)
            offset = (recordTotal_ / rowsPerPage_ - 1) * rowsPerPage_;
    }
    firstOffset_ = offset;
    if (firstOffset_ == old)
        return false;
    LoadReport(records);
    return true;
}

int ReportEngine::labelAt(double x, double y) const
{
    for (int i = int(labels_.size()) - 1; i >= 0; --i) {
        const ReportLabel &l = definition_.Labels[size_t(i)];
        if (l.Visible != 0 && x >= l.Left && x < l.Left + l.Width && y >= l.Top && y < l.Top + l.Height)
            return i;
    }
    return -1;
}

QVector<int> ReportEngine::recordsShown(const ReportRecords &records) const
{
    QVector<int> shown;
    for (int row = 1; row <= rowsPerPage_; ++row)
        shown.append(recordOfRow(row, records));
    return shown;
}

void ReportEngine::Printreport(Printer &printer, RecordPrinter &drawing) const
{
    printer.Print();
    drawing.PrintTopOffset = 0;
    printer.setCharset(design_->FontCharset);
    const double tppX = printer.TwipsPerPixelX(), tppY = printer.TwipsPerPixelY();

    for (const ReportShape &r : definition_.Shapes) {
        if (r.Visible == 0)
            continue;
        ShapeElement s;
        s.BackColor = 0xFFFFFF;
        s.BorderColor = r.BorderColor;
        s.FillColor = r.FillColor;
        s.BorderStyle = r.BorderStyle;
        s.BorderWidth = r.BorderWidth > 0 ? r.BorderWidth : 1;
        s.FillStyle = r.FillStyle;
        s.Width = r.Width;
        s.Height = r.Height;
        s.Shape = r.Shape;
        s.Top = r.Top;
        s.Left = r.Left;
        double x = 0, y = 0;
        drawing.PrintShape(printer, s, x, y);
        printer.setFillStyle(1);
    }
    printer.setDrawStyle(0);
    printer.setDrawWidth(1);
    for (const ReportLine &l : definition_.Lines)
        if (l.Visible != 0)
            printer.Line(l.X1, l.Y1, l.X2, l.Y2, l.BorderColor);
    for (size_t k = 0; k < definition_.Pictures.size(); ++k) {
        const ReportPicture &p = definition_.Pictures[k];
        if (p.Visible == 0)
            continue;
        if (p.Flag != 0)
            printer.Line(p.Left - tppX / 2, p.Top - tppY / 2, p.Left + p.Width + tppX / 2, p.Top + p.Height + tppY / 2, 0,
                         LineKind::FilledBox);
        printer.PaintPicture(pictures_[k], p.Left, p.Top, p.Width, p.Height);
    }

    printer.setFontTransparent(true);
    for (size_t i = 0; i < labels_.size(); ++i) {
        const ReportLabel &l = definition_.Labels[i];
        const LabelState &s = labels_[i];
        if (l.Visible == 0 || s.Tag == QLatin1String("x"))
            continue;
        printer.setCurrentY(l.Top);
        printer.setCurrentX(l.Left);
        printer.setForeColor(l.ForeColor);
        printer.setFont(l.FontName.isEmpty() ? design_->AppFontName : l.FontName, l.FontSize, l.FontBold, l.FontItalic,
                        l.FontUnderline);
        printer.setCharset(design_->FontCharset);
        const auto place = [&](const QString &text) {
            switch (l.Alignment) {
            case 1: printer.setCurrentX(l.Left + l.Width - printer.TextWidth(text)); break;
            case 2: printer.setCurrentX(l.Left + (l.Width - printer.TextWidth(text)) / 2); break;
            default: printer.setCurrentX(l.Left);
            }
        };
        if (s.Caption.indexOf(QLatin1Char('\r'), 1) < 1) {
            QString shown;
            if (l.LabelFixed == -1) {
                shown = s.Caption;
            } else {
                for (const QChar c : s.Caption) {
                    if (printer.TextWidth(shown + c) > l.Width)
                        break;
                    shown += c;
                }
            }
            place(shown);
            printer.Print(shown);
            continue;
        }
        // Line by line; a line stops where it would pass the width.
        const QStringList lines = s.Caption.split(QLatin1Char('\r'));
        for (QString line : lines) {
            line.remove(QLatin1Char('\n'));
            QString shown;
            for (const QChar c : line) {
                if (printer.TextWidth(shown + c) > l.Width)
                    break;
                shown += c;
            }
            place(shown);
            printer.setCurrentY(printer.CurrentY());
            printer.Print(shown);
            if (printer.CurrentY() > l.Top + l.Height - printer.TextHeight())
                break;
        }
    }
    for (size_t i = 0; i < labels_.size(); ++i) {
        const ReportLabel &l = definition_.Labels[i];
        if (l.Visible == 0 || labels_[i].Tag != QLatin1String("x"))
            continue;
        drawing.PrintMaskedPicture(printer, l.Left, l.Top, RecordPrinter::checkPicture(false, labels_[i].checked));
    }
    std::ignore = printer.NewPage(); // a printer fault skips the step, as every drawing step does
}

Result<int> ReportEngine::printPages(Printer &printer, RecordPrinter &drawing, ReportRecords &records, int from, int to,
                                     int copies)
{
    const int remembered = records.CurrentRecord();
    int first = (from - 1) * rowsPerPage_;
    if (first < rowsPerPage_)
        first = 0;
    const int last = qMin(rowsPerPage_ * to - 1, recordTotal_);
    int sheets = 0;
    for (int copy = 0; copy < qMax(1, copies); ++copy) {
        for (firstOffset_ = first; firstOffset_ <= last; firstOffset_ += rowsPerPage_) {
            QCoreApplication::processEvents(); // a close of the preview comes through here
            LoadReport(records);
            if (cancelled()) {
                printer.KillDoc();
                std::ignore = records.load(remembered); // back to the record shown; the job is gone anyway
                return makeError(ErrorCode::Invalid, QStringLiteral("the print was cancelled"));
            }
            Printreport(printer, drawing);
            ++sheets;
        }
    }
    firstOffset_ = qMax(0, firstOffset_ - rowsPerPage_); // the page last loaded stays on screen
    Status ended = printer.EndDoc();
    if (remembered >= 1 && remembered <= records.RecordCount())
        std::ignore = records.load(remembered); // the report is printed; the record shown comes back if it can
    if (!ended)
        return ended.error();
    return sheets;
}

} // namespace ff::print
