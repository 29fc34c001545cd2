// SPDX-License-Identifier: Apache-2.0
//
// How a file is shown: by the file manager on a real bus, or by the program for folders, as a real
// process.
#include "Mossbank/Platform/Linux/DesktopFileManager.h"
#include "tests/Contract/Contract.h"
#include "tests/Desktop/FolderPrograms.h"
#include "tests/Desktop/StubService.h"
#include "tests/Desktop/TestBus.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Manner = StubService::Manner;

namespace {

constexpr int kPatience = 30'000;
/// For what must not come to have come.
constexpr int kLongEnough = 300;

const QString kService = u"org.freedesktop.FileManager1"_s;
const QString kPath = u"/org/freedesktop/FileManager1"_s;

/// As every other program reads it.
QString pathOf(const QString& address)
{
    GFile* const file = g_file_new_for_uri(address.toUtf8().constData());
    char* const path = g_file_get_path(file);
    const QString text = QFile::decodeName(path);
    g_free(path);
    g_object_unref(file);
    return text;
}

bool isPlain(const QString& address)
{
    return std::ranges::all_of(address, [](QChar sign) {
        return sign > u' ' && sign < u'\x7f' && !u"\"#<>?\\^`{|}"_s.contains(sign);
    });
}

} // namespace

class FileManagerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_programs = std::make_unique<FolderPrograms>(); }
    void init();
    void cleanup();

    void theFileManagerIsAskedForTheFileByItsAddress_data();
    void theFileManagerIsAskedForTheFileByItsAddress();
    void oneThatDoesNotRunIsStarted();
    void ofAFileThatIsGoneTheFolderIsShown();
    void whereNoneShowsItTheFolderIsOpened_data();
    void whereNoneShowsItTheFolderIsOpened();
    void theFolderIsNamedAsItIs_data();
    void theFolderIsNamedAsItIs();
    void whatIsStartedIsOnItsOwn();
    void whatWasStartedDoesNotTieThisToTheBus();
    void whereNothingShowsItThatIsSaid_data();
    void whereNothingShowsItThatIsSaid();
    void aFolderThatIsGoneCannotBeShown();
    void whatIsNoFileHereCannotBeShown();
    void aBusThatStandsStillHoldsNothingUp();
    void lettingGoWhileItIsAskedIsSafe();
    void severalAreShownAtOnce();

private:
    /// A file of this name, in the folder of the test.
    QUrl makeFile(const QString& name);
    QString folder() const { return m_folder->path(); }
    /// Why it was not shown, once that is known. Empty when it was.
    static QString outcome(const QFuture<void>& showing);

    std::unique_ptr<FolderPrograms> m_programs;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TestBus> m_bus;
    std::unique_ptr<StubService> m_service;
    std::unique_ptr<DesktopFileManager> m_manager;
};

void FileManagerTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_service = std::make_unique<StubService>(kService, kPath);
    m_manager =
        std::make_unique<DesktopFileManager>(FileShowing::Limits{.service = 500ms, .opening = 20s});
    QVERIFY(m_programs->install());
}

void FileManagerTest::cleanup()
{
    m_manager.reset();
    m_service.reset();
    m_bus.reset();
    m_folder.reset();
}

QUrl FileManagerTest::makeFile(const QString& name)
{
    QFile file(folder() + u'/' + name);
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return QUrl::fromLocalFile(file.fileName());
}

QString FileManagerTest::outcome(const QFuture<void>& showing)
{
    if (!QTest::qWaitFor([&] { return showing.isFinished(); }, kPatience))
        return u"no end"_s;
    if (showing.isCanceled() && failureOf([&] { QFuture(showing).waitForFinished(); }).isEmpty())
        return u"given up"_s;
    return failureOf([&] { QFuture(showing).waitForFinished(); });
}

