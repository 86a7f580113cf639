#ifndef VOSK_LUAFIELDS_H
#define VOSK_LUAFIELDS_H

#include <QString>
#include <QUuid>

struct lua_State;

// Typed access to the fields of the table on the top of the Lua stack, as the
// route and project readers need it. Each getter leaves the stack unchanged and
// returns false when the key is missing or holds a value of the wrong kind.
namespace luafields {

// Strings and numbers count as text, decoded from the local 8-bit encoding.
bool getText(lua_State* L, const char* key, QString* out);
bool getBool(lua_State* L, const char* key, bool* out);
// Numbers and numeric strings, truncated toward zero and clamped to int.
bool getInt(lua_State* L, const char* key, int* out);
bool getNumber(lua_State* L, const char* key, double* out);

// The same, logging `missing` at debug level when the field is not found.
void readText(lua_State* L, const char* key, QString* out, const char* missing);
void readBool(lua_State* L, const char* key, bool* out, const char* missing);
void readInt(lua_State* L, const char* key, int* out, const char* missing);

enum class IdPresence { Missing, Present };

// The `id` key: a string is parsed as a QUuid (braces optional). With
// `createMissing` a missing or unparsable id becomes a new one. `presence`
// tells whether the key held a string at all.
QUuid getId(lua_State* L, bool createMissing, IdPresence* presence = nullptr);

// Pushes t[key] if it is a table and returns true; otherwise pushes nothing.
bool pushTable(lua_State* L, const char* key);

QString toText(lua_State* L, int index);

} // namespace luafields

#endif
