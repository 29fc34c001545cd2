// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DesktopFileApplications.h"
#include "Mossbank/Platform/Null/NullInstalledApplications.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/InstalledFiles.h"
#include "tests/Fakes/FakeInstalledApplications.h"

#include <QFile>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

const Application kHeron{u"org.example.Heron"_s, u"Reiher"_s};

} // namespace

class InstalledApplicationsContractTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useDataHome(); }

private Q_SLOTS:
    void initTestCase()
    {
        install(u"org.example.Heron"_s,
                "Name=Heron\nName[de]=Reiher\nExec=heron\nIcon=/pictures/heron.png\n");
    }

    void whatIsInstalledIsThereOnce_data() { rows(); }
    void whatIsInstalledIsThereOnce()
    {
        QFETCH(QString, kind);
        const auto installed = make(kind);
        QVERIFY(isSound(installed->availability()));
        QSet<QString> seen;
        for (const InstalledApplication& one : installed->list()) {
            QVERIFY(!one.application.bundleID.isEmpty());
            QVERIFY2(!seen.contains(one.application.bundleID),
                     qPrintable(one.application.bundleID));
            seen.insert(one.application.bundleID);
        }
        QCOMPARE(seen.contains(kHeron.bundleID), installed->availability().isAvailable);
        const InstalledApplication heron{kHeron, u"/pictures/heron.png"_s};
        QCOMPARE(installed->list().contains(heron), installed->availability().isAvailable);
    }

    void whatIsInstalledLaterIsThereToo()
    {
        const DesktopFileApplications installed;
        const InstalledApplication late{{u"late"_s, u"Late"_s}, {}};
        QVERIFY(!installed.list().contains(late));
        install(u"late"_s, "Name=Late\nExec=late\n");
        QVERIFY(installed.list().contains(late));
        QVERIFY(QFile::remove(desktopFile(u"late"_s)));
        QVERIFY(!installed.list().contains(late));
    }

    void whatMenusLeaveOutIsLeftOut_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::newRow("not shown") << QByteArray("Name=Wren\nExec=wren\nNoDisplay=true\n");
        QTest::newRow("taken off by the user") << QByteArray("Name=Wren\nExec=wren\nHidden=true\n");
        QTest::newRow("within a terminal") << QByteArray("Name=Wren\nExec=wren\nTerminal=true\n");
        QTest::newRow("no application") << QByteArray("Name=Wren\nType=Link\n");
        QTest::newRow("nonsense") << QByteArray("\n\xff\xfe[[[");
    }
    void whatMenusLeaveOutIsLeftOut()
    {
        QFETCH(QByteArray, lines);
        install(u"wren"_s, lines);
        const auto isWren = [](const InstalledApplication& one) {
            return one.application.bundleID == u"wren";
        };
        QVERIFY(std::ranges::none_of(DesktopFileApplications().list(), isWren));
        install(u"wren"_s, "Name=Wren\nExec=wren\n");
        QVERIFY(std::ranges::any_of(DesktopFileApplications().list(), isWren));
        QVERIFY(QFile::remove(desktopFile(u"wren"_s)));
    }

private:
    static void rows()
    {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : {u"Linux"_s, u"Null"_s, u"fake"_s})
            QTest::newRow(qPrintable(kind)) << kind;
    }
    static std::unique_ptr<InstalledApplications> make(const QString& kind)
    {
        if (kind == u"Linux")
            return std::make_unique<DesktopFileApplications>();
        if (kind == u"Null")
            return std::make_unique<NullInstalledApplications>(kReason);
        auto fake = std::make_unique<FakeInstalledApplications>();
        fake->installed = {{kHeron, u"/pictures/heron.png"_s}};
        return fake;
    }
};

QTEST_GUILESS_MAIN(InstalledApplicationsContractTest)
#include "InstalledApplicationsContractTest.moc"
