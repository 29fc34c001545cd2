// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

class AppModel;
class ProgramActivation;
class QuitEvents;
class TerminationSignals;

/// Everything that can end the program, to the one that asks about it; and the end, when all is
/// saved. All of them outlive the event loop.
void followEnds(const TerminationSignals& signals, const QuitEvents& events, AppModel& model);

/// What other starts of the program, and the desktop, ask of this one. From now on it is heard of.
void followCalls(ProgramActivation& activation, AppModel& model);

} // namespace mossbank
