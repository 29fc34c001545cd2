// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/X11Properties.h"

namespace mossbank {

namespace {

constexpr quint8 kBitsOfText = 8;
constexpr quint8 kBitsOfNumbers = 32;

QByteArray bytesOf(const xcb_get_property_reply_t* reply)
{
    if (!reply || reply->format != kBitsOfText)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            xcb_get_property_value_length(reply)};
}

} // namespace

WindowClass readClass(const xcb_get_property_reply_t* reply)
{
    const QByteArrayList parts = bytesOf(reply).split('\0');
    return {QString::fromUtf8(parts.value(0)), QString::fromUtf8(parts.value(1))};
}

QString readText(const X11Connection& connection, const xcb_get_property_reply_t* reply)
{
    QByteArray bytes = bytesOf(reply);
    if (const qsizetype end = bytes.indexOf('\0'); end >= 0)
        bytes.truncate(end);
    if (bytes.isEmpty() || reply->type != connection[Atom::Utf8String])
        return QString::fromLatin1(bytes);
    QString text = QString::fromUtf8(bytes);
    const bool isCutShort = reply->bytes_after > 0;
    while (isCutShort && text.endsWith(QChar::ReplacementCharacter))
        text.chop(1);
    return text;
}

QList<quint32> readNumbers(const xcb_get_property_reply_t* reply)
{
    if (!reply || reply->format != kBitsOfNumbers)
        return {};
    const auto* const first = static_cast<const quint32*>(xcb_get_property_value(reply));
    return {first, first + reply->value_len};
}

std::optional<quint32> readNumber(const xcb_get_property_reply_t* reply)
{
    if (!reply || reply->format != kBitsOfNumbers || reply->value_len == 0)
        return {};
    return *static_cast<const quint32*>(xcb_get_property_value(reply));
}

} // namespace mossbank
