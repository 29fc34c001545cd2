// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/AppModel.h"

#include "Mossbank/Model/Preferences.h"
#include "Mossbank/Model/Texts.h"
#include "Mossbank/Ports/Appearance.h"
#include "Mossbank/Ports/Screen.h"
#include "MossbankCore/Library/AesGcm.h"
#include "MossbankCore/Library/VaultKey.h"
#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Failure.h"

#include <utility>

namespace mossbank {

namespace {

/// Before the cipher is known to work, no key is asked for.
ImageVault openVault(Keychain& keychain)
{
    AesGcm::check();
    return ImageVault(VaultKey::load(keychain, VaultKey::kService, VaultKey::kAccount));
}

} // namespace

OpenedLibrary OpenedLibrary::at(const QString& root, Keychain* keychain)
{
    OpenedLibrary library;
    try {
        if (keychain)
            library.vault = openVault(*keychain);
    } catch (const Failure& failure) {
        library.errorMessage =
            localized("Screenshots will be saved unencrypted: %1").arg(failure.message());
    }
    try {
        library.store = std::make_unique<HistoryStore>(
            HistoryStore::Writing{.root = root, .vault = library.vault});
    } catch (const Failure& failure) {
        library.errorMessage = localized("History is unavailable: %1").arg(failure.message());
    }
    return library;
}

AppModel::AppModel(Surroundings surroundings, OpenedLibrary library, QObject* parent)
    : QObject(parent)
    , m_clock(surroundings.clock)
    , m_screen(surroundings.screen)
    , m_preferences(surroundings.preferences)
    , m_addressSource(surroundings.addresses)
    , m_appearance(surroundings.appearance)
    , m_store(std::move(library.store))
    , m_vault(std::move(library.vault))
    , m_addresses(surroundings.addresses, surroundings.clock)
    , m_timedPause(surroundings.clock, surroundings.preferences)
    , m_recorder(surroundings, {.pauses = m_timedPause,
                                .afterSave = m_afterSave,
                                .addresses = m_addresses,
                                .store = m_store.get()})
    , m_pauses(surroundings, m_timedPause, m_recorder)
    , m_exclusions(surroundings, m_recorder)
    , m_housekeeping(surroundings, m_recorder, m_store.get())
    , m_listing(surroundings, m_recorder, m_store.get())
    , m_grouping(m_listing)
    , m_loginItem(surroundings.loginService, surroundings.preferences, m_recorder)
    , m_quitGuard(surroundings, m_recorder)
    , m_sampleLibrary(surroundings, library.sample, m_recorder, m_store.get())
    , m_launch(surroundings, {.recorder = m_recorder,
                              .pauses = m_pauses,
                              .housekeeping = m_housekeeping,
                              .listing = m_listing,
                              .loginItem = m_loginItem,
                              .quitGuard = m_quitGuard,
                              .sample = m_sampleLibrary})
    , m_updater(surroundings.updates, m_recorder)
{
    m_afterSave.follow(m_housekeeping, m_listing);
    connect(&m_housekeeping, &Housekeeping::deleted, &m_listing, [this](bool isComplete) {
        isComplete ? m_listing.forgetAll() : m_listing.refreshSoon();
    });
    connect(&m_preferences, &Preferences::cannotBeStored, this, &AppModel::tellOfUnstored);
    connect(&m_preferences, &Preferences::storedAgain, this, &AppModel::tellOfStored);
    connect(&m_preferences, &Preferences::savesAddressesChanged, this, &AppModel::followAddresses);
    connect(&m_preferences, &Preferences::appearanceModeChanged, this, &AppModel::applyAppearance);
    connect(&m_quitGuard, &QuitGuard::terminates, this, &AppModel::prepareToQuit);
    if (library.errorMessage)
        m_recorder.setErrorMessage(library.errorMessage);
    if (!m_preferences.isReadable())
        tellBesides(
            localized("The choices in %1 cannot be read, so nothing is recorded unasked. Mend the "
                      "file and start Mossbank again.")
                .arg(m_preferences.path()));
}

AppModel::~AppModel() = default;

QStringList AppModel::displayNames() const
{
    return m_screen.displayNames();
}

bool AppModel::mayRecordScreen() const
{
    return m_screen.isAllowed();
}

void AppModel::finishedLaunching()
{
    applyAppearance();
    m_exclusions.watchActiveApps();
    m_loginItem.refresh();
    m_launch.startUp();
    // It lasts for a session of the desktop; the choice, once made, lasts for good.
    if (m_preferences.hasChosenAddresses())
        followAddresses();
    m_launch.finishedLaunching();
}

void AppModel::applyAppearance()
{
    if (m_preferences.isDemo())
        return;
    const QString mode = m_preferences.appearanceMode();
    m_appearance.apply(mode == u"light"  ? Appearance::Mode::Light
                       : mode == u"dark" ? Appearance::Mode::Dark
                                         : Appearance::Mode::System);
}

void AppModel::followAddresses()
{
    if (!m_preferences.savesAddresses()) {
        m_addressSource.letBe();
        return;
    }
    const QString told = m_addressSource.switchOn();
    // It asks the user to do something, but not at the price of what stands there already.
    if (told.isEmpty())
        return;
    if (m_recorder.errorMessage())
        m_recorder.setStatus(told);
    else
        m_recorder.setErrorMessage(told);
}

void AppModel::tellOfUnstored(const QString& reason)
{
    m_unstored =
        localized("Your choices cannot be saved: %1. They hold until Mossbank ends.").arg(reason);
    tellBesides(m_unstored);
}

void AppModel::tellOfStored()
{
    if (!m_recorder.errorMessage())
        return;
    const QString rest = QString(*m_recorder.errorMessage()).remove(m_unstored).trimmed();
    m_recorder.setErrorMessage(rest.isEmpty() ? std::nullopt : std::optional(rest));
}

void AppModel::tellBesides(const QString& message)
{
    const auto& before = m_recorder.errorMessage();
    m_recorder.setErrorMessage(before ? *before + u' ' + message : message);
}

void AppModel::prepareToQuit()
{
    m_pauses.rest();
    if (m_recorder.isRecording())
        m_recorder.stopForEnd();
    if (!m_recorder.isCapturing()) {
        Q_EMIT readyToQuit();
        return;
    }
    connect(&m_recorder, &Recorder::passEnded, this, &AppModel::readyToQuit, Qt::UniqueConnection);
    m_quitting = Job::start(&AppModel::quitInAnyCase, this);
}

QCoro::Task<> AppModel::quitInAnyCase(Cancellation cancellation)
{
    // A pass may wait for a screen or a recogniser that has stopped answering.
    constexpr double kPatience = 10;
    if (co_await m_clock.sleep(kPatience, cancellation))
        Q_EMIT readyToQuit();
}

} // namespace mossbank
