// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/LinuxTrayHost.h"

#include "Mossbank/Platform/Linux/StatusNotifierWatch.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

LinuxTrayHost::LinuxTrayHost()
    : m_notifiers(std::make_shared<StatusNotifierWatch>())
{
    connect(m_notifiers.get(), &StatusNotifierWatch::changed, this, &LinuxTrayHost::tellChange);
    connect(&m_embedding, &X11TrayWatch::changed, this, &LinuxTrayHost::tellChange);
    m_notifiers->start();
}

LinuxTrayHost::~LinuxTrayHost()
{
    m_notifiers->disconnect(this);
    m_notifiers->stop();
}

Availability LinuxTrayHost::availability() const
{
    using Host = StatusNotifierWatch::Host;
    const Host host = m_notifiers->host();
    if (host == Host::There || (host == Host::None && m_embedding.isThere()))
        return {};
    return Availability::missing(
        u"This desktop has no place for the icons of programs. Mossbank shows itself when it is "
        "started once more."_s);
}

void LinuxTrayHost::tellChange()
{
    const bool isThere = availability().isAvailable;
    if (std::exchange(m_wasThere, isThere) != isThere)
        Q_EMIT availabilityChanged();
}

} // namespace mossbank
