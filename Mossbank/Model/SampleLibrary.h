// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <optional>

namespace mossbank {

class HistoryStore;
class Recorder;

/// What a sample library is to hold.
struct SampleContents {
    /// Nothing: whoever begins sees the same.
    bool isEmpty = false;
    /// So many made-up screenshots in place of the few, to see how a library of that size does.
    std::optional<qsizetype> scale = {};
    /// Seconds between two of so many. More than 0.
    double scaleInterval = 30;
    /// What their words are drawn by. Absent: others each time.
    std::optional<quint32> seed = {};
};

/// Fills the sample library with fictional screens, for looking around in without recording.
///
/// Threading: the main thread, given up at each wait for the library and the recogniser.
/// Errors: none are thrown; the recorder's status says what became of it.
class SampleLibrary : public QObject {
    Q_OBJECT

public:
    /// How many screenshots a day holds, and on how many days so many lie.
    struct Spread {
        qsizetype perDay = 1;
        qsizetype days = 1;
        friend bool operator==(Spread, Spread) = default;
    };

    /// The recorder and the store outlive it. Without a store it does nothing.
    SampleLibrary(Surroundings surroundings, const SampleContents& contents, Recorder& recorder,
                  HistoryStore* store, QObject* parent = nullptr);
    ~SampleLibrary() override;

    /// Puts in what the library is to hold.
    QCoro::Task<> seed(Cancellation cancellation);

    /// The first list of what was put in took so many seconds.
    void tellFirstRefresh(double seconds);

    static Spread spread(qsizetype count, double interval);

Q_SIGNALS:
    /// How a large library does, a line for who measures it.
    void measured(const QString& line);

private:
    QCoro::Task<> seedDemo(Cancellation cancellation);
    QCoro::Task<> seedScale(qsizetype count, Cancellation cancellation);

    Surroundings m_around;
    SampleContents m_contents;
    Recorder& m_recorder;
    HistoryStore* m_store;
};

} // namespace mossbank
