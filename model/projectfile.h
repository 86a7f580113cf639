#ifndef VOSK_PROJECTFILE_H
#define VOSK_PROJECTFILE_H

#include "project.h"

#include <QString>

struct lua_State;

// The project file text: a Lua chunk assigning the global table `project`,
// whose `routes` hold route tables in project form.
QString writeProject(const cProject& project, bool deviceForm);

// Reads the table on the top of the stack into a freshly reset project.
// Routes read before a failure, the failing one included, stay in it.
bool readProject(cProject& project, lua_State* L, bool deviceForm);

// Writes aside and renames over the target, so a failed write never leaves
// a truncated file behind. Where the folder lets the file be changed but not
// created, it is written in place. `text` selects the platform's line ends.
bool writeFileAtomically(const QString& path, const QByteArray& bytes, bool text);

#endif
