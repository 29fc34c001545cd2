// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/Screen.h"
#include "tests/Desktop/PaintedWindows.h"

#include <QImage>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace mossbank::test {

/// Why a program cannot be run: the Debian package that it is in. Empty when it is there.
QString whyMissing(const QString& program, const QString& package);

/// A program with windows, as a process of its own.
class WindowProgram {
public:
    WindowProgram();
    /// Ends it, also when it stands still.
    ~WindowProgram();
    Q_DISABLE_COPY_MOVE(WindowProgram)

    /// The number of the window, which shows. 0 when it does not.
    quint32 open(const WindowSpec& spec);
    bool close(quint32 window);
    /// Stops the process where it is, as a program that hangs.
    void standStill();
    qint64 process() const { return m_process.processId(); }

private:
    quint32 order(const QJsonObject& order);

    QProcess m_process;
};

/// An X server of the tests' own with a window manager. DISPLAY names it while it lives.
class VirtualDesktop {
public:
    struct Options {
        QSize size = {1920, 1080};
        QStringList arguments = {};
        bool hasWindowManager = true;
    };

    VirtualDesktop()
        : VirtualDesktop(Options{})
    {
    }
    explicit VirtualDesktop(const Options& options);
    ~VirtualDesktop();
    Q_DISABLE_COPY_MOVE(VirtualDesktop)

    /// Why it could not be set up. Empty when all went well.
    const QString& problem() const { return m_problem; }

    /// Runs a program to its end. Its output, or what went wrong.
    struct Outcome {
        bool isSuccess = false;
        QString text;
    };
    Outcome run(const QString& program, const QStringList& arguments, const QString& package);
    /// Starts a program that is ended with the desktop.
    bool start(const QString& program, const QStringList& arguments, const QString& package);

    /// Ends the X server the hard way.
    void killServer();
    qint64 serverProcess() const { return m_server.processId(); }

private:
    bool startServer(const Options& options);
    bool startWindowManager();

    QTemporaryDir m_home;
    QByteArray m_previousDisplay;
    QProcess m_server;
    std::vector<std::unique_ptr<QProcess>> m_programs;
    QString m_problem;
};

/// The applications of the tests are installed: classes Alpha, Beta and Gamma are
/// org.example.Alpha and so on. Before the first use of GLib.
void useTestApplications();

/// How many pixels of the image have exactly this colour.
int pixelsOf(const QImage& image, QRgb colour);
/// The same in one part of it.
int pixelsOf(const QImage& image, QRgb colour, const QRect& part);

/// Flat colours that nothing else on the virtual desktop has.
constexpr QRgb kRed = qRgb(0xe0, 0x10, 0x21);
constexpr QRgb kGreen = qRgb(0x12, 0xc8, 0x33);
constexpr QRgb kBlue = qRgb(0x14, 0x25, 0xf0);
constexpr QRgb kYellow = qRgb(0xf1, 0xe2, 0x13);

} // namespace mossbank::test
