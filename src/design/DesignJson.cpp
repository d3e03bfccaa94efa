#include "design/DesignJson.h"

#include "design/DesignReader.h"
#include "design/DesignWriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>

#include <cfloat>
#include <charconv>
#include <cmath>
#include <limits>

namespace ff {

namespace {

// ---- Member lists, shared by both directions -------------------------------------------------

template <class V>
void designMembers(V &v, Design &d)
{
    v("AppTitle", d.AppTitle);
    v("Pattern", d.Pattern);
    v("ScrollColor", d.ScrollColor);
    v("HasHints", d.HasHints);
    v("TextExtension", d.TextExtension);
    v("FlowPageEnabled", d.FlowPageEnabled);
    v("PageWidth", d.PageWidth);
    v("PageHeight", d.PageHeight);
    v("DesignMark", d.DesignMark);
    v("MainWindowNumber", d.MainWindowNumber);
    v("StatsTip", d.StatsTip);
    v("ChartTexts", d.ChartTexts);
    v("ScrambleRecords", d.ScrambleRecords);
    v("MainCap", d.MainCap);
    v("ReportLineMode", d.ReportLineMode);
    v("AppFontName", d.AppFontName);
    v("FontCharset", d.FontCharset);
    v("WindowState", d.WindowState);
    v("MessageText", d.MessageText);
    v("ClockFormat", d.ClockFormat);
    v("AboutInfoVisible", d.AboutInfoVisible);
    v("Aboutme", d.Aboutme);
    v("Image4Visible", d.Image4Visible);
    v("AdminPassword", d.AdminPassword);
    v("CaptionRun", d.CaptionRun);
    v("StampFormat", d.StampFormat);
    v("AboutLabel1", d.AboutLabel1);
    v("Finden3Caption", d.Finden3Caption);
    v("PageCaptions", d.PageCaptions);
    v("TileMode", d.TileMode);
    v("ExportingVisible", d.ExportingVisible);
    v("UiText", d.UiText);
    v("SelectiveText", d.SelectiveText);
    v("SearchSetting", d.SearchSetting);
    v("ResultListText", d.ResultListText);
    v("ResultListFlag", d.ResultListFlag);
    v("ResultImage2Visible", d.ResultImage2Visible);
    v("ResultExportVisible", d.ResultExportVisible);
    v("ResultSetting", d.ResultSetting);
    v("ResultMode", d.ResultMode);
    v("Frame3Stretch", d.Frame3Stretch);
    v("Frame3Height", d.Frame3Height);
    v("Frame3Width", d.Frame3Width);
    v("FieldSeparator", d.FieldSeparator);
    v("DataExtension", d.DataExtension);
    v("Frame1Visible", d.Frame1Visible);
    v("AutoRunButton", d.AutoRunButton);
    v("MailIconVisible", d.MailIconVisible);
    v("MailAddressField", d.MailAddressField);
    v("MailNameField", d.MailNameField);
    v("ShowZeros", d.ShowZeros);
    v("PageBackColor", d.PageBackColor);
    v("BackgroundPicture", d.BackgroundPicture);
}

// Written for the reader's benefit; on input the lists and elements decide them.
template <class V>
void derivedMembers(V &v, Design &d)
{
    v("ShapeCount", d.ShapeCount);
    v("LineCount", d.LineCount);
    v("PictureCount", d.PictureCount);
    v("TitleCount", d.TitleCount);
    v("FieldCount", d.FieldCount);
    v("ComboCount", d.ComboCount);
    v("NoteCount", d.NoteCount);
    v("CheckCount", d.CheckCount);
    v("ButtonCount", d.ButtonCount);
    v("PageCount", d.PageCount);
    v("HasRecordPictures", d.HasRecordPictures);
}

template <class V>
void members(V &v, ShapeElement &e)
{
    v("ShapePage", e.ShapePage); v("ShapePrint", e.ShapePrint); v("BackColor", e.BackColor);
    v("BorderColor", e.BorderColor); v("FillColor", e.FillColor); v("BorderStyle", e.BorderStyle);
    v("BorderWidth", e.BorderWidth); v("FillStyle", e.FillStyle); v("Width", e.Width);
    v("Height", e.Height); v("Shape", e.Shape); v("Top", e.Top); v("Left", e.Left);
}

template <class V>
void members(V &v, LineElement &e)
{
    v("LinePage", e.LinePage); v("X1", e.X1); v("Y1", e.Y1); v("X2", e.X2); v("Y2", e.Y2);
    v("BorderColor", e.BorderColor); v("LinePrint", e.LinePrint);
}

template <class V>
void members(V &v, PictureElement &e)
{
    v("PictureName", e.PictureName); v("PicturePage", e.PicturePage); v("PicturePrint", e.PicturePrint);
    v("FileName", e.FileName); v("Top", e.Top); v("Left", e.Left); v("ToolTip", e.ToolTip);
    v("PictureHint", e.PictureHint); v("Border", e.Border); v("Stretch", e.Stretch);
    v("Height", e.Height); v("Width", e.Width); v("ZOrder", e.ZOrder); v("PictureLink", e.PictureLink);
}

template <class V>
void members(V &v, TitleElement &e)
{
    v("TitlePage", e.TitlePage); v("TitlePrint", e.TitlePrint); v("FontName", e.FontName);
    v("FontItalic", e.FontItalic); v("FontBold", e.FontBold); v("FontUnderline", e.FontUnderline);
    v("FontSize", e.FontSize); v("ForeColor", e.ForeColor); v("Left", e.Left); v("Top", e.Top);
    v("Caption", e.Caption); v("Alignment", e.Alignment); v("Tag", e.Tag); v("ToolTip", e.ToolTip);
    v("TitleHint", e.TitleHint);
}

template <class V>
void members(V &v, FieldElement &e)
{
    v("FieldMenu", e.FieldMenu); v("FieldGlobal", e.FieldGlobal); v("FieldDefault", e.FieldDefault);
    v("FieldWriteOnce", e.FieldWriteOnce); v("FieldPage", e.FieldPage); v("FieldPrint", e.FieldPrint);
    v("FieldNoSearch", e.FieldNoSearch); v("Locked", e.Locked); v("MaxLength", e.MaxLength);
    v("Top", e.Top); v("Left", e.Left); v("FontName", e.FontName); v("ForeColor", e.ForeColor);
    v("FontBold", e.FontBold); v("FontItalic", e.FontItalic); v("BackColor", e.BackColor);
    v("FontSize", e.FontSize); v("Tag", e.Tag); v("FieldTabOrder", e.FieldTabOrder);
    v("Border", e.Border); v("ToolTip", e.ToolTip); v("FieldHint", e.FieldHint);
    v("FieldDisplay", e.FieldDisplay); v("FieldCase", e.FieldCase); v("FieldType", e.FieldType);
    v("FieldFormula", e.FieldFormula); v("Height", e.Height); v("Width", e.Width);
    v("Alignment", e.Alignment); v("FieldBox", e.FieldBox); v("Frame", e.Frame);
}

template <class V>
void members(V &v, NoteElement &e)
{
    v("NotePage", e.NotePage); v("NoteWriteOnce", e.NoteWriteOnce); v("NotePrint", e.NotePrint);
    v("NoteNoSearch", e.NoteNoSearch); v("MaxLength", e.MaxLength); v("Top", e.Top); v("Left", e.Left);
    v("ForeColor", e.ForeColor); v("FontName", e.FontName); v("FontBold", e.FontBold);
    v("FontItalic", e.FontItalic); v("BackColor", e.BackColor); v("FontSize", e.FontSize);
    v("Tag", e.Tag); v("NoteTabOrder", e.NoteTabOrder); v("Border", e.Border); v("ToolTip", e.ToolTip);
    v("NoteHint", e.NoteHint); v("Height", e.Height); v("Width", e.Width); v("Alignment", e.Alignment);
    v("NoteBox", e.NoteBox); v("Frame", e.Frame);
}

template <class V>
void members(V &v, ComboElement &e)
{
    v("List", e.List); v("ComboMenu", e.ComboMenu); v("TextCase", e.TextCase);
    v("MaxLength", e.MaxLength); v("ComboPage", e.ComboPage); v("ComboWriteOnce", e.ComboWriteOnce);
    v("ComboPrint", e.ComboPrint); v("ComboNoSearch", e.ComboNoSearch); v("ComboFormat", e.ComboFormat);
    v("Top", e.Top); v("Left", e.Left); v("FontName", e.FontName); v("ForeColor", e.ForeColor);
    v("FontBold", e.FontBold); v("FontItalic", e.FontItalic); v("BackColor", e.BackColor);
    v("FontSize", e.FontSize); v("Tag", e.Tag); v("ComboTabOrder", e.ComboTabOrder);
    v("ToolTip", e.ToolTip); v("ComboHint", e.ComboHint); v("Width", e.Width); v("Frame", e.Frame);
}

template <class V>
void members(V &v, CheckElement &e)
{
    v("CheckMenu", e.CheckMenu); v("CheckPage", e.CheckPage); v("CheckPrint", e.CheckPrint);
    v("CheckNoSearch", e.CheckNoSearch); v("CheckWriteOnce", e.CheckWriteOnce); v("Top", e.Top);
    v("Left", e.Left); v("ToolTip", e.ToolTip); v("CheckHint", e.CheckHint); v("Tag", e.Tag);
    v("CheckTabOrder", e.CheckTabOrder); v("OptionBx", e.OptionBx); v("ForeStyle", e.ForeStyle);
    v("CheckDefault", e.CheckDefault);
}

template <class V>
void members(V &v, ButtonElement &e)
{
    v("ButtonPage", e.ButtonPage); v("Caption", e.Caption); v("Tag", e.Tag); v("FontName", e.FontName);
    v("ToolTip", e.ToolTip); v("FontSize", e.FontSize); v("Border", e.Border); v("Top", e.Top);
    v("Left", e.Left); v("Width", e.Width); v("Height", e.Height); v("BackColor", e.BackColor);
    v("RenderColor", e.RenderColor); v("ButtonMode", e.ButtonMode); v("ButtonScript", e.ButtonScript);
}

template <class V>
void members(V &v, HtmlStyle &e)
{
    v("HtmlStyleName", e.HtmlStyleName); v("HtmlStyleFlag", e.HtmlStyleFlag);
}

template <class V>
void members(V &v, Template &e)
{
    v("TemplateExtension", e.TemplateExtension); v("TemplateText", e.TemplateText);
}

template <class V>
void members(V &v, ReportShape &e)
{
    v("Visible", e.Visible); v("BorderWidth", e.BorderWidth); v("FillStyle", e.FillStyle);
    v("BorderStyle", e.BorderStyle); v("Shape", e.Shape); v("FillColor", e.FillColor);
    v("BorderColor", e.BorderColor); v("Height", e.Height); v("Width", e.Width); v("Top", e.Top);
    v("Left", e.Left);
}

template <class V>
void members(V &v, ReportLine &e)
{
    v("Visible", e.Visible); v("BorderColor", e.BorderColor); v("X1", e.X1); v("Y1", e.Y1);
    v("X2", e.X2); v("Y2", e.Y2);
}

template <class V>
void members(V &v, ReportPicture &e)
{
    v("Visible", e.Visible); v("Top", e.Top); v("Left", e.Left); v("Height", e.Height);
    v("Width", e.Width); v("Flag", e.Flag); v("ImageField", e.ImageField); v("ImageRow", e.ImageRow);
}

template <class V>
void members(V &v, ReportLabel &e)
{
    v("Visible", e.Visible); v("FontName", e.FontName); v("FontBold", e.FontBold);
    v("FontItalic", e.FontItalic); v("FontUnderline", e.FontUnderline); v("FontSize", e.FontSize);
    v("ForeColor", e.ForeColor); v("Top", e.Top); v("Left", e.Left); v("Width", e.Width);
    v("Height", e.Height); v("Alignment", e.Alignment); v("AutoSize", e.AutoSize);
    v("LabelFixed", e.LabelFixed); v("Text", e.Text); v("LabelRow", e.LabelRow);
}

template <class V>
void members(V &v, ReportDefinition &e)
{
    v("Caption", e.Caption); v("WindowWidth", e.WindowWidth); v("WindowHeight", e.WindowHeight);
    v("PageWidth", e.PageWidth); v("PageHeight", e.PageHeight); v("Shapes", e.Shapes);
    v("Lines", e.Lines); v("Pictures", e.Pictures); v("Labels", e.Labels);
}

// ---- Design → JSON ---------------------------------------------------------------------------

// The shortest decimal that reads back as the same float, so 0.1f is written 0.1.
double shortestFloat(float f)
{
    char buffer[32];
    const auto r = std::to_chars(buffer, buffer + sizeof buffer, f);
    return QByteArray(buffer, int(r.ptr - buffer)).toDouble();
}

struct ToJson {
    QJsonObject o;

