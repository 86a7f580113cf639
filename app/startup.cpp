#include "startup.h"

#include "mainwindow.h"
#include "player.h"
#include "routeselector.h"
#include "version.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QStringList>
#include <QTranslator>

void setApplicationNames()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Norvalis"));
    QCoreApplication::setApplicationName(QLatin1String(version::programName));
    // Lets the desktop match the window to its launcher entry and icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.norvalis.voskantor"));
}

void applyApplicationLook(QApplication& app)
{
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/bus.ico")));
    QFile css(QStringLiteral(":/css/vosk.css"));
    if (css.open(QIODevice::ReadOnly | QIODevice::Text)) {
        const QByteArray bytes = css.readAll();
        app.setStyleSheet(QString::fromLatin1(bytes.constData()));
        css.close();
    }
}

QTranslator* installTranslation(QApplication& app)
{
    auto* translator = new QTranslator;
    // The second load replaces the first: only the program's own
    // translation is in effect.
    translator->load(QStringLiteral(":/tr/qt_ru.qm"));
    translator->load(QStringLiteral(":/tr/vosk.qm"));
    app.installTranslator(translator);
    return translator;
}

QStringList projectFileArguments(const QStringList& arguments)
{
    QStringList files;
    for (int i = 1; i < arguments.size(); ++i) {
        if (!arguments.at(i).startsWith(QLatin1String(soundDeviceOption)))
            files << arguments.at(i);
    }
    return files;
}

void openProjectFromArguments(cMainWindow& window, const QStringList& arguments)
{
    if (auto* selector = window.findChild<cRouteSelector*>())
        selector->openProjectFiles(projectFileArguments(arguments));
}
