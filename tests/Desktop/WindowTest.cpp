// SPDX-License-Identifier: Apache-2.0
#include "tests/Desktop/WindowTest.h"

#include "MossbankCore/Library/HistoryStore.h"
#include "tests/Desktop/GrabbedDisplay.h"

#include <QBuffer>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QTest>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;

namespace mossbank::test {

namespace {

/// The longest that anything on a busy machine takes.
constexpr int kLongest = 30'000;
constexpr int kBetweenLooks = 50;

const QString kSearch = u"Search screen history"_s;

QByteArray picture(const QColor& colour)
{
    QImage image(1280, 720, QImage::Format_RGB32);
    image.fill(colour);
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "JPEG", 95))
        qFatal("a picture cannot be written");
    return buffer.data();
}

/// JPEG changes colours a little.
bool areNearlySame(QRgb one, QRgb other)
{
    constexpr int kMostApart = 6;
    return std::abs(qRed(one) - qRed(other)) <= kMostApart &&
           std::abs(qGreen(one) - qGreen(other)) <= kMostApart &&
           std::abs(qBlue(one) - qBlue(other)) <= kMostApart;
}

} // namespace

RunningMossbank& WindowTest::mossbank()
{
    if (!m_mossbank) {
        m_mossbank = std::make_unique<RunningMossbank>();
        m_mossbank->setSessionBus(AccessibleDesktop::sessionBus());
        m_mossbank->setVariable(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        m_mossbank->setVariable(u"LC_ALL"_s, u"C.UTF-8"_s);
        m_mossbank->setVariable(u"LANGUAGE"_s, {});
        // It is about noon wherever it is run, and no day ends meanwhile.
        constexpr int kNoon = 12;
        m_ahead = kNoon - QDateTime::currentDateTimeUtc().time().hour();
        // The signs of these zones are turned around.
        m_mossbank->setVariable(
            u"TZ"_s, u"Etc/GMT%1%2"_s.arg(m_ahead < 0 ? u"+"_s : u"-"_s).arg(std::abs(m_ahead)));
        m_mossbank->openWindow();
        choose({});
    }
    return *m_mossbank;
}

void WindowTest::choose(QMap<QString, QString> choices)
{
    choices.insert(u"recordsAtLaunch"_s, u"false"_s);
    mossbank().choose(choices);
}

void WindowTest::add(const Shot& shot)
{
    HistoryStore store(HistoryStore::Writing{.root = mossbank().library()});
    const QDateTime moment(today().addDays(-shot.daysAgo), QTime(0, 1).addSecs(shot.second),
                           Qt::UTC);
    constexpr int kHour = 3600;
    store
        .save({.id = shot.id,
               .timestamp = {static_cast<double>(moment.toSecsSinceEpoch() - m_ahead * kHour)},
               .appName = u"Editor"_s,
               .bundleID = {},
               .text = shot.text,
               .filename = shot.id + u".jpg"_s,
               .title = {},
               .link = {}},
              picture(shot.colour))
        .waitForFinished();
}

QDate WindowTest::today() const
{
    constexpr int kHour = 3600;
    return QDateTime::currentDateTimeUtc().addSecs(m_ahead * kHour).date();
}

QString WindowTest::pictureOf(const QString& id)
{
    return mossbank().library() + u"/Images/"_s + id + u".jpg"_s;
}

bool WindowTest::open()
{
    if (!mossbank().start())
        return false;
    m_spoken = std::make_unique<SpokenProgram>(mossbank().process());
    return desktop().bringToFront(u"Mossbank"_s) && searchesFor({});
}

bool WindowTest::soon(const std::function<bool()>& isSo, const QString& what)
{
    const QDeadlineTimer deadline(kLongest);
    while (!isSo()) {
        if (deadline.hasExpired()) {
            qWarning().noquote() << what << "does not come. There is:\n"
                                 << spoken().tree() << "\nThe terminal has:\n"
                                 << mossbank().terminal();
            return false;
        }
        QTest::qWait(kBetweenLooks);
    }
    return true;
}

bool WindowTest::shows(SpokenRole role, const QString& name)
{
    return soon([&] { return spoken().find(role, name).has_value(); }, name);
}

bool WindowTest::hides(SpokenRole role, const QString& name)
{
    // What has ended altogether shows nothing either.
    return soon(
        [&] {
            const QList<SpokenPart> parts = spoken().parts();
            return !parts.isEmpty() && std::ranges::none_of(parts, [&](const SpokenPart& part) {
                return part.is(role) && part.name == name;
            });
        },
        u"the end of "_s + name);
}

bool WindowTest::press(SpokenRole role, const QString& name)
{
    return soon(
        [&] {
            QList<SpokenPart> parts = spoken().parts(role);
            parts.removeIf([&](const SpokenPart& part) { return part.name != name; });
            return parts.size() == 1 && spoken().press(parts.constFirst());
        },
        u"one to press: "_s + name);
}

bool WindowTest::lists(qsizetype count)
{
    return soon([&] { return spoken().parts(SpokenRole::ListItem).size() == count; },
                u"a list of %1"_s.arg(count));
}

bool WindowTest::selects(qsizetype place)
{
    return soon(
        [&] {
            const QList<SpokenPart> rows = spoken().parts(SpokenRole::ListItem);
            for (qsizetype row = 0; row < rows.size(); ++row) {
                if (rows.at(row).has(SpokenState::Selected) != (row == place))
                    return false;
            }
            return place < rows.size();
        },
        u"the selection of %1"_s.arg(place));
}

bool WindowTest::searchesFor(const QString& words)
{
    return soon(
        [&] {
            const auto field = spoken().find(SpokenRole::Text, kSearch);
            return field && field->has(SpokenState::Focused) && spoken().text(*field) == words;
        },
        u"the search field with the keys and \"%1\""_s.arg(words));
}

bool WindowTest::showsPictureOf(const QColor& colour)
{
    return soon(
        [&] {
            const auto viewer = spoken().find(SpokenRole::Button, u"Screenshot of Editor"_s);
            const QImage display = grabDisplay();
            const QPoint middle = viewer ? spoken().frame(*viewer).center() : QPoint(-1, -1);
            return display.rect().contains(middle) &&
                   areNearlySame(display.pixel(middle), colour.rgb());
        },
        u"the picture of the colour "_s + colour.name());
}

void WindowTest::letGo()
{
    if (m_mossbank && m_spoken && !QTest::currentTestFailed())
        QCOMPARE(m_mossbank->stop(SIGTERM), 0);
    m_spoken.reset();
    m_mossbank.reset();
}

} // namespace mossbank::test
