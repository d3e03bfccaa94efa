#include "store/UserTable.h"

namespace ff {

QString CodeBytes(const QByteArray &plain)
{
    QString out;
    for (qsizetype k = 1; k <= plain.size(); ++k)
        out += QString::number(800 - (static_cast<uint8_t>(plain[k - 1]) + k));
    return out;
}

QByteArray DecodeBytes(const QString &coded)
{
    QByteArray out;
    const qsizetype groups = coded.size() / 3;
    for (qsizetype k = 1; k <= groups; ++k) {
        bool ok = false;
        const int v = coded.mid((k - 1) * 3, 3).toInt(&ok);
        const qsizetype code = 800 - (k + v);
        if (!ok || code < 0 || code > 255)
            return {};
        out.append(static_cast<char>(code));
    }
    return out;
}

QString CodeText(const QString &plain, const CodePage &codePage) { return CodeBytes(codePage.encode(plain)); }

QString DecodeText(const QString &coded, const CodePage &codePage) { return codePage.decode(DecodeBytes(coded)); }

void UserTable::deleteUser(int selected)
{
    if (selected < 0)
        return;
    for (int i = selected; i <= kUserCount - 2; ++i) {
        UserName[i] = UserName[i + 1];
        UserPassword[i] = UserPassword[i + 1];
        UserRights[i] = UserRights[i + 1];
    }
}

void UserTable::decodeAll(const CodePage &codePage)
{
    for (int i = 0; i < kUserCount; ++i) {
        UserName[i] = DecodeText(UserName[i], codePage);
        UserPassword[i] = DecodeText(UserPassword[i], codePage);
    }
}

void UserTable::codeAll(const CodePage &codePage)
{
    for (int i = 0; i < kUserCount; ++i) {
        UserName[i] = CodeText(UserName[i], codePage);
        UserPassword[i] = CodeText(UserPassword[i], codePage);
    }
}

} // namespace ff
