#pragma once
// The design of one database as read from the block at the tail of an app image: pages, element
// tables, the interface's words and the reports. Read once at start-up, then never changed.
//
// Element tables are vectors indexed by element number. Fields, combos and notes start at 1: their
// index 0 is an unused template and stays default. Labels always have room for indexes 0 to 5.
// Geometry is in twips. Texts are QString, decoded from the block's 8-bit bytes with the design's
// code page (FontCharset); scrambled texts are stored here already unscrambled.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <vector>

namespace ff {

// A page number of 5 or more stands on no page.
constexpr int kPageLimit = 5;
constexpr int kMaxPictures = 53;
constexpr int kMinLabels = 6;

struct FrameStyle {
    int32_t color = 0;
    int32_t fill = 0;
};

struct FieldElement {
    bool FieldMenu = false;
    bool FieldGlobal = false;
    uint8_t FieldDefault = 0;
    uint8_t FieldWriteOnce = 0;
    int16_t FieldPage = 0;
    uint8_t FieldPrint = 0;
    uint8_t FieldNoSearch = 0;
    int16_t Locked = 0;
    int32_t MaxLength = 0;
    float Top = 0, Left = 0;
    QString FontName;
    int32_t ForeColor = 0;
    bool FontBold = false, FontItalic = false;
    int32_t BackColor = 0xFFFFFF; // also FieldBackColor, the colour after focus colouring
    float FontSize = 8;
    QString Tag; // the field's format text
    int16_t FieldTabOrder = 0;
    int16_t Border = 0;
    QString ToolTip, FieldHint;
    int16_t FieldDisplay = 0;
    uint8_t FieldCase = 0;
    uint8_t FieldType = 0;
    QString FieldFormula;
    float Height = 0, Width = 0;
    int16_t Alignment = 0;
    bool FieldBox = false;
    FrameStyle Frame; // only when FieldBox
};

struct NoteElement {
    int16_t NotePage = 0;
    uint8_t NoteWriteOnce = 0;
    uint8_t NotePrint = 0;
    uint8_t NoteNoSearch = 0;
    int32_t MaxLength = 0;
    float Top = 0, Left = 0;
    int32_t ForeColor = 0;
    QString FontName;
    bool FontBold = false, FontItalic = false;
    int32_t BackColor = 0xFFFFFF;
    float FontSize = 8;
    QString Tag;
    int16_t NoteTabOrder = 0;
    int16_t Border = 0;
    QString ToolTip, NoteHint;
    float Height = 0, Width = 0;
    int16_t Alignment = 0;
    bool NoteBox = false;
    FrameStyle Frame;
};

struct ComboElement {
    QStringList List;
    bool ComboMenu = false;
    int16_t TextCase = 0;
    int16_t MaxLength = 0;
    int32_t ComboPage = 0;
    int32_t ComboWriteOnce = 0;
    int32_t ComboPrint = 0;
    int32_t ComboNoSearch = 0;
    int32_t ComboFormat = 0;
    float Top = 0, Left = 0;
    QString FontName;
    int32_t ForeColor = 0;
    bool FontBold = false, FontItalic = false;
    int32_t BackColor = 0xFFFFFF;
    float FontSize = 8;
    QString Tag;
    int16_t ComboTabOrder = 0;
    QString ToolTip, ComboHint;
    float Width = 0;
    FrameStyle Frame; // the combo's frame always exists
};

struct CheckElement {
    bool CheckMenu = false;
    int32_t CheckPage = 0;
    int32_t CheckPrint = 0;
    int32_t CheckNoSearch = 0;
    int32_t CheckWriteOnce = 0;
    float Top = 0, Left = 0;
    QString ToolTip, CheckHint;
    QString Tag;
    int32_t CheckTabOrder = 0;
    uint8_t OptionBx = 0; // 1 = drawn as an option box
    int16_t ForeStyle = 0;
    int32_t CheckDefault = 0;
};

struct TitleElement {
    int16_t TitlePage = 0;
    uint8_t TitlePrint = 0;
    QString FontName;
    bool FontItalic = false, FontBold = false, FontUnderline = false;
    float FontSize = 8;
    int32_t ForeColor = 0;
    float Left = 0, Top = 0;
    QString Caption;
    int16_t Alignment = 0;
    QString Tag; // non-empty: the label is clickable
    QString ToolTip, TitleHint;
    bool present = false; // false for the padding entries up to index 5 that the block did not hold
};

struct PictureElement {
    QString PictureName;
    int16_t PicturePage = 0;
    uint8_t PicturePrint = 0;
    QString FileName; // an embedded file, extracted into the app's folder
    float Top = 0, Left = 0;
    QString ToolTip, PictureHint;
    int16_t Border = 0;
    bool Stretch = false; // true: a per-record picture with an 8-character name in the record
    float Height = 0, Width = 0;
    int16_t ZOrder = 0;
    QString PictureLink;
};

struct ShapeElement {
    int16_t ShapePage = 0;
    uint8_t ShapePrint = 0;
    int32_t BackColor = 0, BorderColor = 0, FillColor = 0;
    int16_t BorderStyle = 0;
    int32_t BorderWidth = 1; // a stored 0 is taken as 1
    int16_t FillStyle = 0;
    float Width = 0, Height = 0;
    int16_t Shape = 0; // 0 rectangle, 1 square, 2 oval, 3 circle, 4 rounded rectangle, 5 rounded square
    float Top = 0, Left = 0;
};

struct LineElement {
    int16_t LinePage = 0;
    float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    int32_t BorderColor = 0;
    uint8_t LinePrint = 0;
};

struct ButtonElement {
    int16_t ButtonPage = 0;
    QString Caption;
    QString Tag;
    QString FontName;
    QString ToolTip;
    int32_t FontSize = 8;
    int32_t Border = 0;
    float Top = 0, Left = 0, Width = 0, Height = 0;
    int32_t BackColor = 0, RenderColor = 0;
    int16_t ButtonMode = 0;
    QString ButtonScript;
};

// One report of the report menu: its caption and, when the caption is not empty, its definition.
struct ReportShape {
    int16_t Visible = -1, BorderWidth = 1, FillStyle = 1, BorderStyle = 1, Shape = 0;
    int32_t FillColor = 0, BorderColor = 0;
    float Height = 0, Width = 0, Top = 0, Left = 0;
};
struct ReportLine {
    int16_t Visible = -1;
    int32_t BorderColor = 0;
    float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};
struct ReportPicture {
    int16_t Visible = -1;
    int16_t Top = 0, Left = 0, Height = 0, Width = 0;
    int16_t Flag = 0;
    int16_t ImageField = 0;
    int16_t ImageRow = 0;
};
struct ReportLabel {
    int16_t Visible = -1;
    QString FontName;
    bool FontBold = false, FontItalic = false, FontUnderline = false;
    float FontSize = 8;
    int32_t ForeColor = 0;
    float Top = 0, Left = 0, Width = 0, Height = 0;
    int16_t Alignment = 0;
    int16_t AutoSize = 0;
    int16_t LabelFixed = 0; // -1 (65535): fixed text; otherwise the field number the label shows
    QString Text;
    int16_t LabelRow = 0;
};
struct ReportDefinition {
    QString Caption;
    float WindowWidth = 0, WindowHeight = 0;
    float PageWidth = 0, PageHeight = 0;
    std::vector<ReportShape> Shapes;     // indexes from 0
    std::vector<ReportLine> Lines;       // indexes from 0
    std::vector<ReportPicture> Pictures; // indexes from 0
    std::vector<ReportLabel> Labels;     // labels 1..n stored at 0..n-1
    // Set on load when the block broke off inside this report or behind it: what was read is kept,
    // and the report engine refuses the report with a message instead of printing half of it.
    bool Damaged = false;
};

struct HtmlStyle {
    QString HtmlStyleName;
    uint8_t HtmlStyleFlag = 0;
};

struct Template {
    QString TemplateExtension; // stored with "*." ahead of it when not empty
    QString TemplateText;
};

// Rows of the caption run (1-based in the design file; stored here at 0..23).
constexpr int kCaptionRunRows = 24;

struct Design {
    // Texts and settings in block order.
    QString AppTitle;
    int16_t Pattern = 0;
    int32_t ScrollColor = 0;
    bool HasHints = true;
    QString TextExtension;
    int32_t FlowPageEnabled = 0;
    double PageWidth = 0, PageHeight = 0; // twips
    double DesignMark = 0;
    int16_t MainWindowNumber = 0;
    QString StatsTip;
    std::array<QString, 7> ChartTexts;
    int32_t ScrambleRecords = 0;
    QString MainCap;
    uint8_t ReportLineMode = 0;
    QString AppFontName;
    int32_t FontCharset = 0;
    int16_t WindowState = 0;
    std::array<QString, 60> MessageText;

