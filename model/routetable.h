#ifndef VOSK_ROUTETABLE_H
#define VOSK_ROUTETABLE_H

#include "project.h"

#include <QString>

struct lua_State;

// The route table text: a Lua table constructor, in project form (stop ids,
// sound paths as stored, plain degrees) or device form (no stop ids, device
// sound paths, coordinates in 1/3600000 degree).

// The name a sound file has on the device: its last path component (after
// either separator, as projects made on Windows hold backslashes) with the
// extension replaced by ".wav". Scripts and the converter must agree on it.
QString deviceFileName(const QString& path);

// "/sdmmc/voskdev/" and the device file name for a local sound path; empty
// stays empty.
QString devicePath(const QString& path);

QString writeRoute(const cRoute& route, bool deviceForm);

// Fills a default-constructed route from the table on the top of the stack.
// Fails only when the route or one of its stops has no usable id; the stops
// read so far, the failing one included, stay in the route.
bool readRoute(cRoute& route, lua_State* L, bool deviceForm);

#endif
