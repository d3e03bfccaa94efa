#include "store/UserFile.h"

#include "core/Scramble.h"
#include "store/VariantFile.h"

#include <QFile>
#include <QSaveFile>

namespace ff {

Status UserFile::Read(const QString &path, Page &page, UserTable &users)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("cannot read ") + path);
    const Design &design = page.design();
    const CodePage codePage(design.FontCharset);
    VariantFile in(file.readAll());

    for (qsizetype i = kFirstKeptLabel; i < qsizetype(design.Titles.size()); ++i) {
        Result<QByteArray> caption = in.readText();
        if (!caption)
            return caption.error();
        if (i < page.TitleCaption.size())
            page.TitleCaption[i] = codePage.decode(UnscrambleText(*caption));
    }
    for (qsizetype i = 1; i < qsizetype(design.Fields.size()); ++i) {
        if (!design.Fields[i].FieldGlobal)
            continue;
        Result<QByteArray> text = in.readText();
        if (!text)
            return text.error();
        if (i < page.FieldText.size())
            page.FieldText[i] = codePage.decode(*text);
    }
    Result<QVector<QByteArray>> names = in.readTextArray();
    if (!names)
        return names.error();
    for (int i = 0; i < kUserCount && i < names->size(); ++i)
        users.UserName[i] = QString::fromLatin1((*names)[i]);
    Result<QVector<QByteArray>> passwords = in.readTextArray();
    if (!passwords)
        return passwords.error();
    for (int i = 0; i < kUserCount && i < passwords->size(); ++i)
        users.UserPassword[i] = QString::fromLatin1((*passwords)[i]);
    Result<QByteArray> rights = in.readByteArray();
    if (!rights)
        return rights.error();
    for (int i = 0; i < kUserCount && i < rights->size(); ++i)
        users.UserRights[i] = static_cast<uint8_t>((*rights)[i]);
    return {};
}

Status UserFile::Write(const QString &path, const Page &page, const UserTable &users)
{
    const Design &design = page.design();
    const CodePage codePage(design.FontCharset);
    VariantFile out;
    for (qsizetype i = kFirstKeptLabel; i < qsizetype(design.Titles.size()); ++i)
        out.writeText(ScrambleText(codePage.encode(page.TitleCaption.value(i))));
    for (qsizetype i = 1; i < qsizetype(design.Fields.size()); ++i)
        if (design.Fields[i].FieldGlobal)
            out.writeText(codePage.encode(page.FieldText.value(i)));
    // Names and passwords are held coded: digits only.
    QVector<QByteArray> names, passwords;
    for (int i = 0; i < kUserCount; ++i) {
        names.push_back(users.UserName[i].toLatin1());
        passwords.push_back(users.UserPassword[i].toLatin1());
    }
    out.writeTextArray(names);
    out.writeTextArray(passwords);
    out.writeByteArray(QByteArray(reinterpret_cast<const char *>(users.UserRights.data()), kUserCount));

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(out.bytes()) != out.bytes().size() || !file.commit())
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("cannot write ") + path);
    return {};
}

} // namespace ff
