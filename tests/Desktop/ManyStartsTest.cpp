// SPDX-License-Identifier: Apache-2.0
//
// The program started and ended again and again, as over years: by hand, by the session, by a
// kill in the middle of whatever it is doing.
#include "tests/Desktop/RunningMossbank.h"
#include "tests/Desktop/VirtualDesktop.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <csignal>

using namespace mossbank;
using namespace mossbank::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kStarts = 50;

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

void makeOld(const QString& folder)
{
    for (const QString& name : filesIn(folder)) {
        QFile file(folder + u'/' + name);
        if (!file.open(QIODevice::ReadWrite) ||
            !file.setFileTime(QDateTime::currentDateTime().addSecs(-600),
                              QFile::FileModificationTime))
            qFatal("%s cannot be made older", qPrintable(file.fileName()));
    }
}

} // namespace

class ManyStartsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLostLeftOverOrGrows()
    {
        VirtualDesktop desktop;
        QVERIFY2(desktop.problem().isEmpty(), qPrintable(desktop.problem()));
        // Something new to save at every look.
        QVERIFY(desktop.start(u"xterm"_s, {u"-e"_s, u"while :; do date +%N; sleep 0.1; done"_s},
                              u"xterm"_s));
        RunningMossbank mossbank;
        mossbank.choose({{u"interval"_s, u"1"_s}, {u"changeMode"_s, u"any"_s}});
        QRandomGenerator random(20'261'122);
        QSet<QString> saved;
        int withSaves = 0;
        qint64 firstSize = 0;
        for (int start = 0; start < kStarts; ++start) {
            QVERIFY(mossbank.start());
            QVERIFY2(mossbank.waitFor(u"Waiting for your next screen"_s),
                     qPrintable(mossbank.terminal()));
            if (start % 2 == 0) {
                // In the middle of a look, a reading, a save.
                QTest::qWait(static_cast<int>(random.bounded(900)));
                QCOMPARE(mossbank.stop(SIGKILL), -1);
            } else {
                if (start % 10 == 1)
                    QVERIFY2(mossbank.waitFor(u"Saved at"_s), qPrintable(mossbank.terminal()));
                const int how[] = {SIGTERM, SIGINT, SIGHUP};
                QCOMPARE(mossbank.stop(how[start % 3]), 0);
            }
            withSaves += mossbank.terminal().contains(u"Saved at"_s) ? 1 : 0;
            QVERIFY2(!mossbank.terminal().contains(u"History is unavailable"_s),
                     qPrintable(mossbank.terminal()));
            QCOMPARE(mossbank.processes(), QStringList());
            QSet<QString> now;
            for (const Memory& memory : mossbank.rows())
                now.insert(memory.id);
            QVERIFY2(now.contains(saved), "what was saved before is lost");
            QVERIFY2(now.size() >= saved.size() + (mossbank.terminal().contains(u"Saved at"_s)),
                     "what was said to be saved is lost");
            saved = now;
            if (start == 1)
                firstSize = QFile(mossbank.library() + u"/history.sqlite"_s).size();
        }
        QVERIFY2(withSaves >= 5, qPrintable(QString::number(withSaves)));

        // What the kills have left is put in order by a start that lives on, once it is certain
        // that nobody is at it any more.
        for (const char* folder : {"/Pending", "/Images"})
            makeOld(mossbank.library() + QString::fromLatin1(folder));
        mossbank.choose({{u"recordsAtLaunch"_s, u"false"_s}});
        QVERIFY(mossbank.start());
        QVERIFY(mossbank.waitFor(u"Recording is off"_s));
        const auto isInOrder = [&] {
            return filesIn(mossbank.library() + u"/Pending"_s).isEmpty();
        };
        QVERIFY2(QTest::qWaitFor(isInOrder, 20'000),
                 qPrintable(filesIn(mossbank.library() + u"/Pending"_s).join(u' ')));
        QCOMPARE(mossbank.stop(SIGTERM), 0);
        QCOMPARE(filesIn(mossbank.library()), QStringList{u"history.sqlite"_s});
        QCOMPARE(mossbank.pictureFiles().size(), saved.size());
        for (const Memory& memory : mossbank.rows())
            QVERIFY(QFile::exists(mossbank.library() + u"/Images/"_s + memory.filename));
        // The rows are small; what grew by each start would show.
        constexpr qint64 kMostARow = 64 * 1024;
        const qint64 size = QFile(mossbank.library() + u"/history.sqlite"_s).size();
        QVERIFY2(size <= firstSize + saved.size() * kMostARow,
                 qPrintable(u"%1, %2"_s.arg(firstSize).arg(size)));
    }
};

QTEST_GUILESS_MAIN(ManyStartsTest)
#include "ManyStartsTest.moc"
