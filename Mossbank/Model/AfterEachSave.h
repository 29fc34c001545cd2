// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AfterSave.h"

namespace mossbank {

class Housekeeping;

/// Hands what hangs on a save to the parts that do it. It is there before them, since they need the
/// recorder, which needs it.
///
/// Threading: the main thread.
class AfterEachSave final : public AfterSave {
public:
    /// From now on it keeps the library in order. It outlives this.
    void follow(Housekeeping& housekeeping) { m_housekeeping = &housekeeping; }

    void readForMeaning(const Memory&) override {}
    QCoro::Task<> applyRetention() override;
    QCoro::Task<> refresh() override { co_return; }

private:
    Housekeeping* m_housekeeping = nullptr;
};

} // namespace mossbank
