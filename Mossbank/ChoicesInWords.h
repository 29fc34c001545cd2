// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

class Preferences;

/// Says on the terminal what the user should know of the stored choices: where they are, which
/// count as not chosen, which exclusions exclude nothing.
void sayWhatChoicesMean(const Preferences& preferences);

} // namespace mossbank
