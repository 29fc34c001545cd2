// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Workspace/ApplicationFilters.h"

#include "Mossbank/Model/Listing.h"
#include "Mossbank/Views/ApplicationIcons.h"
#include "MossbankCore/Support/Characters.h"

#include <utility>

namespace mossbank {

namespace {

using namespace Qt::StringLiterals;

/// The same for the same name in every run.
double hueOf(const QString& name)
{
    constexpr uint kFactor = 31;
    constexpr uint kHues = 360;
    uint sum = 0;
    for (const QChar unit : name)
        sum = sum * kFactor + unit.unicode();
    return static_cast<double>(sum % kHues) / kHues;
}

} // namespace

ApplicationFilters::ApplicationFilters(Listing& listing, const InstalledApplications& installed,
                                       QObject* parent)
    : QAbstractListModel(parent)
    , m_listing(listing)
    , m_installed(installed)
    , m_apps(listing.stats().apps)
{
    connect(&listing, &Listing::statsChanged, this, &ApplicationFilters::update);
    connect(&listing, &Listing::appFilterChanged, this, [this] {
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {IsChosenRole});
        Q_EMIT chosenChanged();
    });
}

void ApplicationFilters::update()
{
    const QStringList& wanted = m_listing.stats().apps;
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (wanted.contains(m_apps.at(row)))
            continue;
        beginRemoveRows({}, row, row);
        m_apps.removeAt(row);
        endRemoveRows();
    }
    // Both are sorted, so what is left stands in the same order there.
    for (int row = 0; row < wanted.size(); ++row) {
        if (row < rowCount() && m_apps.at(row) == wanted.at(row))
            continue;
        beginInsertRows({}, row, row);
        m_apps.insert(row, wanted.at(row));
        endInsertRows();
    }
}

bool ApplicationFilters::isAll() const
{
    return !m_listing.appFilter();
}

void ApplicationFilters::choose(int row)
{
    if (row >= 0 && row < m_apps.size())
        m_listing.setAppFilter(m_apps.at(row));
}

void ApplicationFilters::chooseAll()
{
    m_listing.setAppFilter(std::nullopt);
}

QString ApplicationFilters::icon(const QString& app) const
{
    if (!m_icons) {
        m_icons.emplace();
        for (const InstalledApplication& installed : m_installed.list())
            m_icons->insert(installed.application.bundleID, installed.icon);
    }
    return m_icons->value(m_listing.stats().bundles.value(app));
}

int ApplicationFilters::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_apps.size());
}

QVariant ApplicationFilters::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_apps.size())
        return {};
    const QString& app = m_apps.at(index.row());
    switch (role) {
    case NameRole:
        return app;
    case PictureRole:
        return ApplicationIcons::url(icon(app));
    case InitialRole:
        return Characters::prefix(app, 1).toString().toUpper();
    case HueRole:
        return hueOf(app);
    case IsChosenRole:
        return m_listing.appFilter() == app;
    default:
        return {};
    }
}

QHash<int, QByteArray> ApplicationFilters::roleNames() const
{
    return {{NameRole, "name"_qba},
            {PictureRole, "picture"_qba},
            {InitialRole, "initial"_qba},
            {HueRole, "hue"_qba},
            {IsChosenRole, "isChosen"_qba}};
}

} // namespace mossbank
