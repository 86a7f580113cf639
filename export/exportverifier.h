#ifndef VOSK_EXPORTVERIFIER_H
#define VOSK_EXPORTVERIFIER_H

#include "project.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QString>

// Reads back what an export wrote, as the device will: a difference found
// here is a bus that announces wrongly, so it is listed, never passed over.
class cExportVerifier
{
    Q_DECLARE_TR_FUNCTIONS(cExportVerifier)

public:
    // Empty when the script at `path` reads back as `route` with the route
    // reader the device form is made for; otherwise what differs.
    static QString scriptDifference(const QString& path, const cRoute& route);
    // Empty when `path` is a converted sound as the device plays it: a bare
    // RIFF header for 8000 Hz mono 16-bit PCM whose sizes match the file,
    // written no earlier than `exportStart`.
    static QString wavDifference(const QString& path, const QDateTime& exportStart);
};

#endif
