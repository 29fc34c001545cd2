// SPDX-License-Identifier: Apache-2.0
//
// What is known of the focus when programs, or the X server, are slow.
#include "Mossbank/Platform/Linux/FocusWatch.h"

#include "Mossbank/Platform/Linux/AccessibilityBus.h"
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "tests/Desktop/AccessibleDesktop.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kPatience = 20'000;

/// A name and a password, and a page so long that a browser is a while about looking through it.
QByteArray longPage()
{
    return "<title>Sign in</title><input id=name autofocus><input id=secret type=password>" +
           QByteArray("<p>Some <b>words</b> of a long page.").repeated(35'000);
}

} // namespace

class FocusWatchTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPasswordFieldOfALongPageIsSecret();
    void oneLateAnswerOfTheServerDoesNotHold();
};

void FocusWatchTest::aPasswordFieldOfALongPageIsSecret()
{
    const QTemporaryDir folder;
    QFile page(folder.filePath(u"page.html"_s));
    QVERIFY(page.open(QIODevice::WriteOnly) && page.write(longPage()) > 0);
    page.close();
    AccessibleDesktop desktop;
    QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
    const auto accessibility =
        std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
    QVERIFY(accessibility->waitUntilKnown(kPatience));
    QVERIFY2(desktop.startChromium({u"file://"_s + page.fileName()}) != 0,
             qPrintable(desktop.problem()));
    QVERIFY(desktop.bringToFront(u"Sign in - Chromium"_s));
    const auto wait = [&](int limit, auto isEnough) {
        QElapsedTimer timer;
        timer.start();
        while (!timer.hasExpired(limit)) {
            if (isEnough(accessibility->isSecretTyped()))
                return true;
            QTest::qWait(50);
        }
        return false;
    };
    // It is looked at again and again, as the recorder does.
    wait(6000, [](bool) { return false; });
    QVERIFY(wait(kPatience, [](bool isSecret) { return !isSecret; }));
    QVERIFY(desktop.press({u"Tab"_s}));
    QVERIFY(wait(kPatience, [](bool isSecret) { return isSecret; }));
    QVERIFY2(!wait(6000, [](bool isSecret) { return !isSecret; }),
             "the password field has the focus still");
    const QStringList left = desktop.end();
    QVERIFY2(left.isEmpty(), qPrintable(left.join(u'\n')));
}

void FocusWatchTest::oneLateAnswerOfTheServerDoesNotHold()
{
    const VirtualDesktop desktop;
    AccessibilityBus bus;
    AccessiblePrograms programs(bus);
    X11ActiveWindow window;
    SecretTyping typing;
    FocusWatch watch(bus, programs, window, typing);
    QVERIFY(window.read());
    QVERIFY(typing.place() != SecretTyping::Place::Unknown);
    const auto server = static_cast<pid_t>(desktop.serverProcess());
    ::kill(server, SIGSTOP);
    Q_EMIT window.changed();
    const auto place = typing.place();
    ::kill(server, SIGCONT);
    QCOMPARE(place, SecretTyping::Place::Unknown);
    QVERIFY(window.read());
    QCOMPARE(typing.place(), SecretTyping::Place::Unknown);
    watch.check();
    QVERIFY(typing.place() != SecretTyping::Place::Unknown);
}

QTEST_GUILESS_MAIN(FocusWatchTest)
#include "FocusWatchTest.moc"
