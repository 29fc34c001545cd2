// SPDX-License-Identifier: Apache-2.0
#include "mossbank-find/Report.h"

#include "mossbank-find/Printable.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

namespace mossbank {

using namespace Qt::StringLiterals;

QString describe(const Finding& finding, const Calendar& calendar)
{
    const Memory& memory = finding.memory;
    QString text = calendar.local(memory.timestamp).toString(u"yyyy-MM-dd HH:mm:ss"_s) + u"  "_s +
                   printable(memory.appName);
    if (!memory.title.isEmpty())
        text += u" – "_s + printable(memory.title);
    text += u'\n';
    if (!finding.line.isEmpty())
        text += u"    "_s + printable(finding.line) + u'\n';
    return text + u"    "_s + printable(finding.picture) + u'\n';
}

QString toJson(const Finding& finding, const Calendar& calendar)
{
    const Memory& memory = finding.memory;
    const QJsonObject object = {
        {u"time"_s, calendar.local(memory.timestamp).toString(Qt::ISODateWithMs)},
        {u"timestamp"_s, memory.timestamp.secondsSince1970},
        {u"app"_s, memory.appName},
        {u"bundle"_s, memory.bundleID},
        {u"title"_s, memory.title},
        {u"link"_s, memory.link},
        {u"line"_s, finding.line},
        {u"picture"_s, finding.picture},
    };
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return printableJson(QString::fromUtf8(json)) + u'\n';
}

} // namespace mossbank
