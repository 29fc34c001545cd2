// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/Memory.h"

#include "MossbankCore/Library/LibraryLocation.h"
#include "tests/Core/Library/LibraryTesting.h"

#include <QScopeGuard>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

Calendar berlin()
{
    return {QTimeZone("Europe/Berlin"), QLocale::c()};
}

Memory stampedAt(Date date)
{
    Memory memory = sampleMemory(u"A"_s);
    memory.timestamp = date;
    return memory;
}

} // namespace

class MemoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void memoriesAreComparedFieldByField();
    void aRecordBelongsToItsDayWithBothEndsIn_data();
    void aRecordBelongsToItsDayWithBothEndsIn();
    void aDayOfTheClockChangeIsAsLongAsItIs();
    void withoutADayOrWithOneBeyondTheCalendarEveryRecordBelongs();
    void applicationsAreComparedToTheLetter();
    void applicationAndDayBothHaveToFit();
    void filenamesAreOneComponentThatStaysInItsFolder_data();
    void filenamesAreOneComponentThatStaysInItsFolder();
    void aStoreErrorSaysItsMessageAsItStands();
    void theLibraryIsWhereItStands_data();
    void theLibraryIsWhereItStands();
};

void MemoryTest::memoriesAreComparedFieldByField()
{
    const Memory memory = sampleMemory(u"A"_s);
    QVERIFY(memory == sampleMemory(u"A"_s));
    const auto differsWith = [&memory](auto change) {
        Memory changed = memory;
        change(changed);
        return !(changed == memory);
    };
    QVERIFY(differsWith([](Memory& m) { m.id = u"B"_s; }));
    QVERIFY(differsWith([](Memory& m) { m.timestamp = m.timestamp + 0.5; }));
    QVERIFY(differsWith([](Memory& m) { m.appName = u"editor"_s; }));
    QVERIFY(differsWith([](Memory& m) { m.bundleID.clear(); }));
    QVERIFY(differsWith([](Memory& m) { m.text.append(u'.'); }));
    QVERIFY(differsWith([](Memory& m) { m.filename = u"B.jpg"_s; }));
    QVERIFY(differsWith([](Memory& m) { ++m.bytes; }));
    QVERIFY(differsWith([](Memory& m) { m.title.clear(); }));
    QVERIFY(differsWith([](Memory& m) { m.link.clear(); }));
}

void MemoryTest::aRecordBelongsToItsDayWithBothEndsIn_data()
{
    QTest::addColumn<double>("fromStart");
    QTest::addColumn<bool>("belongs");
    constexpr double kDay = 86'400;
    QTest::newRow("just before the day") << -0.001 << false;
    QTest::newRow("its first moment") << 0.0 << true;
    QTest::newRow("noon") << kDay / 2 << true;
    QTest::newRow("its last moment") << kDay - 0.001 << true;
    QTest::newRow("the next midnight") << kDay << true;
    QTest::newRow("just after that") << kDay + 0.001 << false;
}

