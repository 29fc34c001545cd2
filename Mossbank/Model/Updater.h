// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

namespace mossbank {

class Recorder;
class Updates;
struct UpdateAnswer;

/// Looks for a newer version of the program when the user asks for it, and never by itself. What
/// came of it stands in the recorder's lines.
///
/// Threading: the main thread.
class Updater : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    Updater(Updates& updates, Recorder& recorder, QObject* parent = nullptr);

    /// Whether a check can be begun now. The first question may have this machine asked where the
    /// program is from; until that is known it is false.
    bool canCheckForUpdates() const;
    void checkForUpdates();

Q_SIGNALS:
    void canCheckForUpdatesChanged();

private:
    void tell(const UpdateAnswer& answer);

    Updates& m_updates;
    Recorder& m_recorder;
};

} // namespace mossbank
