#include "pdf/PdfDocumentWriter.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>

#include <fontconfig/fontconfig.h>
#include <podofo/podofo.h>

#include <vector>

using namespace PoDoFo;

namespace ff::pdf {

namespace {

constexpr double kTwipsPerPoint = 20;
constexpr double kTwipsPerPixel = 15;
const char kFallbackFamily[] = "DejaVu Sans";

PdfString pdfText(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    return PdfString(reinterpret_cast<const pdf_utf8 *>(utf8.constData()));
}

// The TrueType file fontconfig gives for a family and style; empty when its best match is not a
// TrueType file (an identity-encoded embedded font needs one).
QString trueTypeFile(const QByteArray &family, bool bold, bool italic)
{
    FcPattern *pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family.constData()));
    FcPatternAddInteger(pattern, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, pattern, &result);
    QString file;
    FcChar8 *path = nullptr;
    if (match && FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch && path) {
        file = QString::fromLocal8Bit(reinterpret_cast<const char *>(path));
        if (!file.endsWith(QLatin1String(".ttf"), Qt::CaseInsensitive))
            file.clear();
    }
    if (match)
        FcPatternDestroy(match);
    FcPatternDestroy(pattern);
    return file;
}

} // namespace

struct PdfDocumentWriter::State {
    // One encoding for every font, owned here: PoDoFo hands back a font it already made for the
    // same face without taking the encoding it was given. Declared first, so it outlives the
    // document that uses it.
    std::unique_ptr<PdfIdentityEncoding> identity = std::make_unique<PdfIdentityEncoding>(0, 0xffff, false);
    std::unique_ptr<PdfMemDocument> doc;
    std::unique_ptr<PdfPainter> painter;
    PdfPage *page = nullptr;
    PdfAcroForm *form = nullptr;
    QString path, error;
    double widthPt = 0, heightPt = 0;
    int pages = 0;
    bool pagePending = false;
    QHash<qint64, PdfImage *> images;
    std::vector<std::unique_ptr<PdfImage>> imageStore;
    QHash<QString, PdfFont *> fonts;     // text: subsets of the glyphs drawn
    QHash<QString, PdfFont *> formFonts; // fields: with the letters of the code page, so that any can be typed

    double x(double twips) const { return twips / kTwipsPerPoint; }
    double y(double twips) const { return heightPt - twips / kTwipsPerPoint; }
    PdfRect rect(const QRectF &twips) const
    {
        return PdfRect(x(twips.left()), y(twips.bottom()), twips.width() / kTwipsPerPoint, twips.height() / kTwipsPerPoint);
    }

    void fail(const PdfError &e)
    {
        if (error.isEmpty())
            error = QStringLiteral("the PDF could not be made (%1)")
                        .arg(QString::fromLatin1(PdfError::ErrorName(e.GetError())));
    }

    PdfFont *font(const PdfFontStyle &style, bool whole, const QString &letters = QString())
    {
        QHash<QString, PdfFont *> &cache = whole ? formFonts : fonts;
        const QString key = style.name + QLatin1Char('|') + QString::number(style.bold) + QString::number(style.italic);
        if (PdfFont *f = cache.value(key))
            return f;
        QByteArray family = style.name.toUtf8();
        QString file = trueTypeFile(family, style.bold, style.italic);
        if (file.isEmpty()) {
            family = kFallbackFamily;
            file = trueTypeFile(family, style.bold, style.italic);
        }
        if (file.isEmpty())
            throw PdfError(ePdfError_InvalidFontFile);
        const QByteArray fileName = QFile::encodeName(file);
        PdfFont *f = doc->CreateFontSubset(family.constData(), style.bold, style.italic, false, identity.get(),
                                           fileName.constData());
        if (!f)
            throw PdfError(ePdfError_InvalidFontFile);
        if (whole && !letters.isEmpty())
            f->AddUsedSubsettingGlyphs(pdfText(letters), long(letters.size()));
        cache.insert(key, f);
        return f;
    }

    PdfPage *currentPage()
    {
        if (page && !pagePending)
            return page;
        if (painter->GetPage())
            painter->FinishPage();
        page = doc->CreatePage(PdfRect(0, 0, widthPt, heightPt));
        painter->SetPage(page);
        pagePending = false;
        ++pages;
        return page;
    }
};

PdfDocumentWriter::PdfDocumentWriter() : d_(std::make_unique<State>()) {}

PdfDocumentWriter::~PdfDocumentWriter()
{
    try {
        if (d_->painter && d_->painter->GetPage())
            d_->painter->FinishPage();
    } catch (const PdfError &) {
        // the document is thrown away
    }
}

bool PdfDocumentWriter::documentOpen() const { return d_->doc != nullptr; }

