// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/OpenWindows.h"

#include <QMenu>
#include <QTest>
#include <QWidget>

using namespace mossbank;

class OpenWindowsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatTheUserTakesForAWindowIsOne_data()
    {
        QTest::addColumn<Qt::WindowFlags>("flags");
        QTest::addColumn<bool>("isOne");
        QTest::newRow("a window") << Qt::WindowFlags(Qt::Window) << true;
        QTest::newRow("a question") << Qt::WindowFlags(Qt::Dialog) << true;
        QTest::newRow("a menu") << Qt::WindowFlags(Qt::Popup) << false;
        // As Qt makes it for a tray that takes in windows.
        QTest::newRow("an icon in the tray")
            << (Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint) << false;
    }
    void whatTheUserTakesForAWindowIsOne()
    {
        QFETCH(Qt::WindowFlags, flags);
        QFETCH(bool, isOne);
        QVERIFY(!OpenWindows::areAny());
        QWidget window(nullptr, flags);
        QVERIFY2(!OpenWindows::areAny(), "it does not show yet");
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(OpenWindows::areAny(), isOne);
        window.hide();
        QVERIFY(!OpenWindows::areAny());
    }

    void oneThatIsMinimisedComesBack()
    {
        QWidget window;
        window.showMinimized();
        QVERIFY(OpenWindows::areAny());
        OpenWindows::bringToFront();
        QVERIFY(!window.windowHandle()->windowStates().testFlag(Qt::WindowMinimized));
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }
};

QTEST_MAIN(OpenWindowsTest)
#include "OpenWindowsTest.moc"
