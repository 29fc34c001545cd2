// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Model/BrowserAddress.h"

#include "MossbankCore/Ports/Clock.h"
#include "MossbankCore/Support/Awaited.h"

#include <QPromise>
#include <QUrl>

#include <utility>

namespace mossbank {

using namespace Qt::StringLiterals;

namespace {

bool isWebPage(const QString& text)
{
    // Browsers leave signs as they are that an address should have escaped.
    const QUrl url(text, QUrl::TolerantMode);
    return url.isValid() && (url.scheme() == u"http" || url.scheme() == u"https");
}

} // namespace

/// A question under way. It is settled once: by its answer or by the clock.
struct BrowserAddress::Question {
    QString bundleID;
    QString name;
    QFuture<AddressAnswer> answer;
    QPromise<std::optional<QString>> address;
    Job listening;
    Job limit;
};

BrowserAddress::BrowserAddress(AddressSource& source, Clock& clock)
    : m_source(source)
    , m_clock(clock)
{
}

BrowserAddress::~BrowserAddress()
{
    while (!m_questions.empty())
        settle(m_questions.front(), AddressAnswer::failed());
}

const QMap<QString, QString>& BrowserAddress::dialects()
{
    static const QMap<QString, QString> kDialects = [] {
        const QString head = u"with timeout of 2 seconds\n  tell application id \""_s;
        const QString ofDocuments = u"\"\n    if (count of documents) is 0 then return \"\"\n"
                                    "    return URL of front document\n"
                                    "  end tell\nend timeout"_s;
        const QString ofWindows = u"\"\n    if (count of windows) is 0 then return \"\"\n"
                                  "    if mode of front window is \"incognito\" then return \"\"\n"
                                  "    return URL of active tab of front window\n"
                                  "  end tell\nend timeout"_s;
        QMap<QString, QString> dialects;
        for (const QString& browser :
             {u"com.apple.Safari"_s, u"com.apple.SafariTechnologyPreview"_s,
              u"com.kagi.kagimacOS"_s})
            dialects.insert(browser, head + browser + ofDocuments);
        for (const QString& browser :
             {u"com.google.Chrome"_s, u"com.google.Chrome.canary"_s, u"com.google.Chrome.beta"_s,
              u"org.chromium.Chromium"_s, u"com.brave.Browser"_s, u"com.brave.Browser.beta"_s,
              u"com.microsoft.edgemac"_s, u"com.microsoft.edgemac.Beta"_s,
              u"company.thebrowser.Browser"_s, u"com.vivaldi.Vivaldi"_s,
              u"com.operasoftware.Opera"_s, u"com.sigmaos.sigmaos.macos"_s})
            dialects.insert(browser, head + browser + ofWindows);
        return dialects;
    }();
    return kDialects;
}

QFuture<std::optional<QString>> BrowserAddress::address(const QString& bundleID,
                                                        const QString& name)
{
    if (!canAsk(bundleID) || m_refused.contains(bundleID))
        return QtFuture::makeReadyFuture(std::optional<QString>());
    const auto question = std::make_shared<Question>();
    question->bundleID = bundleID;
    question->name = name;
    question->address.start();
    question->answer = m_source.ask(bundleID);
    question->listening = Job::start(&BrowserAddress::listen, this, question);
    question->limit = Job::start(&BrowserAddress::limit, this, question);
    m_questions.push_back(question);
    return question->address.future();
}

QCoro::Task<> BrowserAddress::listen(std::shared_ptr<Question> question, Cancellation cancellation)
{
    AddressAnswer answer;
    try {
        answer = co_await awaited(question->answer);
    } catch (...) {
        answer = AddressAnswer::failed();
    }
    if (!cancellation.isRequested())
        settle(question, answer);
}

QCoro::Task<> BrowserAddress::limit(std::shared_ptr<Question> question, Cancellation cancellation)
{
    constexpr double kPatience = 4;
    if (co_await m_clock.sleep(kPatience, cancellation))
        settle(question, AddressAnswer::failed());
}

void BrowserAddress::settle(std::shared_ptr<Question> question, const AddressAnswer& answer)
{
    std::erase(m_questions, question);
    question->listening.cancel();
    question->limit.cancel();
    if (answer.kind == AddressAnswer::Kind::Refused) {
        m_refused.insert(question->bundleID);
        if (!m_refusedNames.contains(question->name))
            m_refusedNames.append(question->name);
    }
    const bool isWanted = answer.kind == AddressAnswer::Kind::Answered && isWebPage(answer.text);
    question->address.addResult(isWanted ? std::optional(answer.text) : std::nullopt);
    question->address.finish();
}

} // namespace mossbank
