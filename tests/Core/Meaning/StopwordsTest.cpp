// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Meaning/Stopwords.h"

#include "MossbankCore/Support/Characters.h"

#include <QTest>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

// In order, each language by itself; "her" is a word of both.
const QString kCommonEnglish =
    u"about all also and are but can for from get got has have her his how into its just "
    u"like more most new not off one only other our out over see some than that the "
    u"their them then there they this two ve was were what when which who why will with "
    u"would you your "_s;
const QString kCommonTurkish =
    u"ama bir bu da daha de değil gibi hep her ile ise için kadar mi mu mü mı olan "
    u"olarak sonra veya ya çok önce üzere şey "_s;
const QString kAskingEnglish =
    u"again ago any anything back been being burrow could did does doing done everything "
    u"few find give had here know last list look looked looking made make many might "
    u"much must need next nothing open opened please put read reading remember said saw "
    u"say says seen shall should show somebody someone something still stuff tell these "
    u"thing things those use used using want went where whom whose work worked working "
    u"yet "_s;
const QString kAskingTurkish =
    u"açtım baktım bana beni benim bugün bul dün gördüm gördüğüm göster hangi hani "
    u"hatırla kim kime kimin lütfen miydi mıydı nasıl neden nerede niye söyle vardı "
    u"yaptım yaptığım şu "_s;

} // namespace

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

    void theWordsAreTheseAndNoOthers_data()
    {
        QTest::addColumn<QSet<QString>>("words");
        QTest::addColumn<QString>("english");
        QTest::addColumn<QString>("turkish");
        QTest::newRow("common") << Stopwords::common() << kCommonEnglish << kCommonTurkish;
        QTest::newRow("asking") << Stopwords::asking() << kAskingEnglish << kAskingTurkish;
        QTest::newRow("in questions") << Stopwords::inQuestions() << kCommonEnglish + kAskingEnglish
                                      << kCommonTurkish + kAskingTurkish;
    }

    void theWordsAreTheseAndNoOthers()
    {
        QFETCH(QSet<QString>, words);
        QFETCH(QString, english);
        QFETCH(QString, turkish);
        const QStringList list = (english + turkish).split(u' ', Qt::SkipEmptyParts);
        const QSet<QString> expected(list.cbegin(), list.cend());
        QCOMPARE(QStringList((expected - words).values()).join(u' '), QString());
        QCOMPARE(QStringList((words - expected).values()).join(u' '), QString());
    }
};

QTEST_GUILESS_MAIN(StopwordsTest)
#include "StopwordsTest.moc"
