// SPDX-License-Identifier: Apache-2.0
//
// The real program before a password that is typed, and before browsers.
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/PageServer.h"
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/SecureInputWatch.h"
#include "tests/Desktop/SignIn.h"

#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

/// What of the rows with this in their titles was saved as their page's address.
QStringList linksOf(const QList<Memory>& rows, const QString& title)
{
    QStringList links;
    for (const Memory& row : rows) {
        if (row.title.contains(title))
            links.append(row.link);
    }
    return links;
}

/// Seconds from one of these to the next, the newest first.
double longestGap(const QList<Memory>& rows)
{
    double longest = 0;
    for (qsizetype row = 1; row < rows.size(); ++row)
        longest = std::max(longest, rows[row - 1].timestamp - rows[row].timestamp);
    return longest;
}

/// Starts it recording, with what the page in front has for an address, every second.
bool savesAddresses(RunningMossbank& mossbank)
{
    mossbank.setSessionBus(AccessibleDesktop::sessionBus());
    mossbank.choose({{u"interval"_s, u"1"_s},
                     {u"skipsUnchangedScreens"_s, u"false"_s},
                     {u"savesAddresses"_s, u"true"_s}});
    return mossbank.start() && mossbank.waitFor(u"Saved at "_s);
}

} // namespace

class SecretsAndPagesTest final : public AccessibilityTest {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useTestApplications(); }
    void nothingIsSavedWhileAPasswordIsTyped_data() { addSignInKinds(); }
    void nothingIsSavedWhileAPasswordIsTyped();
    void theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot_data();
    void theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot();
    void aBrowserThatStopsHoldsNoPass_data();
    void aBrowserThatStopsHoldsNoPass();
};

void SecretsAndPagesTest::nothingIsSavedWhileAPasswordIsTyped()
{
    QFETCH(QString, kind);
    QVERIFY2(openSignIn(desktop(), kind), qPrintable(desktop().problem()));
    constexpr int kUntilReady = 1000;
    QTest::qWait(kUntilReady);
    QVERIFY(desktop().press({u"Tab"_s}));
    // On a busy machine a browser is slow to follow.
    auto focus = std::make_unique<AtspiSecureInput>(accessibility());
    QVERIFY(settles(*focus, true));
    focus.reset();

    RunningMossbank mossbank;
    mossbank.setSessionBus(AccessibleDesktop::sessionBus());
    mossbank.choose({{u"interval"_s, u"1"_s}, {u"skipsUnchangedScreens"_s, u"false"_s}});
    QVERIFY(mossbank.start());
    const QString skipped = u"Skipped while a password field or other secure input is active"_s;
    QVERIFY2(mossbank.waitFor(skipped), qPrintable(mossbank.terminal()));
    constexpr int kSeveralPasses = 2500;
    QTest::qWait(kSeveralPasses);
    QVERIFY2(mossbank.rows().isEmpty(), qPrintable(mossbank.terminal()));
    QCOMPARE(mossbank.pictureFiles(), QStringList());
    QVERIFY(desktop().press({u"shift+Tab"_s}));
    QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));

    // The usual course: it records already when somebody comes to the field.
    QVERIFY(desktop().press({u"Tab"_s}));
    QVERIFY2(mossbank.waitFor(skipped, 2), qPrintable(mossbank.terminal()));
    const auto rows = mossbank.rows().size();
    const auto pictures = mossbank.pictureFiles().size();
    QVERIFY(rows > 0 && pictures > 0);
    QTest::qWait(kSeveralPasses);
    QCOMPARE(mossbank.rows().size(), rows);
    QCOMPARE(mossbank.pictureFiles().size(), pictures);
    QCOMPARE(mossbank.stop(SIGINT), 0);
    QVERIFY2(!mossbank.terminal().contains(u"ccessibility"_s), qPrintable(mossbank.terminal()));
}

void SecretsAndPagesTest::theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot_data()
{
    QTest::addColumn<bool>("isChromium");
    QTest::addColumn<QString>("ordinaryTitle");
    QTest::addColumn<QString>("privateTitle");
    QTest::newRow("Chromium") << true << u"Heron - Chromium"_s << u"Kingfisher - Chromium"_s;
    QTest::newRow("Firefox") << false << u"Heron — Mozilla Firefox"_s
                             << u"Kingfisher — Mozilla Firefox Private Browsing"_s;
}

