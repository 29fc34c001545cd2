// SPDX-License-Identifier: Apache-2.0
#include "tests/Fakes/NonceHook.h"

#include <dlfcn.h>

#include <mutex>
#include <utility>

namespace {

std::mutex mutex;
std::function<bool()> currentHook;

} // namespace

// Stands before OpenSSL's own for everything that is linked into this program.
extern "C" int RAND_bytes(unsigned char* bytes, int count)
{
    std::function<bool()> hook;
    {
        const std::scoped_lock lock(mutex);
        hook = currentHook;
    }
    if (hook && !hook())
        return 0;
    using Function = int (*)(unsigned char*, int);
    static const auto kOriginal = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "RAND_bytes"));
    return kOriginal(bytes, count);
}

namespace mossbank {

void NonceHook::set(std::function<bool()> hook)
{
    const std::scoped_lock lock(mutex);
    currentHook = std::move(hook);
}

void NonceHook::remove()
{
    set({});
}

} // namespace mossbank
