// libFuzzer target for the XML record reader: any text (as UTF-8, or as the design's code page
// when it is not) is read into the page of a design with every kind of element and the flow layer
// on, twice, so that its flow items are added to those already there. The page's flow stays
// within what a record can hold, every record picture name stays a plain file name, and the
// record's text is written again from the page.

#include "design/Page.h"
#include "export/ImportXmlFiles.h"
#include "export/XmlRecord.h"

#include <cstdint>
#include <cstdlib>

namespace {

ff::Design makeDesign()
{
    ff::Design d;
    d.AppTitle = QStringLiteral("Fuzz");
    d.FlowPageEnabled = 1;
    const uint8_t types[] = {0, 0, 1, 2, 5, 7, 9, 12};
    const char *tags[] = {"", "name", "amount", "price", "qty", "when", "long", "a"};
    d.Fields.resize(8);
    for (size_t i = 1; i < 8; ++i) {
        d.Fields[i].FieldType = types[i];
        d.Fields[i].MaxLength = 12;
        d.Fields[i].Tag = QString::fromLatin1(tags[i]);
    }
    d.Fields[7].Locked = 1;
    d.FieldCount = 7;
    d.Combos.resize(2);
    d.Combos[1].Tag = QStringLiteral("name"); // a second holder of a tag
    d.ComboCount = 1;
    d.Checks.resize(2);
    d.Checks[0].Tag = QStringLiteral("paid");
    d.Checks[1].Tag = QStringLiteral("b");
    d.CheckCount = 1;
    d.Notes.resize(2);
    d.Notes[1].Tag = QStringLiteral("memo");
    d.NoteCount = 1;
    d.Pictures.resize(2);
    d.Pictures[1].PictureName = QStringLiteral("photo");
    d.Pictures[1].Stretch = true;
    d.PictureCount = 1;
    d.Titles.resize(6);
    return d;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ff::Design design = makeDesign();
    const QString text = ff::ImportXmlFiles::decodeText(
        QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)), design.FontCharset);
    ff::Page page(design);
    for (int round = 0; round < 2; ++round)
        ff::XmlRecord::XMLimport(page, text, round == 1);
    if (page.FlowLabels.size() > 500 || page.FlowImages.size() > 400)
        std::abort();
    const QString name = page.PictureRecordName[1];
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) || name == QLatin1String(".."))
        std::abort();
    const QString again = ff::XmlRecord::CopyAll(page, 1);
    if (!again.startsWith(QLatin1String("<?xml version=\"1.0\" ?>\r\n")))
        std::abort();
    return 0;
}
