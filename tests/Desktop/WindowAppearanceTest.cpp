// SPDX-License-Identifier: Apache-2.0
//
// The window of the real program, light and dark: by the choice that is made in it, and as the
// desktop has it.
#include "tests/Desktop/GrabbedDisplay.h"
#include "tests/Desktop/StubPortal.h"
#include "tests/Desktop/WindowTest.h"

#include <QTest>

#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using Role = SpokenRole;

namespace {

constexpr quint32 kPrefersDark = 1;
constexpr quint32 kPrefersLight = 2;
constexpr QRgb kDark = qRgb(0x19, 0x1b, 0x18);
constexpr QRgb kLight = qRgb(0xf6, 0xf5, 0xf1);

} // namespace

class WindowAppearanceTest final : public WindowTest {
    Q_OBJECT

private Q_SLOTS:
    void theChoiceIsSeen();
    void itFollowsTheDesktopUntilAChoiceIsMade();

private:
    /// Opens the menu, which is labelled by what is chosen now, and chooses another.
    bool choosesInstead(const QString& now, const QString& then);
    /// Whether a good part of the window is of this colour, and nothing of the other.
    bool isPainted(QRgb colour, QRgb other);
    bool isDark() { return isPainted(kDark, kLight); }
    bool isLight() { return isPainted(kLight, kDark); }
    void letGo() override;

    std::unique_ptr<StubPortal> m_portal;
};

bool WindowAppearanceTest::choosesInstead(const QString& now, const QString& then)
{
    return press(u"Appearance: "_s + now) && press(Role::MenuItem, then) &&
           hides(Role::MenuItem, then) && shows(Role::Button, u"Appearance: "_s + then);
}

bool WindowAppearanceTest::isPainted(QRgb colour, QRgb other)
{
    return soon(
        [&] {
            const auto window = spoken().find(Role::Frame, u"Mossbank"_s);
            const QImage display = grabDisplay();
            const QRect frame = window ? spoken().frame(*window) & display.rect() : QRect();
            const int area = frame.width() * frame.height();
            return area > 0 && pixelsOf(display, colour, frame) > area / 4 &&
                   pixelsOf(display, other, frame) == 0;
        },
        u"a window of the colour "_s + QColor(colour).name());
}

void WindowAppearanceTest::letGo()
{
    WindowTest::letGo();
    m_portal.reset();
}

void WindowAppearanceTest::theChoiceIsSeen()
{
    QVERIFY(open());
    QVERIFY(choosesInstead(u"Match System"_s, u"Dark"_s));
    QVERIFY(isDark());
    QVERIFY(choosesInstead(u"Dark"_s, u"Light"_s));
    QVERIFY(isLight());
    QVERIFY(choosesInstead(u"Light"_s, u"Dark"_s));
    QVERIFY(isDark());
    // It is one for the next time, too.
    QTRY_COMPARE_WITH_TIMEOUT(mossbank().choice(u"appearanceMode"_s), u"dark"_s, 30'000);
}

void WindowAppearanceTest::itFollowsTheDesktopUntilAChoiceIsMade()
{
    m_portal = std::make_unique<StubPortal>();
    m_portal->values = {{StubPortal::kAppearance, {{u"color-scheme"_s, kPrefersDark}}}};
    QVERIFY(m_portal->service().appear());
    QVERIFY(open());
    QVERIFY(isDark());
    QVERIFY(m_portal->chooseScheme(kPrefersLight));
    QVERIFY(isLight());
    QVERIFY(choosesInstead(u"Match System"_s, u"Dark"_s));
    QVERIFY(isDark());
    QVERIFY(choosesInstead(u"Dark"_s, u"Match System"_s));
    QVERIFY(isLight());
    QVERIFY(m_portal->chooseScheme(kPrefersDark));
    QVERIFY(isDark());
}

QTEST_GUILESS_MAIN(WindowAppearanceTest)
#include "WindowAppearanceTest.moc"
