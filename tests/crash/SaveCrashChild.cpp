// Types into a note and autosaves in a loop until it is killed. Before a text can reach the
// writer, its step goes to standard output, so the parent knows every text that may be on disk.
#include "crash/CrashText.h"
#include "Velmo/AppState.h"

#include <QCoreApplication>
#include <cstdio>
#include <unistd.h>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 3)
        return 2;
    const QString note = QString::fromLocal8Bit(argv[1]);
    const int run = std::atoi(argv[2]);
    velmo::app::AppState state(std::make_unique<velmo::editor::EditorSettings>(), false);
    velmo::app::OpenDocument* document = state.open(QUrl::fromLocalFile(note), true);
    if (!document)
        return 3;
    (void)::write(1, "ready\n", 6);
    for (int step = 0;; ++step) {
        const QByteArray line = QByteArray::number(step) + '\n';
        (void)::write(1, line.constData(), size_t(line.size())); // unbuffered, before the hand-over
        document->setText(velmo::test::crashText(run, step));
        state.saveInBackground(document, false);
        QCoreApplication::processEvents();
    }
}
