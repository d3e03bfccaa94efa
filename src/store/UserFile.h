#pragma once
// The per-user file beside the app image (AppBasePath + ".cfg"): what one user changed that is not
// in the records. In order, each a variant value in file form: the caption of every label from
// index 6 to the last (scrambled), the text of every global field, then the three user tables as
// arrays. The file is optional: without it labels and global fields keep their design values.

#include "core/Result.h"
#include "design/Page.h"
#include "store/UserTable.h"

#include <QString>

namespace ff {

class UserFile {
public:
    static constexpr int kFirstKeptLabel = 6; // labels 0 to 5 are not kept

    // Reads the file into the page's live label captions and global field texts and into the user
    // tables. A missing file is no error; a damaged one keeps what was read before the damage.
    static Status Read(const QString &path, Page &page, UserTable &users);
    static Status Write(const QString &path, const Page &page, const UserTable &users);
};

} // namespace ff
