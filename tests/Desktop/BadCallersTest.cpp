// SPDX-License-Identifier: Apache-2.0
//
// Callers that ask for what there is not, say too much, or call too often: on a real session bus.
#include "Mossbank/Platform/Linux/ApplicationObject.h"
#include "tests/Desktop/CalledActivationTest.h"

#include <QTest>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

class BadCallersTest final : public CalledActivationTest {
    Q_OBJECT

private Q_SLOTS:
    void whatDoesNotFitIsRefused_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("nothing") << u"Activate"_s << QVariantList();
        QTest::newRow("a number") << u"Activate"_s << QVariantList{1};
        QTest::newRow("too much") << u"Activate"_s << QVariantList{QVariantMap(), 1};
        QTest::newRow("a list of numbers")
            << u"Open"_s << QVariantList{QVariant::fromValue(QList<int>{1}), QVariantMap()};
        QTest::newRow("an action that is a number")
            << u"ActivateAction"_s << QVariantList{1, QVariantList(), QVariantMap()};
        QTest::newRow("an action alone") << u"ActivateAction"_s << QVariantList{u"quit"_s};
        QTest::newRow("no such thing") << u"deleteLater"_s << QVariantList();
        QTest::newRow("what is said inside") << u"activated"_s << QVariantList();
    }
    void whatDoesNotFitIsRefused()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QVERIFY(listen());
        QVERIFY(!ask(method, arguments).isEmpty());
        QTest::qWait(kLongEnough);
        QCOMPARE(m_activations, 0);
        QCOMPARE(m_actions, QStringList());
        QCOMPARE(ask(u"Activate"_s, {QVariantMap()}), QString());
        QTRY_COMPARE(m_activations, 1);
    }

    void aMegabyteOfWordsDoesNoHarm()
    {
        QVERIFY(listen());
        const QString words(1'000'000, u'x');
        QCOMPARE(ask(u"ActivateAction"_s, {words, QVariantList(), QVariantMap{{words, words}}}),
                 QString());
        QCOMPARE(ask(u"Activate"_s, {QVariantMap{{u"words"_s, words}}}), QString());
        QTRY_COMPARE(m_activations, 1);
    }

    void manyCallsAtOnceAreOne()
    {
        ApplicationObject object;
        connect(&object, &ApplicationObject::activated, this, [this] { ++m_activations; });
        connect(&object, &ApplicationObject::actionRequested, this,
                [this](const QString& action) { m_actions.append(action); });
        for (int i = 0; i < 20; ++i) {
            object.Activate({});
            object.ActivateAction(u"quit"_s, {}, {});
        }
        QCOMPARE(m_activations, 0);
        QTest::qWait(kLongEnough);
        QCOMPARE(m_activations, 1);
        QCOMPARE(m_actions, QStringList{u"quit"_s});
    }

    void afterAFloodNothingIsToldUntilItIsOver()
    {
        ApplicationObject object;
        connect(&object, &ApplicationObject::activated, this, [this] { ++m_activations; });
        int floods = 0;
        connect(&object, &ApplicationObject::flooded, this, [&] { ++floods; });
        for (int i = 0; i < 1000 && floods == 0; ++i)
            object.Activate({});
        QCOMPARE(floods, 1);
        QTRY_COMPARE(m_activations, 1);
        for (int i = 0; i < 1000; ++i)
            object.Activate({});
        QTest::qWait(kLongEnough);
        QCOMPARE(m_activations, 1);
        QCOMPARE(floods, 1);
        object.recover();
        object.Activate({});
        QTRY_COMPARE(m_activations, 2);
        QCOMPARE(floods, 1);
    }

    void aFloodOfCallsIsCutOff()
    {
        QVERIFY(listen());
        QDBusMessage call =
            QDBusMessage::createMethodCall(kIdentity, kPath, kInterface, u"Activate"_s);
        call.setArguments({QVariantMap()});
        for (int i = 0; i < 20'000; ++i)
            QVERIFY((*m_other)->send(call));
        QVERIFY(QTest::qWaitFor([&] { return owner().isEmpty(); }, kPatience));
        QVERIFY(m_activations > 0);
        QVERIFY2(m_activations <= 100, qPrintable(QString::number(m_activations)));
        // Once it is over, it can be found again.
        QVERIFY(QTest::qWaitFor([&] { return !owner().isEmpty(); }, kPatience));
        m_activations = 0;
        QCOMPARE(ask(u"Activate"_s, {QVariantMap()}), QString());
        QTRY_COMPARE(m_activations, 1);
    }
};

QTEST_GUILESS_MAIN(BadCallersTest)
#include "BadCallersTest.moc"
