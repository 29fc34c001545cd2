// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ClosingNotice/ClosingWords.h"

#include "Mossbank/Model/Texts.h"

namespace mossbank {

QString ClosingWords::message()
{
    return localized("Mossbank keeps recording");
}

QString ClosingWords::explanation()
{
    return localized("The window is closed, and Mossbank goes on in the background. This desktop "
                     "has no place for its icon: to see Mossbank again, start it once more.");
}

QString ClosingWords::label()
{
    return localized("OK");
}

} // namespace mossbank
