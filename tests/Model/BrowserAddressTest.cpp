// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/BrowserAddress.h"

#include "tests/Fakes/FakeAddressSource.h"
#include "tests/Fakes/FakeClock.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

const QString kBrowser = u"org.example.Browser"_s;
const QString kOther = u"org.example.Other"_s;
const QString kPage = u"https://example.org/page?x=1#part"_s;
constexpr double kPatience = 4;

} // namespace

class BrowserAddressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_addresses.reset();
        m_clock = std::make_unique<FakeClock>();
        m_source = std::make_unique<FakeAddressSource>();
        m_source->browsers = {kBrowser, kOther};
        m_source->answerNow = AddressAnswer::answered(kPage);
        m_addresses = std::make_unique<BrowserAddress>(*m_source, *m_clock);
    }

    void thePageOfABrowserIsTold()
    {
        QCOMPARE(addressOf(kBrowser), kPage);
        QCOMPARE(m_source->asked, QStringList{kBrowser});
        QCOMPARE(m_clock->sleepers(), std::size_t(0));
    }

    void whatIsNoBrowserIsNotAsked()
    {
        QVERIFY(!m_addresses->canAsk(u"org.example.Editor"_s));
        const auto address = m_addresses->address(u"org.example.Editor"_s, u"Editor"_s);
        QVERIFY(address.isFinished());
        QVERIFY(!address.result());
        QVERIFY(m_source->asked.isEmpty());
    }

    void whoRefusesIsNotAskedAgain()
    {
        m_source->answerNow = AddressAnswer::refused();
        QCOMPARE(addressOf(kBrowser), std::nullopt);
        m_source->answerNow = AddressAnswer::answered(kPage);
        QCOMPARE(addressOf(kBrowser), std::nullopt);
        QCOMPARE(m_source->asked, QStringList{kBrowser});
        QCOMPARE(addressOf(kOther), kPage);
    }

    void whatFailsIsAskedAgain()
    {
        m_source->answerNow = AddressAnswer::failed();
        QCOMPARE(addressOf(kBrowser), std::nullopt);
        m_source->answerNow = AddressAnswer::answered(kPage);
        QCOMPARE(addressOf(kBrowser), kPage);
        QVERIFY(m_addresses->refusedNames().isEmpty());
    }

    void aSourceThatThrowsHasFailed()
    {
        m_source->failure = u"the bus has gone"_s;
        QCOMPARE(addressOf(kBrowser), std::nullopt);
        m_source->failure.clear();
        QCOMPARE(addressOf(kBrowser), kPage);
    }

    void twoBrowsersOfOneNameAreNamedOnce()
    {
        m_source->answerNow = AddressAnswer::refused();
        QCOMPARE(addressOf(kBrowser, u"Browser"_s), std::nullopt);
        QCOMPARE(addressOf(kOther, u"Browser"_s), std::nullopt);
        QCOMPARE(m_addresses->refusedNames(), QStringList{u"Browser"_s});
        m_source->answerNow = AddressAnswer::answered(kPage);
        QCOMPARE(addressOf(kBrowser), std::nullopt);
        QCOMPARE(addressOf(kOther), std::nullopt);
    }

    void namesComeInTheOrderOfRefusal()
    {
        m_source->answerNow = AddressAnswer::refused();
        QCOMPARE(addressOf(kOther, u"Other"_s), std::nullopt);
        QCOMPARE(addressOf(kBrowser, u"Browser"_s), std::nullopt);
        QCOMPARE(m_addresses->refusedNames(), (QStringList{u"Other"_s, u"Browser"_s}));
    }

    void twoQuestionsMayBothBeRefused()
    {
        m_source->holdsAnswers = true;
        m_source->answerNow = AddressAnswer::refused();
        auto first = m_addresses->address(kBrowser, u"Browser"_s);
        auto second = m_addresses->address(kBrowser, u"Browser"_s);
        QCOMPARE(m_source->asked.size(), 2);
        m_source->release();
        m_source->release();
        QTRY_VERIFY(first.isFinished() && second.isFinished());
        QCOMPARE(m_addresses->refusedNames(), QStringList{u"Browser"_s});
    }

    void onlyWebPagesAreTold_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("https") << u"https://example.org/"_s << true;
        QTest::newRow("http") << u"http://example.org"_s << true;
        QTest::newRow("capitals stay as written") << u"HTTPS://Example.ORG/Page"_s << true;
        QTest::newRow("escapes stay as written") << u"https://example.org/a%20b?q=%C3%A7"_s << true;
        QTest::newRow("signs not escaped")
            << u"https://example.org/a|b?q={x}^`<y>&part=100%"_s << true;
        QTest::newRow("letters of all scripts") << u"https://örnek.example/yağmur?q=中"_s << true;
        QTest::newRow("a file") << u"file:///home/someone/letter.html"_s << false;
        QTest::newRow("a page of the browser's own") << u"about:config"_s << false;
        QTest::newRow("another") << u"chrome://settings"_s << false;
        QTest::newRow("a script") << u"javascript:alert(1)"_s << false;
        QTest::newRow("data") << u"data:text/html,https://example.org/"_s << false;
        QTest::newRow("a source view") << u"view-source:https://example.org/"_s << false;
        QTest::newRow("no scheme") << u"example.org/page"_s << false;
        QTest::newRow("no address") << u"https://exa mple.org/ x"_s << false;
        QTest::newRow("a longer scheme") << u"httpsx://example.org/"_s << false;
        QTest::newRow("a blank") << u" "_s << false;
    }
    void onlyWebPagesAreTold()
    {
        QFETCH(QString, text);
        QFETCH(bool, isTold);
        m_source->answerNow = AddressAnswer::answered(text);
        QCOMPARE(addressOf(kBrowser), isTold ? std::optional(text) : std::nullopt);
    }

    void theEmptyTextIsNoAnswer()
    {
        QCOMPARE(AddressAnswer::answered(QString()), AddressAnswer::failed());
    }

    void anAnswerAfterFourSecondsComesTooLate()
    {
        m_source->holdsAnswers = true;
        auto address = m_addresses->address(kBrowser, u"Browser"_s);
        QTRY_COMPARE(m_clock->sleepers(), std::size_t(1));
        m_clock->advance(kPatience - 0.1);
        QTest::qWait(1);
        QVERIFY(!address.isFinished());
        m_clock->advance(0.1);
        QTRY_VERIFY(address.isFinished());
        QVERIFY(!address.result());
        m_source->release();
        QTest::qWait(1);
        m_source->holdsAnswers = false;
        QCOMPARE(addressOf(kBrowser), kPage);
    }

    void aRefusalThatComesTooLateIsNone()
    {
        m_source->holdsAnswers = true;
        m_source->answerNow = AddressAnswer::refused();
        auto address = m_addresses->address(kBrowser, u"Browser"_s);
        QTRY_COMPARE(m_clock->sleepers(), std::size_t(1));
        m_clock->advance(kPatience);
        QTRY_VERIFY(address.isFinished());
        m_source->release();
        QTest::qWait(1);
        QVERIFY(m_addresses->refusedNames().isEmpty());
    }

    void whoeverWaitsWhenItGoesIsToldNothing()
    {
        m_source->holdsAnswers = true;
        auto address = m_addresses->address(kBrowser, u"Browser"_s);
        QTRY_COMPARE(m_clock->sleepers(), std::size_t(1));
        m_addresses.reset();
        QVERIFY(address.isFinished());
        QVERIFY(!address.result());
        QCOMPARE(m_clock->sleepers(), std::size_t(0));
        m_source->release();
        QTest::qWait(1);
    }

    void aScriptForEachBrowserOfAppleScript()
    {
        QMap<QString, QString> expected;
        for (const QString& browser :
             {u"com.apple.Safari"_s, u"com.apple.SafariTechnologyPreview"_s,
              u"com.kagi.kagimacOS"_s})
            expected[browser] =
                u"with timeout of 2 seconds\n  tell application id \"%1\"\n"
                "    if (count of documents) is 0 then return \"\"\n"
                "    return URL of front document\n  end tell\nend timeout"_s.arg(browser);
        for (const QString& browser :
             {u"com.google.Chrome"_s, u"com.google.Chrome.canary"_s, u"com.google.Chrome.beta"_s,
              u"org.chromium.Chromium"_s, u"com.brave.Browser"_s, u"com.brave.Browser.beta"_s,
              u"com.microsoft.edgemac"_s, u"com.microsoft.edgemac.Beta"_s,
              u"company.thebrowser.Browser"_s, u"com.vivaldi.Vivaldi"_s,
              u"com.operasoftware.Opera"_s, u"com.sigmaos.sigmaos.macos"_s})
            expected[browser] =
                u"with timeout of 2 seconds\n  tell application id \"%1\"\n"
                "    if (count of windows) is 0 then return \"\"\n"
                "    if mode of front window is \"incognito\" then return \"\"\n"
                "    return URL of active tab of front window\n  end tell\nend timeout"_s.arg(
                    browser);
        QCOMPARE(expected.size(), 15);
        const auto& dialects = BrowserAddress::dialects();
        QCOMPARE(dialects.keys(), expected.keys());
        for (const QString& browser : expected.keys())
            QCOMPARE(dialects[browser], expected[browser]);
    }

private:
    std::optional<QString> addressOf(const QString& bundleID, const QString& name = u"Browser"_s)
    {
        auto address = m_addresses->address(bundleID, name);
        if (!QTest::qWaitFor([&] { return address.isFinished(); }))
            qFatal("no address came");
        return address.result();
    }

    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<FakeAddressSource> m_source;
    std::unique_ptr<BrowserAddress> m_addresses;
};

QTEST_GUILESS_MAIN(BrowserAddressTest)
#include "BrowserAddressTest.moc"
