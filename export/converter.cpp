#include "converter.h"

#include "routetable.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QProcess>
#include <QtEndian>

namespace {

#ifdef Q_OS_WIN
const char* const ffmpegProgram = "ffmpeg.exe";
#else
const char* const ffmpegProgram = "ffmpeg";
#endif

// ffmpeg's exit status is not reliable across its versions; this text is.
const char* const failureText = "Invalid data found when processing input";
const int failureExitCode = 666;
const qint64 headerSize = 44;

// Latin-1, byte by byte, up to the first zero byte.
QString outputText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData());
}

template <typename T>
void appendLittleEndian(QByteArray& bytes, T value)
{
    char raw[sizeof(T)];
    qToLittleEndian(value, raw);
    bytes.append(raw, int(sizeof(T)));
}

// A bare header that always states mono 8000 Hz 16-bit, followed by the
// bytes after the first "data" tag: ffmpeg's metadata chunks are dropped,
// since the device reads the samples at a fixed offset.
QByteArray deviceImage(const QByteArray& old)
{
    const int pos = old.indexOf("data");
    const int dataSize = qMax(0, old.size() - pos - 8);
    QByteArray image;
    image.reserve(int(headerSize) + dataSize);
    image.append("RIFF", 4);
    appendLittleEndian<quint32>(image, 0);
    image.append("WAVEfmt ", 8);
    appendLittleEndian<quint32>(image, 16);
    appendLittleEndian<quint16>(image, 1);
    appendLittleEndian<quint16>(image, 1);
    appendLittleEndian<quint32>(image, 8000);
    appendLittleEndian<quint32>(image, 16000);
    appendLittleEndian<quint16>(image, 2);
    appendLittleEndian<quint16>(image, 16);
    image.append("data", 4);
    appendLittleEndian<quint32>(image, quint32(dataSize));
    image.append(old.right(dataSize));
    qToLittleEndian<quint32>(quint32(image.size() - 8), image.data() + 4);
    return image;
}

} // namespace

cConverter::cConverter(QObject* parent)
    : QThread(parent)
{
}

cConverter::~cConverter()
{
    {
        QMutexLocker lock(&stopMutex);
        stopRequested = true;
    }
    // ffmpeg runs without a time limit; a hung one must not hold up the exit.
    if (!wait(5000)) {
        terminate();
        wait();
    }
}

void cConverter::setOutputDir(const QString& dir)
{
    QMutexLocker lock(&outputDirMutex);
    outputDir = dir;
}

void cConverter::setFileNameType(qint32 type)
{
    QMutexLocker lock(&fileNameTypeMutex);
    fileNameType = type;
}

void cConverter::setFileSaveType(qint32 type)
{
    QMutexLocker lock(&fileSaveTypeMutex);
    fileSaveType = type;
}

QString cConverter::program()
{
    return QLatin1String(ffmpegProgram);
}

void cConverter::convert(const QStringList& sources)
{
    if (isRunning())
        return;
    {
        QMutexLocker lock(&filesMutex);
        files.append(sources);
    }
    start(QThread::InheritPriority);
}

void cConverter::run()
{
    {
        QMutexLocker lock(&filesMutex);
        if (files.size() < 1) {
            lock.unlock();
            emit convertFinished(true);
            return;
        }
    }
    bool allOk = true;
    for (;;) {
        QString fn;
        int remaining = 0;
        {
            QMutexLocker lock(&filesMutex);
            fn = files.takeFirst();
            remaining = files.size();
        }
        if (!fn.isEmpty() && !convertFile(fn))
            allOk = false;
        if (remaining == 0) {
            emit convertFinished(allOk);
            return;
        }
    }
}

// The output name; ok is false for an unknown naming rule, which gives ffmpeg
// no output at all, though the header rewrite still looks at the path.
QString cConverter::outputPath(const QString& fn, bool* ok)
{
    QDir dir;
    {
        QMutexLocker lock(&outputDirMutex);
        dir.setPath(outputDir);
    }
    QMutexLocker lock(&fileNameTypeMutex);
    *ok = true;
    switch (fileNameType) {
    case 0:
        return dir.absoluteFilePath(deviceFileName(fn));
    case 1:
        return dir.absoluteFilePath(QFileInfo(fn).fileName() + QStringLiteral(".wav"));
    default:
        *ok = false;
        return dir.absoluteFilePath(QFileInfo(fn).fileName());
    }
}

bool cConverter::convertFile(const QString& fn)
{
    qDebug().noquote() << "Processing file:" << fn;

    QStringList args;
    qint32 saveType = 0;
    {
        QMutexLocker lock(&fileSaveTypeMutex);
        saveType = fileSaveType;
    }
    if (saveType == 0) {
        args << QStringLiteral("-y");
    } else if (saveType == 1) {
        args << QStringLiteral("-n");
    } else {
        qDebug() << "Bad fileSaveType";
        emit fileProcessed(fn, false);
    }
    args << QStringLiteral("-i") << QStringLiteral("%1").arg(fn) << QStringLiteral("-ar") << QStringLiteral("8000")
         << QStringLiteral("-ac") << QStringLiteral("1");

    bool nameOk = false;
    const QString output = outputPath(fn, &nameOk);
    if (nameOk) {
        args << output;
    } else {
        qDebug() << "Bad fileNameType";
        emit fileProcessed(fn, false);
    }
    qDebug().noquote() << "Out filename:" << output;
    qDebug().noquote() << "Running ffmpeg with args:" << args;

    QProcess process;
    process.start(program(), args, QIODevice::ReadWrite);
    qDebug().noquote() << "Process started:" << (process.waitForStarted(-1) ? "true" : "false");
    process.waitForFinished(-1);
    const QString stdOut = outputText(process.readAllStandardOutput());
    const QString stdErr = outputText(process.readAllStandardError());
    qDebug().noquote() << "STD Output:\n" << stdOut;
    qDebug().noquote() << "ERR Output:\n" << stdErr;

    const int exitCode = (stdOut + stdErr).contains(QLatin1String(failureText)) ? failureExitCode : 0;
    qDebug() << "Exit code:" << exitCode;

    // Rewritten whatever ffmpeg said: with "-n" an existing output is kept
    // and still gets the device's header.
    QFile in(output);
    if (!in.open(QIODevice::ReadOnly)) {
        qCritical().noquote() << "Error reading output file:" << output;
        emit fileProcessed(fn, false);
    } else {
        const QByteArray image = deviceImage(in.readAll());
        in.close();
        // A full card takes the open but not all of the bytes.
        QFile out(output);
        const bool written = out.open(QIODevice::WriteOnly | QIODevice::Truncate) && out.write(image) == image.size()
            && out.flush();
        out.close();
        if (!written || out.error() != QFileDevice::NoError) {
            qCritical().noquote() << "Error writing output file:" << output;
            emit fileProcessed(fn, false);
            emit writeFailed(output);
        }
    }
    emit fileProcessed(fn, exitCode == 0);
    qDebug() << "File done!";
    return exitCode == 0;
}
