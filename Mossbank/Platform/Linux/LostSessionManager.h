// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mossbank {

/// From now on the end of the session manager is not the end of this program. Before Qt, which
/// joins the session manager, connects to the desktop.
///
/// Threading: the main thread.
void outliveSessionManager();

} // namespace mossbank
