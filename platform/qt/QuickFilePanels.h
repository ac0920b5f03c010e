#pragma once

#include "platform/FilePanels.h"

#include <QObject>

namespace lumaro {

/// The panels as a view shows them: the view waits for openRequested, shows the panel that the
/// properties describe, and ends it with accept() or reject().
class QuickFilePanels : public QObject, public FilePanels
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY openRequested)
    Q_PROPERTY(QString prompt READ prompt NOTIFY openRequested)
    /// Name filters as Qt's dialogs write them.
    Q_PROPERTY(QStringList nameFilters READ nameFilters NOTIFY openRequested)

public:
    using QObject::QObject;

    Task<std::optional<QUrl>> chooseFile(OpenPanelRequest request, std::stop_token stop) override;

    const QString &title() const { return m_request.title; }
    const QString &prompt() const { return m_request.prompt; }
    QStringList nameFilters() const;

    Q_INVOKABLE void accept(const QUrl &file);
    Q_INVOKABLE void reject();

Q_SIGNALS:
    void openRequested();
    /// Whoever asked no longer wants an answer.
    void withdrawn();

private:
    void answer(const std::optional<QUrl> &file);

    OpenPanelRequest m_request;
    std::optional<OneShot<std::optional<QUrl>>> m_open;
};

} // namespace lumaro
