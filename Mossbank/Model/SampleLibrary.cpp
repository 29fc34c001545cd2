// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/SampleLibrary.h"

#include "Mossbank/Model/FixtureImage.h"
#include "Mossbank/Model/Recorder.h"
#include "Mossbank/Model/SampleItems.h"
#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Capture/ImageProcessor.h"
#include "MossbankCore/Library/HistoryStore.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Ports/TextRecognizer.h"
#include "MossbankCore/Support/Awaited.h"
#include "MossbankCore/Support/Failure.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QUuid>

#include <algorithm>
#include <utility>
#include <vector>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

QString inSeconds(double duration)
{
    return QString::number(duration, 'f', 3) + u" seconds"_s;
}

double elapsed(const QElapsedTimer& timer)
{
    constexpr double kNanosecondsASecond = 1e9;
    return static_cast<double>(timer.nsecsElapsed()) / kNanosecondsASecond;
}

/// Throws where there can be none.
QImage pictureOf(const SampleItem& item)
{
    const auto image = fixtureImage(item.app, item.title, item.lines);
    if (!image)
        throw Failure(localized("The sample pictures cannot be painted."));
    return *image;
}

Memory memoryOf(const SampleItem& item, const QString& text, Date timestamp)
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    return {.id = id,
            .timestamp = timestamp,
            .appName = item.app,
            .bundleID = item.bundleID,
            .text = text,
            .filename = id + u".jpg"_s,
            .title = item.title,
            .link = item.link()};
}

} // namespace

SampleLibrary::SampleLibrary(Surroundings surroundings, const SampleContents& contents,
                             Recorder& recorder, HistoryStore* store, QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_contents(contents)
    , m_recorder(recorder)
    , m_store(store)
{
}

SampleLibrary::~SampleLibrary() = default;

QCoro::Task<> SampleLibrary::seed(Cancellation cancellation)
{
    if (!m_store || m_contents.isEmpty)
        co_return;
    const QPointer<SampleLibrary> self(this);
    const auto scale = m_contents.scale;
    std::exception_ptr failure;
    try {
        if (scale)
            co_await seedScale(*scale, cancellation);
        else
            co_await seedDemo(cancellation);
    } catch (...) {
        failure = std::current_exception();
    }
    if (!self || cancellation.isRequested())
        co_return;
    // Nothing more is read in this run.
    m_around.recognizer.rest();
    if (failure)
        m_recorder.setStatus((scale ? localized("Could not prepare the large library: %1")
                                    : localized("Could not prepare sample history: %1"))
                                 .arg(describe(failure)));
    else
        m_recorder.setStatus(scale ? localized("Exploring %1 screenshot library").arg(*scale)
                                   : localized("Exploring sample history"));
}

QCoro::Task<> SampleLibrary::seedDemo(Cancellation cancellation)
{
    constexpr double kQuality = 0.78;
    constexpr double kNine = 9 * 3600;
    constexpr double kBetween = 37 * 60 + 40;
    const QPointer<SampleLibrary> self(this);
    const Calendar calendar = m_around.calendar();
    const auto today = calendar.dateInterval(Calendar::Component::Day, m_around.clock.now());
    const QList<SampleItem>& items = sampleItems();
    // A screen is the same each time, and so are its picture and its words.
    std::vector<std::optional<ProcessedImage>> seen(static_cast<std::size_t>(items.size()));
    qsizetype k = 0;
    for (const SampleDay& sampleDay : sampleDays()) {
        const auto day =
            today ? calendar.daysBefore(sampleDay.daysAgo, today->start) : std::nullopt;
        for (int i = 0; day && i < sampleDay.count; ++i, ++k) {
            const qsizetype which = k % items.size();
            auto& shown = seen.at(static_cast<std::size_t>(which));
            if (!shown) {
                ProcessedImage processed = co_await ImageProcessor::process(
                    pictureOf(items.at(which)), kQuality, std::nullopt, m_around.recognizer);
                if (!self || cancellation.isRequested())
                    co_return;
                shown = std::move(processed);
            }
            const Memory memory =
                memoryOf(items.at(which), shown->text, *day + kNine + i * kBetween);
            const QFuture<void> saved = m_store->save(memory, shown->jpeg);
            co_await awaited(saved);
            if (!self || cancellation.isRequested())
                co_return;
        }
    }
}

QCoro::Task<> SampleLibrary::seedScale(qsizetype count, Cancellation cancellation)
{
    // What is measured is the library, so no row has a picture of its own.
    constexpr double kQuality = 0.4;
    // Longer ago no calendar has a day.
    constexpr qsizetype kFar = 10'000'000;
    const QPointer<SampleLibrary> self(this);
    QElapsedTimer timer;
    timer.start();
    const SampleItem item = {
        u"Notes"_s, {}, u"Sample"_s, {u"Sample content for a large library."_s}};
    const ProcessedImage processed =
        co_await ImageProcessor::process(pictureOf(item), kQuality, QString(), m_around.recognizer);
    if (!self || cancellation.isRequested())
        co_return;

    const double interval = m_contents.scaleInterval;
    const Spread spread = SampleLibrary::spread(count, interval);
    const Calendar calendar = m_around.calendar();
    const auto today = calendar.dateInterval(Calendar::Component::Day, m_around.clock.now());
    ScaleRows rows(m_contents.seed ? QRandomGenerator(*m_contents.seed)
                                   : QRandomGenerator::securelySeeded());
    qsizetype saved = 0;
    for (qsizetype ago = std::min(spread.days - 1, kFar); today && ago >= 0; --ago) {
        const auto day = calendar.daysBefore(static_cast<int>(ago), today->start);
        for (qsizetype i = 0; day && i < spread.perDay && saved < count; ++i, ++saved) {
            const Memory memory = rows.next(*day + interval * static_cast<double>(i));
            const QFuture<void> save = m_store->save(memory, processed.jpeg);
            co_await awaited(save);
            if (!self || cancellation.isRequested())
                co_return;
        }
    }
    Q_EMIT measured(u"scale: seeded %1 over %2 days in %3"_s.arg(
        QString::number(count), QString::number(spread.days), inSeconds(elapsed(timer))));
}

void SampleLibrary::tellFirstRefresh(double seconds)
{
    if (m_contents.scale && !m_contents.isEmpty)
        Q_EMIT measured(u"scale: first refresh %1"_s.arg(inSeconds(seconds)));
}

SampleLibrary::Spread SampleLibrary::spread(qsizetype count, double interval)
{
    constexpr double kSecondsADay = 86'400;
    // More than anybody has, and far from the ends of the numbers.
    constexpr double kMost = 1e15;
    const double perDay = std::clamp(kSecondsADay / interval, 1.0, kMost);
    Spread spread = {.perDay = static_cast<qsizetype>(perDay)};
    if (count > 0)
        spread.days = (count - 1) / spread.perDay + 1;
    return spread;
}

} // namespace mossbank
