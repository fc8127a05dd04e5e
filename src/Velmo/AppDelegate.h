#pragma once

#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>

namespace velmo::app {

class AppState;
class UIWindowHost;

// Hands the platform's events to the application state: URLs to open, and the request to end.
// Every way out (the Quit command, the last window, SIGTERM or SIGINT, the driver's end) comes
// through `terminate`, so dirty notes are saved and the session written before the process ends.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    explicit AppDelegate(UIWindowHost* host = nullptr, QObject* parent = nullptr);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    // From here on events go to `state`; links that came earlier are applied now.
    void attach(AppState& state);
    // Applies a link of the application's scheme; absent, links wait in `pendingLinks`.
    void setLinkRouter(std::function<void(const QUrl&)> router) { m_linkRouter = std::move(router); }
    const QList<QUrl>& pendingLinks() const { return m_pendingLinks; }
    void flushPendingLinks();

    void openURLs(const QList<QUrl>& urls);

    enum class TerminateReply { now, cancel, later };
    // Brings everything to disk first; a failed save cancels the quit.
    TerminateReply shouldTerminate();
    // The whole handshake; `terminated` is emitted when the process may end.
    void terminate();
    bool isTerminating() const { return m_terminating; }

signals:
    // A file or folder for the window to open.
    void openDocumentRequested(const QUrl& url);
    void terminated();

private:
    void finishTermination();

    AppState* m_state = nullptr;
    UIWindowHost* m_host;
    QList<QUrl> m_pendingLinks;
    std::function<void(const QUrl&)> m_linkRouter;
    bool m_terminating = false;
    bool m_replyPending = false;
};

}
