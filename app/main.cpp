#include "logger.h"
#include "mainwindow.h"
#include "startup.h"

#include <QApplication>
#include <QTimer>
#include <QTranslator>

int main(int argc, char* argv[])
{
    logger::useLeanEventLoop();
    setApplicationNames();
    QApplication app(argc, argv);
    applyApplicationLook(app);
    QTranslator* translator = installTranslation(app);

    auto* window = new cMainWindow(nullptr);
    window->show();
    // From inside the event loop, so the window is up before a long read or
    // a question. The project named on the command line opens first; unsaved
    // work of earlier runs is offered after it, since opening it is a choice.
    QTimer::singleShot(0, window, [window] {
        openProjectFromArguments(*window, QCoreApplication::arguments());
        window->offerRecovery();
    });
    const int result = app.exec();

    delete window;
    delete translator;
    return result;
}
