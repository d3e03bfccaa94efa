#include "pdf/PdfReportExport.h"

#include "pdf/PdfDocumentWriter.h"
#include "print/ImageTarget.h"
#include "print/Printer.h"
#include "print/RecordPrinter.h"

#include <cmath>

namespace ff::pdf {

namespace {

constexpr double kPixel = 15;
constexpr double kBackgroundDpi = 300;

Result<print::ReportEngine> loaded(const Design &design, int index, const QString &pictures, const QString &recordPictures,
                                   const QVector<int> *list, print::ReportRecords &records)
{
    Result<print::ReportEngine> engine = print::ReportEngine::ReportLoading(design, index);
    if (!engine)
        return engine;
    engine->setPictureFolder(pictures);
    engine->setRecordPictureFolder(recordPictures);
    if (list)
        engine->setSource(print::ReportSource::SearchList, *list);
    if (Status s = engine->ReportStart(records, 1); !s)
        return s.error();
    return engine;
}

} // namespace

QString PdfReportExport::ReportFileName(const QString &chosen)
{
    const qsizetype dot = chosen.lastIndexOf(QLatin1Char('.'));
    return (dot < 0 ? chosen : chosen.left(dot)) + QStringLiteral(".PDF");
}

Result<int> PdfReportExport::ExportPDFreport(int reportIndex, print::ReportRecords &records, const QString &path,
                                             const QVector<int> *list, Progress *progress)
{
    const int remembered = records.CurrentRecord();
    // Two engines over the same pages: one fills the labels, the other, whose labels show
    // nothing, paints the background the labels are written on.
    Result<print::ReportEngine> filled = loaded(design_, reportIndex, pictureFolder_, recordPictureFolder_, list, records);
    if (!filled)
        return filled.error();
    Design bare = design_;
    for (ReportLabel &l : bare.Reports[size_t(reportIndex)].Labels) {
        l.Text.clear();
        l.LabelFixed = -1;
    }
    Result<print::ReportEngine> painted = loaded(bare, reportIndex, pictureFolder_, recordPictureFolder_, list, records);
    if (!painted)
        return painted.error();
    print::RecordPrinter drawing(bare, pictureFolder_);
    drawing.setRecordPictureFolder(recordPictureFolder_);

    const ReportDefinition &report = filled->definition();
    PdfDocumentWriter writer;
    if (Status s = writer.StartDocument(path, design_.MainCap, design_.MainCap + QStringLiteral("/Flatform"), report.PageWidth,
                                        report.PageHeight);
        !s)
        return s.error();
    int pages = 0;
    filled->page(print::ReportPaging::First, records);
    painted->page(print::ReportPaging::First, records);
    Status failed;
    for (;;) {
        if (progress) {
            progress->setPercent(100 * pages / qMax(1, filled->pageCount()));
            if (progress->cancelled())
                break;
        }
        if (pages > 0)
            failed = writer.NewPage();
        // At paper's resolution rather than the screen's: the printer's pens are as wide as on paper.
        print::ImageTarget target(QSizeF(report.PageWidth, report.PageHeight), kBackgroundDpi);
        {
            print::Printer printer(target);
            painted->Printreport(printer, drawing);
            std::ignore = printer.EndDoc(); // a picture in memory
        }
        const QImage background = target.pages().empty() ? QImage() : target.pages().front().convertToFormat(QImage::Format_RGB32);
        if (failed.ok())
            failed = writer.PlaceBitmap(background, 0, 0);
        for (size_t i = 0; i < report.Labels.size() && failed.ok(); ++i) {
            const ReportLabel &l = report.Labels[i];
            if (l.Visible == 0)
                continue;
            if (filled->labelIsCheck(int(i))) {
                // The check's pure green takes the background's pixels behind it.
                QImage check = print::RecordPrinter::checkPicture(false, filled->labelChecked(int(i))).convertToFormat(QImage::Format_RGB32);
                const int x0 = int(std::lround(l.Left / kPixel)), y0 = int(std::lround(l.Top / kPixel));
                for (int y = 0; y < check.height(); ++y)
                    for (int x = 0; x < check.width(); ++x)
                        if ((check.pixel(x, y) & 0x00FFFFFFu) == 0x0000FF00u) {
                            const QPoint under((x0 + x) * kBackgroundDpi / 96, (y0 + y) * kBackgroundDpi / 96);
                            if (background.valid(under))
                                check.setPixel(x, y, background.pixel(under));
                        }
                failed = writer.PlaceBitmap(check, x0 * kPixel, y0 * kPixel);
                continue;
            }
            writer.setTextColor(print::Printer::colorOf(l.ForeColor));
            writer.setFont({l.FontName.isEmpty() ? design_.AppFontName : l.FontName, l.FontSize, l.FontBold, l.FontItalic,
                            l.FontUnderline, false});
            failed = writer.TextBox(QRectF(l.Left, l.Top, l.Width, l.Height), l.Alignment <= 2 ? l.Alignment : 0,
                                    filled->labelCaption(int(i)));
        }
        ++pages;
        if (!failed.ok())
            break;
        const bool more = filled->page(print::ReportPaging::Next, records);
        painted->page(print::ReportPaging::Next, records);
        if (!more)
            break;
    }
    const Status ended = writer.EndDocument();
    if (remembered >= 1 && remembered <= records.RecordCount())
        std::ignore = records.load(remembered); // the record shown comes back if it can
    if (!failed.ok())
        return failed.error();
    if (!ended)
        return ended.error();
    return pages;
}

} // namespace ff::pdf
