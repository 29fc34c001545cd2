// SPDX-License-Identifier: Apache-2.0
//
// A cipher that computes something else without saying so would seal pictures that nothing opens
// again, or that anybody does. What it must give is known, so it is asked.
#include "MossbankCore/Library/AesGcm.h"
#include "MossbankCore/Library/StoreError.h"

#include <QByteArray>

#include <array>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// All in hexadecimal digits.
struct KnownAnswer {
    const char* key;
    const char* nonce;
    const char* plain;
    const char* ciphertext;
    const char* tag;
};

/// Test cases 13 to 15 of those published with the mode.
constexpr std::array kKnownAnswers = {
    KnownAnswer{
        "0000000000000000000000000000000000000000000000000000000000000000",
        "000000000000000000000000",
        "",
        "",
        "530f8afbc74536b9a963b4f1c4cb738b",
    },
    KnownAnswer{
        "0000000000000000000000000000000000000000000000000000000000000000",
        "000000000000000000000000",
        "00000000000000000000000000000000",
        "cea7403d4d606b6e074ec5d3baf39d18",
        "d0d1c8a799996bf0265b98b5d48ab919",
    },
    KnownAnswer{
        "feffe9928665731c6d6a8f9467308308feffe9928665731c6d6a8f9467308308",
        "cafebabefacedbaddecaf888",
        "d9313225f88406e5a55909c5aff5269a86a7a9531534f7da2e4c303d8a318a72"
        "1c3c0c95956809532fcf0e2449a6b525b16aedf5aa0de657ba637b391aafd255",
        "522dc1f099567d07f47f37a32a84427d643a8cdcbfe5c0c97598a2bd2555d1aa"
        "8cb08e48590dbb3da7b08b1056828838c5f61e6393ba7a0abcc9f662898015ad",
        "b094dac5d93471bdec1a502270e3cc6c",
    },
};

bool answersAsKnown(const KnownAnswer& known)
{
    const auto key = SymmetricKey::fromBytes(QByteArray::fromHex(known.key));
    const QByteArray nonce = QByteArray::fromHex(known.nonce);
    const QByteArray plain = QByteArray::fromHex(known.plain);
    const QByteArray expected =
        QByteArray::fromHex(known.ciphertext) + QByteArray::fromHex(known.tag);

    QByteArray sealed(expected.size(), '\0');
    AesGcm::seal(*key, nonce.constData(), plain, sealed.data());
    if (sealed != expected)
        return false;
    QByteArray opened(plain.size(), '\0');
    if (!AesGcm::open(*key, nonce.constData(), sealed, opened.data()) || opened != plain)
        return false;
    // One that opens whatever it is given protects nothing.
    sealed.back() = static_cast<char>(sealed.back() ^ 1);
    return !AesGcm::open(*key, nonce.constData(), sealed, opened.data());
}

} // namespace

void AesGcm::check()
{
    for (const KnownAnswer& known : kKnownAnswers) {
        if (!answersAsKnown(known))
            throw StoreError(u"Encryption does not work as it should on this computer."_s);
    }
}

} // namespace mossbank
