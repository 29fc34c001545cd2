// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/VirtualDesktop.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QStandardPaths>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 10'000;

void end(QProcess& process)
{
    process.terminate();
    if (!process.waitForFinished(2000)) {
        process.kill();
        process.waitForFinished(2000);
    }
}

/// Whether the window manager puts a frame around a new window. While it starts it announces itself
/// already and yet loses what is asked of it.
bool managesWindows()
{
    PaintedWindows windows;
    const xcb_window_t window = windows.open({.frame = {10, 10, 50, 50}}, 100);
    return window != 0 && windows.isFramed(window);
}

} // namespace

QString whyMissing(const QString& program, const QString& package)
{
    return QStandardPaths::findExecutable(program).isEmpty()
               ? u"%1 is missing: install the Debian package %2"_s.arg(program, package)
               : QString();
}

WindowProgram::WindowProgram()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(MOSSBANK_WINDOW_PROGRAM), QStringList());
    m_process.waitForStarted(kPatience);
}

WindowProgram::~WindowProgram()
{
    m_process.kill();
    m_process.waitForFinished(kPatience);
}

quint32 WindowProgram::open(const WindowSpec& spec)
{
    return order(spec.toJson());
}

bool WindowProgram::close(quint32 window)
{
    return order({{u"close"_s, static_cast<qint64>(window)}}) == window;
}

void WindowProgram::standStill()
{
    ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

quint32 WindowProgram::order(const QJsonObject& order)
{
    m_process.write(QJsonDocument(order).toJson(QJsonDocument::Compact) + '\n');
    const QDeadlineTimer deadline(kPatience);
    while (!m_process.canReadLine() && !deadline.hasExpired()) {
        if (!m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            break;
    }
    return m_process.readLine().trimmed().toUInt();
}

VirtualDesktop::VirtualDesktop(const Options& options)
    : m_previousDisplay(qgetenv("DISPLAY"))
{
    if (startServer(options) && options.hasWindowManager)
        startWindowManager();
}

VirtualDesktop::~VirtualDesktop()
{
    for (auto program = m_programs.rbegin(); program != m_programs.rend(); ++program)
        end(**program);
    if (m_server.state() != QProcess::NotRunning)
        end(m_server);
    if (m_previousDisplay.isEmpty())
        qunsetenv("DISPLAY");
    else
        qputenv("DISPLAY", m_previousDisplay);
}

bool VirtualDesktop::startServer(const Options& options)
{
    m_problem = whyMissing(u"Xvfb"_s, u"xvfb"_s);
    if (!m_problem.isEmpty())
        return false;
    const QString screen = u"%1x%2x24"_s.arg(options.size.width()).arg(options.size.height());
    const QStringList arguments = {u"-displayfd"_s, u"1"_s,         u"-screen"_s, u"0"_s,
                                   screen,          u"-nolisten"_s, u"tcp"_s,     u"-noreset"_s};
    m_server.start(u"Xvfb"_s, arguments + options.arguments);
    const QDeadlineTimer deadline(kPatience);
    while (!m_server.canReadLine() && !deadline.hasExpired() &&
           m_server.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
    }
    const QByteArray number = m_server.readLine().trimmed();
    if (number.isEmpty()) {
        m_problem =
            u"Xvfb did not start: "_s + QString::fromLocal8Bit(m_server.readAllStandardError());
        return false;
    }
    qputenv("DISPLAY", ":" + number);
    return true;
}

bool VirtualDesktop::startWindowManager()
{
    if (!start(u"openbox"_s, {}, u"openbox"_s))
        return false;
    const QDeadlineTimer deadline(kPatience);
    while (!managesWindows()) {
        QThread::msleep(10);
        if (deadline.hasExpired()) {
            m_problem = u"openbox did not start"_s;
            break;
        }
    }
    return m_problem.isEmpty();
}

VirtualDesktop::Outcome VirtualDesktop::run(const QString& program, const QStringList& arguments,
                                            const QString& package)
{
    if (const QString why = whyMissing(program, package); !why.isEmpty())
        return {false, why};
    QProcess process;
    process.start(program, arguments);
    const bool hasEnded = process.waitForFinished(kPatience);
    const bool isSuccess =
        hasEnded && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return {isSuccess, QString::fromLocal8Bit(isSuccess ? process.readAllStandardOutput()
                                                        : process.readAllStandardError())};
}

bool VirtualDesktop::start(const QString& program, const QStringList& arguments,
                           const QString& package)
{
    m_problem = whyMissing(program, package);
    if (!m_problem.isEmpty())
        return false;
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_home.path());
    environment.remove(u"XDG_CONFIG_HOME"_s);
    // The tests themselves show nothing; what they start shall.
    environment.remove(u"QT_QPA_PLATFORM"_s);
    process->setProcessEnvironment(environment);
    process->start(program, arguments);
    if (!process->waitForStarted(kPatience))
        m_problem = program + u" did not start: "_s + process->errorString();
    m_programs.push_back(std::move(process));
    return m_problem.isEmpty();
}

void VirtualDesktop::killServer()
{
    m_server.kill();
    m_server.waitForFinished(kPatience);
}

void useTestApplications()
{
    qputenv("XDG_DATA_HOME", MOSSBANK_SOURCE_DIR "/tests/Desktop/data");
}

int pixelsOf(const QImage& image, QRgb colour)
{
    return pixelsOf(image, colour, image.rect());
}

int pixelsOf(const QImage& image, QRgb colour, const QRect& part)
{
    int count = 0;
    const QRect inside = part & image.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += (image.pixel(x, y) & RGB_MASK) == (colour & RGB_MASK);
    }
    return count;
}

} // namespace mossbank::test
