// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/LostSessionManager.h"

#include <X11/ICE/ICElib.h>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace mossbank {

namespace {

/// Without this the library would end the program. Qt goes on watching the connection, whose end
/// can be read for ever; in its place comes a file that nothing is ever to be read from.
void silence(IceConn connection)
{
    const int silent = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (silent < 0)
        return;
    ::dup3(silent, IceConnectionNumber(connection), O_CLOEXEC);
    ::close(silent);
}

} // namespace

void outliveSessionManager()
{
    IceSetIOErrorHandler(silence);
}

} // namespace mossbank
