#include "web/FileWriter.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace ff::web {

FileWriter::FileWriter(size_t maxWaiting) : maxWaiting_(maxWaiting), thread_([this] { run(); }) {}

FileWriter::~FileWriter()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        closing_ = true;
    }
    work_.notify_one();
    thread_.join();
}

Status FileWriter::writeNow(const QString &path, const QByteArray &bytes)
{
    const QByteArray name = QFile::encodeName(path);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    const auto failed = [&path] {
        return makeError(ErrorCode::PathError,
                         QStringLiteral("cannot write %1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno))));
    };
    if (fd < 0)
        return failed();
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            const Status error = failed();
            ::close(fd);
            return error;
        }
        done += n;
    }
    if (::close(fd) != 0)
        return failed();
    return {};
}

Status FileWriter::write(QString path, QByteArray bytes)
{
    std::unique_lock<std::mutex> lock(mutex_);
    room_.wait(lock, [this] { return waiting_.size() < maxWaiting_ || !error_; });
    if (!error_)
        return error_;
    waiting_.emplace_back(std::move(path), std::move(bytes));
    lock.unlock();
    work_.notify_one();
    return {};
}

Status FileWriter::finish()
{
    std::unique_lock<std::mutex> lock(mutex_);
    room_.wait(lock, [this] { return (waiting_.empty() && !busy_) || !error_; });
    return error_;
}

void FileWriter::run()
{
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        work_.wait(lock, [this] { return !waiting_.empty() || closing_; });
        if (waiting_.empty())
            return; // closing, nothing left
        std::pair<QString, QByteArray> file = std::move(waiting_.front());
        waiting_.pop_front();
        busy_ = true;
        lock.unlock();
        room_.notify_all();
        Status written = error_ ? writeNow(file.first, file.second) : Status();
        lock.lock();
        busy_ = false;
        if (!written && error_) {
            error_ = written;
            waiting_.clear(); // nothing after a failed file is written
        }
        room_.notify_all();
    }
}

} // namespace ff::web
