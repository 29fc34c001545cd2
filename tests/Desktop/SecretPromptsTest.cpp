// SPDX-License-Identifier: Apache-2.0
//
// Prompts for something secret and lockers, which are known by the class of their windows.
#include "Mossbank/Platform/Linux/AtspiSecureInput.h"
#include "tests/Desktop/AccessibilityTest.h"
#include "tests/Desktop/SecureInputWatch.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

class SecretPromptsTest final : public AccessibilityTest {
    Q_OBJECT

private Q_SLOTS:
    void aPromptIsKnownByItsClass_data();
    void aPromptIsKnownByItsClass();
    void aLockerThatAsksNoWindowManagerIsKnown_data();
    void aLockerThatAsksNoWindowManagerIsKnown();

private:
    void begin() { m_input = std::make_unique<AtspiSecureInput>(accessibility()); }
    void letGo() override { m_input.reset(); }

    std::unique_ptr<SecureInput> m_input;
};

void SecretPromptsTest::aPromptIsKnownByItsClass_data()
{
    QTest::addColumn<QString>("windowClass");
    QTest::addColumn<bool>("isPrompt");
    QTest::newRow("pin entry") << u"Pinentry-gtk-2"_s << true;
    QTest::newRow("key prompt") << u"gcr-prompter"_s << true;
    QTest::newRow("agent") << u"polkit-gnome-authentication-agent-1"_s << true;
    QTest::newRow("an ordinary program") << u"Alpha"_s << false;
}

void SecretPromptsTest::aPromptIsKnownByItsClass()
{
    QFETCH(QString, windowClass);
    QFETCH(bool, isPrompt);
    begin();
    WindowProgram program;
    QVERIFY(becomes(*m_input, false));
    QVERIFY(program.open({.frame = {300, 300, 300, 200},
                          .colour = kGreen,
                          .windowClass = windowClass,
                          .title = u"The window"_s}));
    QVERIFY(desktop().bringToFront(u"The window"_s));
    QVERIFY(settles(*m_input, isPrompt));
    WindowProgram other;
    QVERIFY(other.open({.frame = {700, 500, 300, 200},
                        .colour = kRed,
                        .windowClass = u"Beta"_s,
                        .title = u"The other"_s}));
    QVERIFY(desktop().bringToFront(u"The other"_s));
    QVERIFY(becomes(*m_input, false));
}

void SecretPromptsTest::aLockerThatAsksNoWindowManagerIsKnown_data()
{
    QTest::addColumn<bool>("isThereBefore");
    QTest::newRow("there before") << true;
    QTest::newRow("comes") << false;
}

void SecretPromptsTest::aLockerThatAsksNoWindowManagerIsKnown()
{
    QFETCH(bool, isThereBefore);
    WindowProgram program;
    if (!isThereBefore) {
        begin();
        QVERIFY(becomes(*m_input, false));
    }
    const quint32 window = program.open({.frame = {0, 0, 1920, 1080},
                                         .colour = kGreen,
                                         .windowClass = u"i3lock"_s,
                                         .overridesRedirect = true});
    QVERIFY(window);
    if (isThereBefore)
        begin();
    QVERIFY(settles(*m_input, true));
    QVERIFY(program.close(window));
    QVERIFY(becomes(*m_input, false));
}

QTEST_GUILESS_MAIN(SecretPromptsTest)
#include "SecretPromptsTest.moc"
