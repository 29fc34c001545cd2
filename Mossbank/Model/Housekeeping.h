// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/Surroundings.h"
#include "MossbankCore/Support/Date.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QFuture>
#include <QLocale>
#include <QObject>
#include <QString>

namespace mossbank {

class HistoryStore;
class Recorder;

/// Keeps the library in order over time: removes what is older than the user wants, settles what
/// was cut short, seals the pictures from before there was a key, removes all of it on demand.
/// Nothing of it stops a recording but the last.
///
/// Threading: the main thread, given up at each wait for the library.
/// Errors: none are thrown; the recorder's lines say what became of it.
class Housekeeping : public QObject {
    Q_OBJECT

public:
    /// The recorder and the store outlive it. Without a store it does nothing.
    Housekeeping(Surroundings surroundings, Recorder& recorder, HistoryStore* store,
                 QObject* parent = nullptr);

    /// Removes what is older than the days that the user chose; at most once a minute, unless
    /// `force` is given.
    QCoro::Task<> applyRetention(bool force);

    /// Settles what saves that were cut short have left.
    QCoro::Task<> tidyImages();

    /// Seals the pictures that lie plain, some hundreds at a time with a rest in between, and says
    /// how many it were.
    QCoro::Task<> sealScreenshotsFromBeforeEncryption(Cancellation cancellation);

    /// Stops recording and removes every screenshot. `deleted` follows, also when that failed.
    void deleteAll();

    /// Name of the folder that the library is in.
    QString libraryFolder() const;

    /// What the user can expect of an interval of so many seconds: a note for the settings.
    static QString estimate(double interval, bool skipsUnchangedScreens, const QLocale& locale);

    /// The size of a library of so many bytes, for showing.
    static QString storageLabel(qint64 bytes, const QLocale& locale);

Q_SIGNALS:
    /// `isComplete`: without a failure.
    void deleted(bool isComplete);

private:
    QCoro::Task<> afterDeletion(QFuture<void> deletion, Cancellation cancellation);
    void report(const char* sentence, const QString& reason);

    Surroundings m_around;
    Recorder& m_recorder;
    HistoryStore* m_store;
    /// Not stored: a launch always allows a removal.
    Date m_lastPruneAt = Date::distantPast();
    /// Last: cancelled before anything above goes.
    Job m_deleting;
};

} // namespace mossbank
