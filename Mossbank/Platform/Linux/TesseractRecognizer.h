// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/TextRecognizer.h"

#include <memory>

namespace mossbank {

/// Reads text by Tesseract's neural models.
///
/// Threading: any thread; a few read side by side, the rest wait.
/// Errors: a Failure that names the package when a language's model is not installed.
class TesseractRecognizer final : public TextRecognizer {
public:
    TesseractRecognizer();
    ~TesseractRecognizer() override;

    QStringList recognize(const QImage& image, const Options& options) override;

private:
    class Engines;

    std::unique_ptr<Engines> m_engines;
};

} // namespace mossbank
