#include "web/HtmlText.h"

#include <QLocale>
#include <QStringList>
#include <cmath>

namespace ff::web {

QString HtmlText::HtmlEscape(const QString &text)
{
    QString out = text;
    out.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    out.replace(QLatin1Char('"'), QLatin1String("&quot;"));
    out.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    out.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    out.replace(QLatin1String("\r\n"), QLatin1String("<br>"));
    return out;
}

namespace {

// The usual RGB values of the system colours by index, as 0x00BBGGRR.
uint32_t systemColor(uint32_t index)
{
    static const uint32_t table[] = {
        0xC8D0D4, // 0 scroll bar
        0xA56E3A, // 1 desktop
        0x6A240A, // 2 active caption
        0x808080, // 3 inactive caption
        0xC8D0D4, // 4 menu
        0xFFFFFF, // 5 window
        0x000000, // 6 window frame
        0x000000, // 7 menu text
        0x000000, // 8 window text
        0xFFFFFF, // 9 caption text
        0xC8D0D4, // 10 active border
        0xC8D0D4, // 11 inactive border
        0x808080, // 12 application workspace
        0x6A240A, // 13 highlight
        0xFFFFFF, // 14 highlighted text
        0xC8D0D4, // 15 button face
        0x808080, // 16 button shadow
        0x808080, // 17 grey text
        0x000000, // 18 button text
        0xC8D0D4, // 19 inactive caption text
        0xFFFFFF, // 20 button highlight
        0x404040, // 21 3D dark shadow
        0xC8D0D4, // 22 3D light
        0x000000, // 23 tool tip text
        0xE1FFFF, // 24 tool tip background
    };
    return index < std::size(table) ? table[index] : 0xFFFFFF;
}

} // namespace

QString HtmlText::ColorToHex(int32_t color)
{
    uint32_t v = static_cast<uint32_t>(color);
    if (color < 0)
        v = systemColor(v & 0xFFu);
    v &= 0xFFFFFFu;
    // The number's bytes read BB GG RR from the top; the page wants RR GG BB.
    static const char hex[] = "0123456789ABCDEF";
    char text[7] = {'#'};
    for (int i = 0; i < 3; ++i) {
        const uint32_t byte = (v >> (8 * i)) & 0xFFu;
        text[1 + 2 * i] = hex[byte >> 4];
        text[2 + 2 * i] = hex[byte & 0xFu];
    }
    return QString::fromLatin1(text, 7);
}

QString HtmlText::CentreScript(int width)
{
    const QStringList lines = {
        QStringLiteral("<Script Language=\"JavaScript\">"),
        QStringLiteral("<!--"),
        QStringLiteral("var ns4up = (document.layers) ? 1 : 0;"),
        QStringLiteral("var ie4up = (document.all) ? 1 : 0;"),
        QStringLiteral("function HOffset()"),
        QStringLiteral("{"),
        QStringLiteral("   var window_width = window.innerWidth ? window.innerWidth : (document.body.clientWidth ? document.body.clientWidth : 0);"),
        QStringLiteral("   return Math.max( 0, Math.floor( window_width - ") + QString::number(width) + QStringLiteral(") / 2 ).toString();"),
        QStringLiteral("}"),
        QStringLiteral("document.write( \"<DIV ID='TolpageCentre' style='position:absolute;top:0px;left:\" + HOffset() + \"px;'>&nbsp;\" );"),
        QStringLiteral("function DoReposition() "),
        QStringLiteral("{"),
        QStringLiteral("var TolCentre='TolpageCentre';"),
        QStringLiteral("if(document.getElementById(TolCentre)){"),
        QStringLiteral("var TolMiddle=document.getElementById(TolCentre);"),
        QStringLiteral("TolMiddle.style.left=HOffset()+'px';"),
        QStringLiteral("}else if(ie4up){"),
        QStringLiteral("var TolMiddle=eval('document.all.'+TolCentre);"),
        QStringLiteral("TolMiddle.style.left=HOffset()+'px';"),
        QStringLiteral("}else if (ns4up){"),
        QStringLiteral("var TolMiddle=eval('document.'+TolCentre);"),
        QStringLiteral("TolMiddle.left=HOffset();}"),
        QStringLiteral("}"),
        QStringLiteral("window.onresize=DoReposition;"),
        QStringLiteral("window.onload=DoReposition;"),
        QStringLiteral("-->"),
        QStringLiteral("</Script>"),
    };
    return lines.join(QLatin1String("\r\n")) + QLatin1String("\r\n");
}

QString HtmlText::CharsetName(int fontCharset)
{
    switch (fontCharset) {
    case 178: return QStringLiteral("Windows-1256");
    case 186: return QStringLiteral("Windows-1257");
    case 238: return QStringLiteral("Windows-1250");
    case 204: return QStringLiteral("Windows-1251");
    case 161: return QStringLiteral("Windows-1253");
    case 177: return QStringLiteral("Windows-1255");
    case 128: return QStringLiteral("shift_jis");
    case 129: return QStringLiteral("ks_c_5601");
    case 134: return QStringLiteral("gb2312");
    case 136: return QStringLiteral("big5");
    case 162: return QStringLiteral("Windows-1254");
    default: return QString();
    }
}

int HtmlText::px(double twips) { return int(std::lround(twips / 15.0)); }

QString HtmlText::fontPx(double points)
{
    return QString::number(points * 96.0 / 72.0, 'g', QLocale::FloatingPointShortest);
}

} // namespace ff::web
