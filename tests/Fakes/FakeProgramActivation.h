// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/ProgramActivation.h"

#include <QList>

namespace mossbank {

/// A start that reaches others when the test says.
class FakeProgramActivation final : public ProgramActivation {
public:
    /// The process that this one runs as.
    qint64 process = 1;
    /// Those that run besides.
    QList<FakeProgramActivation*> others;
    bool isListening = false;
    /// The processes that were to show themselves.
    QList<qint64> asked;

    Availability availability() const override { return {}; }
    void listen() override { isListening = true; }

    bool activateFirst(qint64 wanted) override
    {
        asked.append(wanted);
        for (FakeProgramActivation* other : std::as_const(others)) {
            if (other->isListening && other->process == wanted) {
                other->call();
                return true;
            }
        }
        return false;
    }

    /// As another start does, or the desktop.
    void call()
    {
        if (isListening)
            Q_EMIT activated();
    }
    void request(const QString& action)
    {
        if (isListening && action == QStringView(kQuit))
            Q_EMIT actionRequested(action);
    }
};

} // namespace mossbank