    void operator()(const char *k, const QString &v) { o[QLatin1String(k)] = v; }
    void operator()(const char *k, bool v) { o[QLatin1String(k)] = v; }
    void operator()(const char *k, uint8_t v) { o[QLatin1String(k)] = int(v); }
    void operator()(const char *k, int16_t v) { o[QLatin1String(k)] = int(v); }
    void operator()(const char *k, int32_t v) { o[QLatin1String(k)] = int(v); }
    void operator()(const char *k, float v) { o[QLatin1String(k)] = shortestFloat(v); }
    void operator()(const char *k, double v) { o[QLatin1String(k)] = v; }
    void operator()(const char *k, const QStringList &v) { o[QLatin1String(k)] = QJsonArray::fromStringList(v); }
    void operator()(const char *k, const FrameStyle &v)
    {
        o[QLatin1String(k)] = QJsonObject{{QStringLiteral("color"), v.color}, {QStringLiteral("fill"), v.fill}};
    }
    template <size_t N>
    void operator()(const char *k, const std::array<QString, N> &v)
    {
        // Trailing empty entries are left out: a missing entry is empty.
        size_t n = N;
        while (n > 0 && v[n - 1].isEmpty())
            --n;
        QJsonArray a;
        for (size_t i = 0; i < n; ++i)
            a.append(v[i]);
        o[QLatin1String(k)] = a;
    }
    template <size_t N>
    void operator()(const char *k, const std::array<int32_t, N> &v)
    {
        QJsonArray a;
        for (int32_t x : v)
            a.append(int(x));
        o[QLatin1String(k)] = a;
    }
    template <class E>
    void operator()(const char *k, std::vector<E> &v)
    {
        o[QLatin1String(k)] = objects(v.begin(), v.end());
    }

