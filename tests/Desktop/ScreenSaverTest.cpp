// SPDX-License-Identifier: Apache-2.0
//
// Screen savers that answer late, wrongly or not at all, and that go and come back.
#include "Mossbank/Platform/Linux/ScreenSavers.h"
#include "tests/Desktop/MockedSession.h"

#include <QDBusVariant>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

/// Somebody who has the name of a screen saver, and can be told what to know of it.
class NameOwner {
public:
    explicit NameOwner(TestBus& bus, const QString& desktop = u"gnome"_s)
        : m_service(u"org.%1.ScreenSaver"_s.arg(desktop))
        , m_path(u"/org/%1/ScreenSaver"_s.arg(desktop))
        , m_mock(bus, QDBusConnection::SessionBus, m_service, m_path,
                 {u"--session"_s, m_service, m_path, m_service})
    {
    }

    QString problem() const { return m_mock.problem(); }

    /// From now on it answers whether it covers the screen with what this Python code gives.
    bool answer(const QString& code, const QString& signature = u"b"_s)
    {
        return m_mock.mock(m_path, u"AddMethod"_s,
                           {m_service, u"GetActive"_s, QString(), signature, code});
    }

    bool tell(const QVariant& isActive, const QString& signature = u"b"_s)
    {
        return m_mock.mock(m_path, u"EmitSignal"_s,
                           {m_service, u"ActiveChanged"_s, signature,
                            QVariantList{QVariant::fromValue(QDBusVariant(isActive))}});
    }

    void standStill() { ::kill(static_cast<pid_t>(m_mock.process().processId()), SIGSTOP); }
    void goOn() { ::kill(static_cast<pid_t>(m_mock.process().processId()), SIGCONT); }

private:
    QString m_service;
    QString m_path;
    MockedService m_mock;
};

} // namespace

class ScreenSaverTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    }
    void cleanup() { m_bus.reset(); }

    void everyDesktopsScreenSaverIsAskedWhereItAnswers_data();
    void everyDesktopsScreenSaverIsAskedWhereItAnswers();
    void whatIsNoAnswerIsNone_data();
    void whatIsNoAnswerIsNone();
    void aSignalOfAnotherTypeSaysNothing();
    void oneThatIsBusyAtFirstIsAskedAgain();
    void whoOnlyHasTheNameIsNoScreenSaver();
    void oneThatComesBackWithoutAWordCoversNothingInTheEnd();
    void oneThatComesBackActiveGoesOnCovering();
    void oneThatComesBackAndHasEndedUncoversAtOnce();

private:
    /// Longer than what it said stands after it went.
    static constexpr int kUntilForgotten = 13'000;

    /// Nothing about `savers` is as it should not be for that long.
    static bool stays(const ScreenSavers& savers, bool isActive, int milliseconds)
    {
        return !QTest::qWaitFor([&] { return savers.isActive() != isActive; }, milliseconds);
    }

    std::unique_ptr<TestBus> m_bus;
};

void ScreenSaverTest::everyDesktopsScreenSaverIsAskedWhereItAnswers_data()
{
    QTest::addColumn<QString>("desktop");
    for (const char* desktop : {"freedesktop", "gnome", "cinnamon", "mate", "xfce"})
        QTest::newRow(desktop) << QString::fromLatin1(desktop);
}

void ScreenSaverTest::everyDesktopsScreenSaverIsAskedWhereItAnswers()
{
    QFETCH(QString, desktop);
    NameOwner saver(*m_bus, desktop);
    QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
    QVERIFY(saver.answer(u"ret = True"_s));
    const ScreenSavers savers;
    QVERIFY(savers.isThere());
    QVERIFY(savers.isActive());
}

void ScreenSaverTest::whatIsNoAnswerIsNone_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("signature");
    QTest::newRow("text") << u"ret = 'true'"_s << u"s"_s;
    QTest::newRow("a number") << u"ret = 1"_s << u"i"_s;
    QTest::newRow("nothing") << u"pass"_s << QString();
    QTest::newRow("an error")
        << u"raise dbus.exceptions.DBusException('no', name='org.example.No')"_s << u"b"_s;
}

