// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Browsing/Vocabulary.h"

#include <QTest>

#include <numeric>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;
using Numbers = std::vector<quint32>;

std::vector<QStringView> viewsOf(const QStringList& words)
{
    return {words.begin(), words.end()};
}

} // namespace

class VocabularyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wordsAreNumberedAsTheyCome()
    {
        Vocabulary vocabulary;
        QCOMPARE(vocabulary.size(), std::size_t(0));
        const QStringList words = {u"heron"_s, u"stork"_s, u"heron"_s,
                                   u"Heron"_s, u"hero"_s,  u"stork"_s};
        QCOMPARE(vocabulary.numbersOf(viewsOf(words)), (Numbers{0, 1, 0, 2, 3, 1}));
        QCOMPARE(vocabulary.numberOf(u"egret"), 4u);
        QCOMPARE(vocabulary.numberOf(u"hero"), 3u);
        QCOMPARE(vocabulary.numbersOf({}), Numbers());
        QCOMPARE(vocabulary.size(), std::size_t(5));
        QCOMPARE(vocabulary.word(2).toString(), u"Heron"_s);
        QCOMPARE(vocabulary.word(4).toString(), u"egret"_s);
    }

    void anEmptyWordIsOne()
    {
        Vocabulary vocabulary;
        QCOMPARE(vocabulary.numberOf(u"heron"), 0u);
        QCOMPARE(vocabulary.numberOf(QStringView()), 1u);
        QCOMPARE(vocabulary.numberOf(u""), 1u);
        QCOMPARE(vocabulary.word(1).toString(), QString());
    }

    void wordsOutliveWhatTheyCameFrom()
    {
        Vocabulary vocabulary;
        QString text = u"heron"_s;
        QCOMPARE(vocabulary.numberOf(text), 0u);
        text.fill(u'x');
        QCOMPARE(vocabulary.numberOf(u"heron"), 0u);
        QCOMPARE(vocabulary.numberOf(text), 1u);
    }

    /// It grows on the way, also within the words of one text.
    void eachOfManyKeepsItsNumber()
    {
        constexpr int kMany = 100'000;
        QStringList words;
        for (int number = 0; number < kMany; ++number)
            words.append(QString::number(number, 7));
        Vocabulary vocabulary;
        Numbers expected(kMany);
        std::iota(expected.begin(), expected.end(), 0u);
        QVERIFY(vocabulary.numbersOf(viewsOf(words)) == expected);
        QVERIFY(vocabulary.numbersOf(viewsOf(words)) == expected);
        QCOMPARE(vocabulary.size(), std::size_t(kMany));
        for (const quint32 number : expected)
            QCOMPARE(vocabulary.word(number), QStringView(words.at(number)));
    }
};

} // namespace mossbank

QTEST_GUILESS_MAIN(mossbank::VocabularyTest)
#include "VocabularyTest.moc"
