// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Model/StoredChoices.h"
#include "MossbankCore/Support/Date.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace mossbank {

/// The user's stored choices. They are read once and written when set: nothing changes them but
/// their setters, so that what hangs on a choice is always told of it. A setter tells also when
/// the value is the one that stood there: what hangs on a choice is redone whenever it is made.
/// What is remembered from one run to the next and is no choice, the dates and the login item,
/// stands in the file alone.
///
/// What is set is on the disk when its setter returns, or the user has to know that it is not:
/// `cannotBeStored` says so. The choice counts all the same while the program runs, and is tried
/// again with the next one.
///
/// A value that is missing, or is not of its type, counts as its default. No value is held to
/// bounds in reading: a stored one stands as it is.
///
/// With the sample library nothing is read and nothing stored: whoever looks around in it finds the
/// own choices as they were.
///
/// Threading: the main thread.
class Preferences : public QObject {
    Q_OBJECT

public:
    /// What a look at the sample library is begun with.
    struct Sample {
        QString answerEngine = QStringLiteral("apple");
        /// Searches by meaning where one is named.
        QString embeddingModel = {};
    };

    /// Over the INI file at `path`, which need not exist. `passwordManagers`: what is excluded by
    /// default besides what is so on every system.
    explicit Preferences(const QString& path, const QStringList& passwordManagers = {},
                         QObject* parent = nullptr);
    explicit Preferences(const Sample& sample, const QStringList& passwordManagers = {},
                         QObject* parent = nullptr);

    /// The user's own file. Throws Failure where the user has no folder for it.
    static QString userPath();

    /// Whether the file could be read, or is not there. Where it could not, every choice is at its
    /// default, so that nothing is recorded unasked, and the user must know. A copy of the file is
    /// kept before anything is written to it.
    bool isReadable() const { return m_file.isReadable(); }

    /// Whether the days that screenshots are kept are what the user wants: with a file that could
    /// not be read that is known only once it was chosen anew.
    bool isRetentionKnown() const;

    /// What stands in the file and is none of the choices, and the choices that stand there with
    /// what cannot be their value: slips of the pen, by which a choice counts as not made.
    QStringList unknownKeys() const;
    QStringList unusableKeys() const;

    /// Where the choices are stored. Empty with the sample library.
    QString path() const { return m_file.path(); }

    /// Whether the library is the sample library, which nothing is ever recorded into.
    bool isDemo() const { return m_isDemo; }

    /// Seconds of rest between two looks at the screen.
    double interval() const { return m_interval; }
    void setInterval(double seconds);

    /// Days that screenshots are kept. 0 or less: for ever.
    int retentionDays() const { return m_retentionDays; }
    void setRetentionDays(int days);

    /// Quality of the pictures, from 0 to 1.
    double imageQuality() const { return m_imageQuality; }
    void setImageQuality(double quality);

    /// Whether a screen that has not changed is left out.
    bool skipsUnchangedScreens() const { return m_skipsUnchangedScreens; }
    void setSkipsUnchangedScreens(bool skips);

    /// What counts as a change: "flicker", "obvious"; any other text means any change.
    QString changeMode() const { return m_changeMode; }
    void setChangeMode(const QString& mode);

    /// Whether windows are light or dark: "light", "dark"; any other text means as the desktop has
    /// it.
    QString appearanceMode() const { return m_appearanceMode; }
    void setAppearanceMode(const QString& mode);

    /// Whether a switch to another application is looked at as well.
    bool capturesOnAppSwitch() const { return m_capturesOnAppSwitch; }
    void setCapturesOnAppSwitch(bool captures);

    /// Minutes after which an unchanged screen is saved all the same.
    double unchangedRefreshMinutes() const { return m_unchangedRefreshMinutes; }
    void setUnchangedRefreshMinutes(double minutes);

    /// Whether the user has been told what can be searched for.
    bool hasSeenSearchHint() const { return m_hasSeenSearchHint; }
    void setHasSeenSearchHint(bool hasSeen);

    /// Whether the user has been told that recording goes on without a window.
    bool hasSeenClosingNotice() const { return m_hasSeenClosingNotice; }
    void setHasSeenClosingNotice(bool hasSeen);

    /// Whether browsers are asked for the address of the page.
    bool savesAddresses() const { return m_savesAddresses; }
    void setSavesAddresses(bool saves);
    /// Whether the user ever chose, rather than left it as it is.
    bool hasChosenAddresses() const;

