// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/SampleItems.h"

#include "MossbankCore/Capture/WindowTitle.h"

#include <QUuid>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

const QString kBrowser = u"com.apple.Safari"_s;

struct NamedApplication {
    QString name;
    QString bundleID;
};

const QList<NamedApplication>& applications()
{
    static const QList<NamedApplication> kApplications = {
        {u"Safari"_s, kBrowser},
        {u"Xcode"_s, u"com.apple.dt.Xcode"_s},
        {u"Notes"_s, u"com.apple.Notes"_s},
        {u"Mail"_s, u"com.apple.mail"_s},
        {u"Slack"_s, u"com.tinyspeck.slackmacgap"_s},
        {u"Terminal"_s, u"com.apple.Terminal"_s}};
    return kApplications;
}

const QStringList& titles()
{
    static const QStringList kTitles = {
        u"Quarterly forecast"_s, u"Project Aurora — design notes"_s,
        u"Release checklist"_s,  u"Pull request #482: encrypt the vault"_s,
        u"Invoice 2026-114"_s,   u"Weekly team sync"_s};
    return kTitles;
}

const QStringList& vocabulary()
{
    static const QStringList kWords = {
        u"project"_s,  u"aurora"_s,     u"review"_s,  u"timeline"_s, u"capture"_s,   u"index"_s,
        u"search"_s,   u"screenshot"_s, u"history"_s, u"privacy"_s,  u"retention"_s, u"display"_s,
        u"keyboard"_s, u"release"_s,    u"budget"_s,  u"meeting"_s,  u"invoice"_s,   u"draft"_s};
    return kWords;
}

} // namespace

QString SampleItem::link() const
{
    return bundleID == kBrowser ? u"https://example.com/research/visual-memory"_s : QString();
}

const QList<SampleItem>& sampleItems()
{
    static const QList<SampleItem> kItems = {
        {u"Notes"_s,
         u"com.apple.Notes"_s,
         u"A calmer workspace"_s,
         {u"Product notes"_s, u"A little less searching. A little more remembering."_s,
          u"Capture the useful moments, then make them easy to find."_s,
          u"Keep everything on the device."_s, u"Next: test the first complete capture loop."_s}},
        {u"Safari"_s,
         kBrowser,
         u"Research / visual memory"_s,
         {u"Research notebook"_s, u"Small details are easier to find with context."_s,
          u"Screenshots preserve the layout around the words."_s,
          u"A timeline restores the order of the day."_s, u"Search phrase: photographic memory"_s}},
        {u"Xcode"_s,
         u"com.apple.dt.Xcode"_s,
         u"CaptureStore"_s,
         {u"Project Aurora"_s, u"func findMoments(matching phrase: String) async throws {"_s,
          u"    let results = try await history.search(phrase)"_s, u"    timeline.show(results)"_s,
          u"}"_s, u"Build succeeded. Ready for another small step."_s}},
        {u"Notes"_s,
         u"com.apple.Notes"_s,
         u"Friday / work in progress"_s,
         {u"A good place to pick up again."_s, u"Project Aurora — Friday review"_s,
          u"The first version should do one thing well:"_s,
          u"Find something you remember seeing, without remembering where."_s, u"Next steps"_s,
          u"Review the timeline interaction."_s, u"Make the privacy controls easy to find."_s}}};
    return kItems;
}

const QList<SampleDay>& sampleDays()
{
    static const QList<SampleDay> kDays = {{0, 9}, {1, 4}, {2, 2}, {4, 1}};
    return kDays;
}

Memory ScaleRows::next(Date timestamp)
{
    constexpr int kShortest = 5;
    constexpr int kLongest = 40;
    if (m_left == 0) {
        const NamedApplication& application = any(applications());
        m_shown = {application.name, application.bundleID, any(titles()), {}};
        m_left = m_random.bounded(kShortest, kLongest + 1);
    }
    --m_left;
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const auto title =
        WindowTitle::worthKeeping(u"%1 — %2"_s.arg(m_shown.title, m_shown.app), m_shown.app);
    return {.id = id,
            .timestamp = timestamp,
            .appName = m_shown.app,
            .bundleID = m_shown.bundleID,
            .text = words(),
            .filename = id + u".jpg"_s,
            .title = title.value_or(QString()),
            .link = {}};
}

QString ScaleRows::words()
{
    constexpr int kCount = 90;
    QStringList drawn;
    drawn.reserve(kCount);
    for (int word = 0; word < kCount; ++word)
        drawn.append(any(vocabulary()));
    return drawn.join(u' ');
}

} // namespace mossbank
