// SPDX-License-Identifier: Apache-2.0
//
//   CrashPeer ROOT KEY SEED FIRST REMOVES OPENING WORKING
//
// Saves screenshots numbered from FIRST until it is killed, and where REMOVES is 1 removes some
// now and then. KEY is the vault's key in hexadecimal. It kills itself at the call numbered
// OPENING of those that change files while the library is opened, or WORKING of those afterwards;
// 0 for never. It says what it is about to do and what it has done:
//   ready | saving NUMBER | saved | removing NUMBER ... | removed | failed: MESSAGE
#include "tests/Core/Library/Promises.h"
#include "tests/Fakes/BadDisk.h"

#include <cerrno>
#include <cstdio>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kMostSaves = 2000;

void say(const QString& line)
{
    std::puts(qPrintable(line));
    std::fflush(stdout);
}

class Work {
public:
    Work(HistoryStore& store, quint32 seed)
        : m_store(store)
        , m_random(seed)
        , m_there(rowsOf(store))
    {
    }

    void save(int number)
    {
        say(u"saving %1"_s.arg(number));
        m_store.save(tellingMemory(number), tellingPicture(number)).waitForFinished();
        m_there.insert(number);
        say(u"saved"_s);
    }

    void removeSome()
    {
        QList<int> sorted(m_there.cbegin(), m_there.cend());
        std::sort(sorted.begin(), sorted.end());
        if (sorted.isEmpty())
            return;
        const auto count = static_cast<int>(sorted.size());
        switch (m_random.bounded(10)) {
        case 0:
            remove(sorted, [this] { return m_store.deleteAll(); });
            break;
        case 1:
        case 2:
        case 3: {
            const int some = m_random.bounded(1, 1 + (count + 3) / 4);
            const Date date = {sorted.at(some - 1) + 0.5};
            remove(sorted.first(some), [this, date] { return m_store.prune(date); });
            break;
        }
        default: {
            const int one = sorted.at(m_random.bounded(count));
            remove({one}, [this, one] { return m_store.deleteMemory(QString::number(one)); });
        }
        }
    }

    bool chance(int of) { return m_random.bounded(of) == 0; }

private:
    template <typename Removal>
    void remove(const QList<int>& numbers, Removal removal)
    {
        const QSet<int> gone(numbers.cbegin(), numbers.cend());
        say(u"removing %1"_s.arg(listed(gone)));
        removal().waitForFinished();
        m_there -= gone;
        say(u"removed"_s);
    }

    HistoryStore& m_store;
    QRandomGenerator m_random;
    QSet<int> m_there;
};

void run(const QStringList& arguments)
{
    int at = 0;
    const QString root = arguments.at(at++);
    const auto key = SymmetricKey::fromBytes(QByteArray::fromHex(arguments.at(at++).toLatin1()));
    const quint32 seed = arguments.at(at++).toUInt();
    int number = arguments.at(at++).toInt();
    const bool removes = arguments.at(at++).toInt() == 1;
    const int opening = arguments.at(at++).toInt();
    const int working = arguments.at(at++).toInt();

    auto disk = std::make_unique<BadDisk>(root, opening, BadDisk::Then::Kill, EIO);
    HistoryStore store(HistoryStore::Writing{.root = root, .vault = ImageVault(key.value())});
    Work work(store, seed);
    disk.reset();
    say(u"ready"_s);
    disk = std::make_unique<BadDisk>(root, working, BadDisk::Then::Kill, EIO);
    for (int saves = 0; saves < kMostSaves; ++saves) {
        work.save(number++);
        if (removes && work.chance(3))
            work.removeSome();
    }
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int index = 1; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    try {
        run(arguments);
    } catch (...) {
        say(u"failed: "_s + describe(std::current_exception()));
        return 1;
    }
    return 0;
}
