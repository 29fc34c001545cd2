// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchGrab.h"

#include "Mossbank/Platform/Linux/ShmPool.h"
#include "Mossbank/Platform/Linux/X11Screen.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchOutput.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kRounds = 300;
constexpr int kWarmUp = 20;
constexpr double kNanosecondsPerMillisecond = 1e6;

/// A window of one class, on a connection of its own as a program has it.
class BenchWindow {
public:
    BenchWindow(const QByteArray& windowClass, const QRect& frame, quint32 colour)
    {
        const xcb_window_t window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_connection.root(),
                          static_cast<qint16>(frame.x()), static_cast<qint16>(frame.y()),
                          static_cast<quint16>(frame.width()), static_cast<quint16>(frame.height()),
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                          &colour);
        const QByteArray names = windowClass + '\0' + windowClass + '\0';
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, static_cast<quint32>(names.size()),
                            names.constData());
        xcb_map_window(m_connection, window);
        // Wait until it shows, also where a window manager has to put a frame around it first.
        for (int attempt = 0; attempt < kMaxAttempts && !isViewable(window); ++attempt)
            QThread::msleep(10);
        if (!isViewable(window))
            throw Failure(u"A window of the measurement does not show."_s);
    }

private:
    static constexpr int kMaxAttempts = 300;

    bool isViewable(xcb_window_t window) const
    {
        const auto attributes = m_connection.reply<xcb_get_window_attributes_reply_t>(
            xcb_get_window_attributes(m_connection, window));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    X11Connection m_connection;
};

/// The least that a picture can cost: the root into shared memory, and nothing looked at.
class BareGrab {
public:
    BareGrab()
    {
        const xcb_screen_t& screen = m_connection.screen();
        constexpr std::size_t kBytesPerPixel = 4;
        m_segment = ShmSegment::make(m_connection, kBytesPerPixel * screen.width_in_pixels *
                                                       screen.height_in_pixels);
        if (!m_segment)
            throw Failure(u"The X server cannot share memory."_s);
    }

    void take() const
    {
        const xcb_screen_t& screen = m_connection.screen();
        const auto asked = xcb_shm_get_image(
            m_connection, screen.root, 0, 0, screen.width_in_pixels, screen.height_in_pixels,
            ~quint32{0}, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment->id(), 0);
        if (!m_connection.reply<xcb_shm_get_image_reply_t>(asked))
            throw Failure(u"The X server did not give a picture."_s);
    }

private:
    X11Connection m_connection;
    std::unique_ptr<ShmSegment> m_segment;
};

double median(std::vector<qint64> times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::ranges::nth_element(times, middle);
    return static_cast<double>(*middle) / kNanosecondsPerMillisecond;
}

void print(int rounds, double baseline, double picture)
{
    printFigures({{u"bench"_s, u"grab"_s},
                  {u"rounds"_s, rounds},
                  {u"baseline_ms"_s, baseline},
                  {u"picture_ms"_s, picture},
                  {u"ratio"_s, picture / baseline}});
}

/// Installs an application for the windows that are left out. GLib reads the place once, so this
/// comes before anything else asks it for applications.
void install(const QTemporaryDir& home)
{
    QDir(home.path()).mkdir(u"applications"_s);
    QFile file(home.filePath(u"applications/bench.left.out.desktop"_s));
    if (!file.open(QIODevice::WriteOnly))
        throw FileError(file.errorString(), file.fileName());
    file.write("[Desktop Entry]\nType=Application\nName=Left out\nExec=true\n"
               "StartupWMClass=BenchOut\n");
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
}

/// The request of a capture pass: everything but the application that is left out.
PictureRequest requestOf(X11Screen& screen)
{
    const ScreenContent content = screen.content().result();
    PictureRequest request = {content.mainDisplay.value_or(0), {}, {}};
    bool isThere = false;
    for (const Application& application : content.applications) {
        if (application.bundleID == "bench.left.out"_L1)
            isThere = true;
        else
            request.included.append(application.bundleID);
    }
    if (!isThere)
        throw Failure(u"The windows to be left out are not known as such."_s);
    for (const auto& display : content.displays) {
        if (display.id == request.display)
            request.size = display.frame.size();
    }
    return request;
}

qint64 timeOf(const auto& work)
{
    QElapsedTimer watch;
    watch.start();
    work();
    return watch.nsecsElapsed();
}

void measure(int rounds)
{
    const QTemporaryDir home;
    install(home);
    const BenchWindow windows[] = {
        {"BenchIn", {50, 50, 700, 500}, 0x205080},    {"BenchOut", {400, 300, 700, 500}, 0x508020},
        {"BenchIn", {900, 100, 600, 400}, 0x802050},  {"BenchOut", {200, 600, 500, 300}, 0x404040},
        {"BenchIn", {1200, 600, 500, 300}, 0x606060},
    };
    // The windows are of this process, and yet not the program's own.
    X11Screen screen(std::make_shared<ApplicationCatalog>(), {0, u"bench.own"_s});
    const PictureRequest request = requestOf(screen);
    const BareGrab bare;
    std::vector<qint64> baseline;
    std::vector<qint64> pictures;
    for (int round = -kWarmUp; round < rounds; ++round) {
        const qint64 grab = timeOf([&] { bare.take(); });
        const qint64 picture = timeOf([&] { screen.picture(request).waitForFinished(); });
        if (round < 0)
            continue;
        baseline.push_back(grab);
        pictures.push_back(picture);
    }
    print(rounds, median(std::move(baseline)), median(std::move(pictures)));
}

} // namespace

int benchGrab(const QStringList& arguments)
{
    const int rounds = arguments.isEmpty() ? kRounds : arguments.constFirst().toInt();
    try {
        if (rounds <= 0)
            throw Failure(u"The number of rounds is no number above zero."_s);
        measure(rounds);
    } catch (const Failure& failure) {
        return benchFailed(failure.message());
    }
    return 0;
}

} // namespace mossbank
