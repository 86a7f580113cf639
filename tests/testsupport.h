#ifndef VOSK_TESTSUPPORT_H
#define VOSK_TESTSUPPORT_H

#include "project.h"

#include <QObject>

#include <QByteArray>
#include <QString>
#include <QStringList>

struct lua_State;
class cProjectManager;

namespace testsupport {

// Writes bytes to a file, creating it; returns false when that fails.
bool writeFile(const QString& path, const QByteArray& bytes);
QByteArray readFile(const QString& path);

// Root passes every permission check; a test of read-only folders drops
// that power for the calling thread. Other users have none to drop.
void honourFilePermissions();

// Empty when the records are equal; otherwise names the first difference,
// so a failing comparison says where it went wrong.
QString difference(const cStop& a, const cStop& b);
QString difference(const cRoute& a, const cRoute& b);
QString difference(const cProject& a, const cProject& b);

// The names of stops in their order, to compare a branch with what it should hold.
QStringList stopNames(const QList<cStop>& stops);

// Empty when `read` is `original` as the device form brings it back: sound
// paths on the card, no empty other sounds, fresh stop ids, coordinates
// within rounding of the 8-digit text.
QString deviceDifference(const cRoute& read, cRoute original);

// A route that exercises every field: Cyrillic text, a key stop, a course
// window, other sounds, alternate branch names, stops in both branches.
cRoute sampleRoute();

// A generated project of the given size with distinct names, paths and
// coordinates that survive the 8-digit text form exactly.
cProject generatedProject(int routeCount, int stopsPerBranch);

// Runs `text` in a stock Lua 5.1 state (standard libraries open) and leaves
// the value of global `name` on the top of the stack. Null on a Lua error.
lua_State* runInStockLua(const QByteArray& text, const char* name, QString* error = nullptr);

// Records the manager's signals by name ("created", "opened", "saved",
// "imported") in the order they arrive, for as long as it lives.
class cSignalRecorder
{
public:
    explicit cSignalRecorder(cProjectManager* manager);
    QStringList names;

private:
    QObject m_context;
};

// Collects the messages sent while it lives instead of printing them, so a
// test can compare the exact log a reader produced.
class cMessageCapture
{
public:
    cMessageCapture();
    ~cMessageCapture();
    cMessageCapture(const cMessageCapture&) = delete;
    cMessageCapture& operator=(const cMessageCapture&) = delete;

    QStringList messages() const;
    void clear();
};

} // namespace testsupport

#endif
