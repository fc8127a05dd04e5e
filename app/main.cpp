#include "MainWindow.h"
#include "MarkdownEngine/Core/ParseHeap.h"
#include "ShellWindowHost.h"
#include "Velmo/AppDelegate.h"
#include "Velmo/AppState.h"
#include "Velmo/TerminationSignals.h"
#include "Velmo/UIDump.h"

#include <QApplication>

int main(int argc, char** argv)
{
    velmo::markdown::ParseHeap::keepWarm();
    QApplication application(argc, argv);
    QApplication::setApplicationName("Velmo");
    QApplication::setOrganizationName("Velmo");
    // First, so a logout or kill during launch still goes through the quit path once the loop runs.
    velmo::app::TerminationSignals terminationSignals;

    velmo::app::AppState state;
    velmo::ui::ShellWindowHost host(state);
    velmo::app::AppDelegate delegate(&host);
    delegate.attach(state);
    state.openLaunchArguments(application.arguments());

    velmo::ui::MainWindow window(state);
    window.show();

    QObject::connect(&terminationSignals, &velmo::app::TerminationSignals::received, &delegate,
                     &velmo::app::AppDelegate::terminate);
    // Queued, so an end requested before the loop runs still ends it. `exit` and not `quit`: the
    // handshake has already saved everything, and `quit` would ask the windows to close again.
    QObject::connect(&delegate, &velmo::app::AppDelegate::terminated, &application,
                     [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
    velmo::app::UIDump::scheduleIfRequested(state, &host, [&delegate] { delegate.terminate(); });
    return application.exec();
}
