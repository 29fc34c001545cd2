// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/CleanPages.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

namespace mossbank {

namespace {

constexpr const char* kName = "mossbank-clean-pages";

std::size_t twoBytes(std::span<const unsigned char> page, std::size_t at)
{
    return static_cast<std::size_t>(page[at]) << 8 | page[at + 1];
}

/// A database file: our methods, and behind them in memory the file of the layer below.
struct CleanFile {
    sqlite3_file base;
    sqlite3_file* below;
    /// Known once the first page went by. What does not say so is left as it is.
    bool canBeCleaned;
};

CleanFile* asClean(sqlite3_file* file)
{
    return reinterpret_cast<CleanFile*>(file);
}

sqlite3_file* below(sqlite3_file* file)
{
    return asClean(file)->below;
}

/// With auto_vacuum a database has pages that tell where others belong, and the bytes of such a
/// page can be those of any.
bool hasPointerMaps(const unsigned char* header)
{
    constexpr std::size_t kLargestRoot = 52;
    const auto* const field = header + kLargestRoot;
    return std::any_of(field, field + 4, [](unsigned char byte) { return byte != 0; });
}

constexpr int kFileHeader = 100;

int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset)
{
    constexpr int kSmallestPage = 512;
    sqlite3_file* const real = below(file);
    sqlite3_int64 size = 0;
    // SQLite writes whole pages to a database, the first one before any other.
    if (offset == 0 && count >= kSmallestPage)
        asClean(file)->canBeCleaned = !hasPointerMaps(static_cast<const unsigned char*>(bytes));
    if (!asClean(file)->canBeCleaned || count < kSmallestPage || offset % count != 0 ||
        real->pMethods->xFileSize(real, &size) != SQLITE_OK)
        return real->pMethods->xWrite(real, bytes, count, offset);
    thread_local std::vector<unsigned char> page;
    const auto* const first = static_cast<const unsigned char*>(bytes);
    page.assign(first, first + count);
    CleanPages::clean(page, offset == 0, std::max(size, offset + count) / count);
    return real->pMethods->xWrite(real, page.data(), count, offset);
}

int read(sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset)
{
    const int result = below(file)->pMethods->xRead(below(file), bytes, count, offset);
    // SQLite reads the header of a database when it opens it.
    if (result == SQLITE_OK && offset == 0 && count >= kFileHeader)
        asClean(file)->canBeCleaned = !hasPointerMaps(static_cast<const unsigned char*>(bytes));
    return result;
}

// Everything else is handed on as it is.
int close(sqlite3_file* file)
{
    return below(file)->pMethods->xClose(below(file));
}
int truncate(sqlite3_file* file, sqlite3_int64 size)
{
    return below(file)->pMethods->xTruncate(below(file), size);
}
int sync(sqlite3_file* file, int flags)
{
    return below(file)->pMethods->xSync(below(file), flags);
}
int fileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return below(file)->pMethods->xFileSize(below(file), size);
}
int lock(sqlite3_file* file, int level)
{
    return below(file)->pMethods->xLock(below(file), level);
}
int unlock(sqlite3_file* file, int level)
{
    return below(file)->pMethods->xUnlock(below(file), level);
}
int checkReservedLock(sqlite3_file* file, int* result)
{
    return below(file)->pMethods->xCheckReservedLock(below(file), result);
}
int fileControl(sqlite3_file* file, int operation, void* argument)
{
    return below(file)->pMethods->xFileControl(below(file), operation, argument);
}
int sectorSize(sqlite3_file* file)
{
    return below(file)->pMethods->xSectorSize(below(file));
}
int deviceCharacteristics(sqlite3_file* file)
{
    return below(file)->pMethods->xDeviceCharacteristics(below(file));
}
int shmMap(sqlite3_file* file, int page, int size, int extend, void volatile** memory)
{
    return below(file)->pMethods->xShmMap(below(file), page, size, extend, memory);
}
int shmLock(sqlite3_file* file, int offset, int count, int flags)
{
    return below(file)->pMethods->xShmLock(below(file), offset, count, flags);
}
void shmBarrier(sqlite3_file* file)
{
    below(file)->pMethods->xShmBarrier(below(file));
}
int shmUnmap(sqlite3_file* file, int isDeleted)
{
    return below(file)->pMethods->xShmUnmap(below(file), isDeleted);
}

/// Version 2: with shared memory for the log, without mapping the file past `write`.
constexpr sqlite3_io_methods kMethods = {
    2,
    close,
    read,
    write,
    truncate,
    sync,
    fileSize,
    lock,
    unlock,
    checkReservedLock,
    fileControl,
    sectorSize,
    deviceCharacteristics,
    shmMap,
    shmLock,
    shmBarrier,
    shmUnmap,
    nullptr,
    nullptr,
};

sqlite3_vfs* realVfs(sqlite3_vfs* vfs)
{
    return static_cast<sqlite3_vfs*>(vfs->pAppData);
}

int open(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags)
{
    sqlite3_vfs* const real = realVfs(vfs);
    // The log has checksums of its pages and is emptied; other files are no databases.
    if (!(flags & SQLITE_OPEN_MAIN_DB))
        return real->xOpen(real, name, file, flags, outFlags);
    auto* const clean = new (file) CleanFile{};
    clean->below = reinterpret_cast<sqlite3_file*>(clean + 1);
    const int result = real->xOpen(real, name, clean->below, flags, outFlags);
    // Whoever opens in vain closes what has methods.
    clean->base.pMethods = clean->below->pMethods ? &kMethods : nullptr;
    return result;
}

} // namespace

void CleanPages::clean(std::span<unsigned char> page, bool isFirst, qint64 pages)
{
    constexpr std::size_t kCellCount = 3;
    constexpr std::size_t kFirstCell = 5;
    constexpr std::size_t kLeafHeader = 8;
    constexpr std::size_t kInnerHeader = 12;
    enum PageKind : unsigned char {
        InnerIndex = 2,
        InnerTable = 5,
        LeafIndex = 10,
        LeafTable = 13
    };
    const std::size_t header = isFirst ? std::size_t{kFileHeader} : 0;
    const unsigned char kind = page[header];
    const bool isInner = kind == InnerIndex || kind == InnerTable;
    if (!isInner && kind != LeafIndex && kind != LeafTable)
        return;
    // A page of another kind begins with the number of one. Of such a size no library is, but
    // taking one for the other would ruin it.
    const qint64 number = static_cast<qint64>(twoBytes(page, 0) << 16 | twoBytes(page, 2));
    if (!isFirst && number <= pages)
        return;
    const std::size_t listEnd =
        header + (isInner ? kInnerHeader : kLeafHeader) + 2 * twoBytes(page, header + kCellCount);
    std::size_t cells = twoBytes(page, header + kFirstCell);
    if (cells == 0)
        cells = 65'536;
    if (listEnd < cells && cells <= page.size())
        std::ranges::fill(page.subspan(listEnd, cells - listEnd), static_cast<unsigned char>(0));
}

const char* CleanPages::vfs()
{
    static sqlite3_vfs layer = {};
    static std::once_flag isRegistered;
    std::call_once(isRegistered, [] {
        sqlite3_vfs* const real = sqlite3_vfs_find(nullptr);
        // What the other functions of the layer are told of themselves, SQLite's own ignore.
        layer = *real;
        layer.pNext = nullptr;
        layer.zName = kName;
        layer.pAppData = real;
        layer.szOsFile = static_cast<int>(sizeof(CleanFile)) + real->szOsFile;
        layer.xOpen = open;
        sqlite3_vfs_register(&layer, 0);
    });
    return kName;
}

} // namespace mossbank
