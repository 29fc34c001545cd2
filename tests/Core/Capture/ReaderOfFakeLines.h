// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Capture/TextReader.h"
#include "tests/Fakes/FakeLineRecognizer.h"

#include <chrono>
#include <memory>

namespace mossbank {

/// What a test of the reader has: a reader whose recogniser of lines is a fake.
class ReaderOfFakeLines {
protected:
    void makeReader(std::chrono::milliseconds patience = std::chrono::minutes(1),
                    int threads = TextReader::usualThreads())
    {
        auto fake = std::make_unique<FakeLineRecognizer>();
        m_fake = fake.get();
        m_reader = std::make_unique<TextReader>(std::move(fake), patience, threads);
    }

    QStringList read(const QImage& picture) { return m_reader->recognize(picture, {}); }

    /// How many readings of lines a picture takes.
    qsizetype readingsOf(const QImage& picture)
    {
        m_fake->forgetReadings();
        read(picture);
        return m_fake->readings().size();
    }

    std::unique_ptr<TextReader> m_reader;
    FakeLineRecognizer* m_fake = nullptr;
};

} // namespace mossbank
