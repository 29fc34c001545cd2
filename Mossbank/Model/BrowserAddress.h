// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Ports/AddressSource.h"
#include "MossbankCore/Support/Job.h"

#include <QFuture>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace mossbank {

class Clock;

/// The addresses of the pages that browsers show. It asks within a time limit, remembers which
/// browser must not be asked, and lets nothing through that is no web page.
///
/// Threading: the main thread, which it never holds. Two questions for one browser may be under
/// way at once.
/// Errors: none. What cannot be had is absent.
class BrowserAddress {
public:
    /// Both outlive it.
    BrowserAddress(AddressSource& source, Clock& clock);
    ~BrowserAddress();
    Q_DISABLE_COPY_MOVE(BrowserAddress)

    /// The browsers that AppleScript reaches, each with the script that asks it.
    static const QMap<QString, QString>& dialects();

    /// Whether this is a browser that can be asked.
    bool canAsk(const QString& bundleID) const { return m_source.canAsk(bundleID); }

    /// The address of the page that the browser `bundleID` shows, as the browser wrote it, if it is
    /// one of http or https. `name` is what the user knows it by. Comes within four seconds.
    QFuture<std::optional<QString>> address(const QString& bundleID, const QString& name);

    /// The names of the browsers that refused, in the order of refusal. They are not asked again
    /// in this run.
    const QStringList& refusedNames() const { return m_refusedNames; }

private:
    struct Question;

    QCoro::Task<> listen(std::shared_ptr<Question> question, Cancellation cancellation);
    QCoro::Task<> limit(std::shared_ptr<Question> question, Cancellation cancellation);
    void settle(std::shared_ptr<Question> question, const AddressAnswer& answer);

    AddressSource& m_source;
    Clock& m_clock;
    QSet<QString> m_refused;
    QStringList m_refusedNames;
    std::vector<std::shared_ptr<Question>> m_questions;
};

} // namespace mossbank
