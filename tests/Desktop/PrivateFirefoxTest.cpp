// SPDX-License-Identifier: Apache-2.0
//
// A real Firefox all of whose windows are private, which none of them says.
#include "Mossbank/Platform/Linux/PageQuestion.h"
#include "tests/Desktop/BrowserTest.h"

#include <QDebug>
#include <QFile>
#include <QTest>
#include <qcoro/qcorotask.h>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class PrivateFirefoxTest final : public BrowserTest {
    Q_OBJECT

private Q_SLOTS:
    void whereAllWindowsArePrivateNoneHasAnAddress_data();
    void whereAllWindowsArePrivateNoneHasAnAddress();
    void aPrivateWindowsToolbarSaysSo();
};

void PrivateFirefoxTest::whereAllWindowsArePrivateNoneHasAnAddress_data()
{
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("hasAddress");
    const QByteArray setting = "user_pref(\"browser.privatebrowsing.autostart\", ";
    QTest::newRow("ordinary") << QByteArray(setting + "false);\n") << QStringList() << true;
    QTest::newRow("by its settings") << QByteArray(setting + "true);\n") << QStringList() << false;
    QTest::newRow("by its command") << QByteArray() << QStringList{u"-private"_s} << false;
}

void PrivateFirefoxTest::whereAllWindowsArePrivateNoneHasAnAddress()
{
    QFETCH(QByteArray, setting);
    QFETCH(QStringList, options);
    QFETCH(bool, hasAddress);
    const QTemporaryDir profile;
    QFile choices(profile.filePath(u"user.js"_s));
    const QByteArray text = "user_pref(\"browser.shell.checkDefaultBrowser\", false);\n"
                            "user_pref(\"browser.aboutwelcome.enabled\", false);\n"
                            "user_pref(\"datareporting.policy.dataSubmissionEnabled\", false);\n"
                            "user_pref(\"termsofuse.bypassNotification\", true);\n"
                            // What its toolbar has where this is on may be taken off it.
                            "user_pref(\"browser.privatebrowsing.resetPBM.enabled\", false);\n" +
                            setting;
    QVERIFY(choices.open(QIODevice::WriteOnly) && choices.write(text) == text.size());
    choices.close();

    listen();
    const QString page = server().address(u"Kingfisher"_s);
    const QStringList arguments =
        QStringList{u"--no-remote"_s, u"--profile"_s, profile.path()} + options + QStringList{page};
    QVERIFY2(desktop().start(u"firefox-esr"_s, arguments, u"firefox-esr"_s) != 0,
             qPrintable(desktop().problem()));
    QVERIFY2(desktop().bringToFront(u"Kingfisher — Mozilla Firefox"_s),
             "it has the title of an ordinary window");

    // An ordinary one has an address within this time, so that a private one has had every chance.
    const int patience = hasAddress ? kPatience : 8000;
    QCOMPARE(addressOf(u"firefox-esr"_s, patience), hasAddress ? QStringList{page} : QStringList());
}

/// Whatever its title is.
void PrivateFirefoxTest::aPrivateWindowsToolbarSaysSo()
{
    const qint64 process = desktop().startFirefox({server().address(u"Heron"_s)});
    QVERIFY2(process != 0, qPrintable(desktop().problem()));
    QVERIFY(desktop().bringToFront(u"Heron — Mozilla Firefox"_s));
    QVERIFY(desktop().press({u"ctrl+shift+p"_s}));
    QVERIFY(desktop().bringToFront(u"Mozilla Firefox Private Browsing"_s));
    // By the names of its windows; whether each has the sign.
    const auto signs = [&]() -> QCoro::Task<QMap<QString, bool>> {
        QMap<QString, bool> found;
        const auto windows = co_await windowsOf(process);
        for (const AccessibleWindow& window : windows)
            found.insert(window.name, co_await hasPrivateSign(bus(), window.object));
        co_return found;
    };
    const QMap<QString, bool> expected = {{u"Heron — Mozilla Firefox"_s, false},
                                          {u"Mozilla Firefox Private Browsing"_s, true}};
    // Asked until it is so: a busy browser may answer too late, which counts as a private one.
    QMap<QString, bool> found;
    const auto areTold = [&] {
        found = QCoro::waitFor(signs());
        return found == expected;
    };
    QVERIFY2(QTest::qWaitFor(areTold, kPatience), qPrintable(QDebug::toString(found)));
}

QTEST_GUILESS_MAIN(PrivateFirefoxTest)
#include "PrivateFirefoxTest.moc"
