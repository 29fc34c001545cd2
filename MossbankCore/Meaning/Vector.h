// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace mossbank {

/// What a text means, as a model sees it: a direction, held at unit length so that a dot product
/// is a cosine.
///
/// Threading: a value; any thread.
class Vector {
public:
    Vector() = default;
    /// Scales `values` to unit length. What has no direction (nothing, all zero, not a number)
    /// stays as it is.
    explicit Vector(QList<float> values);
    /// Of what `data` gave. Absent for nothing and for an odd number of bytes. As long as it was
    /// to half precision: it is not scaled again.
    static std::optional<Vector> fromData(const QByteArray& data);

    const QList<float>& values() const { return m_values; }

    /// The components in order as IEEE 754 half-precision floats, little-endian, and nothing else.
    QByteArray data() const;

    friend bool operator==(const Vector&, const Vector&) = default;

private:
    QList<float> m_values;
};

} // namespace mossbank