int PdfDocumentWriter::pageCount() const { return d_->pages; }

Status PdfDocumentWriter::StartDocument(const QString &path, const QString &title, const QString &author,
                                        double widthTwips, double heightTwips)
{
    d_ = std::make_unique<State>();
    d_->path = path;
    d_->widthPt = qMax(1.0, std::round(widthTwips / kTwipsPerPoint));
    d_->heightPt = qMax(1.0, std::round(heightTwips / kTwipsPerPoint));
    try {
        d_->doc = std::make_unique<PdfMemDocument>();
        d_->painter = std::make_unique<PdfPainter>();
        d_->doc->GetInfo()->SetTitle(pdfText(title));
        d_->doc->GetInfo()->SetAuthor(pdfText(author));
        d_->doc->GetInfo()->SetCreator(PdfString("Flatform"));
        d_->pagePending = true;
    } catch (const PdfError &e) {
        d_->fail(e);
        return Error{ErrorCode::PathError, d_->error};
    }
    return {};
}

Status PdfDocumentWriter::NewPage()
{
    if (!d_->doc)
        return Error{ErrorCode::PathError, QStringLiteral("no PDF document is open")};
    if (d_->page)
        d_->pagePending = true;
    return {};
}

Status PdfDocumentWriter::PlaceBitmap(const QImage &picture, double x, double y)
{
    if (!d_->doc || !d_->error.isEmpty() || picture.isNull())
        return {};
    try {
        PdfPage *page = d_->currentPage();
        Q_UNUSED(page);
        PdfImage *image = d_->images.value(picture.cacheKey());
        if (!image) {
            // Compressed once per writer: a document a record places the same background again.
            auto packed = compressed_.find(picture.cacheKey());
            if (packed == compressed_.end()) {
                const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
                QByteArray bytes;
                bytes.reserve(rgb.width() * rgb.height() * 3);
                for (int row = 0; row < rgb.height(); ++row)
                    bytes.append(reinterpret_cast<const char *>(rgb.constScanLine(row)), rgb.width() * 3);
                // qCompress gives a zlib stream behind a 4-byte length: the stream is FlateDecode's.
                packed = compressed_.insert(picture.cacheKey(), qCompress(bytes, 6).mid(4));
                if (compressed_.size() > 64) { // the check pictures of many records: keep few
                    const QByteArray kept = *packed;
                    compressed_.clear();
                    packed = compressed_.insert(picture.cacheKey(), kept);
                }
            }
            auto owned = std::make_unique<PdfImage>(d_->doc.get());
            PdfMemoryInputStream stream(packed->constData(), packed->size());
            owned->GetObject()->GetDictionary().AddKey(PdfName::KeyFilter, PdfName("FlateDecode"));
            owned->SetImageDataRaw(picture.width(), picture.height(), 8, &stream);
            image = owned.get();
            d_->imageStore.push_back(std::move(owned));
            d_->images.insert(picture.cacheKey(), image);
        }
        double scaleX = 0.75, scaleY = 0.75; // points of a pixel: 15 twips
        if (x == 0 && y == 0) {
            scaleX = d_->widthPt / picture.width();
            scaleY = d_->heightPt / picture.height();
        }
        const double height = picture.height() * scaleY;
        d_->painter->DrawImage(d_->x(x), d_->y(y) - height, image, scaleX, scaleY);
    } catch (const PdfError &e) {
        d_->fail(e);
    }
    return {};
}

Status PdfDocumentWriter::TextBox(const QRectF &twips, int alignment, const QString &text)
{
    if (!d_->doc || !d_->error.isEmpty() || text.isEmpty())
        return {};
    try {
        d_->currentPage();
        PdfFont *font = d_->font(font_, false);
        font->SetFontSize(float(font_.size));
        font->SetUnderlined(font_.underline);
        font->SetStrikeOut(font_.strikeout);
        d_->painter->SetFont(font);
        d_->painter->SetColor(text_.redF(), text_.greenF(), text_.blueF());
        d_->painter->SetStrokingColor(text_.redF(), text_.greenF(), text_.blueF());
        const PdfFontMetrics *metrics = font->GetFontMetrics();
        double baseline = twips.top() / kTwipsPerPoint + metrics->GetAscent();
        static const QRegularExpression lineEnd(QStringLiteral("\r\n|\r|\n"));
        for (const QString &line : text.split(lineEnd)) {
            if (!line.isEmpty()) {
                const PdfString s = pdfText(line);
                const double width = metrics->StringWidth(s);
                double left = d_->x(twips.left());
                if (alignment == 1)
                    left = d_->x(twips.right()) - width;
                else if (alignment == 2)
                    left = d_->x(twips.left()) + (twips.width() / kTwipsPerPoint - width) / 2;
                d_->painter->DrawText(left, d_->heightPt - baseline, s);
            }
            baseline += metrics->GetLineSpacing();
        }
    } catch (const PdfError &e) {
        d_->fail(e);
    }
    return {};
}

