// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/QuitQuestion/QuitAnswer.h"

#include "Mossbank/Model/Texts.h"

namespace mossbank {

QString QuitAnswer::message()
{
    return localized("Mossbank is recording");
}

QString QuitAnswer::explanation()
{
    return localized("Quit, and nothing more is saved until Mossbank is opened again. Closing the "
                     "window instead keeps it recording from the menu bar.");
}

QString QuitAnswer::keepLabel()
{
    return localized("Keep Recording");
}

QString QuitAnswer::quitLabel()
{
    return localized("Quit Mossbank");
}

} // namespace mossbank
