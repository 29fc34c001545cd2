// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchWindow.h"

#include "Mossbank/Platform/Null/NullDesktopSettings.h"
#include "Mossbank/Platform/Null/NullFileManager.h"
#include "Mossbank/Platform/Null/NullInstalledApplications.h"
#include "Mossbank/Platform/PlatformFactory.h"
#include "Mossbank/Views/Pictures/ViewerPicture.h"
#include "Mossbank/Views/Workspace/WorkspaceWindow.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchBounds.h"
#include "bench/BenchMemory.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"
#include "bench/QuietModel.h"
#include "bench/SyntheticLibrary.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kOnLastDay = 20'000;
constexpr int kRounds = 5;
constexpr int kPatience = 60'000;

const QString kBench = u"window"_s;

/// Lets the event loop turn until it is so.
void until(const std::function<bool()>& isSo, const QString& otherwise)
{
    constexpr int kBetweenLooks = 1;
    QEventLoop loop;
    QTimer looking;
    QElapsedTimer timer;
    timer.start();
    QObject::connect(&looking, &QTimer::timeout, &loop, [&] {
        if (isSo() || timer.elapsed() > kPatience)
            loop.quit();
    });
    looking.start(kBetweenLooks);
    loop.exec();
    if (!isSo())
        throw Failure(otherwise);
}

