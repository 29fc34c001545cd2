// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <memory>

namespace mossbank {

/// Turns the first SIGINT (the user's own, on the terminal), SIGTERM or SIGHUP (the terminal was
/// closed) into a Qt signal. A second one of its kind ends the process at once, for whoever cannot
/// wait.
///
/// Threading: the main thread. One in a process.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void received(int signal);

private:
    std::array<int, 2> m_pipe = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace mossbank
