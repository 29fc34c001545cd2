// SPDX-License-Identifier: Apache-2.0
//
// The terminal search as its user meets it: the real program, in a home of its own.
#include "tests/Core/Library/LibraryTesting.h"
#include "tests/Core/Library/OldLibraries.h"
#include "tests/Core/Library/RawSql.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

struct Outcome {
    int status = -1;
    QString output;
    QString complaint;
};

const QString kUsage =
    u"Usage: mossbank-find WORDS... [--day YYYY-MM-DD] [--app NAME] [--limit N] [--json]\n"_s;

} // namespace

class FindTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aFindingIsTimeApplicationTitleLineAndPicture();
    void newestComesFirstAndTwentyAtMost();
    void withoutALineThatMatchesThePictureFollows();
    void optionsMayStandAnywhere();
    void wordsBehindTwoDashesMayBeginWithOne();
    void theDayIsThatOfTheUsersZone();
    void jsonIsAnObjectALine();
    void nothingFoundIsSaidAndIsNoFailure();
    void wrongUseIsSaidWithTheUsage_data();
    void wrongUseIsSaidWithTheUsage();
    void helpAndVersionAreAnswers();
    void withoutALibraryItSaysWhereItLooked();
    void aLibraryThatCannotBeReadIsSqlitesSentence();
    void anOutputThatCannotBeWrittenIsAFailure();
    void capturedSignsDoNotReachTheTerminal();
    void anOlderLibraryIsReadAndNotChanged();
    void theLibraryOfTheFormerNameIsFound();
    void itReadsWhileTheProgramSaves();

private:
    Outcome find(const QStringList& arguments, const QString& outputFile = {}) const;
    QString root() const { return m_home->filePath(u"Mossbank"_s); }
    void save(HistoryStore& store, const QString& id, double time, const QString& text,
              const QString& title = u"notes.txt"_s, const QString& app = u"Editor"_s) const;

    std::unique_ptr<QTemporaryDir> m_home;
};

void FindTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    HistoryStore store(HistoryStore::Writing{.root = root()});
    save(store, u"A"_s, 1'700'000'000.25, u"File Edit\nkırmızı kağıt moss\nmoss"_s);
    save(store, u"B"_s, 1'700'000'100, u"green moss"_s, u"Ferns – a guide"_s, u"Browser"_s);
    save(store, u"C"_s, 1'700'090'000, u"nothing here"_s, u"moss"_s);
}

Outcome FindTest::find(const QStringList& arguments, const QString& outputFile) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, m_home->path());
    environment.insert(u"TZ"_s, u"Europe/Istanbul"_s);
    process.setProcessEnvironment(environment);
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    process.start(QStringLiteral(MOSSBANK_FIND), arguments);
    constexpr int kPatience = 20'000;
    Outcome outcome;
    if (process.waitForFinished(kPatience) && process.exitStatus() == QProcess::NormalExit)
        outcome.status = process.exitCode();
    outcome.output = QString::fromUtf8(process.readAllStandardOutput());
    outcome.complaint = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

void FindTest::save(HistoryStore& store, const QString& id, double time, const QString& text,
                    const QString& title, const QString& app) const
{
    Memory memory = sampleMemory(id);
    memory.timestamp = {time};
    memory.text = text;
    memory.title = title;
    memory.appName = app;
    store.save(memory, "jpeg").waitForFinished();
}

void FindTest::aFindingIsTimeApplicationTitleLineAndPicture()
{
    const Outcome outcome = find({u"kirmizi"_s, u"MOSS"_s});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.complaint, QString());
    QCOMPARE(outcome.output, u"2023-11-15 01:13:20  Editor – notes.txt\n"
                             "    kırmızı kağıt moss\n"
                             "    %1/Images/A.jpg\n"_s.arg(root()));
    QVERIFY(QFile::exists(outcome.output.section(u'\n', 2, 2).trimmed()));
}

