#ifndef VOSK_EXPORTNAMES_H
#define VOSK_EXPORTNAMES_H

#include "project.h"

#include <QString>

// Names of the files an export writes for a route, shared by the export
// dialog, the command line and the checks that look for clashes.

// The name with the characters that cannot stand in a file name on the
// device's card (or would make folders) replaced by "_".
QString safeFileBaseName(const QString& name);

// The route's number, or its name when it has none: what its script file is
// called unless the user renames it.
QString scriptBaseName(const cRoute& route);

// The script file the export writes for the route by default.
QString scriptFileName(const cRoute& route);

#endif
