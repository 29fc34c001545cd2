// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Meaning/Stopwords.h"

#include <QStringList>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QSet<QString> wordsOf(const QString& list)
{
    const QStringList words = list.split(u' ');
    return {words.begin(), words.end()};
}

} // namespace

const QSet<QString>& Stopwords::common()
{
    // "her" is a word of both languages.
    static const QSet<QString> kWords = wordsOf(
        u"the and for you your this that with from are was were have has not but all can "
        u"will would there their them they what when which about into than then some more "
        u"most other over only also just like new get got out off its his her our one two "
        u"see how who why ve bir bu da de için ile gibi daha çok ama veya olarak kadar sonra "
        u"önce her hep şey olan ise ya mi mı mu mü değil üzere"_s);
    return kWords;
}

const QSet<QString>& Stopwords::asking()
{
    static const QSet<QString> kWords = wordsOf(
        u"did does doing done been being had should could shall might must where whom whose "
        u"here those these any anything something someone somebody everything nothing much "
        u"many few again ago back last next still yet show find tell give list said say says "
        u"saw seen look looked looking read reading remember burrow please thing things "
        u"stuff know want need open opened use used using work working worked went make made "
        u"put nerede hangi kim kime kimin nasıl neden niye hani yaptım yaptığım gördüm "
        u"gördüğüm baktım açtım vardı miydi mıydı bana beni benim şu göster bul söyle "
        u"hatırla lütfen bugün dün"_s);
    return kWords;
}

const QSet<QString>& Stopwords::inQuestions()
{
    static const QSet<QString> kWords = common() + asking();
    return kWords;
}

} // namespace mossbank
