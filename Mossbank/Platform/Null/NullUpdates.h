// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Updates.h"

#include <utility>

namespace mossbank {

/// A system on which nothing tells of newer versions.
class NullUpdates final : public Updates {
public:
    explicit NullUpdates(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Availability availability() const override { return Availability::missing(m_reason); }
    bool canCheckForUpdates() override { return false; }
    void checkForUpdates() override
    {
        QMetaObject::invokeMethod(
            this, [this] { Q_EMIT checked(UpdateAnswer::failed(m_reason)); }, Qt::QueuedConnection);
    }

private:
    QString m_reason;
};

} // namespace mossbank
