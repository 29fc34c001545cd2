// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/PlatformFactory.h"
#include "bench/BenchBrowse.h"
#include "bench/BenchCheck.h"
#include "bench/BenchGrab.h"
#include "bench/BenchLibrary.h"
#include "bench/BenchRead.h"
#include "bench/BenchSave.h"
#include "bench/BenchStart.h"
#include "bench/BenchWindow.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QStringList>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string_view>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

constexpr int kWrongUse = 2;

constexpr const char* kUsage =
    "mossbank-bench measures one thing and prints one JSON object a line.\n"
    "\n"
    "  read FILE... [--time]   the words in each picture, form feeds between; or how long that "
    "takes\n"
    "  save --rows N           one save into a library of N rows, beside its bare minimum\n"
    "  library --rows N        what is asked of a library of N rows, beside the bare queries\n"
    "  browse [--rows N]       what looking back at a day of 20,000 screenshots takes; and listing "
    "it and searching, from a library of N rows\n"
    "  check [--rounds N]      a check that finds the same screen, beside a bare grab of it\n"
    "  check --program SECS [COMMAND...]\n"
    "                          the same in the real program, checking once a second, with a "
    "program of its session in front\n"
    "  start --rows N          the program from its start until its library of N rows can be used, "
    "beside one that only says its version\n"
    "  hour [MINUTES]          the program's own memory after a picture and after an hour of "
    "recording, or so many minutes, on a clock ten times as fast\n"
    "  window --rows N         what the main window takes with a day of 20,000 screenshots, from a "
    "library of N rows, on the display that there is\n"
    "  grab                    one picture of the display, beside a bare grab of it\n";

} // namespace

int main(int argc, char* argv[])
{
    // As the program has it: the memory of a list depends on it.
    const bool showsWindow = argc > 1 && argv[1] == "window"sv;
    if (showsWindow || (argc > 1 && argv[1] == "browse"sv))
        mossbank::keepMemoryTogether();
    // Letters are drawn for the one that reads, and the others take no memory for that.
    const bool draws = argc > 1 && argv[1] == "read"sv;
    if (draws && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::unique_ptr<QCoreApplication> application(
        draws || showsWindow ? new QGuiApplication(argc, argv) : new QCoreApplication(argc, argv));
    const std::map<QString, std::function<int(const QStringList&)>> benchmarks = {
        {u"browse"_s, mossbank::benchBrowse}, {u"check"_s, mossbank::benchCheck},
        {u"grab"_s, mossbank::benchGrab},     {u"library"_s, mossbank::benchLibrary},
        {u"read"_s, mossbank::benchRead},     {u"hour"_s, mossbank::benchHour},
        {u"save"_s, mossbank::benchSave},     {u"start"_s, mossbank::benchStart},
        {u"window"_s, mossbank::benchWindow},
    };
    const QStringList arguments = QCoreApplication::arguments();
    const auto chosen = benchmarks.find(arguments.value(1));
    if (chosen == benchmarks.end()) {
        std::fputs(kUsage, stderr);
        return kWrongUse;
    }
    return chosen->second(arguments.mid(2));
}
