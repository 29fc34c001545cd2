// SPDX-License-Identifier: Apache-2.0
//
// What a running browser's command line and settings tell of its windows, without any browser.
#include "Mossbank/Platform/Linux/BrowserPrivacy.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

namespace {

constexpr qint64 kProcess = 17;
const QByteArray kSetting = "user_pref(\"browser.privatebrowsing.autostart\", true);\n";

/// What the system keeps of one process.
class Processes {
public:
    Processes()
    {
        write(u"cmdline"_s, QByteArray("firefox\0http://example.org\0", 27));
        start(4711);
        write(u"root/home/profile/prefs.js"_s, "user_pref(\"app.update.enabled\", false);\n");
        link(u"exe"_s, u"/opt/firefox/firefox"_s);
        link(u"fd/3"_s, u"socket:[12345]"_s);
        link(u"fd/14"_s, u"/home/profile/.parentlock"_s);
    }

    QString path() const { return m_folder.path(); }

    void write(const QString& name, const QByteArray& text) const
    {
        QFile file(prepared(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(name));
    }

    void link(const QString& name, const QString& target) const
    {
        if (!QFile::link(target, prepared(name)))
            qFatal("cannot link %s", qPrintable(name));
    }

    void remove(const QString& name) const
    {
        if (!QFile::remove(prepared(name)))
            qFatal("cannot remove %s", qPrintable(name));
    }

    void start(int instant) const
    {
        write(u"stat"_s, "17 (a) name)) S 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 " +
                             QByteArray::number(instant) + " 99 98");
    }

private:
    QString prepared(const QString& name) const
    {
        const QString path = m_folder.filePath(QString::number(kProcess) + u'/' + name);
        QDir().mkpath(path.left(path.lastIndexOf(u'/')));
        return path;
    }

    QTemporaryDir m_folder;
};

} // namespace

class BrowserPrivacyTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aCommandSaysThatAllWindowsArePrivate_data();
    void aCommandSaysThatAllWindowsArePrivate();
    void aBrowserThatIsNotKnownToTellMayBePrivate();
    void settingsSayThatAllWindowsArePrivate_data();
    void settingsSayThatAllWindowsArePrivate();
    void rulesOfTheOwnerSayThatAllWindowsArePrivate_data();
    void rulesOfTheOwnerSayThatAllWindowsArePrivate();
    void firefoxIsAskedWhereItKeepsItsSettings_data();
    void firefoxIsAskedWhereItKeepsItsSettings();
    void whatCannotBeToldMayBePrivate_data();
    void whatCannotBeToldMayBePrivate();
    void theSettingsOfOthersAreNotAskedFor();
    void onePrivateProcessIsPrivateToItsEnd();
};

void BrowserPrivacyTest::aCommandSaysThatAllWindowsArePrivate_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<bool>("isPrivate");
    const auto add = [](const char* id, const char* command, bool isPrivate) {
        QTest::addRow("%s", command)
            << QString::fromLatin1(id) << QByteArray(command).replace(' ', '\0') << isPrivate;
    };
    add("firefox", "firefox http://example.org", false);
    add("firefox", "firefox -private", true);
    add("firefox", "firefox --private http://example.org", true);
    add("firefox", "firefox --Private", true);
    // One window of many, which says so itself.
    add("firefox", "firefox --private-window http://example.org", false);
    add("firefox", "firefox private", false);
    add("firefox", "firefox -P private", false);
    add("chromium", "chromium http://example.org/--incognito", false);
    add("chromium", "chromium --incognito", true);
    add("chromium", "chromium -incognito", true);
    add("chromium", "chromium --guest http://example.org", true);
    add("chromium", "chromium --incognito=1", true);
    add("microsoft-edge", "msedge --inprivate", true);
    add("opera", "opera --private", true);
    add("org.gnome.Epiphany", "epiphany -i", true);
    add("org.gnome.Epiphany", "epiphany http://example.org", false);
    // As it stands there once one of Chromium's kin has written over it.
    const auto addInOne = [](const char* id, const char* command, bool isPrivate) {
        QTest::addRow("%s, in one", command)
            << QString::fromLatin1(id) << QByteArray(command) << isPrivate;
    };
    addInOne("chromium", "/usr/lib/chromium/chromium --incognito http://example.org", true);
    addInOne("microsoft-edge", "/opt/edge/msedge --inprivate", true);
    addInOne("chromium", "/usr/lib/chromium/chromium http://example.org/--incognito", false);
    addInOne("firefox", "firefox -P my --private", false);
}

