// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/PaletteAppearance.h"

#include "tests/Fakes/FakeDesktopSettings.h"

#include <QGuiApplication>
#include <QPalette>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace mossbank;
using Mode = Appearance::Mode;
using ColourScheme = DesktopSettings::ColourScheme;

namespace {

constexpr QRgb kDarkInk = qRgb(0xec, 0xec, 0xe4);
constexpr QRgb kLightInk = qRgb(0x23, 0x26, 0x1f);

/// What is told of the palette, for as long as it lives.
class PaletteChanges final : public QObject {
public:
    int count = 0;

    PaletteChanges() { qApp->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::ApplicationPaletteChange;
        return false;
    }
};

} // namespace

class PaletteAppearanceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_engine.addImportPath(u"qrc:/"_s); }
    void init()
    {
        m_desktop = std::make_unique<FakeDesktopSettings>();
        m_component = std::make_unique<QQmlComponent>(&m_engine);
        m_component->setData("import QtQuick\nimport Mossbank.Views\n"
                             "QtObject { property color ink: Theme.ink }",
                             {});
        m_window.reset(m_component->create());
        QVERIFY2(m_window, qPrintable(m_component->errorString()));
    }
    void cleanup()
    {
        m_window.reset();
        QGuiApplication::setPalette({});
    }

    void windowsFollowWhileTheyAreOpen()
    {
        const QRgb inkBefore = ink();
        PaletteAppearance appearance(*m_desktop);

        appearance.apply(Mode::Dark);
        QTRY_COMPARE(ink(), kDarkInk);
        appearance.apply(Mode::Light);
        QTRY_COMPARE(ink(), kLightInk);
        appearance.apply(Mode::Dark);
        QTRY_COMPARE(ink(), kDarkInk);
        appearance.apply(Mode::System);
        QTRY_COMPARE(ink(), inkBefore);
    }

    void asTheDesktopHasItTheyFollowWhatItTells()
    {
        PaletteAppearance appearance(*m_desktop);
        appearance.apply(Mode::System);
        m_desktop->choose(ColourScheme::Dark);
        QTRY_COMPARE(ink(), kDarkInk);
        m_desktop->choose(ColourScheme::Light);
        QTRY_COMPARE(ink(), kLightInk);
        m_desktop->choose(ColourScheme::Dark);
        QTRY_COMPARE(ink(), kDarkInk);
        m_desktop->choose(ColourScheme::NoPreference);
        QTRY_COMPARE(ink(), kLightInk);
    }

    void whatIsToldBeforeAnyChoiceCountsAsWell()
    {
        PaletteAppearance appearance(*m_desktop);
        m_desktop->choose(ColourScheme::Dark);
        QTRY_COMPARE(ink(), kDarkInk);
    }

    void whatIsKnownAlreadyCountsFromTheChoiceOn()
    {
        m_desktop->choose(ColourScheme::Dark);
        PaletteAppearance appearance(*m_desktop);
        appearance.apply(Mode::Light);
        QTRY_COMPARE(ink(), kLightInk);
        appearance.apply(Mode::System);
        QTRY_COMPARE(ink(), kDarkInk);
    }

    void theUsersOwnChoiceStandsAgainstTheDesktops()
    {
        PaletteAppearance appearance(*m_desktop);
        appearance.apply(Mode::Light);
        m_desktop->choose(ColourScheme::Dark);
        QTest::qWait(100);
        QCOMPARE(ink(), kLightInk);
        appearance.apply(Mode::Dark);
        m_desktop->choose(ColourScheme::Light);
        QTest::qWait(100);
        QCOMPARE(ink(), kDarkInk);
    }

    void aDesktopWhosePaletteIsAsItSaysKeepsIt()
    {
        const QPalette own = QGuiApplication::palette();
        QVERIFY(own.color(QPalette::Window).lightness() > 128);
        PaletteAppearance appearance(*m_desktop);
        appearance.apply(Mode::Dark);
        appearance.apply(Mode::System);
        m_desktop->choose(ColourScheme::Light);
        QCOMPARE(QGuiApplication::palette(), own);
    }

    void whatIsChosenForMotionChangesNoColour()
    {
        PaletteAppearance appearance(*m_desktop);
        appearance.apply(Mode::System);
        m_desktop->choose(ColourScheme::Dark);
        QTRY_COMPARE(ink(), kDarkInk);
        QCoreApplication::processEvents();
        PaletteChanges changes;
        m_desktop->reduceMotion(true);
        QTest::qWait(100);
        QCOMPARE(changes.count, 0);
        m_desktop->choose(ColourScheme::Light);
        QTRY_VERIFY(changes.count > 0);
    }

    void aDesktopThatTellsWhenTheWindowsAreGoneHarmsNothing()
    {
        {
            PaletteAppearance appearance(*m_desktop);
            appearance.apply(Mode::System);
        }
        m_desktop->choose(ColourScheme::Dark);
        QTest::qWait(100);
        QCOMPARE(ink(), kLightInk);
    }

    void whatQtDrawsItselfCanBeReadAsWell()
    {
        PaletteAppearance appearance(*m_desktop);
        for (const Mode mode : {Mode::Light, Mode::Dark}) {
            appearance.apply(mode);
            const QPalette palette = QGuiApplication::palette();
            const auto distance = [&](QPalette::ColorRole one, QPalette::ColorRole other) {
                return std::abs(palette.color(one).lightness() - palette.color(other).lightness());
            };
            constexpr int kLegible = 120;
            QVERIFY(distance(QPalette::WindowText, QPalette::Window) > kLegible);
            QVERIFY(distance(QPalette::Text, QPalette::Base) > kLegible);
            QVERIFY(distance(QPalette::ButtonText, QPalette::Button) > kLegible);
        }
    }

private:
    QRgb ink() const { return m_window->property("ink").value<QColor>().rgb(); }

    std::unique_ptr<FakeDesktopSettings> m_desktop;
    QQmlEngine m_engine;
    std::unique_ptr<QQmlComponent> m_component;
    std::unique_ptr<QObject> m_window;
};

QTEST_MAIN(PaletteAppearanceTest)
#include "PaletteAppearanceTest.moc"
