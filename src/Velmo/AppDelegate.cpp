#include "Velmo/AppDelegate.h"

#include "Velmo/AppState.h"
#include "Velmo/UIWindowHost.h"

#include <QFileInfo>
#include <QTimer>

namespace velmo::app {

static const QString linkScheme = QStringLiteral("velmo");
// Sheets and panels close with an animation; the reply waits for it.
static constexpr int sheetsCloseDelayMs = 200;

AppDelegate::AppDelegate(UIWindowHost* host, QObject* parent)
    : QObject(parent)
    , m_host(host)
{
}

void AppDelegate::attach(AppState& state)
{
    m_state = &state;
    connect(&state, &AppState::terminationRequested, this, &AppDelegate::terminate);
    connect(this, &AppDelegate::openDocumentRequested, &state, &AppState::openAny);
    flushPendingLinks();
}

void AppDelegate::flushPendingLinks()
{
    if (!m_state || !m_linkRouter)
        return;
    const QList<QUrl> links = std::exchange(m_pendingLinks, {});
    for (const QUrl& link : links)
        m_linkRouter(link);
}

void AppDelegate::openURLs(const QList<QUrl>& urls)
{
    for (const QUrl& url : urls) {
        if (QFileInfo(url.path()).suffix() == QLatin1String("app"))
            continue;
        if (url.scheme() == linkScheme) {
            if (m_state && m_linkRouter)
                m_linkRouter(url);
            else
                m_pendingLinks << url;
            continue;
        }
        emit openDocumentRequested(url);
    }
}

AppDelegate::TerminateReply AppDelegate::shouldTerminate()
{
    if (!m_state)
        return TerminateReply::now;
    if (!m_state->prepareToTerminate()) {
        m_state->setQuitting(false);
        return TerminateReply::cancel;
    }
    const bool sheets = m_host && m_host->hasAttachedSheets();
    if (sheets || m_state->hasTransientPanels()) {
        m_state->dismissTransientPanels();
        if (m_host)
            m_host->endSheets();
        return TerminateReply::later;
    }
    return TerminateReply::now;
}

void AppDelegate::terminate()
{
    if (m_replyPending)
        return;
    // Already approved: ask again, so a second signal still ends a process that did not go.
    if (m_terminating) {
        emit terminated();
        return;
    }
    switch (shouldTerminate()) {
    case TerminateReply::cancel:
        return;
    case TerminateReply::later:
        m_replyPending = true;
        QTimer::singleShot(sheetsCloseDelayMs, this, &AppDelegate::finishTermination);
        return;
    case TerminateReply::now:
        finishTermination();
        return;
    }
}

void AppDelegate::finishTermination()
{
    m_replyPending = false;
    m_terminating = true;
    emit terminated();
}

}
