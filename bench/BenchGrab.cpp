// SPDX-License-Identifier: Apache-2.0
#include "bench/BenchGrab.h"

#include "Mossbank/Platform/Linux/X11Screen.h"
#include "MossbankCore/Support/Failure.h"
#include "bench/BenchDesktop.h"
#include "bench/BenchOutput.h"
#include "bench/BenchTiming.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

constexpr int kRounds = 300;
constexpr int kWarmUp = 20;

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
    const auto takeBarely = [&](int) {
        bare.take();
    };
    const auto take = [&](int) {
        screen.picture(request).waitForFinished();
    };
    sideBySide(kWarmUp, take, takeBarely);
    const PairedTimes paired = sideBySide(rounds, take, takeBarely);
    print(rounds, median(paired.baseline), median(paired.times));
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
