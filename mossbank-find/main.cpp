// SPDX-License-Identifier: Apache-2.0
//
// mossbank-find: what was on the screen, found from a terminal. It only reads.
#include "MossbankCore/Library/LibraryLocation.h"
#include "MossbankCore/Support/Failure.h"
#include "mossbank-find/FindRequest.h"
#include "mossbank-find/MatchingLine.h"
#include "mossbank-find/Printable.h"
#include "mossbank-find/Report.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongUse = 2;

/// False when it did not all get out: a full disk behind a redirection, for one.
bool write(std::FILE* stream, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    return std::fwrite(utf8.constData(), 1, static_cast<std::size_t>(utf8.size()), stream) ==
               static_cast<std::size_t>(utf8.size()) &&
           std::fflush(stream) == 0;
}

void complain(const QString& sentence)
{
    write(stderr, printable(sentence) + u'\n');
}

int print(const QString& text)
{
    if (write(stdout, text))
        return kSuccess;
    complain(u"The output could not be written."_s);
    return kFailure;
}

int search(const FindRequest& request, const Calendar& calendar)
{
    HistoryStore store(HistoryStore::ReadingOnly{.root = LibraryLocation::library()});
    const auto memories = store.fetch(request.fetch).result();
    if (memories.isEmpty()) {
        complain(u"Nothing found."_s);
        return kSuccess;
    }
    const MatchingLine matchingLine(request.fetch.query);
    QString report;
    for (const Memory& memory : memories) {
        const Finding finding{memory, matchingLine.in(memory.text),
                              QDir(store.images()).filePath(memory.filename)};
        report += request.asJson ? toJson(finding, calendar) : describe(finding, calendar);
    }
    return print(report);
}

int run(const QStringList& arguments)
{
    const Calendar calendar = Calendar::current();
    const FindRequest request = FindRequest::parse(arguments, calendar);
    switch (request.kind) {
    case FindRequest::Kind::Help:
        return print(request.message);
    case FindRequest::Kind::Version:
        return print(u"mossbank-find " MOSSBANK_VERSION "\n"_s);
    case FindRequest::Kind::Search:
        return search(request, calendar);
    case FindRequest::Kind::WrongUse:
        break;
    }
    complain(request.message + u' ' + usage());
    return kWrongUse;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    try {
        return run(QCoreApplication::arguments());
    } catch (...) {
        complain(describe(std::current_exception()));
        return kFailure;
    }
}
