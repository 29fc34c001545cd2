// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AfterSave.h"
#include "Mossbank/Model/PauseControl.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace mossbank {

/// Notes what is asked of it, in order.
class FakeAfterSave final : public AfterSave {
public:
    QStringList calls;
    QList<Memory> read;

    void readForMeaning(const Memory& memory) override
    {
        calls.append(QStringLiteral("readForMeaning"));
        read.append(memory);
    }
    QCoro::Task<> applyRetention() override
    {
        calls.append(QStringLiteral("applyRetention"));
        co_return;
    }
    QCoro::Task<> refresh() override
    {
        calls.append(QStringLiteral("refresh"));
        co_return;
    }
};

class FakePauses final : public PauseControl {
public:
    bool isPausedNow = false;
    int timesCancelled = 0;

    bool isPaused() const override { return isPausedNow; }
    void cancelPause() override
    {
        isPausedNow = false;
        ++timesCancelled;
    }
};

} // namespace mossbank
