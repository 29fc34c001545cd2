// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Platform/Linux/WindowClass.h"

namespace mossbank {

/// Whether a window of this class is there to have something secret typed into it: it asks for a
/// pin, for the password of a key or of the system, or it locks the screen. Most of these say
/// nothing to assistive tools.
bool isSecretPrompt(const WindowClass& windowClass);

} // namespace mossbank