void FileManagerTest::theFileManagerIsAskedForTheFileByItsAddress_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"heron.jpg"_s;
    QTest::newRow("blanks") << u" grey heron .jpg"_s;
    QTest::newRow("letters") << u"Fischreiher \u00e4\u0308 a\u011f \u9dfa \U0001f426.jpg"_s;
    QTest::newRow("a number sign") << u"heron #1.jpg"_s;
    QTest::newRow("percents") << u"100% heron %20%zz.jpg"_s;
    QTest::newRow("quotes") << u"a \"grey\" 'heron' `b`.jpg"_s;
    QTest::newRow("signs of a query") << u"heron?a=b&c;d+e.jpg"_s;
    QTest::newRow("brackets") << u"[heron] {a} (b) <c>.jpg"_s;
    QTest::newRow("a backslash") << u"a\\b|c^d.jpg"_s;
    QTest::newRow("a line's end") << u"a\nb.jpg"_s;
    QTest::newRow("of an address") << u"http:heron@marsh:80.jpg"_s;
}

void FileManagerTest::theFileManagerIsAskedForTheFileByItsAddress()
{
    QFETCH(QString, name);
    QVERIFY(m_service->appear());
    const QUrl file = makeFile(name);
    const QFuture<void> showing = m_manager->show(file);
    // It lives in this thread: who waited for it here would wait to the end.
    QVERIFY(!showing.isFinished());
    QCOMPARE(outcome(showing), QString());
    QCOMPARE(m_service->asked.size(), 1);
    const QDBusMessage asked = m_service->asked.first();
    QCOMPARE(asked.interface(), kService);
    QCOMPARE(asked.member(), u"ShowItems"_s);
    QCOMPARE(asked.signature(), u"ass"_s);
    const QStringList addresses = asked.arguments().at(0).toStringList();
    QCOMPARE(addresses.size(), 1);
    QCOMPARE(pathOf(addresses[0]), folder() + u'/' + name);
    QVERIFY2(addresses[0].startsWith(u"file:///"_s) && isPlain(addresses[0]),
             qPrintable(addresses[0]));
    QTest::qWait(kLongEnough);
    QVERIFY(!m_programs->isStarted());
}

void FileManagerTest::oneThatDoesNotRunIsStarted()
{
    m_service.reset();
    const QString told = folder() + u"/told"_s;
    QFile service(folder() + u"/services/heron.service"_s);
    QVERIFY(QDir().mkpath(folder() + u"/services"_s));
    QVERIFY(service.open(QIODevice::WriteOnly));
    service.write(
        u"[D-BUS Service]\nName=%1\nExec=/usr/bin/python3 %2 %3\n"_s
            .arg(kService,
                 QStringLiteral(MOSSBANK_SOURCE_DIR "/tests/Desktop/data/file-manager.py"), told)
            .toUtf8());
    service.close();
    m_bus.reset();
    m_bus = std::make_unique<TestBus>(TestBus::Kind::Session, folder() + u"/services"_s);
    QVERIFY2(m_bus->problem().isEmpty(), qPrintable(m_bus->problem()));
    m_manager = std::make_unique<DesktopFileManager>(FileShowing::Limits{.service = 20s});
    const QUrl file = makeFile(u"grey heron.jpg"_s);
    QCOMPARE(outcome(m_manager->show(file)), QString());
    QFile list(told);
    QVERIFY2(list.open(QIODevice::ReadOnly),
             "package python3-dbusmock, which has it by python3-dbus");
    QCOMPARE(pathOf(QString::fromUtf8(list.readAll())), file.toLocalFile());
    QVERIFY(!m_programs->isStarted());
}

void FileManagerTest::ofAFileThatIsGoneTheFolderIsShown()
{
    QVERIFY(m_service->appear());
    const QUrl file = QUrl::fromLocalFile(folder() + u"/gone.jpg"_s);
    QCOMPARE(outcome(m_manager->show(file)), QString());
    QCOMPARE(m_service->asked.size(), 1);
    QCOMPARE(m_service->asked.first().member(), u"ShowFolders"_s);
    const QStringList addresses = m_service->asked.first().arguments().at(0).toStringList();
    QCOMPARE(addresses.size(), 1);
    QCOMPARE(pathOf(addresses[0]), folder());
}

