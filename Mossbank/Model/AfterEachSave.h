// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/AfterSave.h"

namespace mossbank {

class Housekeeping;
class Listing;

/// Hands what hangs on a save to the parts that do it. It is there before them, since they need the
/// recorder, which needs it.
///
/// Threading: the main thread.
class AfterEachSave final : public AfterSave {
public:
    /// From now on the library is kept in order, and the list up to date. Both outlive this.
    void follow(Housekeeping& housekeeping, Listing& listing)
    {
        m_housekeeping = &housekeeping;
        m_listing = &listing;
    }

    void readForMeaning(const Memory&) override {}
    QCoro::Task<> applyRetention() override;
    QCoro::Task<> refresh() override;

private:
    Housekeeping* m_housekeeping = nullptr;
    Listing* m_listing = nullptr;
};

} // namespace mossbank