void ScreenSaverTest::whatIsNoAnswerIsNone()
{
    QFETCH(QString, code);
    QFETCH(QString, signature);
    NameOwner saver(*m_bus);
    QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
    QVERIFY(saver.answer(code, signature));
    const ScreenSavers savers;
    QVERIFY(!savers.isThere());
    QVERIFY(!savers.isActive());
    // Once it answers as it should it is heard.
    QVERIFY(saver.answer(u"ret = True"_s));
    QTRY_VERIFY(savers.isThere());
    QVERIFY(savers.isActive());
}

void ScreenSaverTest::aSignalOfAnotherTypeSaysNothing()
{
    NameOwner saver(*m_bus);
    QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
    const ScreenSavers savers;
    QVERIFY(saver.tell(u"true"_s, u"s"_s));
    QVERIFY(stays(savers, false, 300));
    QVERIFY(!savers.isThere());
    QVERIFY(saver.tell(true));
    QTRY_VERIFY(savers.isActive());
    QVERIFY(savers.isThere());
}

void ScreenSaverTest::oneThatIsBusyAtFirstIsAskedAgain()
{
    NameOwner saver(*m_bus);
    QVERIFY2(saver.problem().isEmpty(), qPrintable(saver.problem()));
    QVERIFY(saver.answer(u"ret = True"_s));
    saver.standStill();
    const ScreenSavers savers;
    QVERIFY(!savers.isThere());
    saver.goOn();
    QTRY_VERIFY(savers.isActive());
    QVERIFY(savers.isThere());
}

void ScreenSaverTest::whoOnlyHasTheNameIsNoScreenSaver()
{
    const ScreenSavers savers;
    NameOwner other(*m_bus);
    QVERIFY2(other.problem().isEmpty(), qPrintable(other.problem()));
    QTest::qWait(1500);
    QVERIFY(!savers.isThere());
    QVERIFY(other.answer(u"ret = False"_s));
    QTRY_VERIFY(savers.isThere());
    QVERIFY(!savers.isActive());
}

void ScreenSaverTest::oneThatComesBackWithoutAWordCoversNothingInTheEnd()
{
    auto saver = std::make_unique<NameOwner>(*m_bus);
    QVERIFY(saver->answer(u"ret = True"_s));
    const ScreenSavers savers;
    QVERIFY(savers.isActive());
    saver.reset();
    QTRY_VERIFY(!savers.isThere());
    const NameOwner silent(*m_bus);
    QVERIFY2(silent.problem().isEmpty(), qPrintable(silent.problem()));
    QVERIFY2(savers.isActive(), "what was said stands for a while");
    QTRY_VERIFY_WITH_TIMEOUT(!savers.isActive(), kUntilForgotten);
    QVERIFY(!savers.isThere());
}

void ScreenSaverTest::oneThatComesBackActiveGoesOnCovering()
{
    auto saver = std::make_unique<NameOwner>(*m_bus);
    QVERIFY(saver->answer(u"ret = True"_s));
    const ScreenSavers savers;
    QVERIFY(savers.isActive());
    saver.reset();
    QTRY_VERIFY(!savers.isThere());
    saver = std::make_unique<NameOwner>(*m_bus);
    QVERIFY(saver->answer(u"ret = True"_s));
    QVERIFY(stays(savers, true, kUntilForgotten));
    QVERIFY(savers.isThere());
    QVERIFY(saver->tell(false));
    QTRY_VERIFY(!savers.isActive());
}

void ScreenSaverTest::oneThatComesBackAndHasEndedUncoversAtOnce()
{
    auto saver = std::make_unique<NameOwner>(*m_bus);
    QVERIFY(saver->answer(u"ret = True"_s));
    const ScreenSavers savers;
    QVERIFY(savers.isActive());
    saver.reset();
    QTRY_VERIFY(!savers.isThere());
    saver = std::make_unique<NameOwner>(*m_bus);
    QVERIFY(saver->answer(u"ret = False"_s));
    QTRY_VERIFY(!savers.isActive());
    QVERIFY(savers.isThere());
}

QTEST_GUILESS_MAIN(ScreenSaverTest)
#include "ScreenSaverTest.moc"
