// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ApplicationCatalog.h"

#include "tests/Desktop/InstalledFiles.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

/// An executable that is found, for the Exec lines.
QString makeExecutable(const QString& name)
{
    const QString path = dataHome().filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFile::ReadOwner | QFile::ExeOwner))
        return {};
    return QFileInfo(path).canonicalFilePath();
}

} // namespace

class ApplicationCatalogTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useDataHome(); }

private Q_SLOTS:
    void initTestCase()
    {
        m_tool = makeExecutable(u"tool"_s);
        m_shared = makeExecutable(u"shared"_s);
        m_python = makeExecutable(u"python3.11"_s);
        QVERIFY(!m_tool.isEmpty() && !m_shared.isEmpty() && !m_python.isEmpty());
        install(u"org.example.Classy"_s,
                "Name=Classy\nName[de]=Klassisch\nExec=true\nStartupWMClass=CLASSY\n");
        install(u"org.example.Page"_s, "Name=Page\nExec=true\nStartupWMClass=crx_page\n");
        install(u"org.example.ByName"_s, "Name=By name\nExec=true\n");
        install(u"org.example.Tool"_s, "Name=Tool\nExec=" + m_tool.toUtf8() + " --flag %U\n");
        install(u"org.example.One"_s, "Name=One\nExec=" + m_shared.toUtf8() + " one\n");
        install(u"org.example.Two"_s, "Name=Two\nExec=" + m_shared.toUtf8() + " two\n");
        install(u"org.example.Script"_s, "Name=Script\nExec=" + m_python.toUtf8() + " script\n");
        install(u"org.example.Lost"_s,
                "Name=Lost\nTryExec=/nowhere/lost\nExec=/nowhere/lost\nStartupWMClass=lost\n");
        m_catalog = std::make_unique<ApplicationCatalog>();
    }

    void theIdentityIsFoundInOrder_data()
    {
        QTest::addColumn<QString>("instance");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("executable");
        QTest::addColumn<QString>("expected");
        QTest::newRow("class that the desktop file names, in any case")
            << u"x"_s << u"Classy"_s << m_tool << u"org.example.Classy"_s;
        QTest::newRow("instance that the desktop file names")
            << u"crx_page"_s << u"Classy"_s << QString() << u"org.example.Page"_s;
        QTest::newRow("class that is the desktop file's name")
            << u"x"_s << u"Org.Example.ByName"_s << m_tool << u"org.example.ByName"_s;
        QTest::newRow("executable of one desktop file")
            << u"x"_s << u"X"_s << m_tool << u"org.example.Tool"_s;
        QTest::newRow("executable alone")
            << QString() << QString() << m_tool << u"org.example.Tool"_s;
        QTest::newRow("executable that two share") << u"x"_s << u"X"_s << m_shared << u"shared"_s;
        QTest::newRow("interpreter of a script that is installed")
            << u"x"_s << u"X"_s << m_python << u"X"_s;
        QTest::newRow("interpreter without a class")
            << QString() << QString() << m_python << u"python3.11"_s;
        for (const QString& name :
             {u"ssh"_s, u"busybox"_s, u"dotnet"_s, u"qemu-x86_64"_s, u"ld-linux-x86-64.so.2"_s}) {
            QTest::addRow("interpreter %s", qPrintable(name))
                << u"x"_s << u"X"_s << QString(u"/usr/bin/"_s + name) << u"X"_s;
        }
        QTest::newRow("not installed")
            << u"x"_s << u"X"_s << u"/opt/other/other-bin"_s << u"other-bin"_s;
        QTest::newRow("class alone") << u"x"_s << u"X"_s << QString() << u"X"_s;
        QTest::newRow("instance alone") << u"x"_s << QString() << QString() << u"x"_s;
        QTest::newRow("nothing") << QString() << QString() << QString() << QString();
    }

    void theIdentityIsFoundInOrder()
    {
        QFETCH(QString, instance);
        QFETCH(QString, name);
        QFETCH(QString, executable);
        QFETCH(QString, expected);
        // Twice: found, and remembered.
        for (int round = 0; round < 2; ++round)
            QCOMPARE(m_catalog->application({instance, name}, executable).bundleID, expected);
    }

    void itIsKnownByEveryNameThatItsWindowsSupport_data()
    {
        QTest::addColumn<WindowClass>("windowClass");
        QTest::addColumn<QString>("executable");
        QTest::addColumn<QString>("name");
        const WindowClass pageOfClassy = {u"crx_page"_s, u"Classy"_s};
        QTest::newRow("by the instance") << pageOfClassy << QString() << u"org.example.Page"_s;
        QTest::newRow("by the class") << pageOfClassy << QString() << u"org.example.Classy"_s;
        QTest::newRow("in another case") << pageOfClassy << QString() << u"ORG.example.classy"_s;
        QTest::newRow("by the bare instance") << pageOfClassy << QString() << u"crx_page"_s;
        QTest::newRow("by the bare class") << pageOfClassy << QString() << u"classy"_s;
        QTest::newRow("by what it runs from") << pageOfClassy << m_tool << u"org.example.Tool"_s;
        QTest::newRow("by the bare executable") << pageOfClassy << m_tool << u"tool"_s;
        QTest::newRow("class that only a window manager's rule gave")
            << WindowClass{u"foo"_s, u"Foo"_s} << m_tool << u"org.example.Tool"_s;
        QTest::newRow("not on this PATH")
            << WindowClass{u"lost"_s, u"Lost"_s} << QString() << u"org.example.Lost"_s;
    }

    void itIsKnownByEveryNameThatItsWindowsSupport()
    {
        QFETCH(WindowClass, windowClass);
        QFETCH(QString, executable);
        QFETCH(QString, name);
        const Application application = m_catalog->application(windowClass, executable);
        QVERIFY(application.isAmong({u"org.example.Nothing"_s, name}));
        QVERIFY(!application.isAmong({u"org.example.Nothing"_s}));
        QVERIFY(!application.isAmong({QString()}));
    }

    void whatRunsIsKnownByADesktopFileThatHasGone()
    {
        const WindowClass windowClass = {u"going"_s, u"Going"_s};
        install(u"org.example.Going"_s, "Name=Going\nExec=true\nStartupWMClass=going\n");
        QTRY_COMPARE(m_catalog->application(windowClass, QString()).bundleID,
                     u"org.example.Going"_s);
        QVERIFY(QFile::remove(desktopFile(u"org.example.Going"_s)));
        QTRY_COMPARE(m_catalog->application(windowClass, QString()).bundleID, u"Going"_s);
        QVERIFY(m_catalog->application(windowClass, QString()).isAmong({u"org.example.Going"_s}));
    }

    void theNameIsInTheUsersLanguage()
    {
        QCOMPARE(m_catalog->application({{}, u"Classy"_s}, QString()).name, u"Klassisch"_s);
        QCOMPARE(m_catalog->installed(u"org.example.Classy"_s).value_or(Application{}).name,
                 u"Klassisch"_s);
        QVERIFY(!m_catalog->installed(u"org.example.Nothing"_s));
    }

    void aProcessIsKnownByItsExecutable()
    {
        const Application self = m_catalog->application({}, QCoreApplication::applicationPid());
        QCOMPARE(self.bundleID, QFileInfo(QCoreApplication::applicationFilePath()).fileName());
        QCOMPARE(m_catalog->application({}, qint64{0x7ffffffe}).bundleID, QString());
    }

    void whatIsInstalledAndRemovedIsNoticed()
    {
        const WindowClass late = {u"late"_s, u"Late"_s};
        QCOMPARE(m_catalog->application(late, QString()).bundleID, u"Late"_s);
        install(u"org.example.Late"_s, "Name=Late\nExec=true\nStartupWMClass=late\n");
        QTRY_COMPARE(m_catalog->application(late, QString()).bundleID, u"org.example.Late"_s);
        QVERIFY(QFile::remove(desktopFile(u"org.example.Late"_s)));
        QTRY_COMPARE(m_catalog->application(late, QString()).bundleID, u"Late"_s);
    }

    void manyThreadsMayAskAtOnce()
    {
        std::vector<std::unique_ptr<QThread>> threads;
        std::atomic<int> wrong = 0;
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back(QThread::create([this, thread, &wrong] {
                for (int round = 0; round < 2000; ++round) {
                    const QString name = u"Made up %1 %2"_s.arg(thread).arg(round);
                    wrong += m_catalog->application({{}, name}, QString()).bundleID != name;
                    wrong += m_catalog->application({{}, u"classy"_s}, QString()).bundleID !=
                             "org.example.Classy"_L1;
                }
            }));
            threads.back()->start();
        }
        for (const auto& thread : threads)
            QVERIFY(thread->wait(20'000));
        QCOMPARE(wrong.load(), 0);
    }

private:
    std::unique_ptr<ApplicationCatalog> m_catalog;
    QString m_tool;
    QString m_shared;
    QString m_python;
};

QTEST_GUILESS_MAIN(ApplicationCatalogTest)
#include "ApplicationCatalogTest.moc"
