// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Support/Failure.h"

#include "MossbankCore/Library/StoreError.h"

#include <QTest>

#include <cerrno>
#include <memory>
#include <stdexcept>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

} // namespace

class FailureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSentenceOfAFailureIsToldAsItStands_data();
    void theSentenceOfAFailureIsToldAsItStands();
    void aFileErrorNamesItsPath_data();
    void aFileErrorNamesItsPath();
    void aFailureRaisedAgainIsWhatItWas();
};

void FailureTest::theSentenceOfAFailureIsToldAsItStands_data()
{
    QTest::addColumn<std::exception_ptr>("failure");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char* name, const auto& failure, const QString& sentence) {
        QTest::newRow(name) << std::make_exception_ptr(failure) << sentence;
    };
    row("store", StoreError(u"near \"x\": syntax error — ığ"_s),
        u"near \"x\": syntax error — ığ"_s);
    row("empty", StoreError(QString()), QString());
    row("file", FileError(u"No such file"_s, u"/a/ş"_s), u"No such file: /a/ş"_s);
    row("standard", std::runtime_error("ran out — ş"), u"ran out — ş"_s);
    row("no exception at all", 5, u"An unknown failure."_s);
    QTest::newRow("none") << std::exception_ptr() << QString();
}

void FailureTest::theSentenceOfAFailureIsToldAsItStands()
{
    QFETCH(std::exception_ptr, failure);
    QFETCH(QString, sentence);
    QCOMPARE(describe(failure), sentence);
}

void FailureTest::aFileErrorNamesItsPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("plain") << u"/home/someone/x"_s;
    QTest::newRow("with signs of a template") << u"/home/%1/%2/%L1"_s;
    QTest::newRow("none") << QString();
}

void FailureTest::aFileErrorNamesItsPath()
{
    QFETCH(QString, path);
    QCOMPARE(FileError(u"%2 is full"_s, path).message(), u"%2 is full: "_s + path);
    const FileError denied(EACCES, path);
    QCOMPARE(denied.message(), u"Permission denied: "_s + path);
    QCOMPARE(QString::fromUtf8(denied.what()), denied.message());
}

void FailureTest::aFailureRaisedAgainIsWhatItWas()
{
    const StoreError store(u"a"_s);
    QVERIFY_THROWS_EXCEPTION(StoreError, static_cast<const Failure&>(store).raise());
    const FileError file(u"a"_s, u"b"_s);
    QVERIFY_THROWS_EXCEPTION(FileError, static_cast<const QException&>(file).raise());
    const std::unique_ptr<Failure> copy(static_cast<const Failure&>(file).clone());
    QVERIFY(dynamic_cast<FileError*>(copy.get()) != nullptr);
    QCOMPARE(copy->message(), file.message());
}

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::FailureTest)
#include "FailureTest.moc"
