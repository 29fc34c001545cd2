// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/DesktopTest.h"

#include <QGuiApplication>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace mossbank;
using namespace mossbank::test;

namespace {

/// Given to this program: only write the displays' names.
const QString kTellNames = u"--tell-names"_s;

} // namespace

/// Several displays, large ones, and their coming and going.
class ScreenDisplaysTest final : public QObject {
    Q_OBJECT

public:
    static void initMain() { useTestApplications(); }

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>(VirtualDesktop::Options{.size = {3840, 1080}});
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_screen = makeScreen();
    }

    void cleanup()
    {
        m_screen.reset();
        m_desktop.reset();
    }

    void theOnlyDisplayIsTheMainOne()
    {
        const ScreenContent content = m_screen->content().result();
        QCOMPARE(content.displays.size(), 1);
        QCOMPARE(content.displays[0].frame, QRect(0, 0, 3840, 1080));
        QCOMPARE(content.mainDisplay, std::optional(content.displays[0].id));
    }

    void aWideDisplayComesOutAtTheSizeAskedFor()
    {
        WindowProgram alpha;
        QVERIFY(alpha.open(
            {.frame = {1000, 100, 1600, 800}, .colour = kGreen, .windowClass = u"Alpha"_s}));
        const ScreenContent content = m_screen->content().result();
        const QImage picture =
            m_screen->picture({*content.mainDisplay, {kAlpha}, {2048, 576}}).result();
        QCOMPARE(picture.size(), QSize(2048, 576));
        QCOMPARE(picture.pixel(1800 * 2048 / 3840, 500 * 576 / 1080), kGreen);
    }

    void eachPictureIsOfItsDisplay()
    {
        QVERIFY(split());
        WindowProgram alpha;
        QVERIFY(alpha.open({.frame = {100, 100, 300, 200},
                            .colour = kGreen,
                            .windowClass = u"Alpha"_s,
                            .overridesRedirect = true}));
        QVERIFY(alpha.open({.frame = {2500, 300, 200, 100},
                            .colour = kBlue,
                            .windowClass = u"Alpha"_s,
                            .overridesRedirect = true}));
        const ScreenContent content = m_screen->content().result();
        QCOMPARE(content.displays.size(), 2);
        for (const auto& display : content.displays) {
            const bool isLeft = display.frame.x() == 0;
            QCOMPARE(display.frame, isLeft ? QRect(0, 0, 1920, 1080) : QRect(1920, 56, 1280, 1024));
            const QImage picture = m_screen->picture({display.id, {kAlpha}, {}}).result();
            QCOMPARE(picture.size(), display.frame.size());
            QCOMPARE(pixelsOf(picture, kGreen), isLeft ? 300 * 200 : 0);
            QCOMPARE(pixelsOf(picture, kBlue), isLeft ? 0 : 200 * 100);
            if (!isLeft)
                QCOMPARE(pixelsOf(picture, kBlue, QRect(2500 - 1920, 300 - 56, 200, 100)),
                         200 * 100);
        }
    }

    void aWindowLeftOutIsCoveredOnBothDisplays()
    {
        QVERIFY(split());
        WindowProgram beta;
        QVERIFY(beta.open({.frame = {1800, 300, 300, 200},
                           .colour = kRed,
                           .windowClass = u"Beta"_s,
                           .overridesRedirect = true}));
        for (const auto& display : m_screen->content().result().displays) {
            QVERIFY(pixelsOf(m_screen->picture({display.id, {kBeta}, {}}).result(), kRed) > 0);
            QCOMPARE(pixelsOf(m_screen->picture({display.id, {}, {}}).result(), kRed), 0);
        }
    }

    void theIdentityOfADisplayStays()
    {
        QVERIFY(split());
        const ScreenContent before = m_screen->content().result();
        QVERIFY(xrandr({u"--delmonitor"_s, u"Right"_s}));
        QCOMPARE(m_screen->content().result().displays, QList{before.displays.constFirst()});
        QVERIFY(addRight());
        QCOMPARE(m_screen->content().result().displays, before.displays);
        auto another = makeScreen();
        QCOMPARE(another->content().result().displays, before.displays);
    }

    void aDisplayThatWasTakenAwayIsAClearFailure()
    {
        QVERIFY(split());
        const DisplayID right = m_screen->content().result().displays.constLast().id;
        QVERIFY(!m_screen->picture({right, {}, {}}).result().isNull());
        QVERIFY(xrandr({u"--delmonitor"_s, u"Right"_s}));
        QCOMPARE(failureOf([&] {
                     m_screen->picture({right, {}, {}}).result();
                 }),
                 u"No display is available. Check your display connection and try again."_s);
    }

    void theNamesOfDisplaysBeginWithTheMainOnes_data()
    {
        QTest::addColumn<QString>("main");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("left") << u"Left"_s << QStringList{u"Left"_s, u"Right"_s};
        QTest::newRow("right") << u"Right"_s << QStringList{u"Right"_s, u"Left"_s};
    }
    void theNamesOfDisplaysBeginWithTheMainOnes()
    {
        QFETCH(QString, main);
        QFETCH(QStringList, names);
        QVERIFY(split(main));
        // Qt asks for the displays when a program with windows starts, which this one is not.
        qputenv("QT_QPA_PLATFORM", "xcb");
        const auto named =
            m_desktop->run(QCoreApplication::applicationFilePath(), {kTellNames}, u"qt6"_s);
        QVERIFY2(named.isSuccess, qPrintable(named.text));
        QCOMPARE(named.text.split(u'\n', Qt::SkipEmptyParts), names);
    }

private:
    bool xrandr(const QStringList& arguments)
    {
        const auto outcome = m_desktop->run(u"xrandr"_s, arguments, u"x11-xserver-utils"_s);
        if (!outcome.isSuccess)
            qWarning("%s", qPrintable(outcome.text));
        return outcome.isSuccess;
    }

    /// Two displays that are neither of one size nor of one height.
    bool split(const QString& main = {})
    {
        return xrandr({u"--setmonitor"_s, marked(u"Left"_s, main), u"1920/500x1080/280+0+0"_s,
                       u"screen"_s}) &&
               addRight(main);
    }

    bool addRight(const QString& main = {})
    {
        return xrandr({u"--setmonitor"_s, marked(u"Right"_s, main), u"1280/330x1024/270+1920+56"_s,
                       u"none"_s});
    }

    /// As xrandr is told which display is the main one.
    static QString marked(const QString& name, const QString& main)
    {
        return name == main ? u'*' + name : name;
    }

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<X11Screen> m_screen;
};

int main(int argc, char* argv[])
{
    if (argc == 2 && kTellNames == QLatin1String(argv[1])) {
        const QGuiApplication application(argc, argv);
        for (const QString& name : makeScreen()->displayNames())
            std::puts(qPrintable(name));
        return 0;
    }
    ScreenDisplaysTest::initMain();
    QCoreApplication application(argc, argv);
    ScreenDisplaysTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ScreenDisplaysTest.moc"
