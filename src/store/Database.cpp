#include "store/Database.h"

#include "store/UserFile.h"
#include "store/LoginCheck.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

namespace ff {

Database::Database(Design design, AppPaths paths, StoreHost *host, FormulaHooks *hooks)
    : design_(std::make_unique<Design>(std::move(design))), paths_(std::move(paths)),
      codePage_(design_->FontCharset), host_(host), page_(std::make_unique<Page>(*design_)),
      store_(std::make_unique<RecordStore>(*design_, *page_, hooks, host))
{
    DecimalSeparator = FormulaHooks::SystemDecimalSeparator();
    MainCaption = design_->MainCap;
}

void Database::start()
{
    DecimalSeparator = FormulaHooks::SystemDecimalSeparator();
    store_->setDecimalSeparator(DecimalSeparator);
    TodayDate = FormulaHooks::Today(clock());
    // The design's administrator password, coded, unless the per-user file holds another.
    if (!design_->AdminPassword.isEmpty())
        users_.UserPassword[0] = CodeText(design_->AdminPassword, codePage_);
    // A missing or short per-user file leaves the defaults: the first run has none.
    std::ignore = UserFile::Read(paths_.userFilePath(), *page_, users_);
    DataFileName = paths_.dataFileName(design_->DataExtension);
}

void Database::applyLogin(int user, const QString &passwordBox)
{
    if (user < 0 || user >= kUserCount)
        return;
    LoginUser = user;
    store_->setViewOnly(users_.UserRights[user] == 1);
    administrator_ = IsAdministratorLogin(users_, passwordBox, codePage_);
    if (!administrator_)
        MainCaption = design_->MainCap + LoginCaption(users_, user, codePage_);
}

bool Database::fileIsReadOnly(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return false;
    if (!(info.permissions() & QFileDevice::WriteOwner))
        return true;
    return ::access(QFile::encodeName(path).constData(), W_OK) != 0;
}

QString Database::recordPictureFolderFor(const QString &dataFileName) const
{
    const QFileInfo info(dataFileName);
    QString name = ProperCase(info.fileName());
    const QString dotExt = QLatin1Char('.') + design_->DataExtension;
    const qsizetype at = name.lastIndexOf(dotExt, -1, Qt::CaseInsensitive);
    if (at >= 0 && !design_->DataExtension.isEmpty())
        name.replace(at, dotExt.size(), QStringLiteral("Pics"));
    else
        name += QStringLiteral("Pics");
    return QDir(info.absolutePath()).filePath(name) + QLatin1Char('/');
}

Status Database::OpenDatabase(OpenMode mode, const std::function<void()> &autoRun)
{
    if (DataFileName.isEmpty())
        return makeError(ErrorCode::BadFileName, QStringLiteral("no data file name"));
    RecordStore &store = *store_;
    store.close();
    const qsizetype dot = DataFileName.lastIndexOf(QLatin1Char('.'));
    DataFileBase = dot > DataFileName.lastIndexOf(QLatin1Char('/')) ? DataFileName.left(dot) : DataFileName;

    if (!QFileInfo::exists(DataFileName))
        mode = OpenMode::Create; // a missing data file is created, without a message

    QString pictureFolder;
    if (design_->HasRecordPictures) {
        pictureFolder = recordPictureFolderFor(DataFileName);
        if (!QFileInfo::exists(pictureFolder))
            QDir().mkdir(pictureFolder);
    }
    store.setRecordPictureFolder(pictureFolder);
    const bool readOnlyFile = mode == OpenMode::Open && fileIsReadOnly(DataFileName);

    // Errors 70, 53 and 75 show their message and the opening goes on with what it has: the
    // records that can be read still show. The count's own overflow is recounted inside.
    Status opened = store.openFileSet(DataFileName, mode, design_->MainCap, readOnlyFile);
    if (!opened) {
        const ErrorCode code = opened.error().code;
        if (code == ErrorCode::PermissionDenied || code == ErrorCode::FileNotFound || code == ErrorCode::PathError) {
            QString text = design_->MessageText[1];
            text = text.isEmpty() ? opened.error().text : text.replace(QLatin1Char('*'), DataFileName);
            if (host_)
                host_->ShowMessage(design_->MainCap, text, 0);
        }
    }
    Status shown = store.showFirstRecord(mode, opened.ok(), autoRun);
    return opened ? shown : opened;
}

Status Database::shutdown()
{
    // A record that cannot be saved keeps the store open: the edit stays on the page.
    if (Status saved = store_->SaveIfDirty(); !saved)
        return saved;
    store_->close();
    return UserFile::Write(paths_.userFilePath(), *page_, users_);
}

} // namespace ff
