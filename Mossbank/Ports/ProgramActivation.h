// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Availability.h"

#include <QObject>
#include <QString>

namespace mossbank {

/// How a start of this program reaches the one that runs already, and how the desktop does.
///
/// Threading: the main thread.
/// Errors: none. What cannot be heard is not told, and `availability` says so.
class ProgramActivation : public QObject {
    Q_OBJECT

public:
    /// The action that ends the program.
    static constexpr char16_t kQuit[] = u"quit";

    virtual Availability availability() const = 0;

    /// From now on this one is heard of, and tells when it is called. It does not wait.
    virtual void listen() = 0;

    /// Has the one that runs as this process show itself. False when it does not answer, which may
    /// take two seconds; one that has just been started may come to listen until then.
    virtual bool activateFirst(qint64 process) = 0;

Q_SIGNALS:
    /// The program is to show itself. Many calls at once are one.
    void activated();
    /// One of the actions above is to be done. Others are not told.
    void actionRequested(const QString& action);
};

} // namespace mossbank
