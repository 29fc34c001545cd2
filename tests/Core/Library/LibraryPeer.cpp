// SPDX-License-Identifier: Apache-2.0
//
// The other process of the tests with two:
//   lock DATABASE      takes the write lock, says "locked", and holds it until its input ends
//   save ROOT COUNT    saves that many screenshots, saying the number of each when it is in
#include "MossbankCore/Library/Database.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Support/Failure.h"

#include <QStringList>

#include <cstdio>
#include <exception>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

void say(const QString& line)
{
    std::puts(qPrintable(line));
    std::fflush(stdout);
}

void lock(const QString& path)
{
    auto database = Database::open(path, Database::Access::ReadWrite);
    database->execute(u"BEGIN EXCLUSIVE"_s);
    say(u"locked"_s);
    while (std::getchar() != EOF) {
    }
    database->execute(u"ROLLBACK"_s);
}

void save(const QString& root, int count)
{
    HistoryStore store(HistoryStore::Writing{.root = root});
    for (int number = 1; number <= count; ++number) {
        Memory memory;
        memory.id = QString::number(number);
        memory.timestamp = {static_cast<double>(number)};
        memory.appName = u"Editor"_s;
        memory.text = u"moss number%1"_s.arg(number);
        memory.filename = u"%1.jpg"_s.arg(number);
        store.save(memory, "jpeg").waitForFinished();
        say(QString::number(number));
    }
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int index = 1; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    try {
        if (arguments.size() == 2 && arguments.first() == u"lock"_s)
            lock(arguments.at(1));
        else if (arguments.size() == 3 && arguments.first() == u"save"_s)
            save(arguments.at(1), arguments.at(2).toInt());
        else
            return 2;
    } catch (...) {
        say(u"failed: "_s + describe(std::current_exception()));
        return 1;
    }
    return 0;
}
