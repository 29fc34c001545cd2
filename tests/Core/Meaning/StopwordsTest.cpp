// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Meaning/Stopwords.h"

#include "MossbankCore/Support/Characters.h"

#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

class StopwordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyWordIsThereOnce()
    {
        QCOMPARE(Stopwords::common().size(), 82);
        QCOMPARE(Stopwords::asking().size(), 100);
        QCOMPARE(Stopwords::inQuestions().size(), 182);
        QVERIFY(Stopwords::inQuestions().contains(Stopwords::common()));
        QVERIFY(Stopwords::inQuestions().contains(Stopwords::asking()));
    }

    void everyOneIsOneWordInLowerCase()
    {
        for (const QString& word : Stopwords::inQuestions()) {
            const auto words = Characters::words(word);
            QVERIFY2(words.size() == 1 && words.front() == word, qPrintable(word));
            QCOMPARE(Characters::lowercased(word), word);
        }
    }

    void bothLanguagesAreInIt_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("isCommon");
        QTest::addColumn<bool>("isAsking");
        const auto row = [](const QString& word, bool isCommon, bool isAsking) {
            QTest::newRow(word.toUtf8().constData()) << word << isCommon << isAsking;
        };
        row(u"the"_s, true, false);
        row(u"her"_s, true, false);
        row(u"üzere"_s, true, false);
        row(u"mı"_s, true, false);
        row(u"did"_s, false, true);
        row(u"yaptığım"_s, false, true);
        row(u"dün"_s, false, true);
        row(u"burrow"_s, false, true);
        row(u"moss"_s, false, false);
        row(u"The"_s, false, false);
        row(u""_s, false, false);
    }

    void bothLanguagesAreInIt()
    {
        QFETCH(QString, word);
        QFETCH(bool, isCommon);
        QFETCH(bool, isAsking);
        QCOMPARE(Stopwords::common().contains(word), isCommon);
        QCOMPARE(Stopwords::asking().contains(word), isAsking);
        QCOMPARE(Stopwords::inQuestions().contains(word), isCommon || isAsking);
    }
};

QTEST_GUILESS_MAIN(StopwordsTest)
#include "StopwordsTest.moc"
