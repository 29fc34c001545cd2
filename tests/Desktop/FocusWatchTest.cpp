// SPDX-License-Identifier: Apache-2.0
//
// What is known of the focus when programs are slow.

#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "tests/Desktop/AccessibleDesktop.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

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

QTEST_GUILESS_MAIN(FocusWatchTest)
#include "FocusWatchTest.moc"
