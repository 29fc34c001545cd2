// SPDX-License-Identifier: Apache-2.0
#include "tests/House/SourceTree.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// What clang-format would change in these files; empty for nothing.
QString complaints(const QString& folder, const QStringList& files)
{
    QProcess formatter;
    formatter.setWorkingDirectory(folder);
    formatter.setProcessChannelMode(QProcess::MergedChannels);
    formatter.start(u"clang-format"_s,
                    QStringList{u"--dry-run"_s, u"-Werror"_s, u"--ferror-limit=5"_s} + files);
    if (!formatter.waitForFinished(100'000) || formatter.exitStatus() != QProcess::NormalExit)
        return u"clang-format did not end: "_s + formatter.errorString();
    const QString said = QString::fromUtf8(formatter.readAll());
    return formatter.exitCode() == 0 ? QString() : u"run clang-format -i on these:\n"_s + said;
}

} // namespace

class FormatTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyFileIsFormatted();
    void aFileOutOfFormatIsFound();
};

void FormatTest::initTestCase()
{
    QVERIFY2(!QStandardPaths::findExecutable(u"clang-format"_s).isEmpty(),
             "clang-format is missing: install the package clang-format.");
}

void FormatTest::everyFileIsFormatted()
{
    const QString folder = QStringLiteral(MOSSBANK_SOURCE_DIR);
    const QStringList files = sourceFiles(folder);
    QVERIFY(files.size() > 50);
    const QString wrong = complaints(folder, files);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

void FormatTest::aFileOutOfFormatIsFound()
{
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QVERIFY(QFile::copy(QStringLiteral(MOSSBANK_SOURCE_DIR "/.clang-format"),
                        folder.filePath(u".clang-format"_s)));
    QFile file(folder.filePath(u"X.cpp"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("int  a( int b ){return b;}\n") > 0);
    file.close();
    QVERIFY(complaints(folder.path(), {u"X.cpp"_s}).contains(u"X.cpp:1"_s));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QVERIFY(file.write("int a;\n") > 0);
    file.close();
    QCOMPARE(complaints(folder.path(), {u"X.cpp"_s}), QString());
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::FormatTest)
#include "FormatTest.moc"
