// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace mossbank {

AtspiSecureInput::AtspiSecureInput(std::shared_ptr<Accessibility> accessibility)
    : m_accessibility(std::move(accessibility))
{
}

Availability AtspiSecureInput::availability() const
{
    return m_accessibility->availability(
        u"So Mossbank may not notice that a password is typed, and captures the screen then too."_s);
}

} // namespace mossbank
