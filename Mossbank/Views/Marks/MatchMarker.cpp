// SPDX-License-Identifier: Apache-2.0
#include "Mossbank/Views/Marks/MatchMarker.h"

#include "MossbankCore/Browsing/SearchHighlight.h"

namespace mossbank {

MatchMarker::MatchMarker(QObject* parent)
    : QSyntaxHighlighter(parent)
{
    connect(this, &MatchMarker::changed, this, &QSyntaxHighlighter::rehighlight);
}

void MatchMarker::setTextDocument(QQuickTextDocument* document)
{
    m_textDocument = document;
    setDocument(document ? document->textDocument() : nullptr);
    Q_EMIT textDocumentChanged();
}

void MatchMarker::highlightBlock(const QString& text)
{
    QTextCharFormat format;
    format.setBackground(m_markColor);
    format.setForeground(m_markedColor);
    for (const auto& match : SearchHighlight::ranges(text, m_query))
        setFormat(static_cast<int>(match.start), static_cast<int>(match.length), format);
}

} // namespace mossbank
