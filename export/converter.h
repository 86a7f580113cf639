#ifndef VOSK_CONVERTER_H
#define VOSK_CONVERTER_H

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QThread>

// Converts sound files into the device's format (mono, 8000 Hz, 16-bit PCM
// WAV with a bare 44-byte header) by running ffmpeg once per file on its own
// thread. One queue at a time: a convert() call while busy is ignored.
class cConverter : public QThread
{
    Q_OBJECT

public:
    explicit cConverter(QObject* parent = nullptr);
    ~cConverter() override;

    void setOutputDir(const QString& dir);
    // 0: replace the source's extension by ".wav"; 1: append ".wav".
    void setFileNameType(qint32 type);
    // 0: overwrite existing output files; 1: keep them.
    void setFileSaveType(qint32 type);

    void convert(const QStringList& sources);

    // The program that does the conversion, as looked up on the search path.
    static QString program();

signals:
    void fileProcessed(const QString& fn, bool result);
    // True when no file was undecodable: the name is kept for the
    // receivers, which read it as success.
    void convertFinished(bool hasErrors);
    // The converted file `output` could not be written whole: the device
    // would get a truncated sound. Reported besides fileProcessed(fn, false).
    void writeFailed(const QString& output);

protected:
    void run() override;

private:
    // Returns false when ffmpeg could not decode the source.
    bool convertFile(const QString& fn);
    QString outputPath(const QString& fn, bool* ok);

    QMutex stopMutex{QMutex::Recursive};
    bool stopRequested = false;
    QStringList files;
    QMutex filesMutex;
    QMutex outputDirMutex{QMutex::Recursive};
    QString outputDir;
    QMutex fileNameTypeMutex{QMutex::Recursive};
    qint32 fileNameType = 0;
    QMutex fileSaveTypeMutex{QMutex::Recursive};
    qint32 fileSaveType = 1;
};

#endif