    template <class It>
    static QJsonArray objects(It first, It last)
    {
        QJsonArray a;
        for (; first != last; ++first) {
            ToJson t;
            members(t, *first);
            a.append(t.o);
        }
        return a;
    }
};

// ---- JSON → Design ---------------------------------------------------------------------------

bool isColorKey(const char *k) { return QByteArray(k).contains("Color") || QByteArray(k) == "color"; }

class FromJson {
public:
    FromJson(const QJsonObject &o, QString path, Error &error) : o_(o), path_(std::move(path)), error_(error) {}

    bool failed() const { return error_.code != ErrorCode::None; }

    void fail(const QString &key, const QString &what)
    {
        if (!failed())
            error_ = makeError(ErrorCode::Invalid, QStringLiteral("%1: %2").arg(where(key), what));
    }

    QString where(const QString &key) const { return path_.isEmpty() ? key : path_ + QLatin1Char('.') + key; }

    // Marks a key as understood without reading it here.
    void known(const char *k) { known_.insert(QLatin1String(k)); }

    // Every key must be one the lists name; "_" keys are comments.
    void rejectUnknown()
    {
        for (auto it = o_.begin(); it != o_.end() && !failed(); ++it)
            if (!known_.contains(it.key()) && !it.key().startsWith(QLatin1Char('_')))
                fail(it.key(), QStringLiteral("unknown key"));
    }

