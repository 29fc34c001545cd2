// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Marks/Snippet.h"

#include <QColor>
#include <QFont>
#include <QQuickPaintedItem>
#include <QString>

namespace mossbank {

/// Some lines of a screenshot's text around the first match, the matches marked. What has no room
/// ends in an ellipsis. (Qt's own rich text has either marks or an ellipsis.)
///
/// Threading: the main thread.
class MarkedText : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text MEMBER m_whole NOTIFY wordsChanged REQUIRED)
    Q_PROPERTY(QString query MEMBER m_query NOTIFY wordsChanged REQUIRED)
    /// Said in place of a text that has no words.
    Q_PROPERTY(QString emptyText MEMBER m_emptyText NOTIFY wordsChanged)
    Q_PROPERTY(int maximumLineCount MEMBER m_maximumLineCount NOTIFY changed)
    Q_PROPERTY(QFont font MEMBER m_font NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    Q_PROPERTY(QColor markColor MEMBER m_markColor NOTIFY changed)
    Q_PROPERTY(QColor markedColor MEMBER m_markedColor NOTIFY changed)
    /// What stands there, for who cannot see it.
    Q_PROPERTY(QString spokenText READ spokenText NOTIFY wordsChanged)

public:
    explicit MarkedText(QQuickItem* parent = nullptr);

    QString spokenText() const { return m_snippet.text; }
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void wordsChanged();
    void changed();

private:
    void choose();
    void measure();

    QString m_whole;
    QString m_query;
    QString m_emptyText;
    int m_maximumLineCount = 2;
    QFont m_font;
    QColor m_color;
    QColor m_markColor;
    QColor m_markedColor;
    Snippet m_snippet;
};

} // namespace mossbank
