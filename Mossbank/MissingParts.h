// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

namespace mossbank {

class Preferences;
struct Platform;

/// Says what this desktop cannot tell, each once: shortly after the start, and what is lost later
/// when it is.
class MissingParts : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    MissingParts(const Platform& platform, const Preferences& preferences);

private:
    void sayWhatIsNew();

    const Platform& m_platform;
    const Preferences& m_preferences;
    QTimer m_next;
    QSet<QString> m_said;
};

} // namespace mossbank
