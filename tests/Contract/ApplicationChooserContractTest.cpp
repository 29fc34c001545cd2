// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Null/NullApplicationChooser.h"
#include "Mossbank/Views/ApplicationChooser/ApplicationChooserWindow.h"
#include "tests/Contract/Contract.h"
#include "tests/Fakes/FakeApplicationChooser.h"
#include "tests/Fakes/FakeInstalledApplications.h"

#include <QGuiApplication>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

const QString kTitle = u"Exclude an application"_s;
const Application kHeron{u"org.example.Heron"_s, u"Heron"_s};

} // namespace

class ApplicationChooserContractTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_installed.installed = {{kHeron}}; }

    void whoChoosesHasOneAndWhoDoesNotHasNone_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("doesChoose");
        for (const QString& kind : {u"window"_s, u"fake"_s}) {
            QTest::addRow("%s, chosen", qPrintable(kind)) << kind << true;
            QTest::addRow("%s, not chosen", qPrintable(kind)) << kind << false;
        }
    }
    void whoChoosesHasOneAndWhoDoesNotHasNone()
    {
        QFETCH(QString, kind);
        QFETCH(bool, doesChoose);
        const auto chooser = make(kind, doesChoose);
        QVERIFY(isSound(chooser->availability()));
        QVERIFY(chooser->availability().isAvailable);

        const auto answer = chooser->choose(kTitle);
        if (kind == u"window") {
            QVERIFY(!answer.isFinished());
            QWindow* const window = QGuiApplication::topLevelWindows().value(0);
            QVERIFY(window && QTest::qWaitForWindowActive(window));
            QTest::keyClick(window, doesChoose ? Qt::Key_Return : Qt::Key_Escape);
        }
        QVERIFY(answer.isFinished());
        QCOMPARE(answer.result(), doesChoose ? std::optional(kHeron) : std::nullopt);
    }

    void whereThereIsNoWayToAskItFailsAndSaysWhy()
    {
        const auto chooser = make(u"Null"_s, true);
        QVERIFY(isSound(chooser->availability()));
        QCOMPARE(chooser->availability().reason, kReason);
        QCOMPARE(failureOf([&] { chooser->choose(kTitle).result(); }), kReason);
    }

    void oneAtATime_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("window") << u"window"_s;
        QTest::newRow("fake") << u"fake"_s;
    }
    void oneAtATime()
    {
        QFETCH(QString, kind);
        const auto chooser = make(kind, true);
        if (kind == u"fake")
            static_cast<FakeApplicationChooser&>(*chooser).holds = true;
        const auto first = chooser->choose(kTitle);
        const auto second = chooser->choose(kTitle);
        QVERIFY(second.isFinished());
        QVERIFY(!second.result());
        QVERIFY(!first.isFinished());
    }

private:
    std::unique_ptr<ApplicationChooser> make(const QString& kind, bool doesChoose)
    {
        if (kind == u"window")
            return std::make_unique<ApplicationChooserWindow>(m_installed);
        if (kind == u"Null")
            return std::make_unique<NullApplicationChooser>(kReason);
        auto fake = std::make_unique<FakeApplicationChooser>();
        if (doesChoose)
            fake->choiceNow = kHeron;
        return fake;
    }

    FakeInstalledApplications m_installed;
};

QTEST_MAIN(ApplicationChooserContractTest)
#include "ApplicationChooserContractTest.moc"
