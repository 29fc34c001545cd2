// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/Score.h"

#include "tests/Scenes/ReadScene.h"

#include <QTest>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

} // namespace

class ScoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aReadingIsScored_data();
    void aReadingIsScored();
    void missesAndJunkAreNamed();
    void scenesAreTakenTogether();
};

void ScoreTest::aReadingIsScored_data()
{
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("read");
    QTest::addColumn<double>("found");
    QTest::addColumn<double>("junk");
    const auto row = [](const char* name, const QString& shown, const QString& read, double found,
                        double junk) {
        QTest::newRow(name) << shown << read << found << junk;
    };
    row("all of it", u"plum tree"_s, u"plum tree"_s, 1.0, 0.0);
    row("in another order and over lines", u"plum tree"_s, u"tree\nplum"_s, 1.0, 0.0);
    row("nothing of it", u"plum tree"_s, QString(), 0.0, 0.0);
    row("one word wrongly", u"plum tree oak elm"_s, u"plum tree 0ak elm"_s, 0.75, 25.0);
    row("in other case", u"Plum TREE"_s, u"pLUM tree"_s, 1.0, 0.0);
    row("I is i in every country", u"ISI"_s, u"isi"_s, 1.0, 0.0);
    row("a dotless i is not an i", u"ışık"_s, u"isik"_s, 0.0, 100.0);
    row("capitals of Turkish", u"İlçe ŞEKER"_s, u"İLÇE şeker"_s, 1.0, 0.0);
    row("a dotted I is an i", u"İlçe"_s, u"ilçe"_s, 1.0, 0.0);
    row("with marks apart", u"Çözüm"_s, u"C\u0327o\u0308zu\u0308m"_s, 1.0, 0.0);
    row("signs divide words", u"blue_kite.pdf 1,204.50"_s, u"blue kite pdf 1 204 50"_s, 1.0, 0.0);
    row("signs are no words", u"plum"_s, u"| plum -- • ©"_s, 1.0, 0.0);
    row("shown twice and read once", u"plum plum"_s, u"plum"_s, 0.5, 0.0);
    row("shown once and read twice", u"plum"_s, u"plum plum"_s, 1.0, 100.0);
    row("a word run into the next", u"plum tree"_s, u"plumtree"_s, 0.0, 50.0);
    row("a word torn apart", u"plumtree oak"_s, u"plum tree oak"_s, 0.5, 100.0);
    row("nothing shown, nothing read", QString(), QString(), 1.0, 0.0);
    row("nothing shown, something read", QString(), u"plum tree"_s, 1.0, 200.0);
}

void ScoreTest::aReadingIsScored()
{
    QFETCH(QString, shown);
    QFETCH(QString, read);
    QFETCH(double, found);
    QFETCH(double, junk);
    const Score result = score(shown.split(u' '), read);
    QCOMPARE(result.found, found);
    QCOMPARE(result.junkPerHundred, junk);
}

void ScoreTest::missesAndJunkAreNamed()
{
    const Score result = score({u"plum"_s, u"Plum"_s, u"oak"_s}, u"oak 0ak plum"_s);
    QCOMPARE(result.missed, QStringList{u"plum"_s});
    QCOMPARE(result.junk, QStringList{u"0ak"_s});
}

void ScoreTest::scenesAreTakenTogether()
{
    const auto read = [](const QString& name, double found, double junk) {
        ReadScene scene;
        scene.name = name;
        scene.score.found = found;
        scene.score.junkPerHundred = junk;
        return scene;
    };
    const ReadScenes all = taken({read(u"a"_s, 1, 0), read(u"b"_s, 0.25, 8), read(u"c"_s, 1, 1)});
    QCOMPARE(all.meanFound, 0.75);
    QCOMPARE(all.worstFound, 0.25);
    QCOMPARE(all.worst, u"b"_s);
    QCOMPARE(all.meanJunk, 3.0);
    QCOMPARE(all.mostJunk, 8.0);
    QCOMPARE(taken({}).meanFound, 1.0);
}

} // namespace mossbank::test

QTEST_GUILESS_MAIN(mossbank::test::ScoreTest)
#include "ScoreTest.moc"
