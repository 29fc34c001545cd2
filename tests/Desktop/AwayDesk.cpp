// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/AwayDesk.h"

using namespace Qt::StringLiterals;

namespace mossbank::test {

AwayDesk::AwayDesk()
    : m_desktop(std::make_unique<VirtualDesktop>())
    , m_display(qEnvironmentVariable("DISPLAY"))
    , m_hasTerminal(m_desktop->start(
          u"xterm"_s, {u"-class"_s, u"Alpha"_s, u"-e"_s, u"sleep 1000"_s}, u"xterm"_s))
    , m_systemBus(std::make_unique<TestBus>(TestBus::Kind::System))
    , m_sessionBus(std::make_unique<TestBus>(TestBus::Kind::Session))
    , m_logind(std::make_unique<MockedLogind>(*m_systemBus))
    , m_screenSaver(std::make_unique<MockedScreenSaver>(*m_sessionBus))
    , m_mossbank(std::make_unique<RunningMossbank>())
{
    m_mossbank->setSessionBus(m_sessionBus->address());
}

AwayDesk::~AwayDesk()
{
    m_mossbank.reset();
    m_screenSaver.reset();
    m_logind.reset();
    m_sessionBus.reset();
    m_systemBus.reset();
    m_desktop.reset();
}

QString AwayDesk::problem() const
{
    if (!m_hasTerminal || !m_desktop->problem().isEmpty())
        return u"no desktop: "_s + m_desktop->problem();
    return m_logind->problem() + m_screenSaver->problem();
}

bool AwayDesk::takePlace(const QString& step)
{
    const bool isLeaving = !step.startsWith(u'-');
    const QString event = isLeaving ? step : step.mid(1);
    if (event == u"lock")
        return m_logind->setLocked(isLeaving);
    if (event == u"saver")
        return m_screenSaver->setActive(isLeaving);
    if (event == u"sleep")
        return m_logind->sleep(isLeaving);
    if (event == u"session")
        return m_logind->setActive(!isLeaving);
    const QString option = isLeaving ? u"activate"_s : u"reset"_s;
    return event == u"blank" &&
           m_desktop
               ->run(u"xset"_s, {u"-display"_s, m_display, u"s"_s, option}, u"x11-xserver-utils"_s)
               .isSuccess;
}

void AwayDesk::endBuses()
{
    endLogind();
    endScreenSaver();
    TestBus::end(m_systemBus->process());
    TestBus::end(m_sessionBus->process());
}

bool AwayDesk::startLogind()
{
    m_logind = std::make_unique<MockedLogind>(*m_systemBus);
    return m_logind->problem().isEmpty();
}

bool AwayDesk::startMossbank(QMap<QString, QString> choices)
{
    choices.insert(u"interval"_s, u"1"_s);
    choices.insert(u"skipsUnchangedScreens"_s, u"false"_s);
    m_mossbank->choose(choices);
    return m_mossbank->start();
}

AwayDesk::Kept AwayDesk::kept() const
{
    return {m_mossbank->pictureFiles().size(), m_mossbank->rows().size()};
}

} // namespace mossbank::test
