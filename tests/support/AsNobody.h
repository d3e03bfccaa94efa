#pragma once
// Work done in a child process that has given up root for the user nobody, so that file modes
// hold for it (tests run as root, which reads and writes any file). What the work returns comes
// back through a pipe.

#include <QByteArray>

#include <functional>
#include <optional>

#include <sys/wait.h>
#include <unistd.h>

namespace ff::testsupport {

constexpr uid_t kNobody = 65534;

// The bytes `work` returned as nobody; no value when the child could not become nobody or ended
// badly.
inline std::optional<QByteArray> runAsNobody(const std::function<QByteArray()> &work)
{
    int fds[2];
    if (::pipe(fds) != 0)
        return std::nullopt;
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(fds[0]);
        if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
            ::_exit(3);
        const QByteArray said = work();
        const bool written = ::write(fds[1], said.constData(), size_t(said.size())) == said.size();
        ::_exit(written ? 0 : 2);
    }
    ::close(fds[1]);
    QByteArray said;
    char buffer[512];
    for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;)
        said.append(buffer, n);
    ::close(fds[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return std::nullopt;
    return said;
}

} // namespace ff::testsupport
