// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/TerminalStatus.h"

#include "Mossbank/Model/Recorder.h"

#include <poll.h>
#include <unistd.h>

#include <climits>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// What others say may hold signs that a terminal acts on.
QString withoutControls(QString line)
{
    for (QChar& sign : line) {
        if (sign.category() == QChar::Other_Control)
            sign = QChar::ReplacementCharacter;
    }
    return line;
}

/// Nothing where nobody takes it: a stopped terminal or a full pipe must not stop the recording.
void write(int file, const QString& line)
{
    pollfd place = {file, POLLOUT, 0};
    if (::poll(&place, 1, 0) != 1 || (place.revents & POLLOUT) == 0)
        return;
    // A pipe that has room takes so many at once.
    const QByteArray bytes = withoutControls(line).toLocal8Bit().left(PIPE_BUF - 1) + '\n';
    [[maybe_unused]] const auto written =
        ::write(file, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

} // namespace

TerminalStatus::TerminalStatus(const Recorder& recorder, const Clock& clock,
                               CalendarSource calendar, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_clock(clock)
    , m_calendar(std::move(calendar))
{
    connect(&recorder, &Recorder::statusChanged, this, &TerminalStatus::showStatus);
    connect(&recorder, &Recorder::errorMessageChanged, this, &TerminalStatus::showError);
}

void TerminalStatus::show() const
{
    showError();
    showStatus();
}

void TerminalStatus::say(const QString& line)
{
    write(STDOUT_FILENO, line);
}

void TerminalStatus::complain(const QString& line)
{
    write(STDERR_FILENO, line);
}

void TerminalStatus::showStatus() const
{
    const QString time = m_calendar().local(m_clock.now()).toString(u"HH:mm:ss"_s);
    say(u"%1  %2"_s.arg(time, m_recorder.status()));
}

void TerminalStatus::showError() const
{
    if (const auto& message = m_recorder.errorMessage())
        complain(*message);
}

} // namespace mossbank
