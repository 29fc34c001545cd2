// SPDX-License-Identifier: Apache-2.0
//
// The real program and what the desktop's portal tells it. Its window is the question before the
// end.
#include "tests/Desktop/CalledMossbank.h"
#include "tests/Desktop/StubPortal.h"

#include <QColor>
#include <QTest>

#include <xcb/xcb.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using Manner = StubService::Manner;

namespace {

const QString kRecords = u"Waiting for your next screen"_s;
const QString kQuestion = u"Mossbank is recording"_s;
const QString kQuit = u"quit"_s;

constexpr int kPatience = 20'000;

constexpr quint32 kDark = 1;
constexpr quint32 kLight = 2;
constexpr QRgb kDarkBackground = qRgb(0x19, 0x1b, 0x18);
constexpr QRgb kLightBackground = qRgb(0xf6, 0xf5, 0xf1);

/// The colour of a window near its corner, where nothing is written.
std::optional<QRgb> background(quint32 window)
{
    constexpr int16_t kCorner = 3;
    xcb_connection_t* const server = xcb_connect(nullptr, nullptr);
    xcb_get_image_reply_t* const image = xcb_get_image_reply(
        server,
        xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, window, kCorner, kCorner, 1, 1, ~0U),
        nullptr);
    std::optional<QRgb> colour;
    if (image && xcb_get_image_data_length(image) == 4) {
        const uint8_t* const bytes = xcb_get_image_data(image);
        colour = qRgb(bytes[2], bytes[1], bytes[0]);
    }
    std::free(image);
    xcb_disconnect(server);
    return colour;
}

} // namespace

class FollowedDesktopTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_called = std::make_unique<CalledMossbank>();
        QVERIFY2(m_called->problem().isEmpty(), qPrintable(m_called->problem()));
        m_portal = std::make_unique<StubPortal>();
    }
    void cleanup()
    {
        m_portal.reset();
        m_called.reset();
    }

    void itsWindowsFollowTheDesktopWhileTheyAreOpen()
    {
        m_portal->values = {{StubPortal::kAppearance, {{u"color-scheme"_s, kDark}}}};
        QVERIFY(m_portal->service().appear());
        const quint32 window = openQuestion();
        QVERIFY(window != 0);
        QVERIFY(waitForBackground(window, kDarkBackground));
        QVERIFY(m_portal->chooseScheme(kLight));
        QVERIFY(waitForBackground(window, kLightBackground));
        QVERIFY(m_portal->chooseScheme(kDark));
        QVERIFY(waitForBackground(window, kDarkBackground));
        QCOMPARE(m_called->mossbank().stop(SIGTERM), 0);
    }

    void whatTheUserChoseForItStandsAgainstTheDesktop()
    {
        m_called->choose({{u"appearanceMode"_s, u"light"_s}});
        m_portal->values = {{StubPortal::kAppearance, {{u"color-scheme"_s, kDark}}}};
        QVERIFY(m_portal->service().appear());
        const quint32 window = openQuestion();
        QVERIFY(window != 0);
        QTRY_VERIFY_WITH_TIMEOUT(!m_portal->service().asked.isEmpty(), kPatience);
        QVERIFY(m_portal->chooseScheme(kDark));
        QTest::qWait(500);
        QVERIFY(waitForBackground(window, kLightBackground));
        QCOMPARE(m_called->mossbank().stop(SIGTERM), 0);
    }

    void aPortalThatNeverAnswersHoldsNothingUp()
    {
        m_portal->service().manner = Manner::KeepsSilent;
        QVERIFY(m_portal->service().appear());
        // A question has longer than is waited for here.
        QVERIFY(m_called->start(kRecords));
        QVERIFY(m_called->waitForAnotherPicture());
        QTRY_VERIFY_WITH_TIMEOUT(!m_portal->service().asked.isEmpty(), kPatience);
        QCOMPARE(m_called->mossbank().stop(SIGTERM), 0);
    }

private:
    /// Its window, or 0.
    quint32 openQuestion()
    {
        const bool isOpen =
            m_called->start(kRecords) && m_called->waitUntilFound() && m_called->ask(kQuit);
        return isOpen ? m_called->window(kQuestion) : 0;
    }
    static bool waitForBackground(quint32 window, QRgb colour)
    {
        return QTest::qWaitFor([=] { return background(window) == colour; }, kPatience);
    }

    std::unique_ptr<CalledMossbank> m_called;
    std::unique_ptr<StubPortal> m_portal;
};

QTEST_GUILESS_MAIN(FollowedDesktopTest)
#include "FollowedDesktopTest.moc"
