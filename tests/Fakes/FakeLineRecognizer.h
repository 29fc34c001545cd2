// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MossbankCore/Ports/LineRecognizer.h"

#include <QImage>

#include <exception>
#include <functional>
#include <mutex>
#include <utility>

namespace mossbank {

/// A recogniser of lines that knows one letter, H, and counts how many there are in each word. A
/// test may have it read otherwise.
///
/// Threading: any thread; what is set counts for the readings that begin afterwards.
class FakeLineRecognizer final : public LineRecognizer {
public:
    using Reader =
        std::function<QList<RecognizedWord>(const QImage& line, const QString& language)>;
    struct Reading {
        QImage line;
        QString language;
        bool correctsLanguage = false;
    };

    static constexpr double kSure = 96;

    /// Those to be expected, and those that are only installed.
    void setLanguages(QStringList expected, QStringList others = {})
    {
        const std::scoped_lock lock(m_mutex);
        m_languages = {std::move(expected), std::move(others)};
    }
    void setReader(Reader reader)
    {
        const std::scoped_lock lock(m_mutex);
        m_reader = std::move(reader);
    }

    /// Every reading so far, in the order in which they began.
    QList<Reading> readings() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_readings;
    }
    void forgetReadings()
    {
        const std::scoped_lock lock(m_mutex);
        m_readings.clear();
    }
    int rests() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_rests;
    }

    LineLanguages languages(const QStringList& codes) override
    {
        const std::scoped_lock lock(m_mutex);
        return codes.isEmpty() ? m_languages : LineLanguages{codes, {}};
    }

    QList<RecognizedWord> read(const QImage& line, const QString& language,
                               bool correctsLanguage) override
    {
        Reader reader;
        {
            const std::scoped_lock lock(m_mutex);
            m_readings.append({line, language, correctsLanguage});
            reader = m_reader;
        }
        return reader(line, language);
    }

    void rest() override
    {
        const std::scoped_lock lock(m_mutex);
        ++m_rests;
    }

    /// One H for each run of columns that have something dark, apart where a gap is wide.
    static QList<RecognizedWord> wordsOn(const QImage& line, double confidence = kSure)
    {
        constexpr int kDark = 128;
        constexpr int kAround = 20; // the white above and below, which is not the line's height
        const int gap = (line.height() - kAround) * 9 / 20;
        QList<RecognizedWord> words;
        int last = -1;
        for (int x = 0; x < line.width(); ++x) {
            bool isDark = false;
            for (int y = 0; y < line.height(); ++y)
                isDark = isDark || line.constScanLine(y)[x] < kDark;
            if (!isDark)
                continue;
            if (last < 0 || x - last > gap)
                words.append({QString(), confidence});
            if (last < 0 || x - last > 1)
                words.last().text += u'H';
            last = x;
        }
        return words;
    }

private:
    mutable std::mutex m_mutex;
    LineLanguages m_languages = {{QStringLiteral("eng")}, {}};
    Reader m_reader = [](const QImage& line, const QString&) {
        return wordsOn(line);
    };
    QList<Reading> m_readings;
    int m_rests = 0;
};

} // namespace mossbank