void BrowserPrivacyTest::aCommandSaysThatAllWindowsArePrivate()
{
    QFETCH(QString, id);
    QFETCH(QByteArray, command);
    QFETCH(bool, isPrivate);
    QCOMPARE(isStartedPrivate(*browserOf(id), command), isPrivate);
    const Processes processes;
    processes.write(u"cmdline"_s, command);
    QCOMPARE(BrowserPrivacy(processes.path()).mayBePrivate(*browserOf(id), kProcess), isPrivate);
}

void BrowserPrivacyTest::aBrowserThatIsNotKnownToTellMayBePrivate()
{
    const Processes processes;
    for (const auto& id : {u"vivaldi-stable"_s, u"com.vivaldi.Vivaldi"_s, u"opera"_s,
                           u"opera_opera"_s, u"com.opera.Opera"_s, u"chromium"_s}) {
        processes.write(u"cmdline"_s, id.toUtf8());
        QCOMPARE(BrowserPrivacy(processes.path()).mayBePrivate(*browserOf(id), kProcess),
                 id != u"chromium");
    }
}

void BrowserPrivacyTest::settingsSayThatAllWindowsArePrivate_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isPrivate");
    const QByteArray name = "\"browser.privatebrowsing.autostart\"";
    const auto add = [](const char* row, const QByteArray& text, bool isPrivate) {
        QTest::newRow(row) << text << isPrivate;
    };
    add("nothing", {}, false);
    add("on", kSetting, true);
    add("on, among others", "// Firefox\nuser_pref(\"a//b\", 1);\n" + kSetting + "// end", true);
    add("off", "user_pref(" + name + ", false);\n", false);
    add("struck out", "// " + kSetting, false);
    add("struck out otherwise", "  # " + kSetting, false);
    add("without spaces", "user_pref(" + name + ",true);", true);
    add("with spaces", "  user_pref ( " + name + " , true );", true);
    add("other quotation marks", "pref('browser.privatebrowsing.autostart', true);", true);
    add("locked", "lockPref(" + name + ", true);\r\n", true);
    add("behind another", "user_pref(\"x\", \"http://y\"); " + kSetting, true);
    add("another one", "user_pref(\"browser.privatebrowsing.autostarted\", true);", false);
    add("a dot is a dot", "user_pref(\"browser_privatebrowsing_autostart\", true);" + name, false);
}

void BrowserPrivacyTest::settingsSayThatAllWindowsArePrivate()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isPrivate);
    QCOMPARE(hasPrivateSetting(text), isPrivate);
}

void BrowserPrivacyTest::rulesOfTheOwnerSayThatAllWindowsArePrivate_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isPrivate");
    const auto add = [](const char* row, const QByteArray& policies, bool isPrivate) {
        QTest::newRow(row) << QByteArray("{\"policies\": {" + policies + "}}") << isPrivate;
    };
    const QByteArray preferences = "\"Preferences\": {\"browser.privatebrowsing.autostart\": ";
    QTest::newRow("nonsense") << QByteArray("policies") << false;
    add("nothing", {}, false);
    add("always", "\"PrivateBrowsingModeAvailability\": 2", true);
    add("never", "\"PrivateBrowsingModeAvailability\": 1", false);
    add("a setting", preferences + "{\"Value\": true, \"Status\": \"locked\"}}", true);
    add("a setting as it was written once", preferences + "true}", true);
    add("a setting that is off", preferences + "{\"Value\": false}}", false);
}

