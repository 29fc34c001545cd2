// SPDX-License-Identifier: Apache-2.0
//
// The real program and the entry that starts it at login: made where the user wants it, taken over
// by a copy that lies elsewhere, and believed where the desktop has switched it off.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <csignal>
#include <memory>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

const QString kWish = u"opensAtLogin"_s;
const QString kPlace = u"opensAtLoginPath"_s;
const QString kHere = QStringLiteral(MOSSBANK_BINARY_DIR "/Mossbank/mossbank");

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool append(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::Append) && file.write(bytes) == bytes.size();
}

} // namespace

class LoginEntryTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<VirtualDesktop> m_desktop;
    std::unique_ptr<RunningMossbank> m_mossbank;

    QString folder() const { return m_mossbank->home() + u"/config/autostart"_s; }
    QString entry() const { return folder() + u"/local.mossbank.Mossbank.desktop"_s; }

    /// The one line of the entry that begins so.
    QString line(const QString& key) const
    {
        QString found;
        for (const QString& line : QString::fromUtf8(contentOf(entry())).split(u'\n')) {
            if (line.startsWith(key + u'='))
                found += line.mid(key.size() + 1);
        }
        return found;
    }

    /// The line by which the desktop starts this program.
    static QString starting(const QString& executable)
    {
        return u"\"%1\" --at-login"_s.arg(executable);
    }

    void choose(const QMap<QString, QString>& choices) { m_mossbank->choose(choices); }

    /// Starts it and waits until it has done what it does at its start.
    bool start()
    {
        return m_mossbank->start() && m_mossbank->waitFor(u"Waiting for your next screen"_s);
    }

    bool startAndEnd() { return start() && m_mossbank->stop(SIGTERM) == 0; }