    void operator()(const char *k, QString &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined()) {
            if (!j.isString())
                return fail(QLatin1String(k), QStringLiteral("expected a string"));
            v = j.toString();
        }
    }
    void operator()(const char *k, bool &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined()) {
            if (j.isBool())
                v = j.toBool();
            else if (j.isDouble())
                v = j.toDouble() != 0;
            else
                fail(QLatin1String(k), QStringLiteral("expected true or false"));
        }
    }
    void operator()(const char *k, uint8_t &v) { integer(k, v); }
    void operator()(const char *k, int16_t &v) { integer(k, v); }
    void operator()(const char *k, int32_t &v) { integer(k, v); }
    void operator()(const char *k, float &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined()) {
            if (!j.isDouble() || std::fabs(j.toDouble()) > double(FLT_MAX))
                return fail(QLatin1String(k), QStringLiteral("expected a number"));
            v = static_cast<float>(j.toDouble());
        }
    }
    void operator()(const char *k, double &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined()) {
            if (!j.isDouble())
                return fail(QLatin1String(k), QStringLiteral("expected a number"));
            v = j.toDouble();
        }
    }
    void operator()(const char *k, QStringList &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined()) {
            if (!j.isArray())
                return fail(QLatin1String(k), QStringLiteral("expected an array of strings"));
            v.clear();
            const QJsonArray a = j.toArray();
            for (qsizetype i = 0; i < a.size(); ++i) {
                if (!a[i].isString())
                    return fail(QStringLiteral("%1[%2]").arg(QLatin1String(k)).arg(i), QStringLiteral("expected a string"));
                v.append(a[i].toString());
            }
        }
    }
    void operator()(const char *k, FrameStyle &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined()) {
            if (!j.isObject())
                return fail(QLatin1String(k), QStringLiteral("expected an object {\"color\": .., \"fill\": ..}"));
            FromJson inner(j.toObject(), where(QLatin1String(k)), error_);
            inner("color", v.color);
            inner("fill", v.fill);
            inner.rejectUnknown();
        }
    }
    template <size_t N>
    void operator()(const char *k, std::array<QString, N> &v)
    {
        const QJsonArray a = array(k, N);
        for (qsizetype i = 0; i < a.size() && !failed(); ++i) {
            if (!a[i].isString())
                return fail(QStringLiteral("%1[%2]").arg(QLatin1String(k)).arg(i), QStringLiteral("expected a string"));
            v[size_t(i)] = a[i].toString();
        }
    }
    template <size_t N>
    void operator()(const char *k, std::array<int32_t, N> &v)
    {
        const QJsonArray a = array(k, N);
        for (qsizetype i = 0; i < a.size() && !failed(); ++i)
            integerValue(QStringLiteral("%1[%2]").arg(QLatin1String(k)).arg(i), a[i], isColorKey(k), v[size_t(i)]);
    }
    template <class E>
    void operator()(const char *k, std::vector<E> &v)
    {
        const QJsonArray a = array(k, std::numeric_limits<int16_t>::max());
        v.clear();
        objects(k, a, 0, v);
    }

    // Objects of an array into `v`, the first at index `base` of the element numbering.
    template <class E>
    void objects(const char *k, const QJsonArray &a, int base, std::vector<E> &v)
    {
        for (qsizetype i = 0; i < a.size() && !failed(); ++i) {
            const QString path = where(QStringLiteral("%1[%2]").arg(QLatin1String(k)).arg(i));
            if (!a[i].isObject()) {
                error_ = makeError(ErrorCode::Invalid, QStringLiteral("%1: expected an object (element %2)").arg(path).arg(i + base));
                return;
            }
            E e{};
            FromJson inner(a[i].toObject(), path, error_);
            members(inner, e);
            inner.rejectUnknown();
            v.push_back(std::move(e));
        }
    }

    QJsonArray array(const char *k, size_t limit)
    {
        const QJsonValue j = take(k);
        if (j.isUndefined())
            return {};
        if (!j.isArray()) {
            fail(QLatin1String(k), QStringLiteral("expected an array"));
            return {};
        }
        const QJsonArray a = j.toArray();
        if (size_t(a.size()) > limit) {
            fail(QLatin1String(k), QStringLiteral("%1 entries, at most %2").arg(a.size()).arg(limit));
            return {};
        }
        return a;
    }

    QJsonValue take(const char *k)
    {
        known(k);
        if (failed())
            return QJsonValue(QJsonValue::Undefined);
        return o_.value(QLatin1String(k));
    }

