// GTFS feeds unpacked in a folder, read in both steps of the import. The
// input holds the feed's files one after the other, separated by form
// feeds, in the order of `files`; a missing part is a missing file.
#include "fuzzsupport.h"
#include "gtfsfeed.h"

#include <QDir>

namespace {

const char* const files[] = {"routes.txt", "trips.txt", "stops.txt", "stop_times.txt", "shapes.txt"};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString folder = fuzz::scratchPath(QStringLiteral("feed"));
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    const QList<QByteArray> parts = fuzz::bytes(data, size).split('\f');
    for (int i = 0; i < parts.size() && i < int(std::size(files)); ++i)
        fuzz::writeInput(parts.at(i), QStringLiteral("feed/") + QLatin1String(files[i]));

    cGtfsFeed feed;
    QString error;
    if (!feed.open(folder, {}, &error)) {
        FUZZ_CHECK(!error.isEmpty());
        return 0;
    }
    QVector<int> all;
    for (int i = 0; i < feed.routes().size(); ++i)
        all << i;
    if (!feed.loadPatterns(all, {}, &error)) {
        FUZZ_CHECK(!error.isEmpty());
        return 0;
    }
    // What the route builder is handed points at stops and patterns that exist.
    for (const int route : all) {
        const QVector<cGtfsPattern>& patterns = feed.patterns(route);
        for (const cGtfsPattern& pattern : patterns) {
            for (const int stop : pattern.stops)
                FUZZ_CHECK(stop >= 0 && stop < feed.stops().size());
            feed.shape(pattern.shapeId);
        }
        const cGtfsRouteChoice choice = feed.defaultChoice(route);
        FUZZ_CHECK(choice.direct < patterns.size() && choice.reverse < patterns.size());
    }
    return 0;
}
