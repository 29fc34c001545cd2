// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/ApplicationChooser/ApplicationChoices.h"

#include "Mossbank/Model/Texts.h"
#include "Mossbank/Views/ApplicationIcons.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>
#include <utility>

namespace mossbank {

namespace {

/// By the rules of the user's language. A system without a language goes by the codes of letters,
/// which puts accented ones behind all others.
QCollator orderOfNames()
{
    const QLocale locale = QLocale().collation();
    QCollator order(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    return order;
}

QList<InstalledApplication> byName(QList<InstalledApplication> installed)
{
    const QCollator order = orderOfNames();
    std::ranges::sort(installed, [&](const auto& one, const auto& other) {
        const int names = order.compare(one.application.shownName(), other.application.shownName());
        return names != 0 ? names < 0 : one.application.bundleID < other.application.bundleID;
    });
    return installed;
}

} // namespace

ApplicationChoices::ApplicationChoices(QString title, const QList<InstalledApplication>& installed,
                                       QObject* parent)
    : QAbstractListModel(parent)
    , m_title(std::move(title))
{
    for (const InstalledApplication& one : byName(installed)) {
        if (one.application.bundleID == kOwnBundleID)
            continue;
        m_shown.push_back(static_cast<qsizetype>(m_all.size()));
        m_all.push_back(
            {one, FoldedText(one.application.shownName()), FoldedText(one.application.bundleID)});
    }
    m_currentRow = m_shown.empty() ? -1 : 0;
}

QString ApplicationChoices::searchLabel() const
{
    return localized("Search applications");
}

QString ApplicationChoices::chooseLabel() const
{
    return localized("Choose");
}

QString ApplicationChoices::cancelLabel() const
{
    return localized("Cancel");
}

void ApplicationChoices::setFilter(const QString& filter)
{
    if (filter == m_filter)
        return;
    beginResetModel();
    m_filter = filter;
    m_shown.clear();
    const FoldedText sought(filter.trimmed());
    const bool isAny = filter.trimmed().isEmpty();
    for (std::size_t place = 0; place < m_all.size(); ++place) {
        const Choice& choice = m_all[place];
        if (isAny || choice.name.find(sought) || choice.identity.find(sought))
            m_shown.push_back(static_cast<qsizetype>(place));
    }
    endResetModel();
    Q_EMIT filterChanged();
    // The view has put its own current row back with the reset.
    m_currentRow = -1;
    Q_EMIT currentRowChanged();
    moveTo(0);
}

QString ApplicationChoices::emptyText() const
{
    if (!m_shown.empty())
        return {};
    return m_all.empty() ? localized("No installed applications were found")
                         : localized("No application has this name");
}

void ApplicationChoices::setCurrentRow(int row)
{
    if (row >= 0 && row < rowCount() && row != m_currentRow) {
        m_currentRow = row;
        Q_EMIT currentRowChanged();
    }
}

void ApplicationChoices::moveTo(int row)
{
    setCurrentRow(std::clamp(row, 0, std::max(0, rowCount() - 1)));
}

void ApplicationChoices::step(int rows)
{
    moveTo(m_currentRow + rows);
}

void ApplicationChoices::choose()
{
    if (m_currentRow >= 0) {
        const auto place =
            static_cast<std::size_t>(m_shown[static_cast<std::size_t>(m_currentRow)]);
        Q_EMIT chosen(m_all[place].installed.application);
    }
}

void ApplicationChoices::cancel()
{
    Q_EMIT cancelled();
}

int ApplicationChoices::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant ApplicationChoices::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto place = static_cast<std::size_t>(m_shown[static_cast<std::size_t>(index.row())]);
    const InstalledApplication& installed = m_all[place].installed;
    const QString& name = installed.application.shownName();
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return name;
    case IdentityRole:
        return installed.application.bundleID;
    case PictureRole:
        return ApplicationIcons::url(installed.icon);
    case InitialRole:
        return Characters::prefix(name.trimmed(), 1).toString().toUpper();
    default:
        return {};
    }
}

QHash<int, QByteArray> ApplicationChoices::roleNames() const
{
    return {{NameRole, "name"},
            {IdentityRole, "identity"},
            {PictureRole, "picture"},
            {InitialRole, "initial"}};
}

} // namespace mossbank
