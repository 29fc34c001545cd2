// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/AccessibleDesktop.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/prctl.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

constexpr int kPatience = 20'000;

/// Only what is put into its folder is started on demand: browsers would have the keyring and the
/// portals started too.
const QString kConfiguration = uR"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)"_s;

const QString kLauncher = u"/usr/libexec/at-spi-bus-launcher"_s;

bool write(const QString& path, const QString& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void putBack(const char* name, const QByteArray& value)
{
    if (value.isEmpty())
        qunsetenv(name);
    else
        qputenv(name, value);
}

} // namespace

AccessibleDesktop::AccessibleDesktop(const Options& options)
    : m_desktop(std::make_unique<VirtualDesktop>())
    , m_previousBus(qgetenv("DBUS_SESSION_BUS_ADDRESS"))
    , m_previousRuntime(qgetenv("XDG_RUNTIME_DIR"))
    , m_problem(m_desktop->problem())
{
    QDir().mkpath(file(u"services"_s));
    QDir().mkpath(file(u"run"_s));
    QFile::setPermissions(file(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", file(u"run"_s).toLocal8Bit());
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    if (m_problem.isEmpty() && options.hasSession && startSession(options) &&
        options.isSwitchedOn && options.hasAccessibility && !(switchTelling(true) && isTelling()))
        m_problem = u"accessibility cannot be switched on"_s;
}

AccessibleDesktop::~AccessibleDesktop()
{
    end();
    putBack("DBUS_SESSION_BUS_ADDRESS", m_previousBus);
    putBack("XDG_RUNTIME_DIR", m_previousRuntime);
}

QString AccessibleDesktop::problem() const
{
    return m_problem;
}

bool AccessibleDesktop::startSession(const Options& options)
{
    m_problem = whyMissing(u"dbus-daemon"_s, u"dbus"_s);
    if (m_problem.isEmpty() && !QFile::exists(kLauncher))
        m_problem = u"%1 is missing: install the Debian package at-spi2-core"_s.arg(kLauncher);
    if (!m_problem.isEmpty())
        return false;
    const QString service = u"[D-BUS Service]\nName=org.a11y.Bus\nExec=%1\n"_s.arg(kLauncher);
    if (!write(file(u"bus.conf"_s), kConfiguration.arg(m_folder.path())) ||
        (options.hasAccessibility && !write(file(u"services/org.a11y.Bus.service"_s), service)))
        qFatal("cannot write below %s", qPrintable(m_folder.path()));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_folder.path());
    // The service keeps the choice in the user's settings and takes it back when these cannot be
    // written.
    environment.insert(u"GSETTINGS_BACKEND"_s, u"memory"_s);
    m_session.setProcessEnvironment(environment);
    m_session.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_session.start(u"dbus-daemon"_s, {u"--config-file"_s, file(u"bus.conf"_s), u"--nofork"_s,
                                       u"--print-address=1"_s});
    const QDeadlineTimer deadline(kPatience);
    while (!m_session.canReadLine() && !deadline.hasExpired() &&
           m_session.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
    }
    const QByteArray address = m_session.readLine().trimmed();
    if (address.isEmpty()) {
        m_problem = u"dbus-daemon did not start: "_s +
                    QString::fromLocal8Bit(m_session.readAllStandardError());
        return false;
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    return true;
}

qint64 AccessibleDesktop::start(const QString& program, const QStringList& arguments,
                                const QString& package)
{
    m_problem = whyMissing(program, package);
    if (!m_problem.isEmpty())
        return 0;
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_folder.path());
    environment.remove(u"XDG_CONFIG_HOME"_s);
    // The tests themselves show nothing; what they start shall.
    environment.remove(u"QT_QPA_PLATFORM"_s);
    process->setProcessEnvironment(environment);
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process->start(program, arguments);
    if (!process->waitForStarted(kPatience)) {
        m_problem = program + u" did not start: "_s + process->errorString();
        return 0;
    }
    m_programs.push_back(std::move(process));
    return m_programs.back()->processId();
}

qint64 AccessibleDesktop::startChromium(const QStringList& arguments)
{
    // Root may not use its sandbox, and on a first start it has much to say.
    QStringList all = {u"--no-first-run"_s, u"--no-default-browser-check"_s,
                       u"--password-store=basic"_s, u"--disable-background-networking"_s,
                       u"--user-data-dir="_s + file(u"chromium"_s)};
    if (::getuid() == 0)
        all.append(u"--no-sandbox"_s);
    return start(u"chromium"_s, all + arguments, u"chromium"_s);
}

qint64 AccessibleDesktop::startFirefox(const QStringList& arguments)
{
    const QString profile = file(u"firefox"_s);
    QDir().mkpath(profile);
    const QString choices =
        u"user_pref(\"browser.shell.checkDefaultBrowser\", false);\n"
        u"user_pref(\"browser.aboutwelcome.enabled\", false);\n"
        u"user_pref(\"datareporting.policy.dataSubmissionEnabled\", false);\n"
        u"user_pref(\"browser.startup.homepage_override.mstone\", \"ignore\");\n"
        u"user_pref(\"app.update.enabled\", false);\n"
        u"user_pref(\"termsofuse.bypassNotification\", true);\n"_s;
    if (!write(profile + u"/user.js"_s, choices))
        qFatal("cannot write below %s", qPrintable(profile));
    return start(u"firefox-esr"_s,
                 QStringList{u"--no-remote"_s, u"--profile"_s, profile} + arguments,
                 u"firefox-esr"_s);
}

QString AccessibleDesktop::page(const QString& content)
{
    const QString path = file(u"page.html"_s);
    if (!write(path, content))
        qFatal("cannot write %s", qPrintable(path));
    return u"file://"_s + path;
}

bool AccessibleDesktop::press(const QStringList& keys)
{
    return m_desktop->run(u"xdotool"_s, QStringList{u"key"_s} + keys, u"xdotool"_s).isSuccess;
}

bool AccessibleDesktop::type(const QString& text)
{
    return m_desktop->run(u"xdotool"_s, {u"type"_s, text}, u"xdotool"_s).isSuccess;
}

bool AccessibleDesktop::bringToFront(const QString& title)
{
    return QTest::qWaitFor(
        [&] {
            return m_desktop->run(u"wmctrl"_s, {u"-F"_s, u"-a"_s, title}, u"wmctrl"_s).isSuccess;
        },
        kPatience);
}

bool AccessibleDesktop::switchTelling(bool isOn)
{
    return m_desktop
        ->run(u"dbus-send"_s,
              {u"--session"_s, u"--print-reply"_s, u"--dest=org.a11y.Bus"_s, u"/org/a11y/bus"_s,
               u"org.freedesktop.DBus.Properties.Set"_s, u"string:org.a11y.Status"_s,
               u"string:IsEnabled"_s, u"variant:boolean:"_s + (isOn ? u"true"_s : u"false"_s)},
              u"dbus"_s)
        .isSuccess;
}

bool AccessibleDesktop::isTelling() const
{
    return m_desktop
        ->run(u"dbus-send"_s,
              {u"--session"_s, u"--print-reply"_s, u"--dest=org.a11y.Bus"_s, u"/org/a11y/bus"_s,
               u"org.freedesktop.DBus.Properties.Get"_s, u"string:org.a11y.Status"_s,
               u"string:IsEnabled"_s},
              u"dbus"_s)
        .text.contains(u"boolean true"_s);
}

/// Those that were started on this desktop know its folder. Not the ones that have ended and are
/// still to be taken note of.
QStringList AccessibleDesktop::processes() const
{
    QStringList found;
    const QByteArray mark = m_folder.path().toLocal8Bit();
    for (const QString& name : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (!name.front().isDigit() || name.toLongLong() == QCoreApplication::applicationPid())
            continue;
        const QString folder = u"/proc/"_s + name;
        const QByteArray command = read(folder + u"/cmdline"_s);
        if (!command.isEmpty() &&
            (command.contains(mark) || read(folder + u"/environ"_s).contains("HOME=" + mark)))
            found +=
                name + u' ' + QString::fromLocal8Bit(command).replace(QChar(0), u' ').left(300);
    }
    return found;
}

bool AccessibleDesktop::killAccessibilityBus()
{
    bool hasKilled = false;
    for (const QString& process : processes()) {
        if (process.contains(u"accessibility.conf"_s) || process.contains(kLauncher)) {
            ::kill(process.section(u' ', 0, 0).toInt(), SIGKILL);
            hasKilled = true;
        }
    }
    return hasKilled;
}

QStringList AccessibleDesktop::end()
{
    for (const auto& program : m_programs) {
        ::kill(static_cast<pid_t>(program->processId()), SIGCONT);
        program->kill();
    }
    for (const auto& program : m_programs)
        program->waitForFinished(kPatience);
    m_programs.clear();
    m_session.kill();
    m_session.waitForFinished(kPatience);
    m_desktop.reset();
    const QDeadlineTimer deadline(10'000);
    QStringList left = processes();
    for (; !left.isEmpty() && !deadline.hasExpired(); left = processes())
        QTest::qSleep(20);
    for (const QString& process : std::as_const(left))
        ::kill(process.section(u' ', 0, 0).toInt(), SIGKILL);
    return left;
}

} // namespace mossbank::test
