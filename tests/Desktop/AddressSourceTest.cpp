// SPDX-License-Identifier: Apache-2.0
//
// The address of the page that a real browser shows.
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/PageServer.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kLongestAnswer = 2200;
const QString kChromium = u"chromium"_s;
const QString kFirefox = u"firefox-esr"_s;

} // namespace

class AddressSourceTest final : public AccessibilityTest {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.isListening()); }
    void thePageInFrontHasAnAddress_data() { browsers(); }
    void thePageInFrontHasAnAddress();
    void aBrowserBehindAnotherWindowIsNotAnswered();
    void aPrivateWindowHasNone_data();
    void aPrivateWindowHasNone();
    void aPrivateWindowBesideAnOrdinaryOneOfTheSamePageHasNone();
    void aBrowserThatStoppedIsNotWaitedForLong_data() { browsers(); }
    void aBrowserThatStoppedIsNotWaitedForLong();
    void switchedOffItHasNoneUntilItIsSwitchedOn();
    void aChromiumFromBeforeItWasSwitchedOnNeverAnswers();
    void theBusMayGoAndComeBack();
    void withoutItsBusItSaysWhy_data();
    void withoutItsBusItSaysWhy();
    void whatIsAskedAtItsEndIsAnswered();

private:
    static void browsers();
    void begin() { m_source = std::make_unique<AtspiAddressSource>(accessibility()); }
    bool open(const QString& browser, const QStringList& arguments);
    bool isInFront(const QString& browser, const QString& page, const QString& more = {});
    AddressAnswer ask(const QString& browser);
    bool becomes(const QString& browser, const QString& address);
    void letGo() override { m_source.reset(); }

    PageServer m_server;
    std::unique_ptr<AddressSource> m_source;
    qint64 m_process = 0;
    qint64 m_milliseconds = 0;
};

void AddressSourceTest::browsers()
{
    QTest::addColumn<QString>("browser");
    QTest::newRow("Chromium") << kChromium;
    QTest::newRow("Firefox") << kFirefox;
}

bool AddressSourceTest::open(const QString& browser, const QStringList& arguments)
{
    m_process = browser == kChromium ? desktop().startChromium(arguments)
                                     : desktop().startFirefox(arguments);
    return m_process != 0;
}

bool AddressSourceTest::isInFront(const QString& browser, const QString& page, const QString& more)
{
    return desktop().bringToFront(
        page + (browser == kChromium ? u" - Chromium"_s : u" — Mozilla Firefox"_s) + more);
}

AddressAnswer AddressSourceTest::ask(const QString& browser)
{
    QElapsedTimer timer;
    timer.start();
    const QFuture<AddressAnswer> future = m_source->ask(browser);
    if (!QTest::qWaitFor([&] { return future.isFinished(); }, kPatience))
        return {AddressAnswer::Kind::Refused, u"there was no answer"_s};
    m_milliseconds = timer.elapsed();
    return future.result();
}

bool AddressSourceTest::becomes(const QString& browser, const QString& address)
{
    return QTest::qWaitFor([&] { return ask(browser) == AddressAnswer::answered(address); },
                           kPatience);
}