void BrowserPrivacyTest::rulesOfTheOwnerSayThatAllWindowsArePrivate()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isPrivate);
    QCOMPARE(hasPrivateRule(text), isPrivate);
}

void BrowserPrivacyTest::firefoxIsAskedWhereItKeepsItsSettings_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isPrivate");
    const QByteArray rule = "{\"policies\": {\"PrivateBrowsingModeAvailability\": 2}}";
    const auto add = [](const char* file, const QByteArray& text, bool isPrivate) {
        QTest::newRow(file) << QString::fromLatin1(file) << text << isPrivate;
    };
    add("home/profile/prefs.js", kSetting, true);
    add("home/profile/user.js", kSetting, true);
    add("home/profile/prefs-1.js", kSetting, false);
    add("home/other/prefs.js", kSetting, false);
    add("opt/firefox/mozilla.cfg", kSetting, true);
    add("opt/firefox/defaults/pref/all.js", kSetting, true);
    add("opt/firefox/distribution/policies.json", rule, true);
    add("etc/firefox/policies/policies.json", rule, true);
    add("home/profile/policies.json", rule, false);
}

void BrowserPrivacyTest::firefoxIsAskedWhereItKeepsItsSettings()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, text);
    QFETCH(bool, isPrivate);
    const Processes processes;
    BrowserPrivacy privacy(processes.path());
    const Browser firefox = *browserOf(u"firefox"_s);
    QVERIFY(!privacy.mayBePrivate(firefox, kProcess));
    processes.write(u"root/"_s + file, text);
    QCOMPARE(privacy.mayBePrivate(firefox, kProcess), isPrivate);
}

void BrowserPrivacyTest::whatCannotBeToldMayBePrivate_data()
{
    QTest::addColumn<QString>("missing");
    for (const char* missing : {"cmdline", "stat", "exe", "fd/14"})
        QTest::newRow(missing) << QString::fromLatin1(missing);
}

void BrowserPrivacyTest::whatCannotBeToldMayBePrivate()
{
    QFETCH(QString, missing);
    const Browser firefox = *browserOf(u"firefox"_s);
    const Processes processes;
    QVERIFY(!BrowserPrivacy(processes.path()).mayBePrivate(firefox, kProcess));
    processes.remove(missing);
    QVERIFY(BrowserPrivacy(processes.path()).mayBePrivate(firefox, kProcess));
    QVERIFY2(BrowserPrivacy(processes.path()).mayBePrivate(firefox, kProcess + 1), "it has gone");
}

void BrowserPrivacyTest::theSettingsOfOthersAreNotAskedFor()
{
    const Processes processes;
    processes.write(u"root/home/profile/prefs.js"_s, kSetting);
    BrowserPrivacy privacy(processes.path());
    QVERIFY(!privacy.mayBePrivate(*browserOf(u"chromium"_s), kProcess));
    QVERIFY(privacy.mayBePrivate(*browserOf(u"firefox-esr"_s), kProcess));
}

void BrowserPrivacyTest::onePrivateProcessIsPrivateToItsEnd()
{
    const Browser firefox = *browserOf(u"firefox"_s);
    const Processes processes;
    BrowserPrivacy privacy(processes.path());
    processes.write(u"root/home/profile/prefs.js"_s, kSetting);
    QVERIFY(privacy.mayBePrivate(firefox, kProcess));
    processes.write(u"root/home/profile/prefs.js"_s, {});
    QVERIFY2(privacy.mayBePrivate(firefox, kProcess), "it is switched off from the next start on");
    processes.start(4712);
    QVERIFY2(!privacy.mayBePrivate(firefox, kProcess), "another process of the same number");
}

QTEST_GUILESS_MAIN(BrowserPrivacyTest)
#include "BrowserPrivacyTest.moc"
