// Recorded tracks, GPX or NMEA 0183, read as the replay reads them.
#include "fuzzsupport.h"
#include "trackreader.h"

#include <cmath>
#include <cstring>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

// Rewrites the checksum of every "$...*hh" line so that half the mutated
// sentences get past it to the field parsers; the other half keeps the
// damaged checksums real logs have.
void repairChecksums(uint8_t* data, size_t size)
{
    size_t lineStart = 0;
    while (lineStart < size) {
        size_t lineEnd = lineStart;
        while (lineEnd < size && data[lineEnd] != '\n')
            ++lineEnd;
        size_t end = lineEnd;
        while (end > lineStart && (data[end - 1] == '\r' || data[end - 1] == ' '))
            --end;
        if (end - lineStart >= 4 && data[lineStart] == '$' && data[end - 3] == '*') {
            unsigned sum = 0;
            for (size_t i = lineStart + 1; i < end - 3; ++i)
                sum ^= data[i];
            static const char hex[] = "0123456789ABCDEF";
            data[end - 2] = static_cast<uint8_t>(hex[sum >> 4]);
            data[end - 1] = static_cast<uint8_t>(hex[sum & 15]);
        }
        lineStart = lineEnd + 1;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned int seed)
{
    size = LLVMFuzzerMutate(data, size, maxSize);
    if (seed % 2 == 0)
        repairChecksums(data, size);
    return size;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    cTrackFile file;
    QString error;
    if (!cTrackReader::read(fuzz::writeInput(fuzz::bytes(data, size)), &file, &error)) {
        FUZZ_CHECK(!error.isEmpty());
        return 0;
    }
    // Every listed track can be replayed: points on the globe, none empty.
    FUZZ_CHECK(!file.tracks.isEmpty());
    for (const cTrack& track : file.tracks) {
        FUZZ_CHECK(!track.points.isEmpty());
        FUZZ_CHECK(track.points.first().segmentStart);
        for (const cTrackPoint& point : track.points)
            FUZZ_CHECK(std::fabs(point.lat) <= 90 && std::fabs(point.lon) <= 180);
        cTrackReader::checkTimes(track, &error);
    }
    return 0;
}
