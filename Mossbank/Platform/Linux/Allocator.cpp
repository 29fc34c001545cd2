// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/PlatformFactory.h"

#include <malloc.h>

namespace mossbank {

void keepMemoryTogether()
{
    // Each of some fifteen threads would have an arena of its own, and little in it for most of
    // the time.
    constexpr int kArenas = 2;
    ::mallopt(M_ARENA_MAX, kArenas);
    // A picture is to go back to the system as a whole. The allocator would learn from the first
    // one that is freed to cut the next out of an arena, where what comes after holds it in place.
    constexpr int kOwnMapping = 256 * 1024;
    ::mallopt(M_MMAP_THRESHOLD, kOwnMapping);
}

void giveMemoryBack()
{
    ::malloc_trim(0);
}

} // namespace mossbank
