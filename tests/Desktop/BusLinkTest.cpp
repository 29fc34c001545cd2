// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/BusLink.h"

#include "tests/Desktop/TestBus.h"

#include <QScopeGuard>
#include <QTest>
#include <QThread>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kLimit = 20'000;

/// What the bus itself answers.
BusCall idCall()
{
    const QString bus = u"org.freedesktop.DBus"_s;
    return {bus, u"/org/freedesktop/DBus"_s, bus, u"GetId"_s};
}

} // namespace

class BusLinkTest final : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void hear(const QDBusMessage&) {}

private Q_SLOTS:
    void init();
    void cleanup();
    void aQuestionIsAnswered();
    void aBusThatHasStoppedIsSilent();
    void whatIsAskedOfAClosedLinkIsAnError();
    void anAnswerThatIsThereWhenTheLinkGoesIsForNobody();
    void aLinkThatGoesWhileItOpensIsOpenForNobody();
    void aLinkThatGoesWhileItListensIsHeardByNobody();

private:
    QCoro::Task<> ask(int limit);
    QCoro::Task<> openAnew();
    QCoro::Task<> listen();
    /// Lets the link go once the bus has answered, with no event dealt with meanwhile.
    void loseLink();

    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<BusLink> m_link;
    std::optional<QDBusMessage> m_answer;
    std::optional<bool> m_isDone;
    bool m_isTakenDown = false;
};

void BusLinkTest::init()
{
    m_answer.reset();
    m_isDone.reset();
    m_isTakenDown = false;
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_link = std::make_unique<BusLink>();
    QVERIFY(QCoro::waitFor(m_link->open(m_bus->address(), kLimit)));
}

void BusLinkTest::cleanup()
{
    m_link.reset();
    m_bus.reset();
}

QCoro::Task<> BusLinkTest::ask(int limit)
{
    const auto guard = qScopeGuard([this] { m_isTakenDown = true; });
    m_answer = co_await m_link->call(idCall(), limit);
}

void BusLinkTest::aQuestionIsAnswered()
{
    ask(kLimit);
    QTRY_VERIFY_WITH_TIMEOUT(m_answer, kLimit);
    QCOMPARE(m_answer->type(), QDBusMessage::ReplyMessage);
    QVERIFY(!m_answer->arguments().value(0).toString().isEmpty());
    QVERIFY(!isSilence(*m_answer));
}

void BusLinkTest::aBusThatHasStoppedIsSilent()
{
    constexpr int kShort = 200;
    const auto process = static_cast<pid_t>(m_bus->process().processId());
    ::kill(process, SIGSTOP);
    ask(kShort);
    const bool isAnswered = QTest::qWaitFor([&] { return m_answer.has_value(); }, kLimit);
    ::kill(process, SIGCONT);
    QVERIFY(isAnswered);
    QVERIFY(isSilence(*m_answer));
}

void BusLinkTest::whatIsAskedOfAClosedLinkIsAnError()
{
    m_link->close();
    ask(kLimit);
    QVERIFY(m_answer);
    QCOMPARE(m_answer->type(), QDBusMessage::ErrorMessage);
    QVERIFY(!isSilence(*m_answer));
}

QCoro::Task<> BusLinkTest::openAnew()
{
    const auto guard = qScopeGuard([this] { m_isTakenDown = true; });
    m_isDone = co_await m_link->open(m_bus->address(), kLimit);
}

QCoro::Task<> BusLinkTest::listen()
{
    const auto guard = qScopeGuard([this] { m_isTakenDown = true; });
    BusSignals wanted;
    wanted.interface = u"org.example.Moss"_s;
    wanted.member = u"Grown"_s;
    m_isDone = co_await m_link->listen(wanted, this, SLOT(hear(QDBusMessage)), kLimit);
}

void BusLinkTest::loseLink()
{
    QThread::sleep(1);
    QVERIFY(!m_isTakenDown);
    m_link.reset();
    QTRY_VERIFY_WITH_TIMEOUT(m_isTakenDown, kLimit);
}

void BusLinkTest::anAnswerThatIsThereWhenTheLinkGoesIsForNobody()
{
    ask(kLimit);
    loseLink();
    QVERIFY2(!m_answer, "nothing is gone on with");
}

void BusLinkTest::aLinkThatGoesWhileItOpensIsOpenForNobody()
{
    openAnew();
    loseLink();
    QVERIFY2(!m_isDone, "nothing is gone on with");
}

void BusLinkTest::aLinkThatGoesWhileItListensIsHeardByNobody()
{
    listen();
    loseLink();
    QVERIFY2(!m_isDone, "nothing is gone on with");
}

QTEST_GUILESS_MAIN(BusLinkTest)
#include "BusLinkTest.moc"
