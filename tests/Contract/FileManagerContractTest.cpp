// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/DesktopFileManager.h"
#include "Mossbank/Platform/Null/NullFileManager.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/FolderPrograms.h"
#include "tests/Desktop/StubService.h"
#include "tests/Desktop/TestBus.h"
#include "tests/Fakes/FakeFileManager.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What everything that shows files holds to.
class FileManagerContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_programs = std::make_unique<FolderPrograms>(); }
    void init()
    {
        m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
        QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
        m_service = std::make_unique<StubService>(u"org.freedesktop.FileManager1"_s,
                                                  u"/org/freedesktop/FileManager1"_s);
    }
    void cleanup()
    {
        m_manager.reset();
        m_service.reset();
        m_bus.reset();
    }

    void aFileIsShownOrThereIsAReason_data() { rows({u"Linux"_s, u"Null"_s, u"fake"_s}); }
    void aFileIsShownOrThereIsAReason()
    {
        QFETCH(QString, kind);
        QVERIFY(m_service->appear());
        m_manager = make(kind);
        QVERIFY(isSound(m_manager->availability()));
        const bool isAvailable = kind != u"Null"_s;
        QCOMPARE(m_manager->availability().isAvailable, isAvailable);
        // The second time as the first.
        for (int time = 1; time <= 2; ++time) {
            QCOMPARE(outcome(), isAvailable ? QString() : kReason);
            QCOMPARE(shown(kind), isAvailable ? time : 0);
        }
    }

    void whatCannotBeShownSaysWhy_data() { rows({u"Linux"_s, u"fake"_s}); }
    void whatCannotBeShownSaysWhy()
    {
        QFETCH(QString, kind);
        m_manager = make(kind);
        if (kind == u"fake")
            static_cast<FakeFileManager&>(*m_manager).failure = u"It rains."_s;
        const QString problem = outcome();
        QVERIFY2(problem.endsWith(u'.') && !problem.endsWith(u".."_s), qPrintable(problem));
        QCOMPARE(shown(kind), 0);
    }

private:
    static constexpr int kPatience = 20'000;

    static void rows(const QStringList& kinds)
    {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : kinds)
            QTest::newRow(qPrintable(kind)) << kind;
    }
    static std::unique_ptr<FileManager> make(const QString& kind)
    {
        if (kind == u"Linux")
            return std::make_unique<DesktopFileManager>();
        if (kind == u"Null")
            return std::make_unique<NullFileManager>(kReason);
        return std::make_unique<FakeFileManager>();
    }
    /// Why a file that is there was not shown. Empty when it was.
    QString outcome() const
    {
        QFuture<void> showing = m_manager->show(
            QUrl::fromLocalFile(QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/Desktop/data/saying")));
        if (!QTest::qWaitFor([&] { return showing.isFinished(); }, kPatience))
            return u"no end"_s;
        return failureOf([&] { showing.waitForFinished(); });
    }
    int shown(const QString& kind) const
    {
        if (kind == u"fake")
            return static_cast<int>(static_cast<FakeFileManager&>(*m_manager).shown.size());
        return static_cast<int>(m_service->asked.size());
    }

    std::unique_ptr<FolderPrograms> m_programs;
    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<StubService> m_service;
    std::unique_ptr<FileManager> m_manager;
};

QTEST_GUILESS_MAIN(FileManagerContractTest)
#include "FileManagerContractTest.moc"