private:
    template <class T>
    void integer(const char *k, T &v)
    {
        if (const QJsonValue j = take(k); !j.isUndefined())
            integerValue(QLatin1String(k), j, isColorKey(k), v);
    }

    template <class T>
    void integerValue(const QString &key, const QJsonValue &j, bool color, T &v)
    {
        static const QRegularExpression rgb(QStringLiteral("^#([0-9A-Fa-f]{2})([0-9A-Fa-f]{2})([0-9A-Fa-f]{2})$"));
        if (color && j.isString()) {
            const auto m = rgb.match(j.toString());
            if (!m.hasMatch())
                return fail(key, QStringLiteral("expected a colour as an integer or \"#RRGGBB\""));
            // The platform's colour longs are 0x00BBGGRR.
            const int r = m.captured(1).toInt(nullptr, 16), g = m.captured(2).toInt(nullptr, 16), b = m.captured(3).toInt(nullptr, 16);
            v = static_cast<T>(r | (g << 8) | (b << 16));
            return;
        }
        const double x = j.toDouble(std::nan(""));
        if (!j.isDouble() || std::floor(x) != x || x < double(std::numeric_limits<T>::min()) || x > double(std::numeric_limits<T>::max())) {
            return fail(key, QStringLiteral("expected a whole number from %1 to %2%3")
                                 .arg(qint64(std::numeric_limits<T>::min()))
                                 .arg(qint64(std::numeric_limits<T>::max()))
                                 .arg(color ? QStringLiteral(" or \"#RRGGBB\"") : QString()));
        }
        v = static_cast<T>(x);
    }

    const QJsonObject o_;
    QString path_;
    Error &error_;
    QSet<QString> known_;
};

} // namespace

