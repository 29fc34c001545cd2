// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/OpenedProgram.h"

#include "MossbankCore/Capture/TextLineFinder.h"
#include "tests/Desktop/DesktopTest.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 20'000;

/// Whether a window with this in its title is shown that is at least so wide.
bool isShown(Screen& screen, const QString& title, int width)
{
    const QList<ScreenWindow> windows = screen.content().result().windows;
    return std::ranges::any_of(windows, [&](const ScreenWindow& window) {
        return window.isOnScreen && window.title.contains(title) && window.frame.width() >= width;
    });
}

bool waitUntilShown(Screen& screen, const QString& title, int width)
{
    return QTest::qWaitFor([&] { return isShown(screen, title, width); }, kPatience);
}

/// Whether no more has changed than a caret that blinks.
bool isNearlyTheSame(const QImage& one, const QImage& other)
{
    constexpr int kCaret = 200;
    if (one.size() != other.size())
        return false;
    int changed = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            changed += one.pixel(x, y) != other.pixel(x, y);
    }
    return changed <= kCaret;
}

/// Whether there is more on it than the title of a window: on a busy machine a window is shown
/// long before it is drawn.
bool isDrawn(const QImage& picture)
{
    constexpr qsizetype kLines = 10;
    return TextLineFinder::find(picture.convertToFormat(QImage::Format_RGB32)).size() >= kLines;
}

QImage wholeScreen(Screen& screen)
{
    QStringList applications;
    for (const Application& application : screen.content().result().applications)
        applications += application.bundleID;
    return pictureOf(screen, applications);
}

QImage settled(Screen& screen)
{
    constexpr int kLooks = 8;
    constexpr int kBetween = 150;
    const QDeadlineTimer deadline(kPatience);
    QImage last;
    for (int same = 0; !deadline.hasExpired();) {
        const QImage now = wholeScreen(screen);
        same = isNearlyTheSame(now, last) ? same + 1 : 0;
        if (same >= kLooks && isDrawn(now))
            return now;
        last = now;
        QTest::qWait(kBetween);
    }
    return {};
}

} // namespace

OpenedProgram openProgram(VirtualDesktop& desktop, Screen& screen, const ProgramSpec& spec)
{
    if (!desktop.start(spec.program, spec.arguments, spec.package))
        return {{}, desktop.problem()};
    if (!waitUntilShown(screen, spec.title, 1))
        return {{}, spec.program + u" opens no window"_s};
    const auto widened = desktop.run(
        u"wmctrl"_s, {u"-r"_s, spec.title, u"-b"_s, u"add,maximized_vert,maximized_horz"_s},
        u"wmctrl"_s);
    if (!widened.isSuccess)
        return {{}, widened.text};
    constexpr int kNearlyAll = 1800;
    if (!waitUntilShown(screen, spec.title, kNearlyAll))
        return {{}, spec.program + u" does not fill the screen"_s};
    // It is drawn a moment after it has its size.
    QTest::qWait(500);
    const QImage picture = settled(screen);
    return {picture, picture.isNull() ? spec.program + u" never comes to rest"_s : QString()};
}

QString textOfPage(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression kMarkup(u"<[^>]*>"_s);
    QString text = QString::fromUtf8(file.readAll());
    text.remove(0, std::max<qsizetype>(0, text.indexOf(u"<body"_s)));
    return text.replace(kMarkup, u" "_s)
        .replace(u"&lt;"_s, u"<"_s)
        .replace(u"&gt;"_s, u">"_s)
        .replace(u"&amp;"_s, u"&"_s);
}

} // namespace mossbank::test
