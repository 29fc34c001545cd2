// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

class Preferences;

/// Says on the terminal what the user should know of the stored choices: that they cannot be read,
/// how to record, which exclusions exclude nothing.
void sayWhatChoicesMean(const Preferences& preferences);

} // namespace mossbank
