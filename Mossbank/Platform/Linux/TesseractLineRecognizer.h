// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/LineRecognizer.h"

#include <memory>

namespace mossbank {

/// Reads lines by Tesseract's neural models.
///
/// Threading: any thread, each with an engine of its own; none waits for another. A few engines are
/// kept for the next lines.
/// Errors: a Failure that names the package when a language's model is not installed.
class TesseractLineRecognizer final : public LineRecognizer {
public:
    TesseractLineRecognizer();
    ~TesseractLineRecognizer() override;

    LineLanguages languages(const QStringList& codes) override;
    QList<RecognizedWord> read(const QImage& line, const QString& language,
                               bool correctsLanguage) override;
    void rest() override;

private:
    class Engines;

    std::unique_ptr<Engines> m_engines;
};

} // namespace mossbank