void MemoryTest::aRecordBelongsToItsDayWithBothEndsIn()
{
    QFETCH(double, fromStart);
    const Date start = *berlin().startOfDay(2024, 5, 17);
    QTEST(stampedAt(start + fromStart).isWithin(start + 40'000, std::nullopt, berlin()), "belongs");
}

void MemoryTest::aDayOfTheClockChangeIsAsLongAsItIs()
{
    constexpr double kHour = 3600;
    const Date shortDay = *berlin().startOfDay(2024, 3, 31);
    QVERIFY(stampedAt(shortDay + 23 * kHour).isWithin(shortDay, std::nullopt, berlin()));
    QVERIFY(!stampedAt(shortDay + 23 * kHour + 1).isWithin(shortDay, std::nullopt, berlin()));
    const Date longDay = *berlin().startOfDay(2024, 10, 27);
    QVERIFY(stampedAt(longDay + 25 * kHour).isWithin(longDay, std::nullopt, berlin()));
    QVERIFY(!stampedAt(longDay + 25 * kHour + 1).isWithin(longDay, std::nullopt, berlin()));
}

void MemoryTest::withoutADayOrWithOneBeyondTheCalendarEveryRecordBelongs()
{
    QVERIFY(stampedAt({0}).isWithin(std::nullopt, std::nullopt, berlin()));
    QVERIFY(stampedAt({0}).isWithin(Date{qQNaN()}, std::nullopt, berlin()));
    QVERIFY(stampedAt({0}).isWithin(Date{1e300}, u"Editor"_s, berlin()));
}

void MemoryTest::applicationsAreComparedToTheLetter()
{
    const Memory memory = sampleMemory(u"A"_s);
    QVERIFY(memory.isWithin(std::nullopt, u"Editor"_s, berlin()));
    QVERIFY(!memory.isWithin(std::nullopt, u"editor"_s, berlin()));
    QVERIFY(!memory.isWithin(std::nullopt, u"Editor "_s, berlin()));
    QVERIFY(!memory.isWithin(std::nullopt, u""_s, berlin()));
}

void MemoryTest::applicationAndDayBothHaveToFit()
{
    const Memory memory = sampleMemory(u"A"_s);
    QVERIFY(memory.isWithin(memory.timestamp, u"Editor"_s, berlin()));
    QVERIFY(!memory.isWithin(memory.timestamp, u"Browser"_s, berlin()));
    QVERIFY(!memory.isWithin(memory.timestamp + 2 * 86'400, u"Editor"_s, berlin()));
}

void MemoryTest::filenamesAreOneComponentThatStaysInItsFolder_data()
{
    QTest::addColumn<QString>("filename");
    QTest::addColumn<bool>("isValid");
    QTest::newRow("an ordinary name") << u"a"_s << true;
    QTest::newRow("with an extension") << u"3F2504E0-4F89.jpg"_s << true;
    QTest::newRow("with a space") << u"a b.jpg"_s << true;
    QTest::newRow("beginning with two dots") << u"..jpg"_s << true;
    QTest::newRow("three dots") << u"..."_s << true;
    QTest::newRow("a backslash is a letter here") << u"a\\b"_s << true;
    QTest::newRow("an emoji") << u"🌿.jpg"_s << true;
    QTest::newRow("empty") << u""_s << false;
    QTest::newRow("the folder itself") << u"."_s << false;
    QTest::newRow("the folder above") << u".."_s << false;
    QTest::newRow("in a folder") << u"a/b.jpg"_s << false;
    QTest::newRow("with a slash behind") << u"a/"_s << false;
    QTest::newRow("absolute") << u"/a"_s << false;
    QTest::newRow("only a slash") << u"/"_s << false;
    QTest::newRow("climbing") << u"../a.jpg"_s << false;
    QTest::newRow("cut short by a zero") << u"a.jpg"_s + QChar(QChar::Null) + u"b"_s << false;
}

void MemoryTest::filenamesAreOneComponentThatStaysInItsFolder()
{
    QFETCH(QString, filename);
    QTEST(isValidFilename(filename), "isValid");
}

void MemoryTest::aStoreErrorSaysItsMessageAsItStands()
{
    const StoreError error(u"A sentence with ümlauts."_s);
    QCOMPARE(error.message(), u"A sentence with ümlauts."_s);
    QCOMPARE(QString::fromUtf8(error.what()), u"A sentence with ümlauts."_s);
    QCOMPARE(describe(std::make_exception_ptr(error)), u"A sentence with ümlauts."_s);
}

void MemoryTest::theLibraryIsWhereItStands_data()
{
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("databaseIn");
    QTest::addColumn<QString>("library");
    QTest::newRow("nothing there yet") << QStringList{} << u""_s << u"Mossbank"_s;
    QTest::newRow("begun under this name")
        << QStringList{u"Mossbank"_s} << u"Mossbank"_s << u"Mossbank"_s;
    QTest::newRow("an empty folder of the former name")
        << QStringList{u"Burrow"_s} << u""_s << u"Mossbank"_s;
    QTest::newRow("begun under the former name")
        << QStringList{u"Burrow"_s} << u"Burrow"_s << u"Burrow"_s;
    QTest::newRow("both, the former with a library")
        << QStringList{u"Burrow"_s, u"Mossbank"_s} << u"Burrow"_s << u"Burrow"_s;
}

void MemoryTest::theLibraryIsWhereItStands()
{
    QFETCH(QStringList, folders);
    QFETCH(QString, databaseIn);
    QFETCH(QString, library);
    const QTemporaryDir support;
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    const auto restore = qScopeGuard([&before] { qputenv("XDG_DATA_HOME", before); });
    qputenv("XDG_DATA_HOME", support.path().toUtf8());
    for (const QString& folder : folders)
        QVERIFY(QDir(support.path()).mkdir(folder));
    if (!databaseIn.isEmpty())
        QVERIFY(putFile(support.filePath(databaseIn + u"/history.sqlite"_s), "x"));

    QCOMPARE(LibraryLocation::library(), support.filePath(library));
    QCOMPARE(names(support.path()), folders);
}

QTEST_GUILESS_MAIN(MemoryTest)
#include "MemoryTest.moc"
