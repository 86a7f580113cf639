#ifndef VOSK_LUASTATE_H
#define VOSK_LUASTATE_H

#include <QByteArray>
#include <QString>

#include <functional>

struct lua_State;

// A bare Lua state (no standard libraries) for running project and route
// files, which are untrusted input. While a chunk runs, its memory and the
// number of instructions it executes are bounded, so a hostile file fails
// like a broken one instead of hanging the editor or exhausting memory.
// Chunks too large for one Lua function (more constants than Lua 5.1 allows)
// are run piecewise.
class cLuaState
{
public:
    // Genuine files need about eight times their size; hostile ones hit the
    // limit long before they could hurt the machine.
    static size_t memoryLimitFor(size_t chunkBytes) { return (size_t(128) << 20) + 16 * chunkBytes; }
    // A project of 100,000 stops executes about 2.1 million instructions, one
    // of a million stops 21 million; an endless loop reaches this bound in
    // about a second. Counting instructions, not time, gives the same
    // verdict on a busy machine or in a slow build.
    static constexpr qint64 instructionLimit = 200 * 1000 * 1000;

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

    // Reads the text file at `path`, runs it, and hands the global table
    // `global` to `read`, which leaves the stack as it found it. Returns
    // false only when the file cannot be opened; `*result` is what `read`
    // returned, or false when the chunk failed or set no such table.
    // `error`, when given, gets why the file is not read: the file's or
    // Lua's own message; failures inside the table are only logged.
    // `progress` is called now and then while the chunk is parsed and run,
    // never while `read` works.
    static bool runFile(const QString& path, const char* global, const std::function<bool(lua_State*)>& read,
                        bool* result, QString* error = nullptr, const std::function<void()>& progress = {});

    // Used while running: a chunk's load, call and the limits around them.
    bool loadAndCall(const char* text, size_t length, const char* name, int results);
    static bool isConstantOverflow(const QString& error);

    // Lifts the memory bound for API calls made outside a protected call
    // while a run is under way: an allocation failure there could not be
    // caught. Such calls allocate little; the next protected step fails if
    // they went over.
    class cUnbounded
    {
    public:
        explicit cUnbounded(cLuaState& lua);
        ~cUnbounded();
        cUnbounded(const cUnbounded&) = delete;
        cUnbounded& operator=(const cUnbounded&) = delete;

    private:
        cLuaState& m_lua;
        size_t m_limit;
    };

private:
    struct Budget
    {
        size_t used = 0;
        size_t limit = 0;
        qint64 instructions = 0;
        bool memoryExceeded = false;
        bool instructionsExceeded = false;
        const std::function<void()>* progress = nullptr;
    };

    static constexpr int utf8Mib = 106;
    static QByteArray localChunk(const QByteArray& bytes);

    static void* allocate(void* ud, void* ptr, size_t oldSize, size_t newSize);
    static void countInstructions(lua_State* L, struct lua_Debug* ar);
    void logExceededLimit(size_t memoryLimit) const;

    Budget m_budget;
    std::function<void()> m_progress;
    lua_State* m_state = nullptr;
    QString m_error;
};

#endif
