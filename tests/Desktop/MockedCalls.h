// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/BusConnection.h"

#include <QString>

namespace mossbank::test {

/// How often a method of something mocked was called by now. -1 when it does not say.
qsizetype mockedCalls(BusConnection& bus, const QString& service, const QString& path,
                      const QString& method);

} // namespace mossbank::test
