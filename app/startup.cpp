#include "startup.h"

#include "version.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QTranslator>

void setApplicationNames()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Norvalis"));
    QCoreApplication::setApplicationName(QLatin1String(version::programName));
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
