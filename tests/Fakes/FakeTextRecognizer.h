// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/TextRecognizer.h"

#include <QImage>

#include <exception>
#include <functional>
#include <mutex>
#include <utility>

namespace mossbank {

/// A recogniser that reads what it was told to, whatever the picture shows.
///
/// Threading: any thread; what is set counts for the readings that begin afterwards.
class FakeTextRecognizer final : public TextRecognizer {
public:
    FakeTextRecognizer() = default;
    explicit FakeTextRecognizer(QStringList lines)
        : m_lines(std::move(lines))
    {
    }

    /// What is read from now on.
    void setLines(QStringList lines)
    {
        const std::scoped_lock lock(m_mutex);
        m_lines = std::move(lines);
    }

    /// Whether what is read from now on is all that there is.
    void setWhole(bool isWhole)
    {
        const std::scoped_lock lock(m_mutex);
        m_isWhole = isWhole;
    }

    /// What every reading from now on throws; empty for none.
    void setFailure(std::exception_ptr failure)
    {
        const std::scoped_lock lock(m_mutex);
        m_failure = std::move(failure);
    }

    /// Called inside each reading, on its thread, before it gives its lines or its failure. It
    /// may wait, so that a test can hold a reading open.
    void setHook(std::function<void()> hook)
    {
        const std::scoped_lock lock(m_mutex);
        m_hook = std::move(hook);
    }

    /// How many readings have begun.
    int readings() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_readings;
    }

    /// What the reading begun last was asked with.
    Options lastOptions() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_lastOptions;
    }

    /// The picture of the reading begun last.
    QImage lastImage() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_lastImage;
    }

    /// How often it was told to rest.
    int rests() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_rests;
    }

    void rest() override
    {
        const std::scoped_lock lock(m_mutex);
        ++m_rests;
    }

    Reading read(const QImage& image, const Options& options) override
    {
        Reading reading;
        std::exception_ptr failure;
        std::function<void()> hook;
        {
            const std::scoped_lock lock(m_mutex);
            ++m_readings;
            m_lastOptions = options;
            m_lastImage = image;
            reading = {.lines = m_lines, .isWhole = m_isWhole};
            failure = m_failure;
            hook = m_hook;
        }
        if (hook)
            hook();
        if (failure)
            std::rethrow_exception(failure);
        return reading;
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_lines;
    bool m_isWhole = true;
    std::exception_ptr m_failure;
    std::function<void()> m_hook;
    int m_readings = 0;
    int m_rests = 0;
    Options m_lastOptions;
    QImage m_lastImage;
};

} // namespace mossbank
