// SPDX-License-Identifier: Apache-2.0
#include "mossbank-find/FindRequest.h"

#include <QCommandLineParser>
#include <QDate>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

constexpr int kUsualLimit = 20;
constexpr int kHighestLimit = 86'400;

struct Options {
    QCommandLineOption day{u"day"_s, u"Only of this day, as YYYY-MM-DD."_s, u"day"_s};
    QCommandLineOption app{u"app"_s, u"Only of the application with exactly this name."_s,
                           u"name"_s};
    QCommandLineOption limit{u"limit"_s, u"At most so many, %1 if not given."_s.arg(kUsualLimit),
                             u"number"_s, QString::number(kUsualLimit)};
    QCommandLineOption json{u"json"_s, u"Print one JSON object a line."_s};
    QCommandLineOption help{{u"h"_s, u"help"_s}, u"Print this help."_s};
    QCommandLineOption version{{u"v"_s, u"version"_s}, u"Print the version."_s};
};

FindRequest wrongUse(const QString& message)
{
    FindRequest request;
    request.message = message;
    return request;
}

std::optional<Date> startOfDay(const QString& text, const Calendar& calendar)
{
    const QString form = u"yyyy-MM-dd"_s;
    const QDate day = QDate::fromString(text, form);
    if (!day.isValid() || day.toString(form) != text)
        return std::nullopt;
    return calendar.startOfDay(day.year(), day.month(), day.day());
}

FindRequest search(const QCommandLineParser& parser, const Options& options,
                   const Calendar& calendar)
{
    FindRequest request;
    request.kind = FindRequest::Kind::Search;
    request.asJson = parser.isSet(options.json);
    request.fetch.withText = true;
    request.fetch.query = parser.positionalArguments().join(u' ');
    // A blank query would list everything, and nobody asked for that.
    if (request.fetch.query.trimmed().isEmpty())
        return wrongUse(u"There are no words to look for."_s);

    bool isNumber = false;
    request.fetch.limit = parser.value(options.limit).toInt(&isNumber);
    if (!isNumber || request.fetch.limit < 1 || request.fetch.limit > kHighestLimit)
        return wrongUse(u"The limit is a number from 1 to %1."_s.arg(kHighestLimit));
    if (parser.isSet(options.day)) {
        request.fetch.day = startOfDay(parser.value(options.day), calendar);
        if (!request.fetch.day)
            return wrongUse(u"There is no such day; write it as 2026-03-01."_s);
    }
    if (parser.isSet(options.app))
        request.fetch.app = parser.value(options.app);
    return request;
}

} // namespace

FindRequest FindRequest::parse(const QStringList& arguments, const Calendar& calendar)
{
    const Options options;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Finds screenshots in your Mossbank library, newest first. Every word has to be there, "
        "each as the beginning of a word."_s);
    parser.addOptions(
        {options.day, options.app, options.limit, options.json, options.help, options.version});
    parser.addPositionalArgument(
        u"words"_s, u"What to look for; -- before words that begin with -."_s, u"WORDS..."_s);
    const bool isUnderstood = parser.parse(arguments);
    FindRequest request;
    if (!isUnderstood) {
        request.message = parser.errorText();
    } else if (parser.isSet(options.help)) {
        request.kind = Kind::Help;
        request.message = parser.helpText();
    } else if (parser.isSet(options.version)) {
        request.kind = Kind::Version;
    } else {
        request = search(parser, options, calendar);
    }
    return request;
}

QString usage()
{
    return u"Usage: mossbank-find WORDS... [--day YYYY-MM-DD] [--app NAME] [--limit N] [--json]"_s;
}

} // namespace mossbank
