// SPDX-License-Identifier: Apache-2.0
#include "tests/House/RoomRules.h"
#include "tests/House/SourceTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kLicence = u"// SPDX-License-Identifier: Apache-2.0\n"_s;

} // namespace

/// Who may include what, and what every file has.
class RoomsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHouseIsInOrder();
    void everyRoomIsLookedAt();
    void whatIsForbiddenIsFound_data();
    void whatIsForbiddenIsFound();
    void whatIsAllowedIsNotFound_data();
    void whatIsAllowedIsNotFound();
    void aTreeOutOfOrderIsFoundWithFileAndLine();
};

void RoomsTest::theHouseIsInOrder()
{
    const QStringList found = violationsBelow(QStringLiteral(MOSSBANK_SOURCE_DIR));
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

void RoomsTest::everyRoomIsLookedAt()
{
    const QStringList files = sourceFiles(QStringLiteral(MOSSBANK_SOURCE_DIR));
    for (const QString& room :
         {u"MossbankCore/Support/"_s, u"MossbankCore/Library/"_s, u"MossbankCore/Capture/"_s,
          u"Mossbank/Ports/"_s, u"tests/Fakes/"_s, u"tests/House/"_s}) {
        const bool seen = std::any_of(files.begin(), files.end(), [&room](const QString& file) {
            return file.startsWith(room);
        });
        QVERIFY2(seen, qPrintable(room));
    }
}

void RoomsTest::whatIsForbiddenIsFound_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* path, const char* line) {
        QTest::addRow("%s: %s", path, line) << QString::fromUtf8(path) << QString::fromUtf8(line);
    };
    const char* const core = "MossbankCore/Capture/X.cpp";
    row(core, "#include \"Mossbank/Ports/Screen.h\"");
    row(core, "#include \"../Mossbank/Ports/Screen.h\"");
    row(core, "#include \"tests/Fakes/FakeClock.h\"");
    row(core, "#include \"bench/Bench.h\"");
    for (const char* header : {"xcb/xcb.h",
                               "X11/Xlib.h",
                               "QtDBus/QDBusConnection",
                               "QDBusInterface",
                               "gio/gio.h",
                               "glib.h",
                               "glib-object.h",
                               "libsecret/secret.h",
                               "atspi/atspi.h",
                               "QtWidgets",
                               "QWidget",
                               "QApplication",
                               "QtQuick/QQuickItem",
                               "QQuickView",
                               "QQmlEngine",
                               "QtQml",
                               "QtGui",
                               "QGuiApplication",
                               "QPainter",
                               "QPixmap",
                               "QScreen",
                               "QWindow",
                               "QColor",
                               "QFont",
                               "QIcon",
                               "QCoroDBus",
                               "sqlite3.h",
                               "unicode/uchar.h"}) {
        row(core, (QByteArray("#include <") + header + ">").constData());
    }
    row(core, "  #  include <xcb/xcb.h>");
    row("MossbankCore/Support/Files.cpp", "#include <unicode/ustring.h>");
    row("MossbankCore/Support/CharactersMore.cpp", "#include <unicode/ustring.h>");
    row("mossbank-find/main.cpp", "#include <sqlite3.h>");
    row("Mossbank/Model/X.cpp", "#include \"sqlite3.h\"");
    row("tests/Model/XTest.cpp", "#include <sqlite3.h>");
    row("MossbankCore/Support/Files.cpp", "#include <openssl/evp.h>");
    row("Mossbank/Model/X.cpp", "#include <openssl/evp.h>");

    row("Mossbank/Ports/X.h", "#include \"Mossbank/Platform/Linux/X.h\"");
    row("Mossbank/Ports/X.h", "#include \"Mossbank/Model/Recorder.h\"");
    row("Mossbank/Ports/X.h", "#include <QtDBus>");
    row("Mossbank/Ports/X.h", "#include <QWidget>");
    row("Mossbank/Model/X.cpp", "#include \"Mossbank/Platform/PlatformFactory.h\"");
    row("Mossbank/Model/X.cpp", "#include \"Mossbank/Views/Theme.h\"");
    row("Mossbank/Model/X.cpp", "#include \"tests/Fakes/FakeClock.h\"");
    row("Mossbank/Model/X.cpp", "#include <xcb/randr.h>");
    row("Mossbank/Model/X.cpp", "#include <QQmlContext>");
    row("Mossbank/Model/X.cpp", "#include <QSystemTrayIcon>");
    row("Mossbank/Platform/Linux/X.cpp", "#include \"Mossbank/Model/Recorder.h\"");
    row("Mossbank/Platform/Linux/X.cpp", "#include \"Mossbank/Views/Theme.h\"");
    row("Mossbank/Platform/PlatformFactory.cpp", "#include <xcb/xcb.h>");
    row("Mossbank/Platform/Null/X.cpp", "#include <gio/gdesktopappinfo.h>");
    row("Mossbank/Views/X.cpp", "#include <QDBusConnection>");
    row("Mossbank/MossbankApp.cpp", "#include <libsecret/secret.h>");
    row("mossbank-find/main.cpp", "#include \"Mossbank/Model/Preferences.h\"");
    row("mossbank-mcp/main.cpp", "#include \"Mossbank/Ports/Screen.h\"");
    row("mossbank-mcp/main.cpp", "#include <QApplication>");

    for (const char* line : {"auto now = QDateTime::currentDateTime();",
                             "QDateTime::currentMSecsSinceEpoch()",
                             "QDateTime::currentSecsSinceEpoch()",
                             "QDate::currentDate()",
                             "QTime::currentTime()",
                             "std::chrono::system_clock::now()",
                             "QTimer timer;",
                             "#include <QTimer>",
                             "std::this_thread::sleep_for(1s);",
                             "QThread::msleep(5);",
                             "QThread::sleep(5);",
                             "usleep(5);",
                             "nanosleep(&a, &b);",
                             "std::time(nullptr)",
                             "startTimer(5)",
                             "gettimeofday(&a, b)",
                             "QBasicTimer m_timer;",
                             "QEventLoop loop;",
                             "QCoro::waitFor(task);",
                             "QCoreApplication::processEvents();"}) {
        row("MossbankCore/Library/X.cpp", line);
        row("Mossbank/Model/X.cpp", line);
    }
}

