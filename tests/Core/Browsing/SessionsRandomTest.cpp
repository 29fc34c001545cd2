// SPDX-License-Identifier: Apache-2.0
//
// Stretches of work of random histories, against the same made plainly.
#include "MossbankCore/Browsing/DaySessions.h"
#include "tests/Core/Browsing/PlainSessions.h"
#include "tests/Core/RandomRounds.h"

#include <QTest>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr double kGap = 600;
constexpr double kLongest = 3600;

QString anyOf(const QStringList& list, QRandomGenerator& random)
{
    return list.at(random.bounded(list.size()));
}

/// Words that are alike, or are the same in lower case, or can be no keyword.
QString awkwardWord(QRandomGenerator& random)
{
    static const QStringList kWords = {u"heron"_s,
                                       u"Heron"_s,
                                       u"HERON"_s,
                                       u"herons"_s,
                                       u"hero"_s,
                                       u"stork"_s,
                                       u"Stork"_s,
                                       u"ab"_s,
                                       u"AB"_s,
                                       u"abc"_s,
                                       u"The"_s,
                                       u"için"_s,
                                       u"İÇİN"_s,
                                       u"İstanbul"_s,
                                       u"istanbul"_s,
                                       u"ISLAK"_s,
                                       u"ıslak"_s,
                                       u"ΟΔΟΣ"_s,
                                       u"οδος"_s,
                                       u"οδοσ"_s,
                                       u"café"_s,
                                       u"CAFÉ"_s,
                                       u"cafe\u0301"_s,
                                       u"Straße"_s,
                                       u"STRASSE"_s,
                                       u"2026"_s,
                                       u"١٢٣"_s,
                                       u"①②③"_s,
                                       u"a2026"_s,
                                       u"3½3"_s,
                                       u"漢字学"_s,
                                       u"हिन्दी"_s,
                                       u"\U00010400bc"_s,
                                       u"❤️🌿"_s,
                                       u"👩🏽‍🚀"_s,
                                       u"\u0301"_s,
                                       u"editor"_s,
                                       u"Editor"_s,
                                       u"BROWSER"_s,
                                       QString(24, u'x'),
                                       QString(25, u'x'),
                                       QString(24, u'İ'),
                                       QString(25, u'İ'),
                                       u"n"_s + QChar(0xd801),
                                       u"\u0000"_s};
    return anyOf(kWords, random);
}

/// One of thousands of others.
QString commonWord(QRandomGenerator& random)
{
    QString word = QString::number(random.bounded(26 * 26 * 26 * 6), 26);
    for (QChar& sign : word)
        sign = QChar(static_cast<char16_t>(u'a' + sign.unicode() % 26));
    if (random.bounded(4) == 0)
        word[0] = word[0].toUpper();
    return word;
}

QString text(QRandomGenerator& random)
{
    static const QStringList kBetween = {u" "_s, u" "_s, u" "_s,  u"\n"_s,     u"\r\n"_s, u"-"_s,
                                         u"_"_s, u"."_s, u"  "_s, u"\u200d"_s, u"·"_s,    u"🌿"_s};
    const int words = random.bounded(8) == 0 ? random.bounded(1500) : random.bounded(40);
    const bool isPlain = random.bounded(2) == 0;
    QString text;
    for (int word = 0; word < words; ++word) {
        text += isPlain || random.bounded(3) > 0 ? commonWord(random) : awkwardWord(random);
        text += isPlain ? u" "_s : anyOf(kBetween, random);
    }
    return text;
}

/// Some screenshots in the order in which they come to hand, pauses and equal moments
/// among them.
QList<Memory> history(QRandomGenerator& random)
{
    static const QList<double> kApart = {0, 1, 30, 30, 30, 60, 599.5, 600, 600.5, 1800};
    static const QStringList kApps = {u"Editor"_s, u"Browser Heron"_s, u"Mail"_s, QString()};
    static const QStringList kTitles = {u"notes"_s,  u"Notes"_s,  u"heron"_s,  QString(),
                                        u"a mail"_s, u"of all"_s, u"another"_s};
    const int rows = random.bounded(150);
    QList<Memory> memories;
    double moment = 1'780'000'000;
    for (int row = 0; row < rows; ++row) {
        moment += kApart.at(random.bounded(kApart.size()));
        const bool isSame = !memories.isEmpty() && random.bounded(4) == 0;
        const Memory memory = {.id = QString::number(row),
                               .timestamp = {moment},
                               .appName = anyOf(kApps, random),
                               .bundleID = anyOf(kApps, random),
                               .text = isSame ? memories.constLast().text : text(random),
                               .filename = {},
                               .bytes = 0,
                               .title = anyOf(kTitles, random),
                               .link = {}};
        memories.append(memory);
    }
    switch (random.bounded(3)) {
    case 0:
        std::ranges::reverse(memories);
        break;
    case 1:
        std::shuffle(memories.begin(), memories.end(), random);
        break;
    default:
        break;
    }
    return memories;
}

} // namespace

class SessionsRandomTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stretchesAreThoseMadePlainly()
    {
        const quint32 seed = randomSeed();
        QRandomGenerator random(seed);
        const int rounds = randomRounds(40);
        qsizetype named = 0;
        qsizetype continued = 0;
        for (int round = 0; round < rounds; ++round) {
            const QList<Memory> memories = history(random);
            const qsizetype wanted = random.bounded(-1, 9);
            const QList<Session> made = DaySessions::sessions(memories, kGap, kLongest, wanted);
            const QList<Session> expected =
                PlainSessions::sessions(memories, kGap, kLongest, wanted);
            QCOMPARE(made.size(), expected.size());
            for (qsizetype at = 0; at < made.size(); ++at) {
                QCOMPARE(made[at].keywords, expected[at].keywords);
                QCOMPARE(made[at].titles, expected[at].titles);
                QVERIFY(made[at] == expected[at]);
                named += made[at].keywords.size();
                continued += made[at].continues ? 1 : 0;
            }
        }
        QVERIFY(named > rounds);
        QVERIFY(continued > 0);
    }

    void noHistoryHasNoStretches()
    {
        QCOMPARE(DaySessions::sessions({}, kGap, kLongest, 4).size(), 0);
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::SessionsRandomTest)
#include "SessionsRandomTest.moc"
