#include "MainWindow.h"
#include "Velmo/AppState.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName("Velmo");
    QApplication::setOrganizationName("Velmo");

    velmo::app::AppState state;
    for (const QString& argument : application.arguments().mid(1)) {
        if (!argument.startsWith(u'-'))
            state.openAny(QUrl::fromLocalFile(argument));
    }
    velmo::ui::MainWindow window(state);
    window.show();
    return application.exec();
}
