#include "store/AppendLock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace ff {

AppendLock::AppendLock(const QString &firstFile)
{
    fd_ = ::open(QFile::encodeName(firstFile).constData(), O_RDWR | O_CLOEXEC);
    if (fd_ < 0)
        return;
    struct flock fl {};
    fl.l_type = F_WRLCK;
    fl.l_whence = SEEK_SET;
    fl.l_start = 0;
    fl.l_len = 1;
    fl.l_pid = 0;
    int rc;
    do
        rc = ::fcntl(fd_, F_OFD_SETLKW, &fl); // held only for a count, a lock test and one write
    while (rc != 0 && errno == EINTR);
    held_ = rc == 0;
}

AppendLock::~AppendLock()
{
    if (fd_ >= 0)
        ::close(fd_); // releases the lock: it belongs to this descriptor's open file description
}

} // namespace ff
