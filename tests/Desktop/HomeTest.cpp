// SPDX-License-Identifier: Apache-2.0
//
// Where the program keeps things when the environment names no place, or one that is nobody's own.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"
#include "tests/Fakes/SmallDisk.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kNoHome =
    u"There is no home folder to keep the library and the choices in: neither HOME nor the list of "
    "users names one.\n"_s;

/// A file of the system's that is another for this process and those that it starts.
class Covered {
public:
    Covered(const QString& path, const QString& cover, const QByteArray& content)
        : m_path(QFile::encodeName(path))
    {
        QFile file(cover);
        m_isCovered = file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
                      file.flush() &&
                      ::mount(QFile::encodeName(cover).constData(), m_path.constData(), nullptr,
                              MS_BIND, nullptr) == 0;
    }
    ~Covered()
    {
        if (m_isCovered)
            ::umount2(m_path.constData(), MNT_DETACH);
    }
    Q_DISABLE_COPY_MOVE(Covered)

    bool isCovered() const { return m_isCovered; }

private:
    QByteArray m_path;
    bool m_isCovered = false;
};

/// The only user there is, whose home is this.
QByteArray userAt(const QString& home)
{
    return u"somebody:x:%1:%1::%2:/bin/sh\n"_s.arg(::getuid()).arg(home).toUtf8();
}

} // namespace

class HomeTest : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
    }
    void cleanup() { m_desktop.reset(); }

    void whatIsNoOwnFolderDoesNotCount_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("none") << QString();
        QTest::newRow("empty") << u""_s;
        QTest::newRow("relative") << u"data"_s;
        QTest::newRow("here") << u"."_s;
        QTest::newRow("the root") << u"/"_s;
        QTest::newRow("the root in other words") << u"/tmp/.."_s;
        QTest::newRow("above the root") << u"//.."_s;
    }
    void whatIsNoOwnFolderDoesNotCount()
    {
        QFETCH(QString, folder);
        RunningMossbank mossbank;
        const QString here = mossbank.home() + u"/here"_s;
        QVERIFY(QDir().mkpath(here));
        mossbank.setWorkingFolder(here);
        mossbank.setVariable(u"XDG_DATA_HOME"_s, folder);
        mossbank.setVariable(u"XDG_CONFIG_HOME"_s, folder);
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Recording is off"_s), qPrintable(mossbank.terminal()));
        QVERIFY2(mossbank.terminal().contains(
                     u"Library: %1/.local/share/Mossbank\n"_s.arg(mossbank.home())),
                 qPrintable(mossbank.terminal()));
        QVERIFY2(mossbank.terminal().contains(
                     u"Choices: %1/.config/Mossbank/Mossbank.ini\n"_s.arg(mossbank.home())),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(QDir(here).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());
        QVERIFY(!QFile::exists(u"/Mossbank"_s));
    }

    void aHomeThatIsNotNamedIsThatOfTheListOfUsers_data()
    {
        QTest::addColumn<QString>("home");
        QTest::newRow("none") << QString();
        QTest::newRow("empty") << u""_s;
        QTest::newRow("relative") << u"home"_s;
        QTest::newRow("the root") << u"/"_s;
    }
    void aHomeThatIsNotNamedIsThatOfTheListOfUsers()
    {
        QFETCH(QString, home);
        RunningMossbank mossbank;
        const QString listed = mossbank.home() + u"/listed"_s;
        const Covered users(u"/etc/passwd"_s, mossbank.home() + u"/passwd"_s, userAt(listed));
        const Covered sources(u"/etc/nsswitch.conf"_s, mossbank.home() + u"/nsswitch"_s,
                              "passwd: files\n");
        QVERIFY2(users.isCovered() && sources.isCovered(), std::strerror(errno));
        for (const auto& name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s})
            mossbank.setVariable(name, {});
        mossbank.setVariable(u"HOME"_s, home);
        QVERIFY(mossbank.start());
        QVERIFY2(mossbank.waitFor(u"Library: %1/.local/share/Mossbank\n"_s.arg(listed)),
                 qPrintable(mossbank.terminal()));
        QVERIFY2(mossbank.waitFor(u"Choices: %1/.config/Mossbank/Mossbank.ini\n"_s.arg(listed)),
                 qPrintable(mossbank.terminal()));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
    }

    void withoutAnyHomeItSaysSoAndEnds_data()
    {
        QTest::addColumn<QByteArray>("users");
        QTest::newRow("nobody") << QByteArray();
        QTest::newRow("somebody without one") << userAt({});
        QTest::newRow("somebody at the root") << userAt(u"/"_s);
    }
    void withoutAnyHomeItSaysSoAndEnds()
    {
        QFETCH(QByteArray, users);
        RunningMossbank mossbank;
        const Covered list(u"/etc/passwd"_s, mossbank.home() + u"/passwd"_s, users);
        const Covered sources(u"/etc/nsswitch.conf"_s, mossbank.home() + u"/nsswitch"_s,
                              "passwd: files\n");
        QVERIFY2(list.isCovered() && sources.isCovered(), std::strerror(errno));
        for (const auto& name : {u"HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s})
            mossbank.setVariable(name, {});
        QVERIFY(mossbank.start());
        QCOMPARE(mossbank.waitForEnd(), 1);
        QVERIFY2(mossbank.terminal().endsWith(kNoHome), qPrintable(mossbank.terminal()));
        const auto found = mossbank.find({u"heron"_s});
        QCOMPARE(found.status, 1);
        QCOMPARE(found.text, kNoHome);

        // The library has a place now, the choices none.
        mossbank.setVariable(u"XDG_DATA_HOME"_s, mossbank.home() + u"/data"_s);
        QVERIFY(mossbank.start());
        QCOMPARE(mossbank.waitForEnd(), 1);
        QVERIFY2(mossbank.terminal().endsWith(kNoHome), qPrintable(mossbank.terminal()));
    }
};

int main(int argc, char** argv)
{
    SmallDisk::allow();
    const QCoreApplication application(argc, argv);
    HomeTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "HomeTest.moc"
