// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/SearchKeys.h"

#include "Mossbank/Model/Listing.h"
#include "tests/Views/WorkspaceRig.h"

#include <QKeyEvent>
#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;

class SearchKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_rig = std::make_unique<WorkspaceRig>();
        for (int number = 0; number < 3; ++number)
            m_rig->add(u"m%1"_s.arg(number), WorkspaceRig::kToday + 60 + number);
        m_rig->open();
        m_keys = std::make_unique<SearchKeys>(listing(), m_field);
    }
    void cleanup()
    {
        m_keys.reset();
        m_rig.reset();
    }

    void theListIsWalkedByTheArrows()
    {
        listing().setSelectedID(u"m1"_s);
        QVERIFY(press(Qt::Key_Up));
        QCOMPARE(listing().selectedID(), std::optional(u"m2"_s));
        QVERIFY(press(Qt::Key_Down));
        QVERIFY(press(Qt::Key_Down));
        QCOMPARE(listing().selectedID(), std::optional(u"m0"_s));
    }

    void returnEnlargesWhatIsSelected()
    {
        QVERIFY(press(Qt::Key_Return));
        QVERIFY(listing().showsEnlarged());
    }

    void whereNothingIsSelectedReturnIsTheFields()
    {
        listing().setQuery(u"nowhere"_s);
        m_rig->settle();
        QVERIFY(!press(Qt::Key_Return));
        QVERIFY(!listing().showsEnlarged());
    }

    void escapeClearsWhatWasTyped()
    {
        listing().setSelectedID(u"m1"_s);
        listing().setQuery(u"moss"_s);
        m_rig->settle();
        QVERIFY(press(Qt::Key_Escape));
        QCOMPARE(listing().query(), QString());
        m_rig->settle();
        QCOMPARE(listing().selectedID(), std::optional(u"m1"_s));
        QVERIFY2(!press(Qt::Key_Escape), "with nothing typed it is the field's");
    }

    void allElseGoesOnToTheField_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("a letter") << int(Qt::Key_A) << Qt::KeyboardModifiers();
        QTest::newRow("to the left") << int(Qt::Key_Left) << Qt::KeyboardModifiers();
        QTest::newRow("with another key")
            << int(Qt::Key_Up) << Qt::KeyboardModifiers(Qt::ShiftModifier);
        QTest::newRow("with control")
            << int(Qt::Key_Escape) << Qt::KeyboardModifiers(Qt::ControlModifier);
    }
    void allElseGoesOnToTheField()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        listing().setQuery(u"moss"_s);
        const auto selected = listing().selectedID();
        QVERIFY(!press(key, modifiers));
        QCOMPARE(listing().selectedID(), selected);
        QCOMPARE(listing().query(), u"moss"_s);
    }

private:
    Listing& listing() { return m_rig->listing(); }

    /// Whether the list has taken it.
    bool press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        return m_keys->eventFilter(&m_field, &event);
    }

    std::unique_ptr<WorkspaceRig> m_rig;
    QQuickItem m_field;
    std::unique_ptr<SearchKeys> m_keys;
};

QTEST_MAIN(SearchKeysTest)
#include "SearchKeysTest.moc"
