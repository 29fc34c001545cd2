// SPDX-License-Identifier: Apache-2.0
#include "tests/House/RoomRules.h"

#include "tests/House/SourceTree.h"

#include <QFile>
#include <QList>
#include <QRegularExpression>

#include <algorithm>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// Headers of desktops and of windows, by what is written between the angle brackets.
const QString kX11 = u"(?:xcb/|X11/|QtX11Extras|qx11)"_s;
const QString kBuses =
    u"(?:QtDBus|QDBus|qdbus|dbus/|systemd/|QCoroDBus|qcorodbus|QCoro/QCoroDBus)"_s;
const QString kGlib = u"(?:gio/|glib|gobject|libsecret/|atspi/|at-spi|atk/|gtk/)"_s;
const QString kWindows =
    u"(?:QtWidgets|QtQuick|QtQml|QWidget|QApplication|QSystemTrayIcon|QQuick|QQml|QMenu"
    "|QMessageBox|QFileDialog|QPushButton|QLabel\\b|QMainWindow|QDialog|QCoroQuick|QCoroQml)"_s;

/// What of Qt Gui there is, but for pictures, their readers and their writers.
const QString kGuiBeyondPictures =
    u"(?:QtGui|QGuiApplication|QWindow|QScreen|QPainter|QPixmap|QIcon|QFont|QColor|QBrush|QPen\\b"
    "|QPalette|QCursor|QClipboard|QTransform|QKey|QMouse|QAction|QShortcut|QOpenGL|QRaster"
    "|QStyleHints|QDesktopServices|QTextDocument|QPicture|QBitmap|QSurface|QVector\\dD|QMatrix4"
    "|QAccessible|QImageIOHandler|qpa/|private/)"_s;

/// In files whose path matches `rooms` but not `except`, no line may match `forbidden`.
struct Rule {
    QString rooms;
    QString except;
    QString forbidden;
    QString reason;
};

QString including(const QString& angled)
{
    return u"^\\s*#\\s*include\\s*[<\"]"_s + angled;
}

QString includingOwn(const QString& quoted)
{
    return u"^\\s*#\\s*include\\s*[<\"](?:\\.\\./)*"_s + quoted;
}

