// SPDX-License-Identifier: Apache-2.0
//
// Where a sample library lies, and what becomes of those that were left.
#include "Mossbank/Model/SampleFolder.h"

#include "MossbankCore/Support/Failure.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <csignal>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

QString ownName()
{
    return u"MossbankDemo-"_s + QString::number(QCoreApplication::applicationPid());
}

/// A folder with something in it, also further down.
void fill(const QString& path)
{
    QVERIFY(QDir().mkpath(path + u"/Images"_s));
    QFile file(path + u"/Images/a.jpg"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("picture"), 7);
}

/// The number of a process that has been.
QString deadProcess()
{
    QProcess process;
    process.start(u"true"_s, QStringList());
    if (!process.waitForStarted())
        qFatal("true does not start");
    const QString number = QString::number(process.processId());
    process.waitForFinished();
    return number;
}

} // namespace

class SampleFolderTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_temporary;

private Q_SLOTS:
    void init() { m_temporary = std::make_unique<QTemporaryDir>(); }

    void itIsThereForAsLongAsItIsHeld()
    {
        QString path;
        {
            const SampleFolder folder(m_temporary->path());
            path = folder.path();
            QCOMPARE(path, m_temporary->filePath(ownName()));
            struct stat entry = {};
            QCOMPARE(::lstat(qPrintable(path), &entry), 0);
            QVERIFY(S_ISDIR(entry.st_mode));
            QCOMPARE(entry.st_mode & 0777U, 0700U);
            fill(path);
        }
        QVERIFY(!QFileInfo::exists(path));
        QVERIFY(m_temporary->isValid());
        QVERIFY(QFileInfo::exists(m_temporary->path()));
    }

    void itIsNewWhateverAnEarlierProcessOfTheSameNumberLeft()
    {
        fill(m_temporary->filePath(ownName()));
        const SampleFolder folder(m_temporary->path());
        QVERIFY(QDir(folder.path()).isEmpty());
    }

    void whereItCannotBeMadeThatIsSaid()
    {
        const QString nowhere = m_temporary->filePath(u"nowhere"_s);
        try {
            const SampleFolder folder(nowhere);
            QFAIL("it was made");
        } catch (const Failure& failure) {
            QVERIFY2(failure.message().contains(nowhere), qPrintable(failure.message()));
        }
    }

    void whatDeadOnesLeftGoes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("goes");
        const QString dead = deadProcess();
        const QString alive = QString::number(QCoreApplication::applicationPid());
        QTest::newRow("dead") << u"MossbankDemo-"_s + dead << true;
        QTest::newRow("dead, of an older version") << u"BurrowDemo-"_s + dead << true;
        QTest::newRow("a number no process can have") << u"MossbankDemo-4194305"_s << true;
        QTest::newRow("alive") << u"MossbankDemo-1"_s << false;
        QTest::newRow("alive, of an older version") << u"BurrowDemo-"_s + alive << false;
        QTest::newRow("no number") << u"MossbankDemo-abc"_s << false;
        QTest::newRow("nothing") << u"MossbankDemo-"_s << false;
        QTest::newRow("a number and more") << u"MossbankDemo-4194305x"_s << false;
        QTest::newRow("a space") << u"MossbankDemo- 4194305"_s << false;
        QTest::newRow("a group of processes") << u"MossbankDemo--4194305"_s << false;
        QTest::newRow("a sign") << u"MossbankDemo-+4194305"_s << false;
        QTest::newRow("this group") << u"MossbankDemo-0"_s << false;
        QTest::newRow("more than a number holds") << u"MossbankDemo-99999999999"_s << false;
        QTest::newRow("other digits") << u"MossbankDemo-٤١٩٤٣٠٥"_s << false;
        QTest::newRow("another case") << u"mossbankdemo-4194305"_s << false;
        QTest::newRow("another name") << u"OtherDemo-4194305"_s << false;
        QTest::newRow("before it") << u"xMossbankDemo-4194305"_s << false;
    }
    void whatDeadOnesLeftGoes()
    {
        QFETCH(QString, name);
        QFETCH(bool, goes);
        const QString path = m_temporary->filePath(name);
        fill(path);
        const SampleFolder folder(m_temporary->path());
        QCOMPARE(QFileInfo::exists(path), !goes);
        QVERIFY(QFileInfo::exists(folder.path()));
        if (!goes)
            QVERIFY(QFileInfo::exists(path + u"/Images/a.jpg"_s));
    }

    void ownIsKeptWhateverItIsCalled()
    {
        const QString own = m_temporary->filePath(u"MossbankDemo-4194305"_s);
        const QString other = m_temporary->filePath(u"MossbankDemo-4194306"_s);
        fill(own);
        fill(other);
        SampleFolder::tidy(own);
        QVERIFY(QFileInfo::exists(own));
        QVERIFY(!QFileInfo::exists(other));
    }

    void aFileOfSuchANameGoesAsWell()
    {
        QFile file(m_temporary->filePath(u"MossbankDemo-4194305"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const SampleFolder folder(m_temporary->path());
        QVERIFY(!file.exists());
    }

    void whatALinkLeadsToStays()
    {
        const QTemporaryDir elsewhere;
        fill(elsewhere.path());
        const QString dead = m_temporary->filePath(u"MossbankDemo-4194305"_s);
        QVERIFY(QFile::link(elsewhere.path(), dead));
        const QString own = m_temporary->filePath(ownName());
        QVERIFY(QFile::link(elsewhere.path(), own));
        {
            const SampleFolder folder(m_temporary->path());
            QVERIFY(!QFileInfo(folder.path()).isSymLink());
            // And what a link within one leads to.
            QVERIFY(QFile::link(elsewhere.path(), folder.path() + u"/link"_s));
        }
        QVERIFY(!QFileInfo(dead).isSymLink());
        QVERIFY(QFileInfo::exists(elsewhere.filePath(u"Images/a.jpg"_s)));
    }
};

QTEST_GUILESS_MAIN(SampleFolderTest)
#include "SampleFolderTest.moc"
