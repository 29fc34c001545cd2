// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Meaning/Vector.h"

#include "tests/Core/RandomRounds.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <limits>

using namespace mossbank;
using namespace Qt::StringLiterals;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

/// The value of a half-precision float, by its definition.
float valueOfHalf(quint16 bits)
{
    const int sign = bits >> 15;
    const int exponent = (bits >> 10) & 0x1f;
    const int fraction = bits & 0x3ff;
    float value = 0;
    if (exponent == 0x1f)
        value = fraction == 0 ? kInfinity : kNotANumber;
    else if (exponent == 0)
        value = std::ldexp(static_cast<float>(fraction), -24);
    else
        value = std::ldexp(static_cast<float>(fraction + 0x400), exponent - 25);
    return sign ? -value : value;
}

QByteArray bytesOfHalf(quint16 bits)
{
    QByteArray bytes;
    bytes.append(static_cast<char>(bits & 0xff)).append(static_cast<char>(bits >> 8));
    return bytes;
}

} // namespace

class VectorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatHasADirectionGetsUnitLength()
    {
        const Vector vector(QList<float>{3, 0, -4});
        QCOMPARE(vector.values(), (QList<float>{0.6F, 0, -0.8F}));
        QCOMPARE(Vector(QList<float>{1e-3F}).values(), QList<float>{1});
    }

    void whatHasNoDirectionStaysAsItIs()
    {
        QCOMPARE(Vector(QList<float>{}).values(), QList<float>{});
        QCOMPARE(Vector(QList<float>{0, 0}).values(), (QList<float>{0, 0}));
        const QList<float> broken = Vector(QList<float>{2, kNotANumber}).values();
        QCOMPARE(broken.first(), 2.0F);
        QVERIFY(std::isnan(broken.last()));
    }

    void theStoredFormIsHalvesAndNothingElse()
    {
        // 1, -0.5 and 0 as IEEE 754 halves.
        QCOMPARE(Vector(QList<float>{1, 0}).data(), QByteArray::fromHex("003c0000"));
        QCOMPARE(Vector(QList<float>{-0.5F, 0.5F, 0.5F, 0.5F}).data(),
                 QByteArray::fromHex("00b8003800380038"));
        QCOMPARE(Vector(QList<float>{}).data(), QByteArray());
        QCOMPARE(Vector(QList<float>(768, 1)).data().size(), 1536);
    }

    void everyHalfIsReadForWhatItIs()
    {
        for (int bits = 0; bits <= 0xffff; ++bits) {
            const float expected = valueOfHalf(static_cast<quint16>(bits));
            const auto vector = Vector::fromData(bytesOfHalf(static_cast<quint16>(bits)));
            QVERIFY(vector && vector->values().size() == 1);
            const float read = vector->values().first();
            if (std::isnan(expected))
                QVERIFY2(std::isnan(read), qPrintable(QString::number(bits, 16)));
            else
                QVERIFY2(read == expected && std::signbit(read) == std::signbit(expected),
                         qPrintable(QString::number(bits, 16)));
            // What was read is stored as it was.
            if (!std::isnan(expected))
                QCOMPARE(vector->data(), bytesOfHalf(static_cast<quint16>(bits)));
        }
    }

    void whatWasStoredIsReadToHalfPrecision()
    {
        QRandomGenerator random(7);
        QList<float> values;
        for (int index = 0; index < 768; ++index)
            values.append(static_cast<float>(random.generateDouble() - 0.5));
        const Vector vector(values);
        const auto read = Vector::fromData(vector.data());
        QVERIFY(read && read->values().size() == 768);
        for (qsizetype index = 0; index < 768; ++index) {
            const float stored = vector.values().at(index);
            // The nearest half is at most half a step of eleven bits away.
            QVERIFY(std::abs(read->values().at(index) - stored) <=
                    std::abs(stored) * std::ldexp(1.0F, -11) + std::ldexp(1.0F, -25));
        }
    }

    void whatIsReadIsNotScaledAgain()
    {
        // 2 and 2: not a unit.
        const auto vector = Vector::fromData(QByteArray::fromHex("00400040"));
        QVERIFY(vector);
        QCOMPARE(vector->values(), (QList<float>{2, 2}));
    }

    void nothingAndHalfAComponentAreRefused()
    {
        QVERIFY(!Vector::fromData({}));
        QVERIFY(!Vector::fromData("a"));
        QVERIFY(!Vector::fromData("abc"));
        QVERIFY(Vector::fromData("ab"));
    }

    void anyBytesAreReadOrRefused()
    {
        QRandomGenerator random(randomSeed());
        for (int rounds = randomRounds(20'000); rounds > 0; --rounds) {
            QByteArray bytes(random.bounded(64), Qt::Uninitialized);
            for (char& byte : bytes)
                byte = static_cast<char>(random.bounded(256));
            const auto vector = Vector::fromData(bytes);
            QCOMPARE(vector.has_value(), !bytes.isEmpty() && bytes.size() % 2 == 0);
            if (vector)
                QCOMPARE(vector->data().size(), bytes.size());
        }
    }
};

QTEST_GUILESS_MAIN(VectorTest)
#include "VectorTest.moc"