const QList<Rule>& rules()
{
    const QString kPlatform = u"(?:"_s + kX11 + u'|' + kBuses + u'|' + kGlib + u')';
    static const QList<Rule> kRules = {
        {u"^MossbankCore/"_s,
         {},
         includingOwn(u"(?:Mossbank|tests|bench|mossbank-[a-z]+)/"_s),
         u"the core knows nothing above it"_s},
        {u"^MossbankCore/"_s, {}, including(kPlatform), u"the core is on no desktop"_s},
        {u"^MossbankCore/"_s, {}, including(kWindows), u"the core has no windows"_s},
        {u"^MossbankCore/"_s,
         {},
         including(kGuiBeyondPictures),
         u"of Qt Gui the core has pictures alone"_s},

        {u"^Mossbank/Ports/"_s,
         {},
         includingOwn(u"(?:Mossbank/(?!Ports/)|tests/|bench/)"_s),
         u"ports know the core and each other"_s},
        {u"^Mossbank/Model/"_s,
         {},
         includingOwn(u"(?:Mossbank/(?!Ports/|Model/)|tests/|bench/)"_s),
         u"the model knows ports and core"_s},
        {u"^Mossbank/(?:Ports|Model)/"_s,
         {},
         including(kPlatform),
         u"only the adapters are on a desktop"_s},
        {u"^Mossbank/(?:Ports|Model)/"_s,
         {},
         including(kWindows),
         u"ports and model have no windows"_s},
        {u"^Mossbank/Platform/"_s,
         {},
         includingOwn(u"(?:Mossbank/(?!Ports/|Platform/)|tests/|bench/)"_s),
         u"adapters know ports and core"_s},
        {u"^Mossbank/Views/"_s,
         {},
         includingOwn(u"(?:Mossbank/(?!Ports/|Model/|Views/)|tests/|bench/)"_s),
         u"the windows know the model, ports and core"_s},
        {u"^(?:Mossbank|mossbank-[a-z]+)/"_s, u"^Mossbank/Platform/Linux/"_s, including(kPlatform),
         u"headers of a desktop belong to its adapters"_s},
        {u"^(?:Mossbank|mossbank-[a-z]+)/"_s,
         {},
         includingOwn(u"(?:tests|bench)/"_s),
         u"the program knows nothing of its tests"_s},
        {u"^mossbank-[a-z]+/"_s,
         {},
         includingOwn(u"(?:Mossbank|tests|bench)/"_s),
         u"the small programs know the core alone"_s},
        {u"^mossbank-[a-z]+/"_s, {}, including(kWindows), u"the small programs have no windows"_s},

        {u"."_s, u"^(?:MossbankCore/Library/|tests/Core/Library/|bench/)"_s,
         including(u"sqlite3(?:ext)?\\.h"_s), u"only the library knows its database"_s},
        {u"."_s, u"^(?:MossbankCore/Library/|tests/Core/Library/|bench/)"_s,
         including(u"openssl/"_s), u"only the library knows its cipher"_s},
        {u"."_s, u"^MossbankCore/Support/(?:Characters\\.(?:h|cpp)|Calendar\\.cpp)$"_s,
         including(u"unicode/"_s),
         u"only Characters reckons with characters, and only Calendar words dates"_s},
        {u"^(?:MossbankCore|Mossbank/Model)/"_s,
         u"^MossbankCore/Support/SystemClock\\.(?:h|cpp)$"_s,
         u"\\b(?:QDateTime::current|QDate::currentDate|QTime::currentTime|system_clock\\s*::\\s*now"
         "|QTimer\\b|QBasicTimer\\b|QChronoTimer\\b|startTimer\\s*\\("
         "|sleep_for\\b|sleep_until\\b|QThread::u?m?sleep|\\bu?nano?sleep\\s*\\(|usleep\\s*\\("
         "|gettimeofday\\b|clock_gettime\\b|std::time\\s*\\(|::time\\s*\\(|QCoroTimer\\b"
         "|QCoro::sleep)"_s,
         u"only SystemClock reads the clock and sleeps"_s},
        {u"^MossbankCore/|^Mossbank/"_s,
         {},
         u"\\b(?:QEventLoop\\b|processEvents\\s*\\(|QCoro::waitFor\\b)"_s,
         u"no event loop inside another"_s},
    };
    return kRules;
}

/// A line without its comment, and without the words in its strings.
QString code(const QString& line)
{
    static const QRegularExpression kInclude(u"^\\s*#\\s*include"_s);
    static const QRegularExpression kWords(u"\"(?:[^\"\\\\]|\\\\.)*\""_s);
    static const QRegularExpression kComment(u"//.*$"_s);
    QString bare = line;
    if (!kInclude.match(line).hasMatch())
        bare.replace(kWords, u"\"\""_s);
    return bare.remove(kComment);
}

} // namespace

QStringList violations(const QString& path, const QString& source)
{
    QStringList found;
    const auto report = [&](qsizetype line, const QString& reason) {
        found += u"%1:%2: %3"_s.arg(path, QString::number(line), reason);
    };
    const QStringList lines = source.split(u'\n');
    if (lines.first() != u"// SPDX-License-Identifier: Apache-2.0")
        report(1, u"the first line is the licence's"_s);
    if (path.endsWith(u".h") && !lines.contains(u"#pragma once"_s))
        report(1, u"a header has #pragma once"_s);
    for (const Rule& rule : rules()) {
        if (!QRegularExpression(rule.rooms).match(path).hasMatch())
            continue;
        if (!rule.except.isEmpty() && QRegularExpression(rule.except).match(path).hasMatch())
            continue;
        const QRegularExpression forbidden(rule.forbidden);
        Q_ASSERT(forbidden.isValid());
        for (qsizetype line = 0; line < lines.size(); ++line) {
            if (forbidden.match(code(lines[line])).hasMatch())
                report(line + 1, rule.reason);
        }
    }
    return found;
}

QStringList violationsBelow(const QString& folder)
{
    QStringList found;
    for (const QString& path : sourceFiles(folder)) {
        QFile file(folder + u'/' + path);
        if (!file.open(QIODevice::ReadOnly))
            found += path + u":1: it cannot be read"_s;
        else
            found += violations(path, QString::fromUtf8(file.readAll()));
    }
    return found;
}

} // namespace mossbank
