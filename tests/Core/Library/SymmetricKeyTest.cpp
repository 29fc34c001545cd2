// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Library/SymmetricKey.h"

#include "tests/Core/Library/LibraryTesting.h"

#include <QSet>

#include <dlfcn.h>

#include <algorithm>
#include <cstddef>

namespace {

bool hasNoRandomNumbers = false;
/// Of the size of a key.
int wiped = 0;
bool wasWipedToZero = false;

} // namespace

// These stand before OpenSSL's own for everything in this program.
extern "C" int RAND_priv_bytes(unsigned char* bytes, int count)
{
    if (hasNoRandomNumbers)
        return 0;
    using Function = int (*)(unsigned char*, int);
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "RAND_priv_bytes"))(bytes, count);
}

extern "C" void OPENSSL_cleanse(void* memory, std::size_t size)
{
    using Function = void (*)(void*, std::size_t);
    reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "OPENSSL_cleanse"))(memory, size);
    if (size != mossbank::SymmetricKey::kSize)
        return;
    ++wiped;
    const auto* const bytes = static_cast<const unsigned char*>(memory);
    wasWipedToZero = std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

QByteArray bytesOf(const SymmetricKey& key)
{
    return QByteArray(reinterpret_cast<const char*>(key.bytes().data()), SymmetricKey::kSize);
}

} // namespace

class SymmetricKeyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { hasNoRandomNumbers = false; }

    void aKeyIsOf32BytesAndNoOther_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 16, 31, 32, 33, 64})
            QTest::addRow("%d", size) << size;
    }
    void aKeyIsOf32BytesAndNoOther()
    {
        QFETCH(int, size);
        QByteArray bytes(size, '\0');
        for (int at = 0; at < size; ++at)
            bytes[at] = static_cast<char>(200 + at);
        const auto key = SymmetricKey::fromBytes(bytes);
        QCOMPARE(key.has_value(), size == 32);
        if (key)
            QCOMPARE(bytesOf(*key), bytes);
    }

    void everyKeyMadeIsAnother()
    {
        QSet<QByteArray> keys;
        for (int time = 0; time < 200; ++time)
            keys.insert(bytesOf(SymmetricKey::random()));
        QCOMPARE(keys.size(), 200);
    }

    void keysAreEqualByTheirBytes()
    {
        const SymmetricKey key = SymmetricKey::random();
        QByteArray bytes = bytesOf(key);
        QVERIFY(key == *SymmetricKey::fromBytes(bytes));
        bytes.back() = static_cast<char>(bytes.back() ^ 1);
        QVERIFY(!(key == *SymmetricKey::fromBytes(bytes)));
    }

    void withoutRandomNumbersThereIsNoKey()
    {
        hasNoRandomNumbers = true;
        QCOMPARE(failure<StoreError>([] { SymmetricKey::random(); }),
                 u"No encryption key could be made."_s);
    }

    void theLastCopyWipesTheSecret()
    {
        std::optional<SymmetricKey> key = SymmetricKey::random();
        std::optional<SymmetricKey> copy = key;
        QCOMPARE(copy->bytes().data(), key->bytes().data());
        wiped = 0;
        key.reset();
        QCOMPARE(wiped, 0);
        wasWipedToZero = false;
        copy.reset();
        QCOMPARE(wiped, 1);
        QVERIFY(wasWipedToZero);
    }

    void aMovedKeyIsStillOne()
    {
        SymmetricKey key = SymmetricKey::random();
        const SymmetricKey moved = std::move(key);
        QVERIFY(moved == key); // NOLINT(bugprone-use-after-move): keys have no empty state
    }

    void bytesAreWipedWhereTheyAre()
    {
        QByteArray secret(SymmetricKey::kSize, 's');
        const char* const place = secret.constData();
        wipe(secret);
        QCOMPARE(secret.constData(), place);
        QCOMPARE(secret, QByteArray(SymmetricKey::kSize, '\0'));
        QByteArray none;
        wipe(none);
        QVERIFY(none.isEmpty());
    }
};

QTEST_GUILESS_MAIN(SymmetricKeyTest)
#include "SymmetricKeyTest.moc"