    /// Whether recording starts with the program.
    bool recordsAtLaunch() const { return m_recordsAtLaunch; }
    void setRecordsAtLaunch(bool records);

    /// Whether recording comes back by itself after a lock, a sleep or another's session.
    bool resumesAfterAway() const { return m_resumesAfterAway; }
    void setResumesAfterAway(bool resumes);

    /// What answers questions.
    QString answerEngine() const { return m_answerEngine; }
    void setAnswerEngine(const QString& engine);

    /// Whether search goes by meaning as well, and by which model of the local server.
    bool searchesByMeaning() const { return m_searchesByMeaning; }
    void setSearchesByMeaning(bool searches);
    QString embeddingModel() const { return m_embeddingModel; }
    void setEmbeddingModel(const QString& model);

    /// The model of the local server that answers questions.
    QString ollamaModel() const { return m_ollamaModel; }
    void setOllamaModel(const QString& model);

    /// How the library is looked at: "timeline", "ask"; any other text means "moments".
    QString lens() const { return m_lens; }
    void setLens(const QString& lens);

    /// Identities of the applications that are never to be in a picture.
    /// What was added in the file since it was last read stays, whatever is set.
    QStringList excludedBundles() const { return m_excludedBundles; }
    void setExcludedBundles(const QStringList& bundleIDs);
    /// What stands behind them in the file as a remark, and so excludes nothing.
    QString remarkBehindExclusions() const;

    /// The end of a timed pause, kept across a restart. Absent when none is stored, and when what
    /// is stored is no date.
    std::optional<Date> pausedUntil() const;
    void setPausedUntil(Date date);
    void removePausedUntil();

    /// Whether the user wants to be started at login, and where the copy of this program lay that
    /// was registered for it; empty when none was.
    bool opensAtLogin() const;
    void setOpensAtLogin(bool opens);
    QString opensAtLoginPath() const;
    void setOpensAtLoginPath(const QString& path);

    /// When recording was on as the program was about to relaunch. Absent when it was not, and when
    /// what is stored is no date.
    std::optional<Date> recordsAfterRelaunch() const;
    void setRecordsAfterRelaunch(Date date);
    void removeRecordsAfterRelaunch();

Q_SIGNALS:
    /// Why the file could not be written, in words for the user. Not again until it could be.
    void cannotBeStored(const QString& reason);
    /// It could be written again, with all that could not be before.
    void storedAgain();
    void intervalChanged();
    void retentionDaysChanged();
    void imageQualityChanged();
    void skipsUnchangedScreensChanged();
    void changeModeChanged();
    void appearanceModeChanged();
    void capturesOnAppSwitchChanged();
    void unchangedRefreshMinutesChanged();
    void hasSeenSearchHintChanged();
    void hasSeenClosingNoticeChanged();
    void savesAddressesChanged();
    void recordsAtLaunchChanged();
    void resumesAfterAwayChanged();
    void answerEngineChanged();
    /// Of these two only when the value is another one: what hangs on them is dear.
    void searchesByMeaningChanged();
    void embeddingModelChanged();
    void ollamaModelChanged();
    void lensChanged();
    void excludedBundlesChanged();

private:
    Preferences(const std::optional<QString>& path, const Sample& sample,
                const QStringList& passwordManagers, QObject* parent);

    template <typename T>
    void choose(T Preferences::*choice, const T& value, const QString& key,
                void (Preferences::*changed)());
    void store(const QString& key, const QVariant& value);
    void remove(const QString& key);
    void tell(bool wasStored, const std::optional<QString>& problem);
    std::optional<Date> date(const QString& key) const;
    void storeDate(const QString& key, Date date);

    StoredChoices m_file;
    bool m_isDemo;
    double m_interval;
    int m_retentionDays;
    /// Since the file was read; what comes into it meanwhile is not what counts now.
    bool m_isRetentionChosen = false;
    double m_imageQuality;
    bool m_skipsUnchangedScreens;
    QString m_changeMode;
    QString m_appearanceMode;
    bool m_capturesOnAppSwitch;
    double m_unchangedRefreshMinutes;
    bool m_hasSeenSearchHint;
    bool m_hasSeenClosingNotice;
    bool m_savesAddresses;
    bool m_recordsAtLaunch;
    bool m_resumesAfterAway;
    QString m_answerEngine;
    bool m_searchesByMeaning;
    QString m_embeddingModel;
    QString m_ollamaModel;
    QString m_lens;
    QStringList m_excludedBundles;
};

} // namespace mossbank
