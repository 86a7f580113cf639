#include "cli.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextStream>
#include <QTranslator>

#include <cstdio>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("voskantor-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VOSK_VERSION));
    // Russian for those who work in Russian, as the window always is;
    // everyone else reads the texts as written.
    QTranslator translator;
    if (QLocale::system().language() == QLocale::Russian && translator.load(QStringLiteral(":/tr/vosk.qm")))
        QCoreApplication::installTranslator(&translator);

    QTextStream out(stdout);
    QTextStream err(stderr);
    const int code = cCli::run(QCoreApplication::arguments(), out, err);
    out.flush();
    err.flush();
    return code;
}
