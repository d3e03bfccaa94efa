// A second user of a record file, in its own process, that knows only the lock protocol: a record
// is in use while another open file description holds a write lock on its first byte (an
// open-file-description lock, F_OFD_SETLK), and a writer tests the byte (F_OFD_GETLK) before it
// takes it. It uses none of the store's code, so a test that pits it against the store checks the
// protocol, not the store against itself.
//
//   ff_lock_probe hold FILE OFFSET [BYTES]
//       takes the lock byte at the 0-based OFFSET and prints "locked" (or "denied", exit 3); then
//       waits for a line on stdin, writes BYTES at OFFSET if given, prints "released" and exits,
//       which releases the lock.
//   ff_lock_probe test FILE OFFSET
//       prints "free" (exit 0) or "held" (exit 3).
//   ff_lock_probe write [--wait] FILE OFFSET BYTES [FILE OFFSET BYTES]...
//       for each triple: tests and takes the lock byte, writes BYTES at OFFSET, releases the byte.
//       A held byte is "denied" (exit 3), or with --wait is tried again for up to ten seconds.
//       Prints "written" when all are written.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

namespace {

struct flock lockByte(short type, long long offset)
{
    struct flock fl {};
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = offset;
    fl.l_len = 1;
    fl.l_pid = 0; // open-file-description locks require 0
    return fl;
}

// Whether another description holds the byte.
bool held(int fd, long long offset)
{
    struct flock fl = lockByte(F_WRLCK, offset);
    if (::fcntl(fd, F_OFD_GETLK, &fl) != 0) {
        std::perror("F_OFD_GETLK");
        std::exit(4);
    }
    return fl.l_type != F_UNLCK;
}

// Tests, then takes the byte: false when another description holds it.
bool take(int fd, long long offset)
{
    if (held(fd, offset))
        return false;
    struct flock fl = lockByte(F_WRLCK, offset);
    if (::fcntl(fd, F_OFD_SETLK, &fl) == 0)
        return true;
    if (errno == EAGAIN || errno == EACCES)
        return false;
    std::perror("F_OFD_SETLK");
    std::exit(4);
}

void release(int fd, long long offset)
{
    struct flock fl = lockByte(F_UNLCK, offset);
    ::fcntl(fd, F_OFD_SETLK, &fl);
}

int openFile(const char *path)
{
    const int fd = ::open(path, O_RDWR);
    if (fd < 0) {
        std::perror(path);
        std::exit(4);
    }
    return fd;
}

bool writeAt(int fd, long long offset, const std::string &bytes)
{
    return ::pwrite(fd, bytes.data(), bytes.size(), offset) == static_cast<ssize_t>(bytes.size());
}

void say(const char *word)
{
    std::printf("%s\n", word);
    std::fflush(stdout);
}

int hold(const char *path, long long offset, const char *bytes)
{
    const int fd = openFile(path);
    if (!take(fd, offset)) {
        say("denied");
        return 3;
    }
    say("locked");
    std::string line;
    std::getline(std::cin, line);
    if (bytes && !writeAt(fd, offset, bytes))
        return 1;
    release(fd, offset);
    ::close(fd);
    say("released");
    return 0;
}

int writeAll(const std::vector<const char *> &args, bool wait)
{
    for (size_t i = 0; i + 2 < args.size(); i += 3) {
        const int fd = openFile(args[i]);
        const long long offset = std::atoll(args[i + 1]);
        int tries = 0;
        while (!take(fd, offset)) {
            if (!wait || ++tries > 50000) {
                say("denied");
                return 3;
            }
            const struct timespec pause {0, 200000};
            ::nanosleep(&pause, nullptr);
        }
        const bool ok = writeAt(fd, offset, args[i + 2]);
        release(fd, offset);
        ::close(fd);
        if (!ok)
            return 1;
    }
    say("written");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<const char *> args(argv + 1, argv + argc);
    const std::string verb = args.empty() ? std::string() : args[0];
    if (verb == "hold" && (args.size() == 3 || args.size() == 4))
        return hold(args[1], std::atoll(args[2]), args.size() == 4 ? args[3] : nullptr);
    if (verb == "test" && args.size() == 3) {
        const int fd = openFile(args[1]);
        const bool h = held(fd, std::atoll(args[2]));
        say(h ? "held" : "free");
        return h ? 3 : 0;
    }
    if (verb == "write" && args.size() >= 4) {
        const bool wait = std::string(args[1]) == "--wait";
        std::vector<const char *> triples(args.begin() + (wait ? 2 : 1), args.end());
        if (!triples.empty() && triples.size() % 3 == 0)
            return writeAll(triples, wait);
    }
    std::fprintf(stderr, "usage: ff_lock_probe hold FILE OFFSET [BYTES] | test FILE OFFSET |"
                         " write [--wait] FILE OFFSET BYTES...\n");
    return 2;
}
