// SPDX-License-Identifier: Apache-2.0
//
// Whatever lies in the folder of pictures, opening it gives the picture, the bytes as they are, or
// nothing.
#include "MossbankCore/Library/ImageVault.h"
#include "tests/Core/RandomRounds.h"

#include <QRandomGenerator>
#include <QTest>

#include <vector>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRounds = 20'000;

/// `opened` of bytes that end where their memory does, so that a look beyond is seen by the
/// sanitizers. What it hands back is a copy.
std::optional<QByteArray> openedAtTheEdge(const ImageVault& vault, const QByteArray& bytes)
{
    const std::vector<char> exact(bytes.begin(), bytes.end());
    auto opened =
        vault.opened(QByteArray::fromRawData(exact.data(), static_cast<qsizetype>(exact.size())));
    if (opened)
        opened->detach();
    return opened;
}

} // namespace

class VaultFuzzTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_rounds = randomRounds(kRounds);
        m_random.seed(randomSeed());
    }

    void anyBytesOpenToThemselvesOrToNothing()
    {
        for (int round = 0; round < m_rounds; ++round) {
            QByteArray bytes = noise(m_random.bounded(80));
            if (m_random.bounded(2) == 0)
                bytes.prepend("BRW1");
            const auto expected =
                bytes.startsWith("BRW1") ? std::optional<QByteArray>() : std::optional(bytes);
            QVERIFY2(openedAtTheEdge(m_vault, bytes) == expected, told(bytes));
        }
    }

    void aSealedPictureOpensUnlessItWasTouched()
    {
        for (int round = 0; round < m_rounds; ++round) {
            const QByteArray picture = noise(m_random.bounded(200));
            const QByteArray sealed = m_vault.sealed(picture);
            QVERIFY2(openedAtTheEdge(m_vault, sealed) == std::optional(picture), told(picture));
            const QByteArray touched = touchedAtRandom(sealed);
            if (touched == sealed)
                continue;
            const auto expected =
                touched.startsWith("BRW1") ? std::optional<QByteArray>() : std::optional(touched);
            QVERIFY2(openedAtTheEdge(m_vault, touched) == expected, told(touched));
        }
    }

private:
    QByteArray noise(int size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        for (char& byte : bytes)
            byte = static_cast<char>(m_random.bounded(256));
        return bytes;
    }

    int placeIn(const QByteArray& bytes)
    {
        return m_random.bounded(static_cast<int>(bytes.size()));
    }

    /// Some of the ways in which a file goes wrong, one after the other.
    QByteArray touchedAtRandom(QByteArray bytes)
    {
        for (int times = 1 + m_random.bounded(3); times > 0 && !bytes.isEmpty(); --times) {
            const int at = placeIn(bytes);
            switch (m_random.bounded(7)) {
            case 0:
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << m_random.bounded(8)));
                break;
            case 1:
                bytes.truncate(at);
                break;
            case 2:
                bytes.append(noise(1 + m_random.bounded(40)));
                break;
            case 3:
                bytes.remove(at, 1 + m_random.bounded(20));
                break;
            case 4:
                bytes.insert(at, noise(1 + m_random.bounded(20)));
                break;
            case 5:
                std::swap(bytes.data()[at], bytes.data()[placeIn(bytes)]);
                break;
            default:
                bytes.replace(at, 16, QByteArray(16, '\0'));
                break;
            }
        }
        return bytes;
    }

    static const char* told(const QByteArray& bytes)
    {
        static QByteArray hex;
        hex = bytes.toHex();
        return hex.constData();
    }

    QRandomGenerator m_random;
    int m_rounds = 0;
    const ImageVault m_vault{SymmetricKey::random()};
};

QTEST_GUILESS_MAIN(VaultFuzzTest)
#include "VaultFuzzTest.moc"
