// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Platform/Linux/SecretPrompts.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mossbank {

namespace {

/// As shells write patterns: a star stands for anything.
const QStringList& patterns()
{
    static const QStringList kPatterns = {
        // Pins and pass phrases of GnuPG.
        u"pinentry*"_s,
        u"org.gnupg.pinentry*"_s,
        u"org.kde.pinentry*"_s,
        // The keyrings' questions.
        u"gcr-prompter"_s,
        u"gcr-viewer"_s,
        u"org.gnome.gcr*"_s,
        u"kwalletd*"_s,
        u"org.kde.kwalletd*"_s,
        u"kwallet-query"_s,
        u"ksecretd"_s,
        u"org.kde.ksecretd"_s,
        // Those who ask before something is done as administrator.
        u"polkit-*-authentication-agent*"_s,
        u"org.kde.polkit-*"_s,
        u"polkit-gnome*"_s,
        u"polkit-kde*"_s,
        u"polkit-mate*"_s,
        u"mate-polkit*"_s,
        u"xfce-polkit*"_s,
        u"lxqt-policykit*"_s,
        u"lxpolkit"_s,
        u"ukui-polkit*"_s,
        u"dde-polkit-agent"_s,
        u"pantheon-agent-polkit"_s,
        u"io.elementary.desktop.agent-polkit"_s,
        u"budgie-polkit*"_s,
        u"gksu*"_s,
        u"kdesu*"_s,
        u"kdesudo*"_s,
        u"lxqt-sudo"_s,
        u"lxsudo"_s,
        u"lxsu"_s,
        // Passwords of keys and of other machines.
        u"*askpass*"_s,
        // Lockers.
        u"i3lock*"_s,
        u"xsecurelock*"_s,
        u"xscreensaver*"_s,
        u"xlock"_s,
        u"slock"_s,
        u"light-locker*"_s,
        u"mate-screensaver*"_s,
        u"cinnamon-screensaver*"_s,
        u"gnome-screensaver*"_s,
        u"xfce4-screensaver*"_s,
        u"ukui-screensaver*"_s,
        u"kscreenlocker*"_s,
    };
    return kPatterns;
}

bool isPrompt(const QString& name)
{
    static const QList<QRegularExpression> kExpressions = [] {
        QList<QRegularExpression> expressions;
        for (const QString& pattern : patterns())
            expressions += QRegularExpression::fromWildcard(pattern, Qt::CaseInsensitive);
        return expressions;
    }();
    return std::ranges::any_of(kExpressions, [&](const QRegularExpression& expression) {
        return expression.match(name).hasMatch();
    });
}

} // namespace

bool isSecretPrompt(const WindowClass& windowClass)
{
    return isPrompt(windowClass.instance) || isPrompt(windowClass.name);
}

} // namespace mossbank
