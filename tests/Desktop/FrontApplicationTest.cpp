// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11FrontApplication.h"
#include "Mossbank/Platform/Linux/X11Properties.h"
#include "tests/Desktop/DesktopTest.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

/// Which application the user works in, with a real window manager.
class FrontApplicationTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_front = std::make_unique<X11FrontApplication>(std::make_shared<ApplicationCatalog>(),
                                                        ownProgram());
    }

    void cleanup()
    {
        m_front.reset();
        m_desktop.reset();
    }

    void withoutAnActiveWindowThereIsNone()
    {
        QVERIFY(m_front->availability().isAvailable);
        QVERIFY(!m_front->current());
    }

    void theApplicationIsThatOfTheActiveWindow()
    {
        WindowProgram alpha;
        WindowProgram beta;
        const quint32 window = alpha.open(spec(u"Alpha"_s));
        QVERIFY(window);
        QVERIFY(beta.open(spec(u"Beta"_s)));
        QVERIFY(activate(window));
        QTRY_COMPARE(m_front->current().value_or(Application()).bundleID, kAlpha);
        QCOMPARE(m_front->current().value_or(Application()).name, u"Alpha of the tests"_s);
    }

    void aSwitchIsTold()
    {
        WindowProgram alpha;
        WindowProgram beta;
        const quint32 first = alpha.open(spec(u"Alpha"_s));
        const quint32 second = beta.open(spec(u"Beta"_s));
        QVERIFY(first && second && activate(first));
        QTRY_COMPARE(m_front->current().value_or(Application{}).bundleID, kAlpha);
        settle();
        const QSignalSpy told(m_front.get(), &FrontApplication::activated);
        QVERIFY(activate(second));
        QTRY_COMPARE(told.size(), 1);
        QCOMPARE(told[0][0].value<Application>().bundleID, kBeta);
        QVERIFY(activate(first));
        QTRY_COMPARE(told.size(), 2);
        QCOMPARE(told[1][0].value<Application>().bundleID, kAlpha);
    }

    void aSwitchIsToldAlsoWhenItIsAskedForMeanwhile()
    {
        WindowProgram alpha;
        WindowProgram beta;
        const quint32 first = alpha.open(spec(u"Alpha"_s));
        const quint32 second = beta.open(spec(u"Beta"_s));
        QVERIFY(first && second && activate(first));
        QTRY_COMPARE(m_front->current().value_or(Application{}).bundleID, kAlpha);
        settle();
        const QSignalSpy told(m_front.get(), &FrontApplication::activated);
        QVERIFY(activate(second));
        // The answer carries the event along, past the socket's notifier.
        QVERIFY(standsInFront(kBeta));
        QTRY_COMPARE(told.size(), 1);
    }

    void anotherWindowOfTheSameApplicationIsNoSwitch()
    {
        WindowProgram alpha;
        const quint32 first = alpha.open(spec(u"Alpha"_s));
        const quint32 second = alpha.open(spec(u"Alpha"_s));
        QVERIFY(first && second && activate(first));
        QTRY_COMPARE(m_front->current().value_or(Application{}).bundleID, kAlpha);
        settle();
        const QSignalSpy told(m_front.get(), &FrontApplication::activated);
        QVERIFY(activate(second));
        settle();
        QCOMPARE(told.size(), 0);
    }

    void anApplicationThatIsAskedForIsNeverAnOldOne()
    {
        WindowProgram alpha;
        QVERIFY(activate(alpha.open(spec(u"Alpha"_s))));
        auto beta = std::make_unique<WindowProgram>();
        QVERIFY(activate(beta->open(spec(u"Beta"_s))));
        QVERIFY(standsInFront(kBeta));
        beta.reset();
        const QDeadlineTimer deadline(5000);
        while (m_front->current().value_or(Application{}).bundleID == kBeta &&
               !deadline.hasExpired())
            QTest::qSleep(5);
        QVERIFY(m_front->current().value_or(Application{}).bundleID != kBeta);
    }

    void anOwnWindowIsThisProgram()
    {
        PaintedWindows own;
        const quint32 window = own.open(spec(u"Alpha"_s));
        QVERIFY(activate(window));
        QTRY_COMPARE(m_front->current().value_or(Application{}).bundleID, kOwn);
    }

    void aWindowOfNobodyKnownHasAnEmptyIdentity()
    {
        m_front.reset();
        m_desktop.reset();
        m_desktop = std::make_unique<VirtualDesktop>(
            VirtualDesktop::Options{.arguments = {u"-extension"_s, u"X-Resource"_s}});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_front = std::make_unique<X11FrontApplication>(std::make_shared<ApplicationCatalog>(),
                                                        ownProgram());
        WindowProgram nobody;
        QVERIFY(activate(nobody.open(spec({}))));
        QTRY_COMPARE(m_front->current(), std::optional(Application{}));
    }

private:
    static WindowSpec spec(const QString& windowClass)
    {
        return {.frame = {300, 300, 200, 200}, .colour = kGreen, .windowClass = windowClass};
    }

    /// Without a turn of the event loop.
    bool activate(quint32 window)
    {
        const auto outcome =
            m_desktop->run(u"wmctrl"_s, {u"-i"_s, u"-a"_s, QString::number(window)}, u"wmctrl"_s);
        if (!outcome.isSuccess)
            qWarning("%s", qPrintable(outcome.text));
        return window && outcome.isSuccess && isActive(window);
    }

    /// Waits until it is: on the way there from another window, none is for a moment.
    static bool isActive(quint32 window)
    {
        const X11Connection connection;
        const QDeadlineTimer deadline(5000);
        while (!deadline.hasExpired()) {
            const auto asked = connection.askProperty(
                connection.root(), connection[Atom::NetActiveWindow], sizeof(quint32));
            if (readNumber(connection.property(asked).get()) == window)
                return true;
            QTest::qSleep(5);
        }
        return false;
    }

    /// Asks again and again without a turn of the event loop.
    bool standsInFront(const QString& bundleID) const
    {
        const QDeadlineTimer deadline(5000);
        while (m_front->current().value_or(Application{}).bundleID != bundleID) {
            if (deadline.hasExpired())
                return false;
            QTest::qSleep(5);
        }
        return true;
    }

    /// Lets everything that is under way arrive.
    static void settle() { QTest::qWait(200); }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<X11FrontApplication> m_front;
};

QTEST_GUILESS_MAIN(FrontApplicationTest)
#include "FrontApplicationTest.moc"
