#pragma once
// Writes files on a thread of its own, in the order they are handed over, so that record pages
// are made on one core while the file system creates the files on the other: creating a file
// costs about as much as making the page that goes into it.
//
// A write that fails is kept: the next hand-over returns its error, so the caller stops, and
// every file handed over after it is left unwritten.

#include "core/Result.h"

#include <QByteArray>
#include <QString>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace ff::web {

class FileWriter {
public:
    explicit FileWriter(size_t maxWaiting = 512);
    ~FileWriter();
    FileWriter(const FileWriter &) = delete;
    FileWriter &operator=(const FileWriter &) = delete;

    // Hands a file over (created, or emptied and written). The error of an earlier file, if any.
    Status write(QString path, QByteArray bytes);
    // Waits until every file handed over is written; the first error, if any.
    Status finish();

    // One file written at once, on the calling thread.
    static Status writeNow(const QString &path, const QByteArray &bytes);

private:
    void run();

    const size_t maxWaiting_;
    std::mutex mutex_;
    std::condition_variable work_, room_;
    std::deque<std::pair<QString, QByteArray>> waiting_;
    bool busy_ = false;
    bool closing_ = false;
    Status error_;
    std::thread thread_;
};

} // namespace ff::web
