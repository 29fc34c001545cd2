// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/SessionManager.h"

#include "tests/Desktop/TestBus.h"

#include <QDeadlineTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 20'000;
const QString kAddress = u"address "_s;
const QString kRestart = u"restart "_s;

} // namespace

SessionManager::SessionManager()
{
    endWithTest(m_process);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(QStringLiteral(MOSSBANK_SESSION_MANAGER), QStringList());
    const bool isThere = QTest::qWaitFor(
        [this] {
            listen();
            return !m_events.isEmpty();
        },
        kPatience);
    if (!isThere || !m_events.first().startsWith(kAddress)) {
        m_problem = u"no session manager: "_s + m_events.join(u' ');
        return;
    }
    m_address = m_events.takeFirst().mid(kAddress.size());
}

SessionManager::~SessionManager()
{
    kill();
}

void SessionManager::order(const QString& what)
{
    m_process.write(what.toUtf8() + '\n');
    m_process.waitForBytesWritten(kPatience);
}

bool SessionManager::waitFor(const QString& event, int times)
{
    return QTest::qWaitFor(
        [&] {
            listen();
            return m_events.count(event) >= times;
        },
        kPatience);
}

QString SessionManager::restartHint()
{
    listen();
    const QStringList said = m_events.filter(kRestart);
    return said.isEmpty() ? QString() : said.last().mid(kRestart.size());
}

void SessionManager::kill()
{
    m_process.kill();
    m_process.waitForFinished(kPatience);
}

void SessionManager::listen()
{
    m_process.waitForReadyRead(0);
    while (m_process.canReadLine())
        m_events.append(QString::fromLocal8Bit(m_process.readLine()).trimmed());
}

} // namespace mossbank::test
