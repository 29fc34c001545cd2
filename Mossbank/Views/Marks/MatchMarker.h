// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QQuickTextDocument>
#include <QString>
#include <QSyntaxHighlighter>
#include <QtQmlIntegration>

namespace mossbank {

/// Marks in the document of a text what a query has matched, also when either changes. The marks
/// lie over the text and are none of it: what is copied has none.
///
/// Threading: the main thread.
class MatchMarker : public QSyntaxHighlighter {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* textDocument READ textDocument WRITE setTextDocument NOTIFY
                   textDocumentChanged REQUIRED)
    Q_PROPERTY(QString query MEMBER m_query NOTIFY changed REQUIRED)
    Q_PROPERTY(QColor markColor MEMBER m_markColor NOTIFY changed REQUIRED)
    Q_PROPERTY(QColor markedColor MEMBER m_markedColor NOTIFY changed REQUIRED)

public:
    explicit MatchMarker(QObject* parent = nullptr);

    QQuickTextDocument* textDocument() const { return m_textDocument; }
    void setTextDocument(QQuickTextDocument* document);

Q_SIGNALS:
    void textDocumentChanged();
    void changed();

protected:
    void highlightBlock(const QString& text) override;

private:
    QQuickTextDocument* m_textDocument = nullptr;
    QString m_query;
    QColor m_markColor;
    QColor m_markedColor;
};

} // namespace mossbank