QJsonObject DesignJson::toJson(const Design &design)
{
    Design d = design;
    ToJson t;
    t.o[QStringLiteral("format")] = QStringLiteral("flatform-design");
    t.o[QStringLiteral("version")] = kVersion;
    designMembers(t, d);
    derivedMembers(t, d);
    t("Shapes", d.Shapes);
    t("Lines", d.Lines);
    t("Pictures", d.Pictures);
    t("Checks", d.Checks);
    t("Buttons", d.Buttons);
    // Labels up to the last one the design holds; the padding up to index 5 is not written.
    size_t titles = d.Titles.size();
    while (titles > 0 && !d.Titles[titles - 1].present)
        --titles;
    t.o[QStringLiteral("Titles")] = ToJson::objects(d.Titles.begin(), d.Titles.begin() + long(titles));
    // Fields, combos and notes from element 1: index 0 is the template.
    auto fromOne = [&](const char *k, auto &v) {
        t.o[QLatin1String(k)] = v.empty() ? QJsonArray() : ToJson::objects(v.begin() + 1, v.end());
    };
    fromOne("Fields", d.Fields);
    fromOne("Combos", d.Combos);
    fromOne("Notes", d.Notes);
    std::vector<Template> templates(d.Templates.begin(), d.Templates.end());
    while (!templates.empty() && templates.back().TemplateExtension.isEmpty() && templates.back().TemplateText.isEmpty())
        templates.pop_back();
    t("Templates", templates);
    t("HtmlStyles", d.HtmlStyles);
    QJsonArray reports;
    for (auto &r : d.Reports) {
        ToJson one;
        if (r.Caption.isEmpty())
            one("Caption", r.Caption); // an empty caption has no definition
        else
            members(one, r);
        reports.append(one.o);
    }
    t.o[QStringLiteral("Reports")] = reports;
    return t.o;
}