void RoomsTest::whatIsForbiddenIsFound()
{
    QFETCH(QString, path);
    QFETCH(QString, line);
    const QString head = kLicence + (path.endsWith(u".h") ? u"#pragma once\n"_s : u"\n"_s);
    QCOMPARE(violations(path, head + u"int a;\n"_s), QStringList());
    const QStringList found = violations(path, head + line + u"\nint a;\n"_s);
    QVERIFY(!found.isEmpty());
    QVERIFY2(found.first().startsWith(path + u":3: "_s), qPrintable(found.first()));
}

void RoomsTest::whatIsAllowedIsNotFound_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* path, const char* line) {
        QTest::addRow("%s: %s", path, line) << QString::fromUtf8(path) << QString::fromUtf8(line);
    };
    const char* const core = "MossbankCore/Capture/X.cpp";
    row(core, "#include \"MossbankCore/Support/Date.h\"");
    row(core, "#include <QImage>");
    row(core, "#include <QImageReader>");
    row(core, "#include <QImageWriter>");
    row(core, "#include <QCoroTask>");
    row(core, "#include <QDateTime>");
    row(core, "// never #include <QWidget>, nor start a QTimer");
    row(core, "call(u\"QTimer sleep_for(\"_s);");
    row(core, "co_await m_clock.sleep(30, cancellation);");
    row("MossbankCore/Support/SystemClock.cpp", "QTimer timer;");
    row("MossbankCore/Support/Characters.cpp", "#include <unicode/uchar.h>");
    row("MossbankCore/Library/Database.cpp", "#include <sqlite3.h>");
    row("tests/Core/Library/XTest.cpp", "#include <sqlite3.h>");
    row("bench/Bench.cpp", "#include <sqlite3.h>");
    row("Mossbank/Platform/Linux/X.cpp", "#include <xcb/xcb.h>");
    row("Mossbank/Platform/Linux/X.cpp", "#include <QDBusConnection>");
    row("Mossbank/Platform/Linux/X.cpp", "#include \"Mossbank/Ports/Screen.h\"");
    row("Mossbank/Platform/PlatformFactory.cpp", "#include \"Mossbank/Platform/Linux/X.h\"");
    row("Mossbank/Model/X.cpp", "#include \"Mossbank/Ports/Screen.h\"");
    row("Mossbank/Views/X.cpp", "#include <QQuickItem>");
    row("tests/Model/XTest.cpp", "QTimer timer; QDateTime::currentDateTime();");
    row("mossbank-find/main.cpp", "#include \"MossbankCore/Library/HistoryStore.h\"");
}

void RoomsTest::whatIsAllowedIsNotFound()
{
    QFETCH(QString, path);
    QFETCH(QString, line);
    QCOMPARE(violations(path, kLicence + line + u'\n'), QStringList());
}

void RoomsTest::aTreeOutOfOrderIsFoundWithFileAndLine()
{
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const auto write = [&folder](const QString& path, const QString& text) {
        const QString whole = folder.filePath(path);
        QDir().mkpath(QFileInfo(whole).path());
        QFile file(whole);
        return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0;
    };
    QVERIFY(write(u"MossbankCore/Support/Good.h"_s, kLicence + u"#pragma once\n"_s));
    QVERIFY(write(u"MossbankCore/Support/Bad.cpp"_s, kLicence + u"\n\n#include <QtDBus>\n"_s));
    QVERIFY(write(u"MossbankCore/Support/Bare.h"_s, kLicence + u"int a;\n"_s));
    QVERIFY(write(u"bench/Nameless.cpp"_s, u"int a;\n"_s));
    QVERIFY(write(u"bench/Empty.cpp"_s, QString()));
    QVERIFY(write(u"build/dev/moc_X.cpp"_s, u"int a;\n"_s));
    QVERIFY(write(u".deps/sqlite/sqlite3.h"_s, u"int a;\n"_s));
    QVERIFY(write(u"README.md"_s, u"words\n"_s));
    QCOMPARE(violationsBelow(folder.path()),
             (QStringList{
                 u"MossbankCore/Support/Bad.cpp:4: the core is on no desktop"_s,
                 u"MossbankCore/Support/Bare.h:1: a header has #pragma once"_s,
                 u"bench/Empty.cpp:1: the first line is the licence's"_s,
                 u"bench/Nameless.cpp:1: the first line is the licence's"_s,
             }));
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::RoomsTest)
#include "RoomsTest.moc"
