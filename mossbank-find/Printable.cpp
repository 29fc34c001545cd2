// SPDX-License-Identifier: Apache-2.0
#include "mossbank-find/Printable.h"

namespace mossbank {

namespace {

bool isSpacing(QChar sign)
{
    return sign == u'\t' || sign == u'\n' || sign == u'\r' || sign == u'\v' || sign == u'\f' ||
           sign == QChar(0x85) || sign == QChar::LineSeparator || sign == QChar::ParagraphSeparator;
}

bool turnsDirection(QChar sign)
{
    const char16_t code = sign.unicode();
    return (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

bool isHarmful(QChar sign)
{
    return sign.category() == QChar::Other_Control || turnsDirection(sign);
}

} // namespace

QString printable(const QString& text)
{
    QString safe = text;
    for (QChar& sign : safe) {
        if (isSpacing(sign))
            sign = u' ';
        else if (isHarmful(sign))
            sign = QChar::ReplacementCharacter;
    }
    return safe;
}

QString printableJson(const QString& json)
{
    QString safe;
    safe.reserve(json.size());
    for (const QChar sign : json) {
        // Outside of strings JSON has none of these, so each is inside one and may be escaped.
        if (isSpacing(sign) || isHarmful(sign))
            safe += QStringLiteral("\\u%1").arg(sign.unicode(), 4, 16, QChar(u'0'));
        else
            safe += sign;
    }
    return safe;
}

} // namespace mossbank