Result<Design> DesignJson::fromJson(const QJsonObject &json)
{
    Error error;
    Design d;
    FromJson f(json, QString(), error);
    if (json.value(QStringLiteral("format")).toString() != QLatin1String("flatform-design"))
        return makeError(ErrorCode::Invalid, QStringLiteral("format: expected \"flatform-design\""));
    const QJsonValue version = json.value(QStringLiteral("version"));
    if (!version.isDouble() || version.toDouble() != kVersion)
        return makeError(ErrorCode::Invalid, QStringLiteral("version: expected %1").arg(kVersion));
    f.known("format");
    f.known("version");
    designMembers(f, d);
    derivedMembers(f, d);
    f("Shapes", d.Shapes);
    f("Lines", d.Lines);
    f("Pictures", d.Pictures);
    f("Checks", d.Checks);
    f("Buttons", d.Buttons);
    f("Titles", d.Titles);
    for (auto &t : d.Titles)
        t.present = true;
    auto fromOne = [&](const char *k, auto &v) {
        const QJsonArray a = f.array(k, std::numeric_limits<int16_t>::max());
        v.clear();
        v.emplace_back();
        f.objects(k, a, 1, v);
    };
    fromOne("Fields", d.Fields);
    fromOne("Combos", d.Combos);
    fromOne("Notes", d.Notes);
    {
        const QJsonArray a = f.array("Templates", d.Templates.size());
        std::vector<Template> templates;
        f.objects("Templates", a, 0, templates);
        for (size_t i = 0; i < templates.size(); ++i) {
            Template t = templates[i];
            // The design holds an extension as "*.ext"; a bare "ext" is taken as that.
            if (!t.TemplateExtension.isEmpty() && !t.TemplateExtension.startsWith(QLatin1String("*.")))
                t.TemplateExtension.prepend(QLatin1String("*."));
            d.Templates[i] = t;
        }
    }
    f("HtmlStyles", d.HtmlStyles);
    {
        const QJsonArray a = f.array("Reports", 255);
        f.objects("Reports", a, 1, d.Reports);
        for (auto &r : d.Reports)
            if (r.Caption.isEmpty())
                r = ReportDefinition{}; // nothing of a report without a caption is kept
    }
    if (error.code == ErrorCode::None && d.Pictures.size() > size_t(kMaxPictures))
        error = makeError(ErrorCode::Invalid, QStringLiteral("Pictures: %1 entries, at most %2").arg(d.Pictures.size()).arg(kMaxPictures));
    if (error.code == ErrorCode::None)
        f.rejectUnknown();
    if (error.code != ErrorCode::None)
        return error;
    DesignWriter::setCounts(d);
    DeriveDesignValues(d);
    return d;
}

QByteArray DesignJson::toText(const Design &design) { return QJsonDocument(toJson(design)).toJson(QJsonDocument::Indented); }

Result<Design> DesignJson::fromText(const QByteArray &text)
{
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(text, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        // Report the line of the offset, which is what an editor shows.
        const int line = int(text.left(parseError.offset).count('\n')) + 1;
        return makeError(ErrorCode::Invalid, QStringLiteral("line %1: %2").arg(line).arg(parseError.errorString()));
    }
    if (!doc.isObject())
        return makeError(ErrorCode::Invalid, QStringLiteral("the design file must hold one JSON object"));
    return fromJson(doc.object());
}

} // namespace ff