void FileManagerTest::whereNoneShowsItTheFolderIsOpened_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"none there", "refuses", "silent", "no bus", "no session"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void FileManagerTest::whereNoneShowsItTheFolderIsOpened()
{
    QFETCH(QString, kind);
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    const auto restore = qScopeGuard([&] {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        qputenv("XDG_RUNTIME_DIR", runtime);
    });
    qunsetenv("XDG_RUNTIME_DIR");
    if (kind == u"refuses" || kind == u"silent")
        QVERIFY(m_service->appear());
    m_service->manner = kind == u"silent" ? Manner::KeepsSilent : Manner::Refuses;
    if (kind == u"no bus")
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    if (kind == u"no session")
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    QCOMPARE(outcome(m_manager->show(makeFile(u"heron.jpg"_s))), QString());
    QCOMPARE(FolderPrograms::valueOf(m_programs->told(), u"argument"_s), folder());
}

void FileManagerTest::theFolderIsNamedAsItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << u"grey heron"_s;
    QTest::newRow("letters") << u"Fischreiher a\u0308 \u9dfa"_s;
    QTest::newRow("a number sign") << u"heron #1"_s;
    QTest::newRow("percents") << u"100% heron %20%f"_s;
    QTest::newRow("signs of a shell") << u"a \"$HOME\" 'b' `c`; d & e?"_s;
}

void FileManagerTest::theFolderIsNamedAsItIs()
{
    QFETCH(QString, name);
    QCOMPARE(outcome(m_manager->show(makeFile(name + u"/heron.jpg"_s))), QString());
    QCOMPARE(m_programs->told().filter(u"argument "_s),
             QStringList{u"argument "_s + folder() + u'/' + name});
}

void FileManagerTest::whatIsStartedIsOnItsOwn()
{
    QCOMPARE(outcome(m_manager->show(makeFile(u"heron.jpg"_s))), QString());
    const QStringList told = m_programs->told();
    // Nothing that is sent to the terminal of this process reaches it, and nothing of its own is
    // written there.
    QVERIFY(FolderPrograms::valueOf(told, u"session"_s).toInt() > 0);
    QVERIFY(FolderPrograms::valueOf(told, u"session"_s) != QString::number(::getsid(0)));
    QCOMPARE(told.filter(u"file "_s), QStringList(3, u"file /dev/null"_s));
    QVERIFY(FolderPrograms::valueOf(told, u"parent"_s) !=
            QString::number(QCoreApplication::applicationPid()));
}

void FileManagerTest::whatWasStartedDoesNotTieThisToTheBus()
{
    // Another has the connection that all of GLib shares, so that it is still there at the end.
    GDBusConnection* const shared = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    QVERIFY(shared);
    QCOMPARE(outcome(m_manager->show(makeFile(u"heron.jpg"_s))), QString());
    QVERIFY(!m_programs->told().isEmpty());
    m_service.reset();
    m_bus.reset();
    const bool hasGone =
        QTest::qWaitFor([&] { return g_dbus_connection_is_closed(shared) != FALSE; }, kPatience);
    g_object_unref(shared);
    QVERIFY2(hasGone, "and this runs on");
    QTest::qWait(kLongEnough);
}

void FileManagerTest::whereNothingShowsItThatIsSaid_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::newRow("none there") << false;
    QTest::newRow("refuses") << true;
}

void FileManagerTest::whereNothingShowsItThatIsSaid()
{
    QFETCH(bool, isThere);
    QVERIFY(m_programs->remove());
    m_service->manner = Manner::Refuses;
    if (isThere)
        QVERIFY(m_service->appear());
    const QUrl file = makeFile(u"heron.jpg"_s);
    QCOMPARE(outcome(m_manager->show(file)),
             u"%1 cannot be shown: no program for folders is installed."_s.arg(file.toLocalFile()));
}

