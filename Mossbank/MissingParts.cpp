// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/MissingParts.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "Mossbank/TerminalStatus.h"

namespace mossbank {

namespace {

/// What is switched on at the start has come on by then.
constexpr int kAfterStart = 1000;
/// Nothing but a few flags is looked at each time.
constexpr int kBetweenLooks = 10'000;

} // namespace

MissingParts::MissingParts(const Platform& platform, const Preferences& preferences)
    : m_platform(platform)
    , m_preferences(preferences)
{
    connect(&m_next, &QTimer::timeout, this, &MissingParts::sayWhatIsNew);
    m_next.start(kAfterStart);
}

void MissingParts::sayWhatIsNew()
{
    m_next.setInterval(kBetweenLooks);
    QList<Availability> ports = {
        m_platform.frontApplication->availability(), m_platform.screenState->availability(),
        m_platform.secureInput->availability(), m_platform.sessionEvents->availability()};
    if (m_preferences.savesAddresses())
        ports.append(m_platform.addresses->availability());
    for (const Availability& port : std::as_const(ports)) {
        if (port.isAvailable || m_said.contains(port.reason))
            continue;
        m_said.insert(port.reason);
        TerminalStatus::complain(port.reason);
    }
}

} // namespace mossbank
