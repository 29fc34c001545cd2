// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ProgramActivation.h"

#include <chrono>
#include <memory>

namespace mossbank {

class ActivationService;

/// By the session bus, as the desktop entry specification has it for programs that the desktop
/// activates there.
///
/// Threading: that of its port. `activateFirst` alone waits.
class BusActivation final : public ProgramActivation {
    Q_OBJECT

public:
    /// `identity`: the id of the program's desktop file. `patience`: how long the first may take
    /// to answer.
    explicit BusActivation(QString identity,
                           std::chrono::milliseconds patience = std::chrono::seconds(2));
    ~BusActivation() override;

    Availability availability() const override;
    void listen() override;
    bool activateFirst(qint64 process) override;

private:
    QString m_identity;
    std::chrono::milliseconds m_patience;
    std::shared_ptr<ActivationService> m_service;
};

} // namespace mossbank