void FileManagerTest::aFolderThatIsGoneCannotBeShown()
{
    QVERIFY(m_service->appear());
    const QString path = folder() + u"/gone/heron.jpg"_s;
    QCOMPARE(outcome(m_manager->show(QUrl::fromLocalFile(path))),
             u"%1 cannot be shown: the folder is no longer there."_s.arg(path));
    QVERIFY(m_service->asked.isEmpty());
    QVERIFY(!m_programs->isStarted());
}

void FileManagerTest::whatIsNoFileHereCannotBeShown()
{
    QVERIFY(m_service->appear());
    QCOMPARE(outcome(m_manager->show(QUrl(u"https://heron.example/a.jpg"_s))),
             u"https://heron.example/a.jpg is no file of this computer."_s);
    QVERIFY(!outcome(m_manager->show(QUrl())).isEmpty());
    QVERIFY(m_service->asked.isEmpty());
}

void FileManagerTest::aBusThatStandsStillHoldsNothingUp()
{
    m_manager = std::make_unique<DesktopFileManager>(
        FileShowing::Limits{.service = 100ms, .opening = 100ms});
    const auto process = static_cast<pid_t>(m_bus->process().processId());
    ::kill(process, SIGSTOP);
    const QUrl file = makeFile(u"heron.jpg"_s);
    const QFuture<void> showing = m_manager->show(file);
    const bool wasFinished = showing.isFinished();
    const QString problem = outcome(showing);
    ::kill(process, SIGCONT);
    QVERIFY(!wasFinished);
    QCOMPARE(problem, u"%1 cannot be shown: the program for folders does not start."_s.arg(
                          file.toLocalFile()));
    // What was left behind comes to its end.
    QCOMPARE(FolderPrograms::valueOf(m_programs->told(), u"argument"_s), folder());
}

void FileManagerTest::lettingGoWhileItIsAskedIsSafe()
{
    constexpr FileShowing::Limits kShort = {.service = 100ms};
    m_service->manner = Manner::KeepsSilent;
    QVERIFY(m_service->appear());
    const QUrl file = makeFile(u"heron.jpg"_s);
    const QFuture<void> atOnce = m_manager->show(file);
    m_manager = std::make_unique<DesktopFileManager>(kShort);
    QCOMPARE(outcome(atOnce), u"given up"_s);
    // What was let go at once may have been asked already.
    const QUrl other = makeFile(u"wren.jpg"_s);
    const QFuture<void> asked = m_manager->show(other);
    const auto timesAsked = [&] {
        return std::ranges::count_if(m_service->asked, [&](const QDBusMessage& message) {
            return message.arguments().value(0).toStringList().contains(other.toString());
        });
    };
    QTRY_COMPARE_WITH_TIMEOUT(timesAsked(), 1, kPatience);
    m_manager.reset();
    QCOMPARE(outcome(asked), u"given up"_s);
    QTest::qWait(3 * kLongEnough);
    QCOMPARE(timesAsked(), 1);
    QVERIFY(!m_programs->isStarted());
}

void FileManagerTest::severalAreShownAtOnce()
{
    QVERIFY(m_service->appear());
    const QFuture<void> one = m_manager->show(makeFile(u"one.jpg"_s));
    const QFuture<void> other = m_manager->show(makeFile(u"other.jpg"_s));
    QCOMPARE(outcome(one), QString());
    QCOMPARE(outcome(other), QString());
    QStringList shown;
    for (const QDBusMessage& asked : m_service->asked)
        shown.append(pathOf(asked.arguments().at(0).toStringList().value(0)));
    shown.sort();
    QCOMPARE(shown, (QStringList{folder() + u"/one.jpg"_s, folder() + u"/other.jpg"_s}));
}

QTEST_GUILESS_MAIN(FileManagerTest)
#include "FileManagerTest.moc"
