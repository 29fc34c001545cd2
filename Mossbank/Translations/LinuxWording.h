// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTranslator>

namespace mossbank {

/// Texts that speak of another platform, in the words that fit this one. A text is known by its
/// English wording; what is not in here stays as it is.
class LinuxWording : public QTranslator {
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char* disambiguation,
                      int count) const override;
};

} // namespace mossbank
