// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AfterSave.h"
#include "Mossbank/Model/PauseControl.h"
#include "MossbankCore/Library/StoreError.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace mossbank {

/// Notes what is asked of it, in order.
class FakeAfterSave final : public AfterSave {
public:
    QStringList calls;
    QList<Memory> read;
    /// When not empty, what everything fails with once it is noted.
    QString failure;

    void readForMeaning(const Memory& memory) override
    {
        calls.append(QStringLiteral("readForMeaning"));
        read.append(memory);
        failIfTold();
    }
    QCoro::Task<> applyRetention() override
    {
        calls.append(QStringLiteral("applyRetention"));
        failIfTold();
        co_return;
    }
    QCoro::Task<> refresh() override
    {
        calls.append(QStringLiteral("refresh"));
        failIfTold();
        co_return;
    }

private:
    void failIfTold() const
    {
        if (!failure.isEmpty())
            throw StoreError(failure);
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
