// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/AfterEachSave.h"

#include "Mossbank/Model/Housekeeping.h"

namespace mossbank {

QCoro::Task<> AfterEachSave::applyRetention()
{
    if (m_housekeeping)
        co_await m_housekeeping->applyRetention(false);
}

} // namespace mossbank
