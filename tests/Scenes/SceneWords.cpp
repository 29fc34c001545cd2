// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/SceneWords.h"

#include <QLocale>
#include <QSet>

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

const QStringList& english()
{
    static const QStringList kWords =
        QString::fromUtf16(kEnglishWords).split(u' ', Qt::SkipEmptyParts);
    return kWords;
}

const QStringList& turkish()
{
    static const QStringList kWords =
        QString::fromUtf16(kTurkishWords).split(u' ', Qt::SkipEmptyParts);
    return kWords;
}

bool isTurkish(const QString& word)
{
    static const QSet<QString> kWords(turkish().cbegin(), turkish().cend());
    return kWords.contains(word) && !english().contains(word);
}

} // namespace

QString capitalised(const QString& word, bool turkish)
{
    const QString first = word.left(1);
    return (turkish ? QLocale(QLocale::Turkish).toUpper(first) : first.toUpper()) + word.mid(1);
}

SceneWords::SceneWords(Dice& dice, int turkish)
    : m_dice(dice)
    , m_turkish(turkish)
{
}

QString SceneWords::word()
{
    return m_dice.pick(m_dice.chance(m_turkish) ? turkish() : english());
}

QString SceneWords::plain()
{
    return m_dice.pick(english());
}

QString SceneWords::name()
{
    const QString chosen = word();
    return capitalised(chosen, isTurkish(chosen));
}

QString SceneWords::phrase(int least, int most)
{
    QStringList chosen{name()};
    const int count = m_dice.between(least, most);
    while (chosen.size() < count)
        chosen += word();
    return chosen.join(u' ');
}

QString SceneWords::sentence(int least, int most)
{
    QStringList chosen = phrase(least, most).split(u' ');
    for (qsizetype place = 1; place + 1 < chosen.size(); ++place) {
        if (m_dice.chance(6))
            chosen[place] += u',';
        else if (m_dice.chance(2))
            chosen[place] = number(4);
        else if (m_dice.chance(2))
            chosen[place] = u'"' + chosen[place] + u'"';
        else if (m_dice.chance(2))
            chosen[place] = u'(' + chosen[place] + u')';
    }
    return chosen.join(u' ') + m_dice.pick<QString>({u"."_s, u"."_s, u"."_s, u"?"_s, u"!"_s});
}

QString SceneWords::sentences(int count)
{
    QStringList chosen;
    for (int place = 0; place < count; ++place)
        chosen += sentence(5, 14);
    return chosen.join(u' ');
}

QString SceneWords::number(int digits)
{
    int above = 1;
    for (int place = m_dice.between(1, digits); place > 0; --place)
        above *= 10;
    return QString::number(m_dice.between(above / 10, above - 1));
}

QString SceneWords::amount()
{
    static const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);
    return kEnglish.toString(m_dice.between(100, 99999999) / 100.0, 'f', 2);
}

QString SceneWords::time()
{
    return u"%1:%2"_s.arg(m_dice.between(0, 23), 2, 10, QChar(u'0'))
        .arg(m_dice.between(0, 59), 2, 10, QChar(u'0'));
}

QString SceneWords::date()
{
    const QString day = QString::number(m_dice.between(10, 28));
    const int month = m_dice.between(1, 12);
    const QString digits = u"%1"_s.arg(month, 2, 10, QChar(u'0'));
    const QString year = QString::number(m_dice.between(1987, 2029));
    switch (m_dice.between(0, 2)) {
    case 0: {
        const QLocale locale(m_turkish > 50 ? QLocale::Turkish : QLocale::English);
        return day + u' ' + locale.standaloneMonthName(month) + u' ' + year;
    }
    case 1:
        return year + u'-' + digits + u'-' + day;
    default:
        return day + u'.' + digits + u'.' + year;
    }
}

QString SceneWords::fileSize()
{
    return QString::number(m_dice.between(1, 999)) + u'.' + QString::number(m_dice.between(1, 9)) +
           m_dice.pick<QString>({u" KB"_s, u" MB"_s, u" GB"_s});
}

QString SceneWords::fileName(const QStringList& endings)
{
    QString stem = plain();
    if (m_dice.chance(40))
        stem += m_dice.pick<QString>({u"_"_s, u"-"_s}) + plain();
    if (m_dice.chance(20))
        stem += u'-' + QString::number(m_dice.between(2, 2030));
    return stem + u'.' + m_dice.pick(endings);
}

QString SceneWords::identifier()
{
    const QString first = plain();
    const QString second = plain();
    switch (m_dice.between(0, 4)) {
    case 0:
        return first + capitalised(second, false);
    case 1:
        return first + u'_' + second;
    case 2:
        return capitalised(first, false) + capitalised(second, false);
    default:
        return first;
    }
}

QString SceneWords::host()
{
    return plain() + m_dice.pick<QString>({u".org"_s, u".com"_s, u".net"_s, u".example"_s});
}

QString SceneWords::email()
{
    return plain() + u'.' + plain() + u'@' + host();
}

QString SceneWords::address()
{
    QString path = u"https://"_s + host();
    for (int parts = m_dice.between(1, 3); parts > 0; --parts)
        path += u'/' + plain();
    return m_dice.chance(30) ? path + u"?page="_s + number(3) : path;
}

} // namespace mossbank::test
