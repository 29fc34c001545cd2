// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/X11TrayWatch.h"
#include "Mossbank/Ports/TrayHost.h"

#include <memory>

namespace mossbank {

class StatusNotifierWatch;

/// A host of status notifiers on the session bus, or a tray by the older protocol of X11.
///
/// Qt 6.4 asks once in the life of a process which of the two there is, when the first icon is
/// made, and waits for the answer; without a host on the bus then, it never has an icon there. So
/// one of the older protocol counts only when it is known that there is none on the bus.
class LinuxTrayHost final : public TrayHost {
    Q_OBJECT

public:
    LinuxTrayHost();
    ~LinuxTrayHost() override;

    Availability availability() const override;

private:
    void tellChange();

    std::shared_ptr<StatusNotifierWatch> m_notifiers;
    X11TrayWatch m_embedding;
    bool m_wasThere = false;
};

} // namespace mossbank
