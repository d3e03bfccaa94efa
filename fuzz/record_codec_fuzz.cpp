// libFuzzer target for the record codec: any bytes as a stored record of the example designs (the
// contacts and invoice examples as shipped, the contacts scrambled, the invoice with the flow
// layer). The first byte picks the design; the rest is the record, cut to the record length or
// filled up with the blank record as a short read is. The record is unpacked onto a page, packed
// again and the packed bytes unpacked once more: the second page must equal the first, and packing
// it must give the same bytes. A record the program has shown is saved as it was shown; only an
// amount at the very end of the 64-bit range may make the packer refuse the whole record.

#include "design/DesignJson.h"
#include "design/Page.h"
#include "entry/EngineFormulaHooks.h"
#include "formula/FormulaContext.h"
#include "store/RecordCodec.h"
#include "store/RecordLayout.h"

#include <QFile>
#include <QLocale>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

struct SilentHost : ff::MessageSink {
    void ShowMessage(const QString &, const QString &, int) override {}
};

// One design with its layout, codec and the formula engine's formats, built once.
struct Subject {
    ff::Design design;
    ff::RecordLayout layout;
    SilentHost host;
    ff::FormulaContext context;
    std::unique_ptr<ff::EngineFormulaHooks> hooks;
    std::unique_ptr<ff::RecordCodec> codec;

    explicit Subject(ff::Design d) : design(std::move(d)), layout(ff::ComputeRecordLayout(design))
    {
        context.locale = QLocale(QLocale::English, QLocale::UnitedStates);
        context.host = &host;
        hooks = std::make_unique<ff::EngineFormulaHooks>(context);
        codec = std::make_unique<ff::RecordCodec>(design, layout, *hooks, QLatin1Char('.'));
    }
};

ff::Design example(const char *name, int scramble, int flow)
{
    const QString path = QStringLiteral(FLATFORM_SOURCE_DIR "/examples/%1/%1.json").arg(QLatin1String(name));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        std::abort();
    }
    ff::Result<ff::Design> design = ff::DesignJson::fromText(file.readAll());
    if (!design) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(path), qPrintable(design.error().text));
        std::abort();
    }
    design->ScrambleRecords = static_cast<uint8_t>(scramble);
    design->FlowPageEnabled = static_cast<uint8_t>(flow);
    return std::move(*design);
}

std::vector<std::unique_ptr<Subject>> &subjects()
{
    static std::vector<std::unique_ptr<Subject>> all = [] {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        std::vector<std::unique_ptr<Subject>> made;
        made.push_back(std::make_unique<Subject>(example("contacts", 0, 0)));
        made.push_back(std::make_unique<Subject>(example("invoice", 0, 0)));
        made.push_back(std::make_unique<Subject>(example("contacts", 1, 0)));
        made.push_back(std::make_unique<Subject>(example("invoice", 0, 1)));
        return made;
    }();
    return all;
}

bool sameLabels(const QVector<ff::FlowLabel> &a, const QVector<ff::FlowLabel> &b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i) {
        const ff::FlowLabel &x = a[i], &y = b[i];
        if (x.page != y.page || x.style != y.style || x.fontSize != y.fontSize || x.alignment != y.alignment ||
            x.text != y.text || x.color != y.color || x.left != y.left || x.top != y.top)
            return false;
    }
    return true;
}

bool sameImages(const QVector<ff::FlowImage> &a, const QVector<ff::FlowImage> &b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i) {
        const ff::FlowImage &x = a[i], &y = b[i];
        if (x.page != y.page || x.left != y.left || x.top != y.top || x.width != y.width || x.height != y.height ||
            x.FlowImageId != y.FlowImageId || x.FlowImageLink != y.FlowImageLink)
            return false;
    }
    return true;
}

// A date is kept as ten-thousandths of a day and put on the page as their quotient by 10,000, a
// double. The product by 10,000 gives the same integer back while the date stays below about 2^51
// ten-thousandths; beyond 1e11 days (hundreds of millions of years, damage only) the date may move
// by a ten-thousandth, and only the text shown is compared.
bool sameDates(const QVector<double> &a, const QVector<double> &b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && std::fabs(a[i]) <= 1e11)
            return false;
    return true;
}

bool samePage(const ff::Page &a, const ff::Page &b)
{
    return a.FieldText == b.FieldText && sameDates(a.FieldDate, b.FieldDate) && a.ComboText == b.ComboText &&
           a.CheckValue == b.CheckValue && a.NoteText == b.NoteText && a.PictureRecordName == b.PictureRecordName &&
           a.TitleCaption == b.TitleCaption && (a.RecordStamp == b.RecordStamp || std::fabs(a.RecordStamp) > 1e11) && a.FieldLocked == b.FieldLocked &&
           a.ComboLocked == b.ComboLocked && a.CheckLocked == b.CheckLocked && a.NoteLocked == b.NoteLocked &&
           sameLabels(a.FlowLabels, b.FlowLabels) && sameImages(a.FlowImages, b.FlowImages);
}

