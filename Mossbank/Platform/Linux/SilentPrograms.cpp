// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SilentPrograms.h"

#include <algorithm>

namespace mossbank {

bool SilentPrograms::isLeftAlone(const QString& service, Instant now) const
{
    const auto found = m_silent.constFind(service);
    return found != m_silent.constEnd() && now < found->until;
}

void SilentPrograms::keptSilent(const QString& service, Instant now)
{
    const auto found = m_silent.find(service);
    if (found == m_silent.end()) {
        m_silent.insert(service, {now + kFirst, kFirst});
    } else if (now >= found->until) {
        // Not for each of several questions that were on their way together.
        found->length = std::min(2 * found->length, kLongest);
        found->until = now + found->length;
    }
}

void SilentPrograms::answered(const QString& service)
{
    m_silent.remove(service);
}

} // namespace mossbank
