#ifndef VOSK_LUASTATE_H
#define VOSK_LUASTATE_H

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

struct lua_State;

// A bare Lua state (no standard libraries) for running project and route
// files, which are untrusted input. While a chunk runs, its memory and run
// time are bounded, so a hostile file fails like a broken one instead of
// hanging the editor or exhausting memory. Chunks too large for one Lua
// function (more constants than Lua 5.1 allows) are run piecewise.
class cLuaState
{
public:
    // Genuine files need about eight times their size; hostile ones hit the
    // limit long before they could hurt the machine.
    static size_t memoryLimitFor(size_t chunkBytes) { return (size_t(128) << 20) + 16 * chunkBytes; }
    // Total time the chunk may spend executing; parsing is linear and is not
    // counted.
    static constexpr qint64 runTimeLimitMs = 3000;

    cLuaState();
    ~cLuaState();
    cLuaState(const cLuaState&) = delete;
    cLuaState& operator=(const cLuaState&) = delete;

    lua_State* state() const { return m_state; }

    // Loads and runs the chunk up to its first NUL byte. On failure the Lua
    // error text is in errorText(). Afterwards the bounds are lifted so that
    // reading the results cannot fail half-way.
    bool run(const QByteArray& chunk);
    QString errorText() const { return m_error; }
    // The most memory the state has held at once, in bytes.
    size_t peakMemory() const { return m_budget.peak; }

    // Used while running: a chunk's load, call and the limits around them.
    bool loadAndCall(const char* text, size_t length, const char* name, int results);
    static bool isConstantOverflow(const QString& error);

    // For API calls made outside a protected call while a run is under way:
    // an allocation failure there could not be caught.
    size_t suspendMemoryLimit();
    void restoreMemoryLimit(size_t limit) { m_budget.limit = limit; }

private:
    struct Budget
    {
        size_t used = 0;
        size_t peak = 0;
        size_t limit = 0;
        qint64 executedMs = 0;
        QElapsedTimer clock;
    };

    static void* allocate(void* ud, void* ptr, size_t oldSize, size_t newSize);
    static void checkTime(lua_State* L, struct lua_Debug* ar);

    Budget m_budget;
    lua_State* m_state = nullptr;
    QString m_error;
};

#endif
