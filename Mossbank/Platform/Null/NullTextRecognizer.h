// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/TextRecognizer.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

/// No recogniser: it fails with the reason rather than finding no words, which would be kept.
class NullTextRecognizer final : public TextRecognizer {
public:
    explicit NullTextRecognizer(QString reason)
        : m_reason(std::move(reason))
    {
    }

    Reading read(const QImage&, const Options&) override { throw Failure(m_reason); }
    void rest() override {}

private:
    QString m_reason;
};

} // namespace mossbank
