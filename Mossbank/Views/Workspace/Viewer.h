// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Mossbank/Views/Workspace/WorkspaceParts.h"
#include "MossbankCore/Support/Job.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQmlIntegration>

namespace mossbank {

class Listing;
struct Memory;

/// The selected screenshot, and what can be done with it.
///
/// Threading: the main thread.
class Viewer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made where the window is opened")
    /// Whether any is selected.
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY changed)
    Q_PROPERTY(QString app READ app NOTIFY changed)
    /// The application, and the title of its window where it had one.
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString time READ time NOTIFY changed)
    /// Name of the picture's file.
    Q_PROPERTY(QString filename READ filename NOTIFY changed)
    /// Where the engine finds it.
    Q_PROPERTY(QUrl screenshot READ screenshot NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// Address of the page that was on show. Empty where there was none.
    Q_PROPERTY(QString link READ link NOTIFY changed)
    Q_PROPERTY(bool canStepBack READ canStepBack NOTIFY changed)
    Q_PROPERTY(bool canStepOn READ canStepOn NOTIFY changed)
    Q_PROPERTY(bool isEnlarged READ isEnlarged WRITE setEnlarged NOTIFY isEnlargedChanged)

public:
    explicit Viewer(const WorkspaceParts& parts, QObject* parent = nullptr);

    bool hasSelection() const;
    QString app() const;
    QString title() const;
    QString time() const;
    QString filename() const;
    QUrl screenshot() const;
    QString text() const;
    QString link() const;
    bool canStepBack() const;
    bool canStepOn() const;
    bool isEnlarged() const;
    void setEnlarged(bool isEnlarged);

    /// To older ones, and to newer ones.
    Q_INVOKABLE void stepBack();
    Q_INVOKABLE void stepOn();
    /// Puts the picture, or the words in it, onto the clipboard.
    Q_INVOKABLE void copyImage();
    Q_INVOKABLE void copyText() const;
    Q_INVOKABLE void showInFolder();
    Q_INVOKABLE void openLink() const;
    /// Removes it for good. The user has been asked.
    Q_INVOKABLE void remove();

Q_SIGNALS:
    void changed();
    void isEnlargedChanged();

private:
    const Memory* selected() const;
    QCoro::Task<> copy(QString path, Cancellation cancellation);
    QCoro::Task<> showFolder(QUrl file, Cancellation cancellation);

    WorkspaceParts m_parts;
    Listing& m_listing;
    /// Last: cancelled before anything above goes.
    Job m_copying;
    Job m_showing;
};

} // namespace mossbank
