// SPDX-License-Identifier: Apache-2.0
//
// The real program before a password that is typed, and before browsers.
#include "tests/Desktop/AccessibleDesktop.h"
#include "tests/Desktop/PageServer.h"
#include "tests/Desktop/RunningMossbank.h"

#include <QTest>

#include <algorithm>
#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 20'000;

} // namespace

class SecretsAndPagesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useTestApplications(); }
    void init();
    void cleanup();
    void nothingIsSavedWhileAPasswordIsTyped();
    void theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot_data();
    void theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot();

private:
    std::unique_ptr<AccessibleDesktop> m_desktop;
};

void SecretsAndPagesTest::init()
{
    m_desktop = std::make_unique<AccessibleDesktop>();
    QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
}

void SecretsAndPagesTest::cleanup()
{
    const QStringList left = m_desktop->end();
    m_desktop.reset();
    QVERIFY2(left.isEmpty(), qPrintable(left.join(u'\n')));
}

void SecretsAndPagesTest::nothingIsSavedWhileAPasswordIsTyped()
{
    QVERIFY(m_desktop->start(
        u"yad"_s, {u"--form"_s, u"--title=Sign in"_s, u"--field=Name"_s, u"--field=Password:H"_s},
        u"yad"_s));
    QVERIFY(m_desktop->bringToFront(u"Sign in"_s));
    QTest::qWait(1000);
    QVERIFY(m_desktop->press({u"Tab"_s}));

    RunningMossbank mossbank;
    mossbank.setSessionBus(AccessibleDesktop::sessionBus());
    mossbank.choose({{u"interval"_s, u"1"_s}, {u"skipsUnchangedScreens"_s, u"false"_s}});
    QVERIFY(mossbank.start());
    const QString skipped = u"Skipped while a password field or other secure input is active"_s;
    QVERIFY2(mossbank.waitFor(skipped), qPrintable(mossbank.terminal()));
    QTest::qWait(4000);
    QCOMPARE(mossbank.rows().size(), 0);
    QVERIFY(m_desktop->press({u"shift+Tab"_s}));
    QVERIFY2(mossbank.waitFor(u"Saved at "_s), qPrintable(mossbank.terminal()));
    QCOMPARE(mossbank.stop(SIGINT), 0);
    QVERIFY2(!mossbank.terminal().contains(u"ccessibility"_s), qPrintable(mossbank.terminal()));
}

void SecretsAndPagesTest::theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot_data()
{
    QTest::addColumn<QString>("browser");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("isPrivate");
    const QString chromium = u"Chromium"_s;
    const QString firefox = u"Firefox"_s;
    QTest::newRow("Chromium") << chromium << u"Kingfisher - Chromium"_s << false;
    QTest::newRow("Firefox") << firefox << u"Kingfisher — Mozilla Firefox"_s << false;
    QTest::newRow("Chromium, private") << chromium << u"Kingfisher - Chromium"_s << true;
    QTest::newRow("Firefox, private")
        << firefox << u"Kingfisher — Mozilla Firefox Private Browsing"_s << true;
}

void SecretsAndPagesTest::theAddressOfAPageIsSavedButThatOfAPrivateOneIsNot()
{
    QFETCH(QString, browser);
    QFETCH(QString, title);
    QFETCH(bool, isPrivate);
    PageServer server;
    const QString address = server.address(u"Kingfisher/one?two=three"_s);
    QStringList arguments = {address};
    const bool isChromium = browser == u"Chromium";
    if (isPrivate)
        arguments.prepend(isChromium ? u"--incognito"_s : u"--private-window"_s);
    QVERIFY(isChromium ? m_desktop->startChromium(arguments) : m_desktop->startFirefox(arguments));
    QVERIFY(m_desktop->bringToFront(title));

    RunningMossbank mossbank;
    mossbank.setSessionBus(AccessibleDesktop::sessionBus());
    mossbank.choose({{u"interval"_s, u"1"_s},
                     {u"skipsUnchangedScreens"_s, u"false"_s},
                     {u"savesAddresses"_s, u"true"_s}});
    QVERIFY(mossbank.start());
    QVERIFY2(mossbank.waitFor(u"Saved at "_s, 4), qPrintable(mossbank.terminal()));
    const auto links = [&] {
        QStringList found;
        for (const Memory& row : mossbank.rows())
            found.append(row.link);
        return found;
    };
    if (isPrivate) {
        QTest::qWait(3000);
        QCOMPARE(links().join(QString()), QString());
    } else {
        QVERIFY2(QTest::qWaitFor([&] { return links().contains(address); }, kPatience),
                 qPrintable(mossbank.terminal()));
        QVERIFY(std::ranges::all_of(
            links(), [&](const QString& link) { return link.isEmpty() || link == address; }));
    }
    QCOMPARE(mossbank.stop(SIGINT), 0);
}

QTEST_GUILESS_MAIN(SecretsAndPagesTest)
#include "SecretsAndPagesTest.moc"
