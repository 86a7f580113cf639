#include "mainwindow.h"
#include "startup.h"

#include <QApplication>
#include <QTimer>
#include <QTranslator>

int main(int argc, char* argv[])
{
    setApplicationNames();
    QApplication app(argc, argv);
    applyApplicationLook(app);
    QTranslator* translator = installTranslation(app);

    auto* window = new cMainWindow(nullptr);
    window->show();
    QTimer::singleShot(0, window, &cMainWindow::offerRecovery);
    const int result = app.exec();

    delete window;
    delete translator;
    return result;
}
