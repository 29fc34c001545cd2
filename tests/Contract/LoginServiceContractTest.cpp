// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/XdgAutostart.h"
#include "Mossbank/Platform/Null/NullLoginService.h"
#include "tests/Contract/Contract.h"
#include "tests/Fakes/FakeLoginService.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <gio/gdesktopappinfo.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;
using Status = LoginService::Status;

namespace {

const QString kIdentity = u"org.example.Heron"_s;

} // namespace

class LoginServiceContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        qputenv("XDG_CONFIG_HOME", m_folder->filePath(u"config"_s).toUtf8());
    }

    void whatIsRegisteredIsStartedAndWhatIsNotIsNot_data() { rows(); }
    void whatIsRegisteredIsStartedAndWhatIsNotIsNot()
    {
        QFETCH(QString, kind);
        const auto service = make(kind);
        QVERIFY(isSound(service->availability()));
        if (!service->availability().isAvailable) {
            QCOMPARE(service->status(), Status::Unknown);
            QCOMPARE(failureOf([&] { service->registerItem(); }), kReason);
            QCOMPARE(failureOf([&] { service->unregisterItem(); }), kReason);
            QCOMPARE(service->status(), Status::Unknown);
            QVERIFY(service->isWithoutHome());
            return;
        }
        QCOMPARE(service->status(), Status::NotRegistered);
        QVERIFY(!service->path().isEmpty());
        QVERIFY(!service->isWithoutHome());
        service->unregisterItem();
        QCOMPARE(service->status(), Status::NotRegistered);
        for (int time = 0; time < 2; ++time) {
            service->registerItem();
            QCOMPARE(service->status(), Status::Enabled);
        }
        service->unregisterItem();
        QCOMPARE(service->status(), Status::NotRegistered);
    }

    void whatCannotBeChangedSaysWhy_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("Linux") << u"Linux"_s;
        QTest::newRow("fake") << u"fake"_s;
    }
    void whatCannotBeChangedSaysWhy()
    {
        QFETCH(QString, kind);
        const auto service = make(kind);
        if (kind == u"fake")
            static_cast<FakeLoginService&>(*service).failure = u"There is no room."_s;
        write(m_folder->filePath(u"config/autostart"_s), "in the way");
        QVERIFY(!failureOf([&] { service->registerItem(); }).isEmpty());
        QCOMPARE(service->status(), Status::NotRegistered);
    }

    // The adapter alone

    void theDesktopStartsThisCopyAndSaysThatItIsALogin_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"heron"_s;
        QTest::newRow("a blank") << u"grey heron"_s;
        QTest::newRow("signs of a shell") << u"a \"$HOME\" `b` \\c 'd' ;&"_s;
        QTest::newRow("letters") << u"Fischreiher ağ 鷺"_s;
    }
    void theDesktopStartsThisCopyAndSaysThatItIsALogin()
    {
        QFETCH(QString, name);
        const QString program = m_folder->filePath(name);
        const QString told = m_folder->filePath(u"told"_s);
        write(program, "#!/bin/sh\nprintf '%s' \"$*\" > '" + told.toUtf8() + ".part'\nmv '" +
                           told.toUtf8() + ".part' '" + told.toUtf8() + "'\n");
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
        XdgAutostart service(program, kIdentity);
        service.registerItem();
        QCOMPARE(service.status(), Status::Enabled);

        // As a desktop reads and starts it.
        GDesktopAppInfo* const entry =
            g_desktop_app_info_new_from_filename(QFile::encodeName(service.entry()).constData());
        QVERIFY(entry);
        const bool isStarted = g_app_info_launch(G_APP_INFO(entry), nullptr, nullptr, nullptr);
        g_object_unref(entry);
        QVERIFY(isStarted);
        QVERIFY(QTest::qWaitFor([&] { return QFile::exists(told); }, 10'000));
        QFile file(told);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), QString::fromUtf16(XdgAutostart::kAtLogin));
    }

    void whatIsGoneWithTheRunIsNotRegistered()
    {
        XdgAutostart service(u"/tmp/.mount_heronAbC/usr/bin/heron"_s, kIdentity);
        QCOMPARE(failureOf([&] { service.registerItem(); }),
                 u"This copy of Mossbank is gone when it ends. Install it first."_s);
        QVERIFY(!QFile::exists(service.entry()));
    }

    void aPipeInItsPlaceIsNeitherReadNorWrittenOver()
    {
        const QString pipe = m_folder->filePath(u"pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        XdgAutostart service(u"/opt/heron"_s, kIdentity);
        QVERIFY(QDir().mkpath(QFileInfo(service.entry()).path()));
        QVERIFY(QFile::link(pipe, service.entry()));
        QCOMPARE(service.status(), Status::NotRegistered);
        QVERIFY(failureOf([&] { service.registerItem(); }).contains(service.entry()));
        QVERIFY(QFileInfo::exists(pipe));
        QVERIFY(!QFileInfo(pipe).isFile());
    }

    // GLib does not start such a program at all, other desktops do.
    void aPathWithSignsForFilesIsWrittenAsTheyAre()
    {
        XdgAutostart service(u"/opt/100%f %%"_s, kIdentity);
        service.registerItem();
        QCOMPARE(service.status(), Status::Enabled);
        QFile file(service.entry());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("Exec=\"/opt/100%%f %%%%\" --at-login\n"));
    }

    void whatTheDesktopsSettingsSwitchOffIsNotRegistered_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isOn");
        QTest::newRow("nothing said") << QByteArray() << true;
        QTest::newRow("hidden") << QByteArray("Hidden=true\n") << false;
        QTest::newRow("not hidden") << QByteArray("Hidden=false\n") << true;
        QTest::newRow("GNOME's off") << QByteArray("X-GNOME-Autostart-enabled=false\n") << false;
        QTest::newRow("GNOME's on") << QByteArray("X-GNOME-Autostart-enabled=true\n") << true;
        QTest::newRow("nonsense") << QByteArray("\xff[[\n") << false;
    }
    void whatTheDesktopsSettingsSwitchOffIsNotRegistered()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, isOn);
        XdgAutostart service(u"/opt/heron"_s, kIdentity);
        write(service.entry(),
              "[Desktop Entry]\nType=Application\nName=Heron\nExec=/opt/heron --at-login\n" + line);
        QCOMPARE(service.status(), isOn ? Status::Enabled : Status::NotRegistered);
        // The user's own wish, later, counts again.
        service.registerItem();
        QCOMPARE(service.status(), Status::Enabled);
    }

    void anotherCopysEntryIsNotThisOnes()
    {
        XdgAutostart before(u"/opt/one/heron"_s, kIdentity);
        before.registerItem();
        XdgAutostart after(u"/opt/two/heron"_s, kIdentity);
        QCOMPARE(after.status(), Status::NotRegistered);
        after.registerItem();
        QCOMPARE(after.status(), Status::Enabled);
        QCOMPARE(before.status(), Status::NotRegistered);
    }

    void aCopyThatLiesThereForOneRunHasNoHome_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isWithoutHome");
        QTest::newRow("mounted") << u"/tmp/.mount_MossbaXyz/usr/bin/mossbank"_s << true;
        QTest::newRow("not known") << QString() << true;
        QTest::newRow("installed") << u"/usr/bin/mossbank"_s << false;
        QTest::newRow("built") << u"/home/heron/mount_/build/mossbank"_s << false;
    }
    void aCopyThatLiesThereForOneRunHasNoHome()
    {
        QFETCH(QString, path);
        QFETCH(bool, isWithoutHome);
        QCOMPARE(XdgAutostart(path, kIdentity).isWithoutHome(), isWithoutHome);
    }

private:
    static void rows()
    {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : {u"Linux"_s, u"Null"_s, u"fake"_s})
            QTest::newRow(qPrintable(kind)) << kind;
    }
    static std::unique_ptr<LoginService> make(const QString& kind)
    {
        if (kind == u"Linux")
            return std::make_unique<XdgAutostart>(u"/opt/heron"_s, kIdentity);
        if (kind == u"Null")
            return std::make_unique<NullLoginService>(kReason);
        return std::make_unique<FakeLoginService>();
    }
    static void write(const QString& path, const QByteArray& bytes)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(LoginServiceContractTest)
#include "LoginServiceContractTest.moc"
