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

#endif
