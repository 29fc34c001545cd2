// SPDX-License-Identifier: Apache-2.0
#include "tests/Fakes/BadDisk.h"

#include <QFile>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstring>
#include <mutex>
#include <string>

namespace {

using mossbank::BadDisk;

/// What the disk in force was asked for. Only plain C++ below: Qt itself makes these calls.
struct State {
    std::string folder;
    int nth = 0;
    BadDisk::Then then = BadDisk::Then::FailOnce;
    int errorNumber = 0;
    int calls = 0;
    std::string struck;
};

std::atomic_bool isInForce = false;
std::mutex mutex;
State state;

std::string pathOf(int file)
{
    std::array<char, PATH_MAX> path = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

/// Counts the call. Whether it is to go wrong.
bool isStruck(const char* call, const std::string& path)
{
    const std::scoped_lock lock(mutex);
    if (!isInForce || path.compare(0, state.folder.size(), state.folder) != 0)
        return false;
    ++state.calls;
    const bool goesOn = state.then == BadDisk::Then::FailOn && state.calls > state.nth;
    if (state.nth == 0 || (state.calls != state.nth && !goesOn))
        return false;
    if (state.struck.empty())
        state.struck = std::string(call) + ' ' + path.substr(path.rfind('/') + 1);
    return true;
}

/// The end of a call that is struck.
int strike()
{
    if (state.then == BadDisk::Then::Kill)
        ::raise(SIGKILL);
    errno = state.errorNumber;
    return -1;
}

bool isStruck(const char* call, int file)
{
    return isInForce && isStruck(call, pathOf(file));
}

bool isStruck(const char* call, const char* path)
{
    return isInForce && isStruck(call, std::string(path));
}

int reallyOpen(const char* path, int flags, mode_t mode)
{
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

ssize_t reallyWrite(int file, const void* bytes, std::size_t size)
{
    return ::syscall(SYS_write, file, bytes, size);
}

ssize_t reallyWriteAt(int file, const void* bytes, std::size_t size, off_t at)
{
    return ::syscall(SYS_pwrite64, file, bytes, size, at);
}

int openOrFail(const char* path, int flags, mode_t mode)
{
    // To look at something needs no room on the disk.
    const bool changes = (flags & O_ACCMODE) != O_RDONLY;
    return changes && isStruck("open", path) ? strike() : reallyOpen(path, flags, mode);
}

ssize_t writeOrFail(int file, const void* bytes, std::size_t size)
{
    if (!isStruck("write", file))
        return reallyWrite(file, bytes, size);
    reallyWrite(file, bytes, size / 2);
    return strike();
}

ssize_t writeAtOrFail(int file, const void* bytes, std::size_t size, off_t at)
{
    if (!isStruck("write", file))
        return reallyWriteAt(file, bytes, size, at);
    reallyWriteAt(file, bytes, size / 2, at);
    return strike();
}

int truncateOrFail(int file, off_t size)
{
    return isStruck("truncate", file) ? strike()
                                      : static_cast<int>(::syscall(SYS_ftruncate, file, size));
}

int makeOrFail(char* name, int flags)
{
    using Function = int (*)(char*, int);
    static const auto kOriginal = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "mkostemp"));
    return isStruck("make", name) ? strike() : kOriginal(name, flags);
}

mode_t modeOf(int flags, std::va_list arguments)
{
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

// Each stands before the system's own for everything in this program. They are given their names
// here, for the headers have several of these functions under two.
#define MOSSBANK_STANDS_BEFORE(function) __asm__(function)

extern "C" {

int badOpen(const char* path, int flags, ...) MOSSBANK_STANDS_BEFORE("open");
int badOpen64(const char* path, int flags, ...) MOSSBANK_STANDS_BEFORE("open64");
int badMake(char* name, int flags) MOSSBANK_STANDS_BEFORE("mkostemp");
int badMake64(char* name, int flags) MOSSBANK_STANDS_BEFORE("mkostemp64");
ssize_t badWrite(int file, const void* bytes, std::size_t size) MOSSBANK_STANDS_BEFORE("write");
ssize_t badWriteAt(int file, const void* bytes, std::size_t size, off_t at)
    MOSSBANK_STANDS_BEFORE("pwrite");
ssize_t badWriteAt64(int file, const void* bytes, std::size_t size, off_t at)
    MOSSBANK_STANDS_BEFORE("pwrite64");
int badSync(int file) MOSSBANK_STANDS_BEFORE("fsync");
int badDataSync(int file) MOSSBANK_STANDS_BEFORE("fdatasync");
int badTruncate(int file, off_t size) MOSSBANK_STANDS_BEFORE("ftruncate");
int badTruncate64(int file, off_t size) MOSSBANK_STANDS_BEFORE("ftruncate64");
int badRename(const char* from, const char* to) MOSSBANK_STANDS_BEFORE("rename");
int badUnlink(const char* path) MOSSBANK_STANDS_BEFORE("unlink");

int badOpen(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openOrFail(path, flags, mode);
}

int badOpen64(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openOrFail(path, flags, mode);
}

int badMake(char* name, int flags)
{
    return makeOrFail(name, flags);
}

int badMake64(char* name, int flags)
{
    return makeOrFail(name, flags);
}

ssize_t badWrite(int file, const void* bytes, std::size_t size)
{
    return writeOrFail(file, bytes, size);
}

ssize_t badWriteAt(int file, const void* bytes, std::size_t size, off_t at)
{
    return writeAtOrFail(file, bytes, size, at);
}

ssize_t badWriteAt64(int file, const void* bytes, std::size_t size, off_t at)
{
    return writeAtOrFail(file, bytes, size, at);
}

// The power stays on here, so what is written need not reach the disk.
int badSync(int file)
{
    return isStruck("sync", file) ? strike() : 0;
}

int badDataSync(int file)
{
    return isStruck("sync", file) ? strike() : 0;
}

int badTruncate(int file, off_t size)
{
    return truncateOrFail(file, size);
}

int badTruncate64(int file, off_t size)
{
    return truncateOrFail(file, size);
}

int badRename(const char* from, const char* to)
{
    return isStruck("rename", to)
               ? strike()
               : static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int badUnlink(const char* path)
{
    return isStruck("unlink", path) ? strike()
                                    : static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

} // extern "C"

namespace mossbank {

BadDisk::BadDisk(const QString& folder, int nth, Then then, int errorNumber)
{
    const std::scoped_lock lock(mutex);
    state = {QFile::encodeName(folder).toStdString(), nth, then, errorNumber, 0, {}};
    isInForce = true;
}

BadDisk::~BadDisk()
{
    const std::scoped_lock lock(mutex);
    isInForce = false;
}

int BadDisk::calls()
{
    const std::scoped_lock lock(mutex);
    return state.calls;
}

QByteArray BadDisk::struck()
{
    const std::scoped_lock lock(mutex);
    return QByteArray::fromStdString(state.struck);
}

} // namespace mossbank
