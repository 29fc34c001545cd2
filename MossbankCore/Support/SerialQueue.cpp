// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/SerialQueue.h"

namespace mossbank {

SerialQueue::SerialQueue(const QString& name)
{
    constexpr int kNeverExpires = -1;
    m_thread.setObjectName(name);
    m_thread.setMaxThreadCount(1);
    m_thread.setExpiryTimeout(kNeverExpires);
}

SerialQueue::~SerialQueue()
{
    m_thread.waitForDone();
}

} // namespace mossbank
