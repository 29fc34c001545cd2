// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/ProcessRelauncher.h"
#include "Mossbank/Platform/Null/NullRelauncher.h"
#include "tests/Contract/Contract.h"
#include "tests/Fakes/FakeRelauncher.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// What everything that starts the program anew holds to.
class RelauncherContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        QFile program(heron());
        QVERIFY(program.open(QIODevice::WriteOnly));
        const QByteArray told = m_folder->filePath(u"told"_s).toUtf8();
        program.write("#!/bin/sh\necho started >> '" + told + "'\n");
        QVERIFY(program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    void anotherIsStartedEachTime_data()
    {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : {u"Linux"_s, u"Null"_s, u"fake"_s})
            QTest::newRow(qPrintable(kind)) << kind;
    }
    void anotherIsStartedEachTime()
    {
        QFETCH(QString, kind);
        const auto relauncher = make(kind, heron());
        QVERIFY(isSound(relauncher->availability()));
        QCOMPARE(relauncher->availability().isAvailable, kind != u"Null"_s);
        for (int time = 1; time <= 2; ++time) {
            const QString failure = failureOf([&] { relauncher->openAnother(); });
            QCOMPARE(failure, relauncher->availability().reason);
            const int expected = kind == u"Null"_s ? 0 : time;
            QTRY_COMPARE_WITH_TIMEOUT(started(*relauncher), expected, 20'000);
        }
    }

    void whatCannotBeStartedSaysWhy_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("Linux") << u"Linux"_s;
        QTest::newRow("fake") << u"fake"_s;
    }
    void whatCannotBeStartedSaysWhy()
    {
        QFETCH(QString, kind);
        const auto relauncher = make(kind, m_folder->filePath(u"gone"_s));
        if (auto* const fake = dynamic_cast<FakeRelauncher*>(relauncher.get()))
            fake->failure = u"There is no room."_s;
        QVERIFY(!failureOf([&] { relauncher->openAnother(); }).isEmpty());
        QCOMPARE(started(*relauncher), 0);
    }

private:
    QString heron() const { return m_folder->filePath(u"heron"_s); }

    static std::unique_ptr<Relauncher> make(const QString& kind, const QString& program)
    {
        if (kind == u"Linux"_s)
            return std::make_unique<ProcessRelauncher>(program);
        if (kind == u"Null"_s)
            return std::make_unique<NullRelauncher>(kReason);
        return std::make_unique<FakeRelauncher>();
    }

    int started(Relauncher& relauncher) const
    {
        if (const auto* const fake = dynamic_cast<FakeRelauncher*>(&relauncher))
            return fake->opened;
        QFile told(m_folder->filePath(u"told"_s));
        return told.open(QIODevice::ReadOnly) ? static_cast<int>(told.readAll().count('\n')) : 0;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(RelauncherContractTest)
#include "RelauncherContractTest.moc"
