#ifndef VOSK_GTFSSUPPORT_H
#define VOSK_GTFSSUPPORT_H

#include <QByteArray>
#include <QMap>
#include <QString>

#include <memory>

class QuaZip;
class QuaZipFile;

namespace gtfssupport {

// File name -> contents of a feed written by a test.
using cFeedFiles = QMap<QString, QByteArray>;

enum class Packing { Deflated, Stored };

// Writes a zip archive one streamed entry at a time, so a benchmark can
// write a city-sized feed without holding it.
class cZipWriter
{
public:
    explicit cZipWriter(const QString& path);
    ~cZipWriter();
    cZipWriter(const cZipWriter&) = delete;
    cZipWriter& operator=(const cZipWriter&) = delete;

    bool begin(const QString& name, Packing packing = Packing::Deflated);
    bool write(const QByteArray& bytes);
    bool end();
    bool close();

private:
    std::unique_ptr<QuaZip> m_zip;
    std::unique_ptr<QuaZipFile> m_file;
};

// One file of a zip archive, read without the feed reader.
QByteArray readZipEntry(const QString& path, const QString& name);

bool writeZip(const QString& path, const cFeedFiles& files, Packing packing = Packing::Deflated);
bool writeFolder(const QString& dir, const cFeedFiles& files);

// A small valid feed. Route R1 ("1", Cyrillic long name): trips T1-T3 run
// S1 S2 S3 S4 (S2 and S4 share a name, S3's has quotes and a comma), T4 runs
// S1 S3, both direction 0; T5 and T7-T9 run S4 S3 S2 S1, direction 1.
// Route R2 (no long name): T6 runs S2 S3 without a direction.
cFeedFiles smallFeed();

// Shared data from outside the project (public feeds); fails loudly if absent.
QString sharedFeed(const QString& name);

} // namespace gtfssupport

#endif
