// Times the evt import of a large two-branch route. The target is an import
// well under half a second, so opening a long route does not stall the window.
#include "projectmanager.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QVector>

#include <algorithm>
#include <cstdio>

namespace {

const int kEventsPerList = 500;
const int kRuns = 15;

QString eventListText(int branch)
{
    QString text = QStringLiteral("<eventlist version=2>\n  <name>Маршрут 104</name>\n");
    for (int i = 0; i < kEventsPerList; ++i) {
        text += QStringLiteral(
                    "  <event>\n"
                    "    <name>Остановка %1-%2</name>\n"
                    "    <zone shape=circle>\n"
                    "      <radius>%3</radius>\n"
                    "      <point lat=55.%4 lon=37.%5/>\n"
                    "    </zone>\n"
                    "    <reaction logic=fall>\n"
                    "      <play file=/voskdev/leave.wav volume=10></play>\n"
                    "    </reaction>\n"
                    "    <reaction logic=rise>\n"
                    "      <play file=/voskdev/stop%2.wav volume=10></play>\n"
                    "      <play file=voskdev/next.wav volume=10></play>\n"
                    "      <play file=/voskdev/transfer.wav volume=10></play>\n"
                    "    </reaction>\n"
                    "  </event>\n")
                    .arg(branch)
                    .arg(i)
                    .arg(30 + i % 20)
                    .arg(700000 + i * 37)
                    .arg(600000 + i * 41);
    }
    return text + QStringLiteral("</eventlist>\n");
}

// The importer dumps the whole file at debug level; printing it would swamp
// the timing.
void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

int main()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.evt"));
    QFile file(path);
    const QByteArray bytes = (QStringLiteral("<?xml version=\"1.0\"?>\n<route>\n") + eventListText(1)
                              + eventListText(2) + QStringLiteral("</route>\n"))
                                 .toLocal8Bit();
    if (!dir.isValid() || !file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return 1;
    }
    file.close();

    qInstallMessageHandler(dropMessage);
    QVector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        cProjectManager manager;
        QString error;
        QElapsedTimer timer;
        timer.start();
        const bool ok = manager.importEvtRoute(path, &error);
        times << timer.nsecsElapsed() / 1e6;

        const QList<cRoute>& routes = manager.project()->routes;
        if (!ok || routes.size() != 1 || routes.first().direct.stops.size() != kEventsPerList
            || routes.first().reverse.stops.size() != kEventsPerList) {
            qInstallMessageHandler(nullptr);
            std::fprintf(stderr, "import went wrong: %s\n", qPrintable(error));
            return 1;
        }
    }
    qInstallMessageHandler(nullptr);

    std::sort(times.begin(), times.end());
    std::printf("file: 2 event lists x %d events, %lld bytes\n", kEventsPerList, static_cast<long long>(bytes.size()));
    std::printf("import over %d runs: min %.1f ms, median %.1f ms (target < 500 ms)\n", kRuns, times.first(),
                times.at(times.size() / 2));
    return 0;
}