void FindTest::newestComesFirstAndTwentyAtMost()
{
    {
        HistoryStore store(HistoryStore::Writing{.root = root()});
        for (int number = 10; number < 40; ++number)
            save(store, QString::number(number), 2'000'000'000 + number, u"lichen"_s);
    }
    const auto count = [](const Outcome& outcome) {
        return outcome.output.count(u"/Images/"_s);
    };
    const Outcome outcome = find({u"lichen"_s});
    QCOMPARE(count(outcome), 20);
    QVERIFY(outcome.output.indexOf(u"39.jpg"_s) < outcome.output.indexOf(u"38.jpg"_s));
    QCOMPARE(count(find({u"lichen"_s, u"--limit"_s, u"3"_s})), 3);
    QCOMPARE(count(find({u"lichen"_s, u"--limit=100"_s})), 30);
}

void FindTest::withoutALineThatMatchesThePictureFollows()
{
    QCOMPARE(
        find({u"ferns"_s, u"guide"_s}).output,
        u"2023-11-15 01:15:00  Browser – Ferns – a guide\n    %1/Images/B.jpg\n"_s.arg(root()));
}

void FindTest::optionsMayStandAnywhere()
{
    const QString expected = find({u"green"_s, u"moss"_s, u"--app"_s, u"Browser"_s}).output;
    QVERIFY(expected.contains(u"B.jpg"_s));
    QCOMPARE(find({u"--app"_s, u"Browser"_s, u"green"_s, u"moss"_s}).output, expected);
    QCOMPARE(find({u"green"_s, u"--app=Browser"_s, u"moss"_s}).output, expected);
    QCOMPARE(find({u"green moss"_s, u"--app"_s, u"Browser"_s}).output, expected);
    QCOMPARE(find({u"moss"_s, u"--app"_s, u"browser"_s}).output, QString());
}

void FindTest::wordsBehindTwoDashesMayBeginWithOne()
{
    const Outcome outcome = find({u"--limit"_s, u"1"_s, u"--"_s, u"--green"_s, u"-moss"_s});
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.output.contains(u"B.jpg"_s));
}

void FindTest::theDayIsThatOfTheUsersZone()
{
    // Still the 14th in London.
    const QString day = find({u"moss"_s, u"--day"_s, u"2023-11-15"_s}).output;
    QVERIFY(day.contains(u"A.jpg"_s) && day.contains(u"B.jpg"_s) && !day.contains(u"C.jpg"_s));
    QCOMPARE(find({u"moss"_s, u"--day"_s, u"2023-11-14"_s}).output, QString());
    QVERIFY(find({u"moss"_s, u"--day"_s, u"2023-11-16"_s}).output.contains(u"C.jpg"_s));
}

void FindTest::jsonIsAnObjectALine()
{
    const Outcome outcome = find({u"moss"_s, u"--json"_s});
    QCOMPARE(outcome.status, 0);
    const QStringList lines = outcome.output.split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    QCOMPARE(QJsonDocument::fromJson(lines.at(2).toUtf8()).object(),
             (QJsonObject{{u"time"_s, u"2023-11-15T01:13:20.250+03:00"_s},
                          {u"timestamp"_s, 1'700'000'000.25},
                          {u"app"_s, u"Editor"_s},
                          {u"bundle"_s, u"org.example.editor"_s},
                          {u"title"_s, u"notes.txt"_s},
                          {u"link"_s, u"https://example.org/"_s},
                          {u"line"_s, u"kırmızı kağıt moss"_s},
                          {u"picture"_s, root() + u"/Images/A.jpg"_s}}));
    QCOMPARE(QJsonDocument::fromJson(lines.at(0).toUtf8()).object().value(u"line"_s), u""_s);
}

void FindTest::nothingFoundIsSaidAndIsNoFailure()
{
    for (const QStringList& arguments :
         {QStringList{u"lighthouse"_s}, QStringList{u"!!!"_s}, QStringList{u"x"_s, u"--json"_s}}) {
        const Outcome outcome = find(arguments);
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.output, QString());
        QCOMPARE(outcome.complaint, u"Nothing found.\n"_s);
    }
}

void FindTest::wrongUseIsSaidWithTheUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char* name, const QStringList& arguments, const QString& complaint) {
        QTest::newRow(name) << arguments << complaint + u' ' + kUsage;
    };
    const QString noWords = u"There are no words to look for."_s;
    const QString noDay = u"There is no such day; write it as 2026-03-01."_s;
    const QString noLimit = u"The limit is a number from 1 to 86400."_s;
    row("nothing", {}, noWords);
    row("blank words", {u" "_s, u""_s}, noWords);
    row("options alone", {u"--limit"_s, u"3"_s}, noWords);
    row("a day that is not", {u"moss"_s, u"--day"_s, u"2023-02-29"_s}, noDay);
    row("a day written otherwise", {u"moss"_s, u"--day"_s, u"15.11.2023"_s}, noDay);
    row("a day written short", {u"moss"_s, u"--day"_s, u"2023-1-5"_s}, noDay);
    row("a day and more", {u"moss"_s, u"--day"_s, u"2023-11-15T01"_s}, noDay);
    row("an empty day", {u"moss"_s, u"--day="_s}, noDay);
    row("no number", {u"moss"_s, u"--limit"_s, u"many"_s}, noLimit);
    row("zero", {u"moss"_s, u"--limit"_s, u"0"_s}, noLimit);
    row("below zero", {u"moss"_s, u"--limit=-1"_s}, noLimit);
    row("too many", {u"moss"_s, u"--limit"_s, u"86401"_s}, noLimit);
    row("beyond all numbers", {u"moss"_s, u"--limit"_s, u"99999999999999999999"_s}, noLimit);
    row("an unknown option", {u"moss"_s, u"--colour"_s}, u"Unknown option 'colour'."_s);
    row("its value missing", {u"moss"_s, u"--day"_s}, u"Missing value after '--day'."_s);
}

void FindTest::wrongUseIsSaidWithTheUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const Outcome outcome = find(arguments);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.complaint, complaint);
    QCOMPARE(outcome.complaint.count(u'\n'), 1);
}

void FindTest::helpAndVersionAreAnswers()
{
    const Outcome help = find({u"--help"_s});
    QCOMPARE(help.status, 0);
    QCOMPARE(help.complaint, QString());
    for (const QString& option : {u"--day"_s, u"--app"_s, u"--limit"_s, u"--json"_s})
        QVERIFY(help.output.contains(option));
    const Outcome version = find({u"--version"_s});
    QCOMPARE(version.status, 0);
    QCOMPARE(version.output, u"mossbank-find " MOSSBANK_VERSION "\n"_s);
}

void FindTest::withoutALibraryItSaysWhereItLooked()
{
    QVERIFY(QDir(root()).removeRecursively());
    const Outcome outcome = find({u"moss"_s});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.complaint, u"No Mossbank library at %1.\n"_s.arg(root()));
    QCOMPARE(names(m_home->path()), QStringList{});
}

void FindTest::aLibraryThatCannotBeReadIsSqlitesSentence()
{
    QVERIFY(QDir(root()).removeRecursively());
    QVERIFY(QDir().mkpath(root()));
    QVERIFY(putFile(root() + u"/history.sqlite"_s, "this is no database"));
    const Outcome outcome = find({u"moss"_s});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.complaint, u"file is not a database\n"_s);
}

void FindTest::anOutputThatCannotBeWrittenIsAFailure()
{
    const Outcome outcome = find({u"moss"_s}, u"/dev/full"_s);
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.complaint, u"The output could not be written.\n"_s);
}

void FindTest::capturedSignsDoNotReachTheTerminal()
{
    const QString evil = u"evil \u001b]0;owned\u0007 \u009b31m \u202etxt\b\u007f\nsecond"_s;
    {
        HistoryStore store(HistoryStore::Writing{.root = root()});
        Memory memory = sampleMemory(u"EVIL"_s);
        memory.appName = evil;
        memory.title = evil;
        memory.text = evil;
        memory.link = evil;
        memory.filename = u"evil \u001b[2J\n.jpg"_s;
        store.save(memory, "jpeg").waitForFinished();
    }
    const Outcome forPeople = find({u"evil"_s});
    QCOMPARE(forPeople.output.count(u'\n'), 3);
    const Outcome forPrograms = find({u"evil"_s, u"--json"_s});
    QCOMPARE(forPrograms.output.count(u'\n'), 1);
    for (const QString& output : {forPeople.output, forPrograms.output}) {
        for (const QChar sign : output) {
            QVERIFY(sign == u'\n' || sign.category() != QChar::Other_Control);
            QVERIFY(sign != QChar(0x202e));
        }
    }
    // Programs get the text whole.
    QCOMPARE(QJsonDocument::fromJson(forPrograms.output.toUtf8()).object().value(u"title"_s), evil);
}

void FindTest::anOlderLibraryIsReadAndNotChanged()
{
    QVERIFY(QDir(root()).removeRecursively());
    QVERIFY(QDir().mkpath(root()));
    const QString database = root() + u"/history.sqlite"_s;
    QVERIFY(QFile::copy(oldDatabase(0), database));
    const QByteArray before = contents(database);
    const Outcome outcome = find({u"kirmizi"_s});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.output, u"2023-11-15 01:13:20  Editor\n    kırmızı kağıt üzerinde bir not\n"
                             "    %1/Images/A1.jpg\n"_s.arg(root()));
    QCOMPARE(contents(database), before);
    QVERIFY(!QFile::exists(root() + u"/Images"_s));
}

void FindTest::theLibraryOfTheFormerNameIsFound()
{
    QVERIFY(QDir(m_home->path()).rename(u"Mossbank"_s, u"Burrow"_s));
    QVERIFY(find({u"kirmizi"_s}).output.contains(m_home->filePath(u"Burrow/Images/A.jpg"_s)));
}

void FindTest::itReadsWhileTheProgramSaves()
{
    HistoryStore store(HistoryStore::Writing{.root = root()});
    save(store, u"NEW"_s, 1'700'100'000, u"lichen"_s);
    RawSql other(root() + u"/history.sqlite"_s);
    other.run(u"BEGIN EXCLUSIVE"_s);
    const Outcome outcome = find({u"lichen"_s});
    other.run(u"ROLLBACK"_s);
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.output.contains(u"NEW.jpg"_s));
    save(store, u"NEWER"_s, 1'700'100'001, u"lichen"_s);
}

QTEST_GUILESS_MAIN(FindTest)
#include "FindTest.moc"
