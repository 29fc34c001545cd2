// SPDX-License-Identifier: Apache-2.0
//
// A real Firefox all of whose windows are private, which none of them says.
#include "Mossbank/Platform/Linux/AtspiAddressSource.h"
#include "tests/Desktop/AccessibleDesktop.h"
#include "tests/Desktop/PageServer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

constexpr int kPatience = 20'000;

} // namespace

class PrivateFirefoxTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void whereAllWindowsArePrivateNoneHasAnAddress_data();
    void whereAllWindowsArePrivateNoneHasAnAddress();
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
    const PageServer server;
    QVERIFY(server.isListening());
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

    AccessibleDesktop desktop;
    QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
    const auto accessibility =
        std::make_shared<Accessibility>(std::make_shared<ApplicationCatalog>());
    QVERIFY(accessibility->waitUntilKnown(kPatience));
    AtspiAddressSource source(accessibility);
    const QString page = server.address(u"Kingfisher"_s);
    const QStringList arguments =
        QStringList{u"--no-remote"_s, u"--profile"_s, profile.path()} + options + QStringList{page};
    QVERIFY2(desktop.start(u"firefox-esr"_s, arguments, u"firefox-esr"_s) != 0,
             qPrintable(desktop.problem()));
    QVERIFY2(desktop.bringToFront(u"Kingfisher — Mozilla Firefox"_s),
             "it has the title of an ordinary window");

    // An ordinary one has an address within this time, so that a private one has had every chance.
    const int patience = hasAddress ? kPatience : 8000;
    QStringList answers;
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(patience) && answers.isEmpty()) {
        const auto answer = source.ask(u"firefox-esr"_s);
        QVERIFY(QTest::qWaitFor([&] { return answer.isFinished(); }, kPatience));
        if (answer.result() != AddressAnswer::failed())
            answers.append(answer.result().text);
    }
    QCOMPARE(answers, hasAddress ? QStringList{page} : QStringList());
    const QStringList left = desktop.end();
    QVERIFY2(left.isEmpty(), qPrintable(left.join(u'\n')));
}

QTEST_GUILESS_MAIN(PrivateFirefoxTest)
#include "PrivateFirefoxTest.moc"