// Whether an amount, a date or the stamp of the plain record lies at the very end of the 64-bit
// range, beyond any value that can be typed: such a record is refused by the packer (Overflow,
// nothing written) rather than saved with another value. A cleared record gets a new stamp.
bool amountAtTheLimit(const Subject &s, const QByteArray &plain)
{
    for (size_t i = 1; i < s.design.Fields.size(); ++i) {
        const int type = s.design.Fields[i].FieldType;
        if (s.layout.FieldOffset[i] == 0 || type < 2 || type > 9 || type == 5)
            continue;
        const double raw = static_cast<double>(ff::RecordCodec::readInt64(plain, s.layout.FieldOffset[i]));
        if (raw >= 9.2233e18 || raw <= -9.2233e18)
            return true;
    }
    if (s.layout.StampOffset == 0)
        return false;
    const double stamp = static_cast<double>(ff::RecordCodec::readInt64(plain, s.layout.StampOffset));
    return stamp >= 9.2233e18 || stamp <= -9.2233e18;
}

[[noreturn]] void fail(const char *what, const ff::Page &first, const ff::Page &second)
{
    std::fprintf(stderr, "record codec: %s\n", what);
    for (qsizetype i = 0; i < first.FieldText.size(); ++i)
        if (first.FieldText[i] != second.FieldText[i])
            std::fprintf(stderr, "  field %lld: \"%s\" then \"%s\"\n", static_cast<long long>(i),
                         qPrintable(first.FieldText[i]), qPrintable(second.FieldText[i]));
    const auto show = [](const char *kind, const QVector<QString> &a, const QVector<QString> &b) {
        for (qsizetype i = 0; i < a.size() && i < b.size(); ++i)
            if (a[i] != b[i])
                std::fprintf(stderr, "  %s %lld: \"%s\" then \"%s\"\n", kind, static_cast<long long>(i), qPrintable(a[i]),
                             qPrintable(b[i]));
    };
    for (qsizetype i = 0; i < first.FieldDate.size(); ++i)
        if (first.FieldDate[i] != second.FieldDate[i])
            std::fprintf(stderr, "  date %lld: %.17g then %.17g\n", static_cast<long long>(i), first.FieldDate[i],
                         second.FieldDate[i]);
    for (qsizetype i = 0; i < first.CheckValue.size(); ++i)
        if (first.CheckValue[i] != second.CheckValue[i])
            std::fprintf(stderr, "  check %lld: %d then %d\n", static_cast<long long>(i), first.CheckValue[i],
                         second.CheckValue[i]);
    if (first.RecordStamp != second.RecordStamp)
        std::fprintf(stderr, "  stamp: %.17g then %.17g\n", first.RecordStamp, second.RecordStamp);
    show("combo", first.ComboText, second.ComboText);
    show("note", first.NoteText, second.NoteText);
    show("picture", first.PictureRecordName, second.PictureRecordName);
    show("label", first.TitleCaption, second.TitleCaption);
    std::fprintf(stderr, "  flow: %lld labels, %lld images, then %lld and %lld\n",
                 static_cast<long long>(first.FlowLabels.size()), static_cast<long long>(first.FlowImages.size()),
                 static_cast<long long>(second.FlowLabels.size()), static_cast<long long>(second.FlowImages.size()));
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    std::vector<std::unique_ptr<Subject>> &all = subjects();
    Subject &s = *all[data[0] % all.size()];
    const int length = s.layout.RecordLength;
    // A short record is filled with the blank record, as a read past the end of the file is.
    QByteArray stored = s.codec->blankRecord();
    const size_t take = std::min<size_t>(size - 1, static_cast<size_t>(length));
    std::memcpy(stored.data(), data + 1, take);

    ff::Page first(s.design);
    s.codec->unpack(stored, first, 7, false);
    ff::Result<QByteArray> packed = s.codec->pack(first);
    if (!packed && packed.error().code == ff::ErrorCode::Overflow && amountAtTheLimit(s, s.codec->plain(stored)))
        return 0;
    if (!packed) {
        const QByteArray plain = s.codec->plain(stored);
        for (size_t i = 1; i < s.design.Fields.size(); ++i) {
            const int type = s.design.Fields[i].FieldType;
            if (s.layout.FieldOffset[i] != 0 && type >= 1 && type <= 9)
                std::fprintf(stderr, "  field %zu, type %d: %lld shown \"%s\"\n", i, type,
                             static_cast<long long>(ff::RecordCodec::readInt64(plain, s.layout.FieldOffset[i])),
                             qPrintable(first.FieldText[qsizetype(i)]));
        }
    }
    if (!packed)
        fail(qPrintable(QStringLiteral("a record that was shown cannot be packed: ") + packed.error().text), first, first);
    if (packed->size() != length)
        fail("the packed record has another length", first, first);

    ff::Page second(s.design);
    s.codec->unpack(*packed, second, 7, false);
    if (!samePage(first, second))
        fail("the packed record shows otherwise", first, second);
    bool farDate = std::fabs(first.RecordStamp) > 1e11;
    for (const double date : first.FieldDate)
        farDate = farDate || std::fabs(date) > 1e11;
    ff::Result<QByteArray> again = s.codec->pack(second);
    if (!again || (*again != *packed && !farDate))
        fail("packing the same page twice gives other bytes", first, second);
    return 0;
}
