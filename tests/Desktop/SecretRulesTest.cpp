// SPDX-License-Identifier: Apache-2.0
//
// What is decided about prompts and secrets, without any program.
#include "Mossbank/Platform/Linux/PasswordManagers.h"
#include "Mossbank/Platform/Linux/SecretPrompts.h"
#include "Mossbank/Platform/Linux/SecretTyping.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace mossbank;

namespace {

using Place = SecretTyping::Place;

} // namespace

class SecretRulesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPromptIsKnownByItsClass_data();
    void aPromptIsKnownByItsClass();
    void whatIsAskedCountsAsSecretForAShortWhile();
    void onePromptIsEnough();
    void whatKeepsPasswordsIsExcludedFromTheStart();
};

void SecretRulesTest::aPromptIsKnownByItsClass_data()
{
    QTest::addColumn<QString>("instance");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isPrompt");
    for (const char* name : {"Pinentry",
                             "Pinentry-gtk-2",
                             "pinentry-qt",
                             "Gcr-prompter",
                             "gcr-prompter",
                             "polkit-gnome-authentication-agent-1",
                             "Polkit-kde-authentication-agent-1",
                             "lxpolkit",
                             "Lxqt-policykit-agent",
                             "mate-polkit",
                             "xfce-polkit",
                             "dde-polkit-agent",
                             "pantheon-agent-polkit",
                             "io.elementary.desktop.agent-polkit",
                             "Io.elementary.desktop.agent-polkit",
                             "budgie-polkit-dialog",
                             "Budgie-polkit",
                             "kwalletd5",
                             "kwalletd6",
                             "ssh-askpass",
                             "SshAskpass",
                             "ksshaskpass",
                             "i3lock",
                             "xsecurelock",
                             "XScreenSaver",
                             "light-locker",
                             "slock",
                             "org.gnupg.pinentry-qt",
                             "org.kde.pinentry-qt",
                             "gcr-viewer",
                             "org.gnome.gcr.Prompter",
                             "org.kde.kwalletd6",
                             "kwallet-query",
                             "ksecretd",
                             "org.kde.ksecretd",
                             "polkit-mate-authentication-agent-1",
                             "polkit-ukui-authentication-agent-1",
                             "org.kde.polkit-kde-authentication-agent-1",
                             "ukui-polkit",
                             "gksu",
                             "Gksudo",
                             "kdesu",
                             "kdesudo",
                             "lxqt-sudo",
                             "lxsudo",
                             "lxsu",
                             "xlock",
                             "mate-screensaver-dialog",
                             "cinnamon-screensaver",
                             "kscreenlocker_greet",
                             "gnome-screensaver-dialog",
                             "xfce4-screensaver-dialog",
                             "ukui-screensaver-dialog"})
        QTest::newRow(name) << QString() << QString::fromLatin1(name) << true;
    QTest::newRow("by its instance") << u"pinentry"_s << u"Anything"_s << true;
    for (const char* name : {"", "XTerm", "firefox-esr", "Slocket", "my-pinentry", "gcr",
                             "screensaver", "xlocker", "sudo", "kwallet"})
        QTest::newRow(*name ? name : "no class")
            << QString::fromLatin1(name) << QString::fromLatin1(name) << false;
}

void SecretRulesTest::aPromptIsKnownByItsClass()
{
    QFETCH(QString, instance);
    QFETCH(QString, name);
    QFETCH(bool, isPrompt);
    QCOMPARE(isSecretPrompt({instance, name}), isPrompt);
}

void SecretRulesTest::whatIsAskedCountsAsSecretForAShortWhile()
{
    constexpr int kLimit = 1000;
    SecretTyping typing(kLimit);
    QVERIFY(!typing.isSecret());
    typing.setPlace(Place::Asked);
    QVERIFY(typing.isSecret());
    QTest::qSleep(kLimit / 4);
    typing.setPlace(Place::Asked);
    QVERIFY(typing.isSecret());
    QTest::qSleep(kLimit * 4 / 5);
    QVERIFY2(!typing.isSecret(), "asking again does not make it longer");
    typing.setPlace(Place::PasswordField);
    QVERIFY(typing.isSecret());
    typing.setPlace(Place::Ordinary);
    QVERIFY(!typing.isSecret());
    typing.setPlace(Place::Unknown);
    QVERIFY(typing.isSecret());
}

void SecretRulesTest::onePromptIsEnough()
{
    SecretTyping typing;
    typing.setPrompt(true);
    QVERIFY(typing.isSecret());
    typing.setCovered(true);
    typing.setPrompt(false);
    QVERIFY(typing.isSecret());
    typing.setCovered(false);
    QVERIFY(!typing.isSecret());
}

void SecretRulesTest::whatKeepsPasswordsIsExcludedFromTheStart()
{
    const QStringList expected = {u"org.keepassxc.KeePassXC"_s,
                                  u"keepassxc"_s,
                                  u"keepassxc_keepassxc"_s,
                                  u"1password"_s,
                                  u"1password_1password"_s,
                                  u"com.onepassword.OnePassword"_s,
                                  u"bitwarden"_s,
                                  u"bitwarden_bitwarden"_s,
                                  u"org.gnome.World.Secrets"_s,
                                  u"secrets"_s,
                                  u"org.gnome.seahorse.Application"_s,
                                  u"seahorse"_s,
                                  u"org.kde.kwalletmanager5"_s,
                                  u"kwalletmanager5"_s,
                                  u"org.kde.kwalletmanager"_s,
                                  u"kwalletmanager"_s};
    QCOMPARE(passwordManagersOfLinux(), expected);
}

QTEST_GUILESS_MAIN(SecretRulesTest)
#include "SecretRulesTest.moc"
