// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Tray/TrayMenu.h"

#include "Mossbank/Model/Texts.h"
#include "MossbankCore/Support/Characters.h"

#include <QStringList>

namespace mossbank {

namespace {

TrayEntry line(const QString& text)
{
    return {.title = text, .isEnabled = false, .isVisible = !text.isEmpty()};
}

TrayEntry button(TrayCommand command, const QString& title)
{
    return {.title = title, .choice = {.command = command}};
}

QString elided(const QString& text)
{
    if (Characters::count(text) <= TrayMenu::kLineLength)
        return text;
    return Characters::prefix(text, TrayMenu::kLineLength - 1).toString() + u'…';
}

/// A menu does not break its lines. What is left over after the last one is left out.
QStringList broken(const QString& text)
{
    QStringList lines;
    QString line;
    for (const QString& word : text.simplified().split(u' ', Qt::SkipEmptyParts)) {
        const QString longer = line.isEmpty() ? word : line + u' ' + word;
        const bool isLast = lines.size() == TrayMenu::kErrorLines - 1;
        if (line.isEmpty() || isLast || Characters::count(longer) <= TrayMenu::kLineLength) {
            line = longer;
            continue;
        }
        lines.append(elided(line));
        line = word;
    }
    lines.append(elided(line));
    return lines;
}

QList<TrayEntry> errorLines(const QString& message)
{
    const QStringList lines = broken(message);
    QList<TrayEntry> entries;
    for (int number = 0; number < TrayMenu::kErrorLines; ++number)
        entries.append(line(lines.value(number)));
    return entries;
}

TrayEntry mainButton(const TrayState& state)
{
    TrayEntry entry =
        button(TrayCommand::ToggleRecording, state.isRecording ? localized("Pause Recording")
                                             : state.isPaused  ? localized("Resume Recording")
                                                               : localized("Start Recording"));
    entry.isEnabled = !state.isDemo;
    return entry;
}

TrayEntry pauseMenu(const TrayState& state)
{
    TrayEntry menu = {.title = localized("Pause For"), .isVisible = state.isRecording};
    for (const PauseLength length : PauseLength::kAllCases) {
        TrayEntry entry = button(TrayCommand::PauseFor, localized(length.label()));
        entry.choice.length = length;
        menu.entries.append(entry);
    }
    return menu;
}

TrayEntry cancelButton(const TrayState& state)
{
    TrayEntry entry = button(TrayCommand::CancelPause, localized("Cancel Timed Pause"));
    entry.isVisible = !state.isRecording && state.isPaused;
    return entry;
}

TrayEntry captureButton(const TrayState& state)
{
    TrayEntry entry = button(TrayCommand::CaptureNow, localized("Capture Now"));
    entry.isEnabled = state.isRecording;
    return entry;
}

} // namespace

QList<TrayEntry> TrayMenu::entries(const TrayState& state)
{
    return QList<TrayEntry>{line(elided(state.status.simplified()))} +
           errorLines(state.errorMessage.value_or(QString())) +
           QList<TrayEntry>{
               mainButton(state),
               pauseMenu(state),
               cancelButton(state),
               captureButton(state),
               button(TrayCommand::ExcludeFrontApplication, localized("Exclude the App in Front")),
               button(TrayCommand::OpenWindow, localized("Open Mossbank")),
               TrayEntry{.isDivider = true},
               button(TrayCommand::Quit, localized("Quit Mossbank")),
           };
}

} // namespace mossbank
