#include "gtfssupport.h"

#include "testsupport.h"

#include <QDir>
#include <QFileInfo>

#include <quazip.h>
#include <quazipfile.h>
#include <zlib.h>

namespace gtfssupport {

cZipWriter::cZipWriter(const QString& path)
    : m_zip(std::make_unique<QuaZip>(path))
{
    m_zip->open(QuaZip::mdCreate);
}

cZipWriter::~cZipWriter() = default;

bool cZipWriter::begin(const QString& name, Packing packing)
{
    m_file = std::make_unique<QuaZipFile>(m_zip.get());
    // Fast packing keeps a benchmark's set-up short; unpacking speed hardly
    // depends on the level.
    return packing == Packing::Stored
        ? m_file->open(QIODevice::WriteOnly, QuaZipNewInfo(name), nullptr, 0, 0, 0)
        : m_file->open(QIODevice::WriteOnly, QuaZipNewInfo(name), nullptr, 0, Z_DEFLATED, 1);
}

bool cZipWriter::write(const QByteArray& bytes)
{
    return m_file && m_file->write(bytes) == bytes.size();
}

bool cZipWriter::end()
{
    m_file->close();
    const bool ok = m_file->getZipError() == UNZ_OK;
    m_file.reset();
    return ok;
}

bool cZipWriter::close()
{
    m_zip->close();
    return m_zip->getZipError() == UNZ_OK;
}

bool writeZip(const QString& path, const cFeedFiles& files, Packing packing)
{
    cZipWriter zip(path);
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (!zip.begin(it.key(), packing) || !zip.write(it.value()) || !zip.end())
            return false;
    }
    return zip.close();
}

QByteArray readZipEntry(const QString& path, const QString& name)
{
    QuaZipFile file(path, name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFolder(const QString& dir, const cFeedFiles& files)
{
    if (!QDir().mkpath(dir))
        return false;
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (!testsupport::writeFile(QDir(dir).filePath(it.key()), it.value()))
            return false;
    }
    return true;
}

cFeedFiles smallFeed()
{
    cFeedFiles files;
    files["routes.txt"] = "route_id,agency_id,route_short_name,route_long_name,route_type\n"
                          "R1,A,1,Вокзал — Центр,3\n"
                          "R2,A,2,,3\n";
    files["stops.txt"] = "stop_lat,stop_name,stop_id,stop_lon,zone_id\n"
                         "55.75,Вокзал,S1,37.61,\n"
                         "55.76,Рынок,S2,37.62,\n"
                         "55.77,\"Школа \"\"Радуга\"\", корпус 2\",S3,37.63,\n"
                         "55.78,Рынок,S4,37.64,\n";
    files["trips.txt"] = "route_id,service_id,trip_id,direction_id,shape_id\n"
                         "R1,W,T1,0,\nR1,W,T2,0,\nR1,W,T3,0,\nR1,W,T4,0,\nR1,W,T5,1,\nR2,W,T6,,\n"
                         "R1,W,T7,1,\nR1,W,T8,1,\nR1,W,T9,1,\n";
    QByteArray times = "trip_id,arrival_time,departure_time,stop_id,stop_sequence\n";
    for (const char* trip : {"T1", "T3"}) {
        for (int i = 1; i <= 4; ++i)
            times += QByteArray(trip) + ",,,S" + QByteArray::number(i) + "," + QByteArray::number(i * 10) + "\n";
    }
    // Out of order on purpose: the sequence numbers decide.
    times += "T2,,,S3,30\nT2,,,S1,10\nT2,,,S4,40\nT2,,,S2,20\n";
    times += "T4,,,S1,1\nT4,,,S3,2\n";
    for (const char* trip : {"T5", "T7", "T8", "T9"}) {
        for (int i = 4; i >= 1; --i)
            times += QByteArray(trip) + ",,,S" + QByteArray::number(i) + "," + QByteArray::number(5 - i) + "\n";
    }
    times += "T6,,,S2,1\nT6,,,S3,2\n";
    files["stop_times.txt"] = times;
    return files;
}

QString sharedFeed(const QString& name)
{
    const QString path = QStringLiteral(VOSK_SHARED_DIR "/gtfs/") + name;
    if (!QFileInfo::exists(path))
        qFatal("Shared test feed %s is missing", qPrintable(path));
    return path;
}

} // namespace gtfssupport
