// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/SignIn.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

/// A name, a password and a note, in this order. It has its title once the name has the focus:
/// before, a browser takes no keys.
const QString kPage = u"<title>Opening</title><input id=name autofocus "
                      u"onfocus=\"document.title = 'Sign in'\"><input id=secret "
                      u"type=password><input id=note>"_s;

qint64 start(AccessibleDesktop& desktop, const QString& kind)
{
    if (kind == u"Chromium")
        return desktop.startChromium({desktop.page(kPage)});
    if (kind == u"Firefox")
        return desktop.startFirefox({desktop.page(kPage)});
    if (kind == u"Qt")
        return desktop.start(QStringLiteral(MOSSBANK_PASSWORD_PROGRAM), {u"Sign in"_s}, {});
    return desktop.start(
        u"yad"_s, {u"--form"_s, u"--title=Sign in"_s, u"--field=Name"_s, u"--field=Password:H"_s},
        u"yad"_s);
}

} // namespace

void addSignInKinds()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"Chromium", "Firefox", "Qt", "GTK"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

QString titleOfSignIn(const QString& kind)
{
    if (kind == u"Chromium")
        return u"Sign in - Chromium"_s;
    return kind == u"Firefox" ? u"Sign in — Mozilla Firefox"_s : u"Sign in"_s;
}

qint64 openSignIn(AccessibleDesktop& desktop, const QString& kind)
{
    const qint64 process = start(desktop, kind);
    return process != 0 && desktop.bringToFront(titleOfSignIn(kind)) ? process : 0;
}

} // namespace mossbank::test
