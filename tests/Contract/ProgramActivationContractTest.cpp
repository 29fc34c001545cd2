// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/BusActivation.h"
#include "Mossbank/Platform/Null/NullProgramActivation.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Fakes/FakeProgramActivation.h"

#include <QCoreApplication>
#include <QTest>

#include <future>
#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;
using namespace std::chrono_literals;

/// What every way for a start to reach the one before it holds to.
class ProgramActivationContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    }
    void cleanup() { m_bus.reset(); }

    void anotherStartHasTheFirstShowItself_data()
    {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : {u"Linux"_s, u"Null"_s, u"fake"_s})
            QTest::newRow(qPrintable(kind)) << kind;
    }
    void anotherStartHasTheFirstShowItself()
    {
        QFETCH(QString, kind);
        const auto first = make(kind, 10s);
        const auto second = make(kind, 10s);
        const auto hasty = make(kind, 300ms);
        introduce(*first, *second);
        introduce(*first, *hasty);
        int activations = 0;
        connect(first.get(), &ProgramActivation::activated, this, [&] { ++activations; });
        connect(first.get(), &ProgramActivation::actionRequested, this,
                [&] { QFAIL("nobody asked for that"); });
        const qint64 own = QCoreApplication::applicationPid();

        QVERIFY(isSound(first->availability()));
        QVERIFY2(!ask(*hasty, own), "nobody listens yet");
        first->listen();
        QCOMPARE(ask(*second, own), first->availability().isAvailable);
        QVERIFY(isSound(first->availability()));
        QCOMPARE(first->availability().isAvailable, kind != u"Null"_s);
        const int expected = kind == u"Null"_s ? 0 : 1;
        QTRY_COMPARE(activations, expected);
        QVERIFY2(!ask(*hasty, own + 1), "that is another process");
        QTest::qWait(100);
        QCOMPARE(activations, expected);
    }

private:
    static std::unique_ptr<ProgramActivation> make(const QString& kind,
                                                   std::chrono::milliseconds patience)
    {
        if (kind == u"Linux"_s)
            return std::make_unique<BusActivation>(u"org.example.Heron"_s, patience);
        if (kind == u"Null"_s)
            return std::make_unique<NullProgramActivation>(kReason);
        auto fake = std::make_unique<FakeProgramActivation>();
        fake->process = QCoreApplication::applicationPid();
        return fake;
    }

    /// Fakes have no bus on which to meet.
    static void introduce(ProgramActivation& first, ProgramActivation& second)
    {
        if (auto* const fake = dynamic_cast<FakeProgramActivation*>(&second))
            fake->others.append(dynamic_cast<FakeProgramActivation*>(&first));
    }

    /// From another thread, as the first is in this one and has to answer meanwhile.
    static bool ask(ProgramActivation& second, qint64 process)
    {
        auto answer = std::async(std::launch::async, [&] { return second.activateFirst(process); });
        const bool isThere = QTest::qWaitFor(
            [&] { return answer.wait_for(0s) == std::future_status::ready; }, 20'000);
        return isThere && answer.get();
    }

    std::unique_ptr<TestBus> m_bus;
};

QTEST_GUILESS_MAIN(ProgramActivationContractTest)
#include "ProgramActivationContractTest.moc"
