#include "pdf/PdfRecordExport.h"

#include "core/CodePage.h"
#include "export/ExportRecordReader.h"
#include "export/ExportWalk.h"
#include "formula/SubstituteTags.h"
#include "pdf/PdfDocumentWriter.h"
#include "print/Printer.h"
#include "print/RecordPrinter.h"
#include "web/PageBackground.h"

#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QPainter>
#include <cmath>

namespace ff::pdf {

namespace {

constexpr double kPixel = 15; // twips of one pixel of the page box
const char kMakerSite[] = "Flatform";

// A page number of the element tables: -1 (65535) stands on every page.
bool onPage(int elementPage, int page)
{
    return elementPage == page || elementPage == -1 || elementPage == 65535;
}

QColor colour(int32_t value) { return print::Printer::colorOf(value); }

bool isLink(const QString &text)
{
    const QString lower = text.toLower();
    return lower.contains(QLatin1String("http")) || lower.contains(QLatin1String("mailto"));
}

// Paints into a picture that already holds the page: the record's own pictures go over the
// background through the same RenderPicture the printed page uses.
class PictureTarget : public print::PrintTarget {
public:
    explicit PictureTarget(QImage &picture) : picture_(picture) {}
    QPaintDevice *begin() override { return &picture_; }
    QPaintDevice *nextPage(QPainter &) override { return nullptr; }
    Status end(bool) override { return {}; }
    QRectF sheetTwips() const override { return QRectF(0, 0, picture_.width() * kPixel, picture_.height() * kPixel); }
    QRectF printableTwips() const override { return sheetTwips(); }
    double dotsPerInchX() const override { return 96; }
    double dotsPerInchY() const override { return 96; }
    bool rasterDevice() const override { return true; }

private:
    QImage &picture_;
};

PdfFontStyle fontOf(const Design &design, const QString &name, double size, bool bold, bool italic, bool underline = false)
{
    return PdfFontStyle{name.isEmpty() ? design.AppFontName : name, size, bold, italic, underline, false};
}

} // namespace

PdfRecordExport::PdfRecordExport(RecordStore &store, const FormulaContext &context, QString pictureFolder)
    : store_(store), context_(context), pictureFolder_(std::move(pictureFolder))
{
    pageTo_ = store.design().PageCount;
}

void PdfRecordExport::setPageRange(int from, int to)
{
    pageFrom_ = qBound(0, from, kPageLimit - 1);
    pageTo_ = qBound(0, to, qMin(kPageLimit - 1, store_.design().PageCount));
}

QString PdfRecordExport::DocumentName(const QString &fileName, int position)
{
    return fileName + QStringLiteral("%1").arg(position, 10, 10, QLatin1Char('0')).right(10) + QStringLiteral(".pdf");
}

QImage PdfRecordExport::CreateBackGround(int page) const
{
    // The page as the window paints it under its controls: colour, tiled picture, shapes, lines,
    // frames and buttons; then the boxes of the fields, combos and notes in their colours, and the
    // fixed pictures. Nothing of a record: texts, check fields and record pictures come per page.
    const Design &design = store_.design();
    QImage image = web::PageBackground(design, pictureFolder_).render(page);
    QPainter painter(&image);
    const auto box = [&](double left, double top, double width, double height, int32_t back, bool border) {
        const QRect r(int(std::lround(left / kPixel)), int(std::lround(top / kPixel)), qMax(1, int(std::lround(width / kPixel))),
                      qMax(1, int(std::lround(height / kPixel))));
        painter.fillRect(r, colour(back));
        if (border) {
            painter.setPen(QColor(0x7A, 0x7A, 0x7A));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(r.adjusted(0, 0, -1, -1));
        }
    };
    for (size_t i = 1; i < design.Fields.size(); ++i) {
        const FieldElement &f = design.Fields[i];
        if (onPage(f.FieldPage, page))
            box(f.Left, f.Top, f.Width, f.Height, f.BackColor, f.Border != 0);
    }
    for (size_t i = 1; i < design.Combos.size(); ++i) {
        const ComboElement &c = design.Combos[i];
        if (!onPage(int(c.ComboPage), page))
            continue;
        // A combo is as high as its text with its frame, as the drop-down list box shows it.
        const QFontMetrics metrics(QFont(c.FontName.isEmpty() ? design.AppFontName : c.FontName, qMax(1, qRound(c.FontSize))));
        box(c.Left, c.Top, c.Width, (metrics.height() + 8) * kPixel, c.BackColor, true);
    }
    for (size_t i = 1; i < design.Notes.size(); ++i) {
        const NoteElement &n = design.Notes[i];
        if (onPage(n.NotePage, page))
            box(n.Left, n.Top, n.Width, n.Height, n.BackColor, n.Border != 0);
    }
    for (const PictureElement &p : design.Pictures) {
        if (p.Stretch || p.FileName.isEmpty() || !onPage(p.PicturePage, page))
            continue;
        // A fixed picture takes its own size, as the page box shows it.
        const QImage picture(QDir(pictureFolder_).filePath(p.FileName));
        if (!picture.isNull())
            painter.drawImage(QPoint(int(std::lround(p.Left / kPixel)), int(std::lround(p.Top / kPixel))), picture);
    }
    painter.end();
    return image.convertToFormat(QImage::Format_RGB32);
}

Status PdfRecordExport::startDocument(PdfDocumentWriter &writer, const QString &path) const
{
    const Design &design = store_.design();
    return writer.StartDocument(path, design.MainCap, design.MainCap + QLatin1Char('/') + QLatin1String(kMakerSite),
                                design.PageWidth, design.PageHeight);
}

Status PdfRecordExport::writeRecordPages(PdfDocumentWriter &writer, const Page &page, int position,
                                         const std::array<QImage, 5> &backgrounds, bool firstOfDocument)
{
    const Design &design = store_.design();
    const QString flowFolder = QDir(pictureFolder_).filePath(QStringLiteral("Images"));
    bool first = firstOfDocument;
    for (int p = pageFrom_; p <= pageTo_; ++p) {
        if (!first)
            if (Status s = writer.NewPage(); !s)
                return s;
        first = false;

        // The background; repainted only when the record has pictures of its own on this page.
        QImage picture = backgrounds[size_t(p)];
        bool ownPictures = false;
        for (size_t i = 0; i < design.Pictures.size() && !ownPictures; ++i)
            ownPictures = design.Pictures[i].Stretch && onPage(design.Pictures[i].PicturePage, p)
                          && !page.PictureRecordName.value(qsizetype(i)).trimmed().isEmpty();
        for (const FlowImage &f : page.FlowImages)
            ownPictures = ownPictures || f.page == p;
        if (ownPictures) {
            picture = picture.copy();
            PictureTarget target(picture);
            print::Printer printer(target);
            printer.Print(QString(), false); // the painter starts on the picture
            const QString folder = store_.RecordPictureFolder();
            for (size_t i = 0; i < design.Pictures.size(); ++i) {
                const PictureElement &e = design.Pictures[i];
                const QString name = page.PictureRecordName.value(qsizetype(i)).trimmed();
                if (!e.Stretch || !onPage(e.PicturePage, p) || name.isEmpty() || folder.isEmpty()
                    || QFileInfo(name).fileName() != name)
                    continue;
                const QImage own(folder + name);
                if (!own.isNull())
                    print::RecordPrinter::RenderPicture(printer, own, e.Left / kPixel, e.Top / kPixel, e.Width / kPixel,
                                                        e.Height / kPixel);
            }
            for (const FlowImage &f : page.FlowImages) {
                if (f.page != p)
                    continue;
                const QImage own(QDir(flowFolder).filePath(QString::number(f.FlowImageId) + QStringLiteral(".gif")));
                if (!own.isNull())
                    print::RecordPrinter::RenderPicture(printer, own, f.left / kPixel, f.top / kPixel, f.width / kPixel,
                                                        f.height / kPixel);
            }
            std::ignore = printer.EndDoc(); // the picture is in memory
        }
        if (Status s = writer.PlaceBitmap(picture, 0, 0); !s)
            return s;

        // Links of pictures: a web or mail address after the tags are filled.
        for (const PictureElement &e : design.Pictures) {
            if (!onPage(e.PicturePage, p) || e.PictureLink.isEmpty())
                continue;
            QString link = e.PictureLink;
            const QString target = SubstituteTags(link, page, context_);
            if (isLink(target))
                std::ignore = writer.LinkArea(QRectF(e.Left, e.Top, e.Width, e.Height), target);
        }

        const auto colours = [&](int32_t fore, int32_t back) {
            writer.setPenColor(colour(fore));
            writer.setFillColor(colour(back));
            writer.setTextColor(colour(fore));
        };
        const auto label = [&](const QString &caption, const PdfFontStyle &font, int32_t fore, double left, double top,
                               int alignment, const QString &tag) {
            colours(fore, 0xFFFFFF);
            writer.setFont(font);
            // A label sizes itself to its text.
            double width = 0;
            int lines = 0;
            for (const QString &line : QString(caption).replace(QLatin1String("\r\n"), QLatin1String("\n")).split(QLatin1Char('\n'))) {
                width = qMax(width, writer.TextWidth(line));
                ++lines;
            }
            const QRectF box(left, top, width, lines * font.size * 1.2 * 20);
            if (Status s = writer.TextBox(box, alignment <= 2 ? alignment : 0, caption); !s)
                return s;
            if (!tag.isEmpty() && isLink(tag)) {
                QString text = tag;
                const QString target = SubstituteTags(text, page, context_);
                std::ignore = writer.LinkArea(box, target);
            }
            return Status{};
        };

        for (size_t i = 2; i < design.Titles.size(); ++i) {
            const TitleElement &t = design.Titles[i];
            if (!t.present || !onPage(t.TitlePage, p))
                continue;
            const QString caption = page.TitleCaption.value(qsizetype(i), t.Caption);
            if (Status s = label(caption, fontOf(design, t.FontName, t.FontSize, t.FontBold, t.FontItalic, t.FontUnderline),
                                 t.ForeColor, t.Left, t.Top, t.Alignment, t.Tag);
                !s)
                return s;
        }
        for (const FlowLabel &f : page.FlowLabels) {
            if (f.page != p)
                continue;
            const PdfFontStyle font = fontOf(design, QString(), f.fontSize > 0 ? double(f.fontSize) : 8.0, f.style % 10 != 0,
                                             (f.style / 10) % 10 != 0, (f.style / 100) % 10 != 0);
            if (Status s = label(f.text, font, f.color, f.left, f.top, f.alignment, QString()); !s)
                return s;
        }

        // Text fields, with a link when the text is a web or mail address.
        for (size_t i = 1; i < design.Fields.size(); ++i) {
            const FieldElement &f = design.Fields[i];
            if (!onPage(f.FieldPage, p))
                continue;
            const QString text = page.FieldText.value(qsizetype(i));
            colours(f.ForeColor, f.BackColor);
            writer.setFont(fontOf(design, f.FontName, f.FontSize, f.FontBold, f.FontItalic));
            const QRectF box(f.Left, f.Top, f.Width, f.Height);
            if (Status s = writer.TextBox(box.adjusted(2 * kPixel, 2 * kPixel, -2 * kPixel, 0), f.Alignment, text); !s)
                return s;
            const QString lower = text.toLower();
            if (lower.contains(QLatin1String("www.")))
                std::ignore = writer.LinkArea(box, QStringLiteral("http://") + text.trimmed());
            if (lower.contains(QLatin1Char('@')))
                std::ignore = writer.LinkArea(box, QStringLiteral("mailto:") + text.trimmed());
        }

        for (size_t i = 1; i < design.Combos.size(); ++i) {
            const ComboElement &c = design.Combos[i];
            if (!onPage(int(c.ComboPage), p))
                continue;
            colours(c.ForeColor, c.BackColor);
            const PdfFontStyle font = fontOf(design, c.FontName, c.FontSize, c.FontBold, c.FontItalic);
            writer.setFont(font);
            const QRectF box(c.Left + 3 * kPixel, c.Top + 3 * kPixel, c.Width - 6 * kPixel, font.size * 20 * 1.2);
            if (Status s = writer.TextBox(box, 0, page.ComboText.value(qsizetype(i))); !s)
                return s;
        }

        // Notes become fillable fields, named by the element and the record's place so that the
        // names stay unique when many records share one document.
        for (size_t i = 1; i < design.Notes.size(); ++i) {
            const NoteElement &n = design.Notes[i];
            if (!onPage(n.NotePage, p))
                continue;
            PdfTextFieldSpec field;
            field.name = QStringLiteral("Notes%1_%2").arg(i).arg(position);
            field.value = page.NoteText.value(qsizetype(i));
            field.twips = QRectF(n.Left, n.Top, n.Width, n.Height);
            field.alignment = n.Alignment;
            field.font = fontOf(design, n.FontName, n.FontSize, n.FontBold, n.FontItalic);
            field.textColor = colour(n.ForeColor);
            field.backColor = colour(n.BackColor);
            if (Status s = writer.AddTextField(field); !s)
                return s;
        }

        // Check fields: their pure green takes the page's own pixels behind them.
        for (size_t i = 0; i < design.Checks.size(); ++i) {
            const CheckElement &c = design.Checks[i];
            if (!onPage(c.CheckPage, p))
                continue;
            QImage check = print::RecordPrinter::checkPicture(c.OptionBx == 1, page.CheckValue.value(qsizetype(i)) != 0)
                               .convertToFormat(QImage::Format_RGB32);
            const int x0 = int(std::lround(c.Left / kPixel)), y0 = int(std::lround(c.Top / kPixel));
            for (int y = 0; y < check.height(); ++y) {
                auto *line = reinterpret_cast<QRgb *>(check.scanLine(y));
                for (int x = 0; x < check.width(); ++x)
                    if ((line[x] & 0x00FFFFFFu) == 0x0000FF00u && picture.valid(x0 + x, y0 + y))
                        line[x] = picture.pixel(x0 + x, y0 + y);
            }
            if (Status s = writer.PlaceBitmap(check, x0 * kPixel, y0 * kPixel); !s)
                return s;
        }
    }
    return {};
}

Result<PdfOutcome> PdfRecordExport::PrintPDF(const QString &fileName, PdfMode mode, const ExportRange &range,
                                             Progress *progress)
{
    if (Status s = range.check(); !s)
        return s.error();
    std::array<QImage, 5> backgrounds;
    for (int p = pageFrom_; p <= pageTo_; ++p)
        backgrounds[size_t(p)] = CreateBackGround(p);

    PdfOutcome outcome;
    PdfDocumentWriter writer;
    // A note holds the letters of the design's code page: the fields' fonts carry them all.
    QByteArray page(224, Qt::Uninitialized);
    for (int i = 0; i < page.size(); ++i)
        page[i] = char(32 + i);
    writer.setFieldLetters(CodePage(store_.design().FontCharset).decode(page));
    if (mode == PdfMode::OneDocument) {
        if (Status s = startDocument(writer, fileName); !s)
            return s.error();
        outcome.files.append(fileName);
    }
    ExportSource source(store_, context_);
    ExportRecordReader reader(source, ExportRecordReader::Mode::Page, ExportRecordReader::Access::Jumping);
    bool firstOfDocument = true;
    const Result<WalkEnd> walked = WalkExportRange(range, progress, 10, [&](int index, int record) -> Status {
        if (Status s = reader.load(record); !s)
            return s;
        if (mode == PdfMode::DocumentPerRecord) {
            const QString name = DocumentName(fileName, index);
            if (Status s = startDocument(writer, name); !s)
                return s;
            outcome.files.append(name);
            firstOfDocument = true;
        }
        if (Status s = writeRecordPages(writer, reader.page(), index, backgrounds, firstOfDocument); !s)
            return s;
        firstOfDocument = false;
        ++outcome.records;
        if (mode == PdfMode::DocumentPerRecord) {
            if (Status s = writer.EndDocument(); !s)
                return s;
            outcome.pages += writer.pageCount();
        }
        return {};
    });
    if (!walked) {
        if (writer.documentOpen())
            std::ignore = writer.EndDocument(); // the error above is the one to tell
        return walked.error();
    }
    outcome.stopped = walked->stopped;
    if (mode == PdfMode::OneDocument) {
        if (Status s = writer.EndDocument(); !s)
            return s.error();
        outcome.pages = writer.pageCount();
    }
    return outcome;
}

} // namespace ff::pdf