void AddressSourceTest::thePageInFrontHasAnAddress()
{
    QFETCH(QString, browser);
    begin();
    const QString first = m_server.address(u"Kingfisher/one?a=b%20c&d#part"_s);
    const QString second = m_server.address(u"Heron/two"_s);
    QVERIFY2(open(browser, {first, second}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(browser, u"Kingfisher"_s));
    QVERIFY(becomes(browser, first));
    for (int time = 0; time < 5; ++time) {
        QVERIFY(becomes(browser, first));
        qInfo("%lld milliseconds", static_cast<long long>(m_milliseconds));
    }
    QVERIFY(desktop().press({u"ctrl+Tab"_s}));
    QVERIFY(isInFront(browser, u"Heron"_s));
    QVERIFY(becomes(browser, second));
}

void AddressSourceTest::aBrowserBehindAnotherWindowIsNotAnswered()
{
    begin();
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(kChromium, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(becomes(kChromium, address));
    // Not the one that was asked, also not where they are of one kind.
    QCOMPARE(ask(kFirefox), AddressAnswer::failed());
    QCOMPARE(ask(u"org.chromium.Chromium"_s), AddressAnswer::failed());
    WindowProgram other;
    QVERIFY(other.open({.frame = {600, 500, 300, 200},
                        .colour = kGreen,
                        .windowClass = u"Alpha"_s,
                        .title = u"The other"_s}));
    QVERIFY(desktop().bringToFront(u"The other"_s));
    QVERIFY(QTest::qWaitFor([&] { return ask(kChromium) == AddressAnswer::failed(); }, kPatience));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(becomes(kChromium, address));
}

void AddressSourceTest::aPrivateWindowHasNone_data()
{
    QTest::addColumn<QString>("browser");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("more");
    QTest::newRow("Chromium incognito") << kChromium << u"--incognito"_s << QString();
    QTest::newRow("Chromium guest") << kChromium << u"--guest"_s << QString();
    QTest::newRow("Firefox") << kFirefox << u"--private-window"_s << u" Private Browsing"_s;
}

void AddressSourceTest::aPrivateWindowHasNone()
{
    QFETCH(QString, browser);
    QFETCH(QString, option);
    QFETCH(QString, more);
    begin();
    QVERIFY2(open(browser, {option, m_server.address(u"Kingfisher"_s)}),
             qPrintable(desktop().problem()));
    QVERIFY(isInFront(browser, u"Kingfisher"_s, more));
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(6000))
        QCOMPARE(ask(browser), AddressAnswer::failed());
}

void AddressSourceTest::aPrivateWindowBesideAnOrdinaryOneOfTheSamePageHasNone()
{
    begin();
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(kChromium, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(becomes(kChromium, address));
    QVERIFY(open(kChromium, {u"--incognito"_s, address}));
    // One answer that fails may be one that came too late, so it has to fail on and on.
    const auto failsFor = [this](int milliseconds) {
        QElapsedTimer timer;
        timer.start();
        while (!timer.hasExpired(milliseconds)) {
            if (ask(kChromium) != AddressAnswer::failed())
                return false;
        }
        return true;
    };
    QVERIFY(QTest::qWaitFor([&] { return failsFor(2000); }, kPatience));
    QVERIFY(failsFor(4000));
    QVERIFY(desktop().press({u"ctrl+w"_s}));
    QVERIFY(becomes(kChromium, address));
}

void AddressSourceTest::aBrowserThatStoppedIsNotWaitedForLong()
{
    QFETCH(QString, browser);
    begin();
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(browser, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(browser, u"Kingfisher"_s));
    QVERIFY(becomes(browser, address));
    ::kill(static_cast<pid_t>(m_process), SIGSTOP);
    for (int time = 0; time < 3; ++time) {
        QCOMPARE(ask(browser), AddressAnswer::failed());
        qInfo("%lld milliseconds", static_cast<long long>(m_milliseconds));
        QVERIFY(m_milliseconds <= kLongestAnswer);
    }
    ::kill(static_cast<pid_t>(m_process), SIGCONT);
    QVERIFY(becomes(browser, address));
}

void AddressSourceTest::switchedOffItHasNoneUntilItIsSwitchedOn()
{
    startDesktop({.isSwitchedOn = false});
    begin();
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(kFirefox, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kFirefox, u"Kingfisher"_s));
    QVERIFY2(m_source->availability().reason.contains(u"switched off"_s),
             qPrintable(m_source->availability().reason));
    QVERIFY(!desktop().isTelling());
    QCOMPARE(ask(kFirefox), AddressAnswer::failed());

    const QString words = m_source->switchOn();
    QVERIFY2(words.contains(u"close those that are open"_s), qPrintable(words));
    QVERIFY(QTest::qWaitFor([&] { return desktop().isTelling(); }, kPatience));
    QVERIFY(QTest::qWaitFor([&] { return m_source->availability().isAvailable; }, kPatience));
    QVERIFY(becomes(kFirefox, address));
    QVERIFY2(m_source->switchOn().isEmpty(), "there is nothing to be told");
}

void AddressSourceTest::aChromiumFromBeforeItWasSwitchedOnNeverAnswers()
{
    startDesktop({.isSwitchedOn = false});
    begin();
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(kChromium, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(!m_source->switchOn().isEmpty());
    QVERIFY(QTest::qWaitFor([&] { return m_source->availability().isAvailable; }, kPatience));
    QElapsedTimer timer;
    timer.start();
    // It fails, and is not taken for a browser that refuses.
    while (!timer.hasExpired(4000))
        QCOMPARE(ask(kChromium), AddressAnswer::failed());
    ::kill(static_cast<pid_t>(m_process), SIGTERM);
    QVERIFY(
        QTest::qWaitFor([&] { return ::kill(static_cast<pid_t>(m_process), 0) != 0; }, kPatience));
    QVERIFY2(open(kChromium, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(becomes(kChromium, address));
}

void AddressSourceTest::theBusMayGoAndComeBack()
{
    begin();
    QVERIFY(m_source->availability().isAvailable);
    m_source->switchOn();
    QVERIFY(desktop().killAccessibilityBus());
    QVERIFY(QTest::qWaitFor([&] { return !m_source->availability().isAvailable; }, kPatience));
    QCOMPARE(ask(kChromium), AddressAnswer::failed());
    // What the user chose holds for the new one.
    QVERIFY(QTest::qWaitFor([&] { return m_source->availability().isAvailable; }, kPatience));
    QVERIFY(desktop().isTelling());
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(kChromium, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(becomes(kChromium, address));
}

void AddressSourceTest::withoutItsBusItSaysWhy_data()
{
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<QString>("word");
    QTest::newRow("no session bus") << false << u"There is no session bus"_s;
    QTest::newRow("no accessibility bus") << true << u"at-spi2-core"_s;
}

void AddressSourceTest::withoutItsBusItSaysWhy()
{
    QFETCH(bool, hasSession);
    QFETCH(QString, word);
    startDesktop({.hasSession = hasSession, .hasAccessibility = false, .isSwitchedOn = false});
    begin();
    QVERIFY2(m_source->availability().reason.contains(word),
             qPrintable(m_source->availability().reason));
    QVERIFY(m_source->canAsk(kChromium));
    QCOMPARE(ask(kChromium), AddressAnswer::failed());
    QVERIFY(m_milliseconds <= kLongestAnswer);
    QVERIFY2(m_source->switchOn().contains(word), qPrintable(m_source->switchOn()));
}

void AddressSourceTest::whatIsAskedAtItsEndIsAnswered()
{
    begin();
    const QString address = m_server.address(u"Kingfisher"_s);
    QVERIFY2(open(kChromium, {address}), qPrintable(desktop().problem()));
    QVERIFY(isInFront(kChromium, u"Kingfisher"_s));
    QVERIFY(becomes(kChromium, address));
    ::kill(static_cast<pid_t>(m_process), SIGSTOP);
    const QFuture<AddressAnswer> future = m_source->ask(kChromium);
    QVERIFY(!future.isFinished());
    m_source.reset();
    QVERIFY(future.isFinished());
    QCOMPARE(future.result(), AddressAnswer::failed());
}

QTEST_GUILESS_MAIN(AddressSourceTest)
#include "AddressSourceTest.moc"
