// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DesktopFileManager.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int kPatience = 30'000;

/// Of the packages thunar and xfconf.
const QStringList kServices = {u"org.xfce.Thunar.FileManager1"_s, u"org.xfce.Thunar"_s,
                               u"org.xfce.Xfconf"_s};

} // namespace

/// A file manager that people use, started by the bus with a home of its own.
class RealFileManagerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        for (const auto& [program, package] :
             {std::pair(u"thunar"_s, u"thunar"_s), std::pair(u"xdotool"_s, u"xdotool"_s)})
            QCOMPARE(whyMissing(program, package), QString());
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_home = std::make_unique<QTemporaryDir>();
        qputenv("HOME", m_home->path().toUtf8());
        for (const char* folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qputenv(folder, m_home->filePath(QString::fromLatin1(folder)).toUtf8());
        // The program shows its windows; the tests themselves have none.
        qunsetenv("QT_QPA_PLATFORM");
        const QString services = m_home->filePath(u"services"_s);
        QVERIFY(QDir().mkpath(services));
        for (const QString& name : kServices) {
            const QString file = u'/' + name + u".service"_s;
            QVERIFY2(QFile::copy(u"/usr/share/dbus-1/services"_s + file, services + file),
                     "install the Debian packages thunar and xfconf");
        }
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session, services);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    }
    void cleanup()
    {
        // Who is on it ends with it.
        m_bus.reset();
        m_desktop.reset();
        m_home.reset();
    }

    void itIsStartedAndShowsTheFolder()
    {
        const QString folder = m_home->filePath(u"grey #1 h\u00e4ron%"_s);
        QVERIFY(QDir().mkpath(folder));
        QFile file(folder + u"/heron.jpg"_s);
        // Nothing else can show it.
        qputenv("XDG_DATA_DIRS", m_home->filePath(u"none"_s).toUtf8());
        QVERIFY(file.open(QIODevice::WriteOnly));
        DesktopFileManager manager(FileShowing::Limits{.service = 25s});
        QFuture<void> showing = manager.show(QUrl::fromLocalFile(file.fileName()));
        QVERIFY(QTest::qWaitFor([&] { return showing.isFinished(); }, kPatience));
        // Throws where it was not shown.
        showing.waitForFinished();
        QVERIFY(QTest::qWaitFor([&] { return isShown(u"^grey #1 h\u00e4ron%"_s); }, kPatience));
    }

private:
    bool isShown(const QString& title)
    {
        return m_desktop
            ->run(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, title}, u"xdotool"_s)
            .isSuccess;
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<TestBus> m_bus;
};

QTEST_GUILESS_MAIN(RealFileManagerTest)
#include "RealFileManagerTest.moc"
