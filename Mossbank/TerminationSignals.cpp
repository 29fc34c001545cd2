// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace mossbank {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

/// A signal handler may do next to nothing; writing a byte is among it.
volatile std::sig_atomic_t writeEnd = -1;

void note(int signal)
{
    const int interrupted = errno; // of whatever the handler broke into
    const auto byte = static_cast<char>(signal);
    [[maybe_unused]] const auto written = ::write(writeEnd, &byte, 1);
    errno = interrupted;
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
}

/// Whether the program is to outlive its terminal: nohup says so. A script that starts something in
/// the background has it ignore SIGINT, and still means it when it sends one.
bool isToOutlive(int signal)
{
    struct sigaction action = {};
    return signal == SIGHUP && ::sigaction(signal, nullptr, &action) == 0 &&
           action.sa_handler == SIG_IGN;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (::pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("No pipe could be made.");
    m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        for (char byte = 0; ::read(m_pipe[0], &byte, 1) > 0;)
            Q_EMIT received(byte);
    });
    writeEnd = m_pipe[1];
    for (const int signal : kSignals) {
        if (!isToOutlive(signal))
            handle(signal, note);
    }
    // Who reads what is shown may stop reading; that is no reason to stop recording.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that may grow no more is a failure like a full disk, and told like one.
    std::signal(SIGXFSZ, SIG_IGN);
}

TerminationSignals::~TerminationSignals()
{
    for (const int signal : kSignals) {
        if (!isToOutlive(signal))
            handle(signal, SIG_DFL);
    }
    writeEnd = -1;
    m_notifier.reset();
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

} // namespace mossbank
