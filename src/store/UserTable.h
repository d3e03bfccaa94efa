#pragma once
// The users of a database: three tables of 251 entries kept in the per-user file. Entry 0 is the
// administrator; an empty password for entry 0 means no login is asked. Names and passwords are
// held in their coded form except while the users window edits them.

#include "core/CodePage.h"

#include <QString>
#include <array>
#include <cstdint>

namespace ff {

constexpr int kUserCount = 251; // entries 0..250

// CodeText: for the character at position k (from 1) the number 800 - (code + k) is appended in
// decimal. DecodeText cuts the coded text into groups of three digits and turns group k with value
// v back into the character of code 800 - (k + v). Codes are the 8-bit codes of the code page.
QString CodeBytes(const QByteArray &plain);
// Empty when the coded text does not decode to 8-bit codes.
QByteArray DecodeBytes(const QString &coded);
QString CodeText(const QString &plain, const CodePage &codePage);
QString DecodeText(const QString &coded, const CodePage &codePage);

class UserTable {
public:
    std::array<QString, kUserCount> UserName;     // coded
    std::array<QString, kUserCount> UserPassword; // coded
    std::array<uint8_t, kUserCount> UserRights{}; // 1 = may only read

    bool loginRequired() const { return !UserPassword[0].isEmpty(); }

    // The "Delete Selected User" button: entries from `selected` up to 249 take the values of the
    // next entry; entry 250 stays as it was.
    void deleteUser(int selected);

    // The users window works on plain texts: decode all entries on opening, code them on closing.
    void decodeAll(const CodePage &codePage);
    void codeAll(const CodePage &codePage);
};

} // namespace ff