/// An ordinary page first, so that the private one has none though the browser would answer.
void SecretsAndPagesTest::theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot()
{
    QFETCH(bool, isChromium);
    QFETCH(QString, ordinaryTitle);
    QFETCH(QString, privateTitle);
    const PageServer server;
    QVERIFY(server.isListening());
    const QString ordinary = server.address(u"Heron/one?two=three"_s);
    QVERIFY(isChromium ? desktop().startChromium({ordinary}) : desktop().startFirefox({ordinary}));
    QVERIFY(desktop().bringToFront(ordinaryTitle));

    RunningMossbank mossbank;
    QVERIFY2(savesAddresses(mossbank), qPrintable(mossbank.terminal()));
    const auto links = [&](const QString& title) {
        return linksOf(mossbank.rows(), title);
    };
    QVERIFY2(QTest::qWaitFor([&] { return links(u"Heron"_s).contains(ordinary); }, kPatience),
             qPrintable(mossbank.terminal()));

    const QString secret = server.address(u"Kingfisher"_s);
    if (isChromium) {
        QVERIFY(desktop().startChromium({u"--incognito"_s, secret}));
    } else {
        QVERIFY(desktop().press({u"ctrl+shift+p"_s}));
        QVERIFY(desktop().bringToFront(u"Mozilla Firefox Private Browsing"_s));
        QTest::qWait(1000);
        QVERIFY(desktop().press({u"ctrl+l"_s}));
        QVERIFY(desktop().type(secret));
        QVERIFY(desktop().press({u"Return"_s}));
    }
    QVERIFY(desktop().bringToFront(privateTitle));
    constexpr int kSeveral = 4;
    QVERIFY2(QTest::qWaitFor([&] { return links(u"Kingfisher"_s).size() >= kSeveral; }, kPatience),
             qPrintable(mossbank.terminal()));
    QCOMPARE(links(u"Kingfisher"_s).join(QString()), QString());
    QVERIFY(desktop().bringToFront(ordinaryTitle));
    const auto before = links(u"Heron"_s).count(ordinary);
    QVERIFY2(QTest::qWaitFor([&] { return links(u"Heron"_s).count(ordinary) > before; }, kPatience),
             qPrintable(mossbank.terminal()));
    QVERIFY(std::ranges::all_of(
        links(QString()), [&](const QString& link) { return link.isEmpty() || link == ordinary; }));
    QCOMPARE(mossbank.stop(SIGINT), 0);
}

void SecretsAndPagesTest::aBrowserThatStopsHoldsNoPass_data()
{
    QTest::addColumn<bool>("isChromium");
    QTest::newRow("Chromium") << true;
    QTest::newRow("Firefox") << false;
}

void SecretsAndPagesTest::aBrowserThatStopsHoldsNoPass()
{
    QFETCH(bool, isChromium);
    const PageServer server;
    QVERIFY(server.isListening());
    const QString address = server.address(u"Heron"_s);
    const auto browser = static_cast<pid_t>(isChromium ? desktop().startChromium({address})
                                                       : desktop().startFirefox({address}));
    QVERIFY(browser != 0);
    QVERIFY(
        desktop().bringToFront(isChromium ? u"Heron - Chromium"_s : u"Heron — Mozilla Firefox"_s));
    RunningMossbank mossbank;
    QVERIFY2(savesAddresses(mossbank), qPrintable(mossbank.terminal()));
    const auto count = [&](const QString& link) {
        return linksOf(mossbank.rows(), u"Heron"_s).count(link);
    };
    QVERIFY2(QTest::qWaitFor([&] { return count(address) > 0; }, kPatience),
             qPrintable(mossbank.terminal()));

    // What a pass takes on this machine anyway.
    constexpr int kUsual = 4;
    QVERIFY(QTest::qWaitFor([&] { return mossbank.rows().size() > kUsual; }, kPatience));
    const QList<Memory> answering = mossbank.rows().first(kUsual);
    const double usual = longestGap(answering);
    const Date last = answering.first().timestamp;
    ::kill(browser, SIGSTOP);
    const auto since = [&] {
        QList<Memory> rows = mossbank.rows();
        rows.removeIf([&](const Memory& row) { return row.timestamp < last; });
        return rows;
    };
    constexpr int kSeveral = 6;
    QVERIFY2(QTest::qWaitFor([&] { return since().size() > kSeveral; }, kPatience),
             qPrintable(mossbank.terminal()));
    QVERIFY2(count(QString()) > 0, "it did not answer");
    // The newest first; the oldest is the last one before it stopped.
    const QList<Memory> stopped = since();
    const double longest = longestGap(stopped);
    qInfo("at most %f seconds from one to the next, before %f", longest, usual);
    constexpr double kLongestWait = 2.2;
    QVERIFY(longest <= usual + kLongestWait);
    ::kill(browser, SIGCONT);
    const auto answered = count(address);
    QVERIFY2(QTest::qWaitFor([&] { return count(address) > answered; }, kPatience),
             qPrintable(mossbank.terminal()));
    QCOMPARE(mossbank.stop(SIGINT), 0);
}

QTEST_GUILESS_MAIN(SecretsAndPagesTest)
#include "SecretsAndPagesTest.moc"