private Q_SLOTS:
    void init()
    {
        m_desktop = std::make_unique<VirtualDesktop>();
        QVERIFY2(m_desktop->problem().isEmpty(), qPrintable(m_desktop->problem()));
        m_mossbank = std::make_unique<RunningMossbank>();
    }
    void cleanup()
    {
        m_mossbank.reset();
        m_desktop.reset();
    }

    void whoDoesNotWantItHasNone()
    {
        QVERIFY(startAndEnd());
        QVERIFY(!QFileInfo::exists(folder()));
        QVERIFY(m_mossbank->choice(kWish).isNull());
        QVERIFY(m_mossbank->choice(kPlace).isNull());
    }

    void theWishAloneMakesIt()
    {
        choose({{kWish, u"true"_s}});
        QVERIFY(startAndEnd());
        QCOMPARE(line(u"Exec"_s), starting(kHere));
        QCOMPARE(line(u"Type"_s), u"Application"_s);
        QCOMPARE(line(u"Name"_s), u"Mossbank"_s);
        QCOMPARE(m_mossbank->choice(kWish), u"true"_s);
        QCOMPARE(m_mossbank->choice(kPlace), kHere);
        // And nothing beside it.
        QCOMPARE(QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QFileInfo(entry()).fileName()});
        // The next start has nothing to do.
        const QByteArray content = contentOf(entry());
        QVERIFY(startAndEnd());
        QCOMPARE(contentOf(entry()), content);
        QCOMPARE(m_mossbank->choice(kWish), u"true"_s);
    }

    void theEntryStartsTheProgram()
    {
        choose({{kWish, u"true"_s}});
        QVERIFY(startAndEnd());
        const QStringList words = QProcess::splitCommand(line(u"Exec"_s));
        QCOMPARE(words.size(), 2);
        m_mossbank->setProgram(words.first());
        QVERIFY(m_mossbank->start(words.mid(1)));
        QVERIFY(m_mossbank->waitFor(u"Waiting for your next screen"_s));
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
    }

    void aCopyThatLiesElsewhereTakesItOver_data()
    {
        QTest::addColumn<QString>("place");
        QTest::newRow("a folder") << u"elsewhere"_s;
        QTest::newRow("a folder with signs that a shell acts on")
            << u"of \"mine\" 100% $HOME `x`"_s;
    }
    void aCopyThatLiesElsewhereTakesItOver()
    {
        QFETCH(QString, place);
        choose({{kWish, u"true"_s}});
        QVERIFY(startAndEnd());
        const QString copy = m_mossbank->home() + u'/' + place + u"/mossbank"_s;
        QVERIFY(QDir().mkpath(QFileInfo(copy).path()));
        QVERIFY(QFile::copy(kHere, copy));
        m_mossbank->setProgram(copy);
        QVERIFY(startAndEnd());
        QVERIFY2(line(u"Exec"_s).contains(u"mossbank\" --at-login"_s), qPrintable(line(u"Exec"_s)));
        QVERIFY2(!line(u"Exec"_s).contains(kHere), qPrintable(line(u"Exec"_s)));
        QCOMPARE(m_mossbank->choice(kWish), u"true"_s);
        // Also in its own eyes: it finds its entry there, and not another's.
        const QByteArray content = contentOf(entry());
        QVERIFY(startAndEnd());
        QCOMPARE(contentOf(entry()), content);
        QCOMPARE(m_mossbank->choice(kWish), u"true"_s);
        // The first one is the copy that lies elsewhere now.
        m_mossbank->setProgram(kHere);
        QVERIFY(startAndEnd());
        QCOMPARE(line(u"Exec"_s), starting(kHere));
        QCOMPARE(m_mossbank->choice(kPlace), kHere);
    }

    void switchedOffByTheDesktopItStaysOff_data()
    {
        QTest::addColumn<QByteArray>("how");
        QTest::addColumn<bool>("isRunning");
        const QByteArray hidden = "Hidden=true\n";
        const QByteArray gnome = "X-GNOME-Autostart-enabled=false\n";
        QTest::newRow("hidden while it runs") << hidden << true;
        QTest::newRow("hidden between two runs") << hidden << false;
        QTest::newRow("GNOME's switch while it runs") << gnome << true;
        QTest::newRow("GNOME's switch between two runs") << gnome << false;
        QTest::newRow("removed while it runs") << QByteArray() << true;
        QTest::newRow("removed between two runs") << QByteArray() << false;
    }
    void switchedOffByTheDesktopItStaysOff()
    {
        QFETCH(QByteArray, how);
        QFETCH(bool, isRunning);
        choose({{kWish, u"true"_s}});
        QVERIFY(start());
        QVERIFY(QFileInfo::exists(entry()));
        if (!isRunning)
            QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(how.isEmpty() ? QFile::remove(entry()) : append(entry(), how));
        const QByteArray content = contentOf(entry());
        if (isRunning)
            QCOMPARE(m_mossbank->stop(SIGTERM), 0);
        QVERIFY(startAndEnd());
        QCOMPARE(m_mossbank->choice(kWish), u"false"_s);
        QCOMPARE(contentOf(entry()), content);
        QCOMPARE(QFileInfo::exists(entry()), !how.isEmpty());
        // It does not come back by itself.
        QVERIFY(startAndEnd());
        QCOMPARE(m_mossbank->choice(kWish), u"false"_s);
        QCOMPARE(contentOf(entry()), content);
    }

    void switchedOnByTheDesktopItIsTheWish()
    {
        choose({{kWish, u"true"_s}});
        QVERIFY(startAndEnd());
        choose({{kWish, u"false"_s}});
        QVERIFY(startAndEnd());
        QCOMPARE(m_mossbank->choice(kWish), u"true"_s);
        QCOMPARE(m_mossbank->choice(kPlace), kHere);
    }

    void aFolderThatCannotBeMadeIsNoReasonNotToStart()
    {
        choose({{kWish, u"true"_s}});
        QFile inTheWay(folder());
        QVERIFY(QDir().mkpath(QFileInfo(folder()).path()));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        inTheWay.close();
        QVERIFY(startAndEnd());
        QVERIFY(QFileInfo(folder()).isFile());
    }
};

QTEST_GUILESS_MAIN(LoginEntryTest)
#include "LoginEntryTest.moc"
