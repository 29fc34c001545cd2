// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/CleanMemory.h"

#include <sqlite3.h>

#include <cstring>
#include <mutex>

namespace mossbank {

namespace {

/// SQLite's own.
sqlite3_mem_methods own = {};

void* take(int size)
{
    void* const memory = own.xMalloc(size);
    if (memory)
        std::memset(memory, 0, static_cast<std::size_t>(own.xSize(memory)));
    return memory;
}

void* resize(void* memory, int size)
{
    const int before = own.xSize(memory);
    void* const resized = own.xRealloc(memory, size);
    const int after = resized ? own.xSize(resized) : 0;
    if (after > before)
        std::memset(static_cast<char*>(resized) + before, 0,
                    static_cast<std::size_t>(after - before));
    return resized;
}

} // namespace

void CleanMemory::use()
{
    static std::once_flag isUsed;
    std::call_once(isUsed, [] {
        if (sqlite3_config(SQLITE_CONFIG_GETMALLOC, &own) != SQLITE_OK)
            return;
        sqlite3_mem_methods clean = own;
        clean.xMalloc = take;
        clean.xRealloc = resize;
        sqlite3_config(SQLITE_CONFIG_MALLOC, &clean);
    });
}

} // namespace mossbank