    std::vector<ShapeElement> Shapes;     // 0..ShapeCount
    std::vector<LineElement> Lines;       // 0..LineCount
    std::vector<PictureElement> Pictures; // 0..PictureCount
    std::vector<TitleElement> Titles;     // 0..max(TitleCount, 5)
    std::vector<FieldElement> Fields;     // 0..FieldCount, 0 unused
    std::vector<ComboElement> Combos;     // 0..ComboCount, 0 unused
    std::vector<NoteElement> Notes;       // 0..NoteCount, 0 unused
    std::vector<CheckElement> Checks;     // 0..CheckCount
    std::vector<ButtonElement> Buttons;   // 0..ButtonCount
    // Counts as the block gives them: highest index, -1 for none (fields, combos, notes: count).
    int16_t ShapeCount = -1, LineCount = -1, PictureCount = -1, TitleCount = -1;
    int16_t FieldCount = 0, ComboCount = 0, NoteCount = 0, CheckCount = -1, ButtonCount = -1;

    uint8_t ClockFormat = 0;
    bool AboutInfoVisible = true;
    QString Aboutme;
    bool Image4Visible = true;
    QString AdminPassword; // unscrambled, not yet coded
    std::array<QString, kCaptionRunRows> CaptionRun;
    uint8_t StampFormat = 0;
    QString AboutLabel1;
    QString Finden3Caption;
    std::array<QString, 5> PageCaptions;
    int16_t TileMode = 0;
    bool ExportingVisible = true;
    std::array<QString, 81> UiText;
    std::array<QString, 12> SelectiveText;
    std::array<int32_t, 11> SearchSetting{};
    QString ResultListText;
    bool ResultListFlag = false;
    bool ResultImage2Visible = true;
    bool ResultExportVisible = true;
    int32_t ResultSetting = 0;
    int16_t ResultMode = 0;
    bool Frame3Stretch = false;
    double Frame3Height = 0, Frame3Width = 0;
    QString FieldSeparator;
    QString DataExtension;
    bool Frame1Visible = true;
    uint8_t AutoRunButton = 0;
    bool MailIconVisible = true;
    int16_t MailAddressField = 0, MailNameField = 0;
    uint8_t ShowZeros = 0;
    std::vector<HtmlStyle> HtmlStyles; // 0..HtmlStyleCount
    std::array<Template, 10> Templates;
    std::array<int32_t, 5> PageBackColor{};
    std::vector<ReportDefinition> Reports; // reports 1..ReportCount stored at 0..n-1
    QString BackgroundPicture;

    // Derived while loading.
    int PageCount = 0;             // highest page number in use below 5
    bool HasRecordPictures = false; // some picture has Stretch

    static bool onPage(int page) { return page >= 0 && page < kPageLimit; }
};

} // namespace ff
