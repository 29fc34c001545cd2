// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/TerminalStatus.h"

#include "Mossbank/Model/Recorder.h"

#include <cstdio>
#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

void write(std::FILE* stream, const QString& line)
{
    const QByteArray bytes = line.toLocal8Bit() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
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
    write(stdout, line);
}

void TerminalStatus::complain(const QString& line)
{
    write(stderr, line);
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
