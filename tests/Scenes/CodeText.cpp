// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/CodeText.h"

namespace mossbank::test {

namespace {

using namespace Qt::StringLiterals;

QColor rgb(QRgb value)
{
    return QColor::fromRgb(value);
}

CodeColours colours(bool dark, const QList<QRgb>& set)
{
    return {.dark = dark,
            .paper = rgb(set[0]),
            .ink = rgb(set[1]),
            .gray = rgb(set[2]),
            .word = rgb(set[3]),
            .string = rgb(set[4]),
            .call = rgb(set[5]),
            .type = rgb(set[6]),
            .number = rgb(set[7])};
}

} // namespace

CodeColours codeColours(Dice& dice, bool dark)
{
    static const QList<QList<QRgb>> kDark = {
        {0x15181e, 0xe3e6ea, 0x7d8794, 0xe2787a, 0x9fc9f2, 0xb79af0, 0xe9b06a, 0x86d3a2},
        {0x262a36, 0xd9dee8, 0x7c88a0, 0xc594d8, 0xa0c890, 0x7fb4e8, 0xe6c27e, 0xe09a72},
        {0x03303c, 0x93a7aa, 0x66848c, 0x8f9f10, 0x30a79c, 0x3a93d8, 0xc08e10, 0xd94a86},
        {0x2b0a22, 0xf0ecee, 0x9a8a95, 0xf08a8a, 0x9ad67a, 0x83aef5, 0xe8cd70, 0xd79ae0},
        {0x000000, 0xd0d0d0, 0x8a8a8a, 0x5fd75f, 0xffd75f, 0x5fafff, 0xff8787, 0xd787ff},
    };
    static const QList<QList<QRgb>> kLight = {
        {0xffffff, 0x24272c, 0x747b84, 0xc4303e, 0x14407c, 0x6a38b8, 0x9a5508, 0x0a58b0},
        {0xfcf5e2, 0x58696f, 0x85928f, 0x78880a, 0x21918a, 0x2078b8, 0xa87c06, 0xc4306c},
        {0xf5f6f8, 0x33373e, 0x8a9099, 0x9a2ea8, 0x4a8f3e, 0x3a70d8, 0xb07a10, 0x96600a},
    };
    const CodeColours chosen = colours(dark, dice.pick(dark ? kDark : kLight));
    if (dark || !dice.chance(15))
        return chosen;
    // Somebody changed the paper and forgot the letters: pale, but people do work like this.
    CodeColours pale = colours(false, kDark[0]);
    pale.paper = chosen.paper;
    pale.ink = QColor(0xb4, 0xb4, 0xb4);
    return pale;
}

QList<Span> codeLine(Dice& dice, SceneWords& words, const CodeColours& c)
{
    const QString indent(dice.pick<int>({0, 4, 4, 8, 8, 12}), u' ');
    const auto plain = [&](const QString& text) {
        return Span{text, c.ink};
    };
    const auto name = [&] {
        return plain(words.identifier());
    };
    const auto quoted = [&] {
        return Span{u'"' + words.phrase(1, 3) + u'"', c.string};
    };
    const auto digits = [&] {
        return Span{words.number(4), c.number};
    };
    const auto call = [&] {
        return Span{words.identifier(), c.call};
    };
    const auto type = [&] {
        return Span{capitalised(words.identifier(), false), c.type};
    };
    const auto word = [&](const QString& text) {
        return Span{text, c.word, dice.chance(20)};
    };
    const Span before = plain(indent);
    switch (dice.between(0, 11)) {
    case 0:
        return {before, word(u"return "_s), call(),   plain(u"("_s),
                name(), plain(u", "_s),     quoted(), plain(u");"_s)};
    case 1:
        return {before, word(u"const "_s), type(),   plain(u" "_s),
                name(), plain(u" = "_s),   digits(), plain(u";"_s)};
    case 2:
        return {before, {u"// "_s + words.sentence(3, 8), c.gray}};
    case 3:
        return {before,   word(u"if "_s),   plain(u"("_s), name(),           plain(u" < "_s),
                digits(), plain(u" && "_s), call(),        plain(u"()) {"_s)};
    case 4:
        return {before, plain(u"}"_s)};
    case 5:
        return {before, word(u"for "_s), plain(u"("_s), type(),       plain(u" "_s),
                name(), plain(u" : "_s), name(),        plain(u")"_s)};
    case 6:
        return {};
    case 7:
        return {before, word(u"#include "_s), {u'<' + words.fileName({u"h"_s}) + u'>', c.string}};
    case 8:
        return {before,        type(),        plain(u" "_s), call(),         plain(u"("_s),
                type(),        plain(u" "_s), name(),        plain(u", "_s), type(),
                plain(u" "_s), name(),        plain(u")"_s)};
    case 9:
        return {before, name(),        plain(u"["_s), digits(),      plain(u"]."_s),
                call(), plain(u"("_s), quoted(),      plain(u");"_s)};
    case 10:
        return {before, word(u"case "_s), name(), plain(u": "_s), word(u"break"_s), plain(u";"_s)};
    default:
        return {before, name(), plain(u" += "_s), name(), plain(u" * "_s), digits(), plain(u";"_s)};
    }
}

QList<Span> shellLine(Dice& dice, SceneWords& words, const CodeColours& c)
{
    const auto plain = [&](const QString& text) {
        return Span{text, c.ink};
    };
    const QStringList endings = {u"txt"_s, u"log"_s, u"py"_s, u"cpp"_s, u"tar.gz"_s};
    switch (dice.between(0, 7)) {
    case 0:
    case 1: {
        const QString who = words.identifier() + u'@' + words.identifier();
        return {{who, c.string, true},
                plain(u":"_s),
                {u"~/"_s + words.identifier(), c.call, true},
                plain(u"$ "_s + words.identifier() + u" --"_s + words.identifier() + u' ' +
                      words.fileName(endings))};
    }
    case 2:
        return {{u"-rw-r--r-- "_s, c.gray},
                plain(words.number(2) + u' ' + words.identifier() + u' ' + words.number(6) + u' ' +
                      words.date() + u' '),
                {words.fileName(endings), c.call}};
    case 3:
        return {{u"error: "_s, c.word, true}, plain(words.sentence(3, 7))};
    case 4:
        return {{u'[' + words.time() + u"] "_s, c.gray},
                {words.phrase(3, 6), c.type},
                {u' ' + words.number(5), c.number}};
    case 5:
        return {plain(words.fileName(endings) + u':' + words.number(3) + u':' + words.number(2) +
                      u": "_s),
                {words.phrase(2, 5), c.number}};
    case 6:
        return {{u"$ "_s, c.gray},
                {words.phrase(2, 6).toLower() + u' ' + words.number(5),
                 dice.pick<QColor>({c.ink, c.string, c.call, c.type, c.word})}};
    default:
        return {plain(words.sentence(4, 9))};
    }
}

} // namespace mossbank::test
