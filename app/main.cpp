#include "MainWindow.h"
#include "ShellWindowHost.h"
#include "Velmo/AppDelegate.h"
#include "Velmo/AppState.h"
#include "Velmo/TerminationSignals.h"
#include "Velmo/UIDump.h"

#include <QApplication>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

#ifdef __GLIBC__
// Every keystroke parses the whole note again, building and freeing a tree that runs to tens
// of megabytes for a large note. Keeping that much freed heap mapped between parses spares
// the page faults of mapping it afresh each time; glibc would otherwise hand it back at once.
constexpr int keptFreeHeapBytes = 128 * 1024 * 1024;
// Blocks below this come from the heap, and so stay warm too; glibc takes no larger value.
constexpr int mmapThresholdBytes = 32 * 1024 * 1024;
#endif

void keepHeapWarm()
{
#ifdef __GLIBC__
    mallopt(M_TRIM_THRESHOLD, keptFreeHeapBytes);
    mallopt(M_MMAP_THRESHOLD, mmapThresholdBytes);
#endif
}

}

int main(int argc, char** argv)
{
    keepHeapWarm();
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
