// SPDX-License-Identifier: Apache-2.0
#include "MossbankCore/Meaning/Vector.h"

#include <QFloat16>
#include <QtEndian>

#include <cmath>
#include <utility>

namespace mossbank {

namespace {

constexpr qsizetype kBytes = 2; // of a component, stored

} // namespace

Vector::Vector(QList<float> values)
    : m_values(std::move(values))
{
    float squares = 0;
    for (const float value : std::as_const(m_values))
        squares += value * value;
    if (!(squares > 0)) // also when it is not a number
        return;
    const float scale = 1 / std::sqrt(squares);
    for (float& value : m_values)
        value *= scale;
}

std::optional<Vector> Vector::fromData(const QByteArray& data)
{
    if (data.isEmpty() || data.size() % kBytes != 0)
        return std::nullopt;
    QList<qfloat16> halves(data.size() / kBytes);
    qFromLittleEndian<quint16>(data.constData(), halves.size(), halves.data());
    Vector vector;
    vector.m_values.resize(halves.size());
    qFloatFromFloat16(vector.m_values.data(), halves.constData(), halves.size());
    return vector;
}

QByteArray Vector::data() const
{
    if (m_values.isEmpty())
        return {};
    QList<qfloat16> halves(m_values.size());
    qFloatToFloat16(halves.data(), m_values.constData(), m_values.size());
    QByteArray data(halves.size() * kBytes, Qt::Uninitialized);
    qToLittleEndian<quint16>(halves.constData(), halves.size(), data.data());
    return data;
}

} // namespace mossbank
