// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Texts.h"

namespace mossbank {

/// Lines of the recorder's status that others than the recorder know it by.
class RecorderTexts {
public:
    RecorderTexts() = delete;

    static QString idle() { return localized("Recording is off"); }
    static QString secureInputSkipped()
    {
        return localized("Skipped while a password field or other secure input is active");
    }
    static QString mossbankIsInFront() { return localized("Switch to another app to capture it"); }
};

} // namespace mossbank
