// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/AfterEachSave.h"

#include "Mossbank/Model/Housekeeping.h"
#include "Mossbank/Model/Listing.h"

namespace mossbank {

QCoro::Task<> AfterEachSave::applyRetention()
{
    if (m_housekeeping)
        co_await m_housekeeping->applyRetention(false);
}

QCoro::Task<> AfterEachSave::refresh()
{
    if (m_listing)
        co_await m_listing->refresh();
}

} // namespace mossbank