double PdfDocumentWriter::TextWidth(const QString &text)
{
    if (!d_->doc || !d_->error.isEmpty())
        return 0;
    try {
        PdfFont *font = d_->font(font_, false);
        font->SetFontSize(float(font_.size));
        return font->GetFontMetrics()->StringWidth(pdfText(text)) * kTwipsPerPoint;
    } catch (const PdfError &e) {
        d_->fail(e);
    }
    return 0;
}

Status PdfDocumentWriter::LinkArea(const QRectF &twips, const QString &target)
{
    if (!d_->doc || !d_->error.isEmpty())
        return {};
    try {
        PdfAnnotation *link = d_->currentPage()->CreateAnnotation(ePdfAnnotation_Link, d_->rect(twips));
        PdfAction action(ePdfAction_URI, d_->doc.get());
        action.SetURI(PdfString(target.toUtf8().constData()));
        link->SetAction(action);
        link->SetBorderStyle(0, 0, 0); // no frame round the link
    } catch (const PdfError &e) {
        d_->fail(e);
    }
    return {};
}

Status PdfDocumentWriter::AddTextField(const PdfTextFieldSpec &spec)
{
    if (!d_->doc || !d_->error.isEmpty())
        return {};
    try {
        PdfPage *page = d_->currentPage();
        if (!d_->form) {
            d_->form = d_->doc->GetAcroForm(true, ePdfAcroFormDefaultAppearance_None);
            d_->form->SetNeedAppearances(true); // readers draw the fields from /DA and the value
        }
        PdfFont *font = d_->font(spec.font, true, fieldLetters_);
        font->AddUsedSubsettingGlyphs(pdfText(spec.value), long(spec.value.size()));
        PdfTextField field(page, d_->rect(spec.twips), d_->doc.get());
        field.SetFieldName(pdfText(spec.name));
        field.SetMultiLine(true);
        field.SetText(pdfText(spec.value));
        field.SetBackgroundColor(spec.backColor.redF(), spec.backColor.greenF(), spec.backColor.blueF());
        field.SetBorderColorTransparent();
        // The library has no setters for the default appearance and the quadding: the keys go into
        // the field's dictionary, and the font named there into the form's resources.
        const QByteArray id = QByteArray::fromStdString(font->GetIdentifier().GetName());
        const QByteArray appearance = "/" + id + " " + QByteArray::number(spec.font.size, 'f', 1) + " Tf "
                                      + QByteArray::number(spec.textColor.redF(), 'f', 3) + " "
                                      + QByteArray::number(spec.textColor.greenF(), 'f', 3) + " "
                                      + QByteArray::number(spec.textColor.blueF(), 'f', 3) + " rg";
        PdfDictionary &dictionary = field.GetFieldObject()->GetDictionary();
        dictionary.AddKey(PdfName("DA"), PdfString(appearance.constData()));
        const pdf_int64 quadding = spec.alignment == 1 ? 2 : spec.alignment == 2 ? 1 : 0;
        dictionary.AddKey(PdfName("Q"), PdfVariant(quadding));
        PdfDictionary &formDictionary = d_->form->GetObject()->GetDictionary();
        if (!formDictionary.HasKey(PdfName("DR")))
            formDictionary.AddKey(PdfName("DR"), PdfDictionary());
        PdfDictionary &resources = formDictionary.GetKey(PdfName("DR"))->GetDictionary();
        if (!resources.HasKey(PdfName("Font")))
            resources.AddKey(PdfName("Font"), PdfDictionary());
        PdfDictionary &fontResources = resources.GetKey(PdfName("Font"))->GetDictionary();
        fontResources.AddKey(PdfName(id.constData()), font->GetObject()->Reference());
    } catch (const PdfError &e) {
        d_->fail(e);
    }
    return {};
}

Status PdfDocumentWriter::EndDocument()
{
    if (!d_->doc)
        return Error{ErrorCode::PathError, QStringLiteral("no PDF document is open")};
    if (d_->error.isEmpty()) {
        try {
            d_->currentPage(); // a document has at least one page
            d_->painter->FinishPage();
            d_->doc->Write(QFile::encodeName(d_->path).constData());
        } catch (const PdfError &e) {
            d_->fail(e);
        }
    }
    const QString error = d_->error;
    const int pages = d_->pages;
    d_ = std::make_unique<State>();
    d_->pages = pages;
    if (!error.isEmpty())
        return Error{ErrorCode::PathError, error};
    return {};
}

} // namespace ff::pdf