void rest(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/// The model and its window, on the day that has so many.
class Opened {
public:
    explicit Opened(const QString& library)
        : model(library)
        , window({.model = model.model(),
                  .preferences = model.preferences(),
                  .clock = model.clock(),
                  .calendar = QuietModel::calendar,
                  .installedApplications = m_installed,
                  .fileManager = m_fileManager,
                  .desktop = m_desktop})
    {
        model.listing().setDay(
            SyntheticScreenshots::dayAfter(rowsOf(model.model()) - kOnLastDay - 1));
    }

    /// Milliseconds until the strip stands on the screen.
    double open()
    {
        QElapsedTimer timer;
        timer.start();
        window.open();
        double painted = 0;
        QObject::connect(window.window(), &QQuickWindow::frameSwapped, window.window(), [&] {
            if (painted == 0 && strip() && strip()->property("count").toInt() == kOnLastDay)
                painted = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        });
        until([&] { return painted > 0; }, u"The window does not show the list."_s);
        window.window()->disconnect(window.window());
        return painted;
    }

    QQuickItem* strip() const { return window.window()->findChild<QQuickItem*>(u"filmstrip"_s); }

    QuietModel model;

private:
    static int rowsOf(AppModel& model)
    {
        return static_cast<int>(model.store()->stats().result().count);
    }

    NullInstalledApplications m_installed{u"Only the window is measured."_s};
    NullFileManager m_fileManager{u"Only the window is measured."_s};
    NullDesktopSettings m_desktop{u"Only the window is measured."_s};

public:
    WorkspaceWindow window;
};

/// A desktop as large as most are, with words all over.
QByteArray screenshot()
{
    QImage image(1920, 1080, QImage::Format_RGB32);
    image.fill(QColor(0xf4, 0xf4, 0xf0));
    QPainter painter(&image);
    SyntheticScreenshots words;
    constexpr int kLine = 24;
    for (int y = kLine; y < image.height(); y += kLine)
        painter.drawText(40, y, words.next(y).text.left(220));
    painter.end();
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    constexpr int kQuality = 78;
    image.save(&buffer, "JPEG", kQuality);
    return jpeg;
}

/// Each screenshot of the last day has the same picture, under its own name.
void givePictures(const QString& library, const QByteArray& jpeg)
{
    Opened opened(library);
    opened.model.listing().openWorkspace();
    until([&] { return opened.model.listing().memories().size() == kOnLastDay; },
          u"The list does not come."_s);
    const QString images = opened.model.model().store()->images();
    const QString one = images + u"/bench-picture.jpg"_s;
    QFile file(one);
    if (!file.open(QIODevice::WriteOnly) || file.write(jpeg) != jpeg.size())
        throw Failure(file.errorString());
    file.close();
    for (const Memory& memory : opened.model.listing().memories()) {
        const QByteArray name = QFile::encodeName(images + u'/' + memory.filename);
        if (::link(QFile::encodeName(one).constData(), name.constData()) != 0 && errno != EEXIST)
            throw Failure(u"A picture cannot be linked."_s);
    }
}

void measureOpening(const QString& library, const QString& empty, Bounds& bounds)
{
    std::vector<double> times;
    std::vector<double> baseline;
    for (int round = 0; round < kRounds; ++round) {
        times.push_back(Opened(library).open());
        QuietModel model(empty);
        NullInstalledApplications installed{QString()};
        NullFileManager fileManager{QString()};
        NullDesktopSettings desktop{QString()};
        WorkspaceWindow window({.model = model.model(),
                                .preferences = model.preferences(),
                                .clock = model.clock(),
                                .calendar = QuietModel::calendar,
                                .installedApplications = installed,
                                .fileManager = fileManager,
                                .desktop = desktop});
        QElapsedTimer timer;
        timer.start();
        window.open();
        bool isPainted = false;
        QObject::connect(window.window(), &QQuickWindow::frameSwapped, window.window(),
                         [&] { isPainted = true; });
        until([&] { return isPainted; }, u"The window is not painted."_s);
        baseline.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    const PairedTimes paired{times, baseline};
    printTimes({{u"bench"_s, kBench},
                {u"what"_s, u"opened, until the list is painted"_s},
                {u"rows"_s, kOnLastDay},
                {u"longest_ms"_s, rounded(std::ranges::max(times))},
                {u"baseline"_s, u"the first frame of the same window on an empty library"_s}},
               paired);
    bounds.hold(u"opening"_s, std::ranges::max(times), WindowBounds::kPaintedMilliseconds, u"ms"_s);
}

/// Milliseconds between a frame and the next while the strip goes by so much with each.
std::vector<double> scroll(Opened& opened, double pixels)
{
    std::vector<double> frames;
    QElapsedTimer timer;
    QQuickItem& strip = *opened.strip();
    const double begin = strip.property("originX").toDouble();
    const double end = begin + strip.property("contentWidth").toDouble() - strip.width();
    double at = begin;
    strip.setProperty("contentX", at);
    rest(300);
    QQuickWindow& window = *opened.window.window();
    bool isThere = false;
    timer.start();
    QObject::connect(&window, &QQuickWindow::frameSwapped, &strip, [&] {
        frames.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        timer.start();
        at += pixels;
        isThere = at >= end;
        strip.setProperty("contentX", std::min(at, end));
        window.update();
    });
    window.update();
    until([&] { return isThere; }, u"The strip does not come to its end."_s);
    window.disconnect(&strip);
    return frames;
}

void measureScrolling(Opened& opened, Bounds& bounds)
{
    // From end to end in some ten seconds.
    constexpr double kPixels = 4000;
    std::vector<double> still = scroll(opened, 1e9);
    std::vector<double> frames = scroll(opened, kPixels);
    std::ranges::sort(frames);
    const auto longer = std::ranges::count_if(
        frames, [](double frame) { return frame > WindowBounds::kUsualFrameMilliseconds; });
    const double share = static_cast<double>(longer) / static_cast<double>(frames.size());
    printFigures({{u"bench"_s, kBench},
                  {u"what"_s, u"a frame while the strip is scrolled from end to end"_s},
                  {u"frames"_s, static_cast<qint64>(frames.size())},
                  {u"median_ms"_s, rounded(median(frames))},
                  {u"longest_ms"_s, rounded(frames.back())},
                  {u"above_33_ms"_s, rounded(share)}});
    bounds.hold(u"longest frame"_s, frames.back(), WindowBounds::kFrameMilliseconds, u"ms"_s);
    bounds.hold(u"frames above 33 ms"_s, share, WindowBounds::kLongerFrames, u"of all"_s);
}

/// Fifteen steps a second: how many of the pictures stood on the screen before the next step.
void measureStepping(Opened& opened, Bounds& bounds)
{
    constexpr int kSteps = 90;
    constexpr int kBetween = 1000 / 15;
    Listing& listing = opened.model.listing();
    auto& picture = *opened.window.window()->findChild<ViewerPicture*>();
    int shown = 0;
    std::vector<double> waits;
    for (int step = 0; step < kSteps; ++step) {
        QElapsedTimer timer;
        timer.start();
        double taken = 0;
        const auto heard = QObject::connect(&picture, &ViewerPicture::shownChanged, &picture, [&] {
            taken = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        });
        listing.step(-1);
        rest(kBetween);
        QObject::disconnect(heard);
        if (picture.shown() == listing.selected()->filename) {
            ++shown;
            waits.push_back(taken);
        }
    }
    printFigures({{u"bench"_s, kBench},
                  {u"what"_s, u"stepping 15 times a second"_s},
                  {u"steps"_s, kSteps},
                  {u"shown"_s, shown},
                  {u"median_ms"_s, rounded(median(waits))}});
    bounds.hold(u"pictures that were not shown"_s, kSteps - shown, 0, u"pictures"_s);
}

void measureMemory(const QString& library, Bounds& bounds)
{
    Opened opened(library);
    rest(500);
    giveMemoryBack();
    const double before = residentMegabytes("VmRSS");
    opened.open();
    measureScrolling(opened, bounds);
    measureStepping(opened, bounds);
    const double open = residentMegabytes("VmRSS");
    // By an event, as the user does: what it lets go goes when the loop that it came from turns.
    QTimer::singleShot(0, &opened.window, &WorkspaceWindow::close);
    constexpr int kUntilLetGo = 1500;
    rest(kUntilLetGo);
    giveMemoryBack();
    const double after = residentMegabytes("VmRSS");
    printFigures({{u"bench"_s, kBench},
                  {u"what"_s, u"resident memory"_s},
                  {u"before_mb"_s, rounded(before)},
                  {u"open_mb"_s, rounded(open)},
                  {u"closed_mb"_s, rounded(after)}});
    bounds.hold(u"memory with the window open"_s, open, WindowBounds::kOpenMegabytes, u"MB"_s);
    bounds.hold(u"memory that the closed window leaves"_s, after - before,
                WindowBounds::kLeftMegabytes, u"MB"_s);
}

} // namespace

int benchWindow(const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption rowsOption(u"rows"_s, {}, u"N"_s);
    const QCommandLineOption keepOption(u"keep"_s, {}, u"DIR"_s);
    parser.addOptions({rowsOption, keepOption});
    const bool isParsed = parser.parse(QStringList{kBench} + arguments);
    const int rows = parser.value(rowsOption).toInt();
    if (!isParsed || rows <= kOnLastDay)
        return benchWrongUse("window --rows N [--keep DIR], with N above 20000");
    Bounds bounds;
    try {
        QTemporaryDir made;
        const QString folder = parser.isSet(keepOption) ? parser.value(keepOption) : made.path();
        SyntheticScreenshots screenshots;
        const QString library = keptLibrary(folder, rows, screenshots, kOnLastDay);
        givePictures(library, screenshot());
        measureMemory(library, bounds);
        measureOpening(library, made.filePath(u"empty"_s), bounds);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return bounds.exitStatus();
}

} // namespace mossbank
