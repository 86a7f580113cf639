#include "luastate.h"

#include "luachunksplitter.h"

#include <QDebug>
#include <QFile>
#include <QTextCodec>
#include <QTextStream>

#include <algorithm>

#include <cstdlib>
#include <lua.hpp>

namespace {

constexpr int hookInstructionCount = 10000;

int panic(lua_State* L)
{
    // Only reachable through an API misuse outside a protected call; there is
    // no way to recover the state, so fail loudly.
    qFatal("Lua panic: %s", lua_tostring(L, -1));
    return 0;
}

} // namespace

cLuaState::cLuaState()
{
    m_budget.progress = &m_progress;
    m_state = lua_newstate(&cLuaState::allocate, &m_budget);
    if (m_state)
        lua_atpanic(m_state, panic);
}

cLuaState::~cLuaState()
{
    if (m_state)
        lua_close(m_state);
}

void* cLuaState::allocate(void* ud, void* ptr, size_t oldSize, size_t newSize)
{
    auto* budget = static_cast<Budget*>(ud);
    if (newSize == 0) {
        std::free(ptr);
        budget->used -= oldSize;
        return nullptr;
    }
    if (budget->limit != 0 && newSize > oldSize && budget->used - oldSize + newSize > budget->limit) {
        budget->memoryExceeded = true;
        return nullptr;
    }
    void* block = std::realloc(ptr, newSize);
    if (block)
        budget->used = budget->used - oldSize + newSize;
    return block;
}

void cLuaState::countInstructions(lua_State* L, lua_Debug*)
{
    void* ud = nullptr;
    lua_getallocf(L, &ud);
    auto* budget = static_cast<Budget*>(ud);
    budget->instructions += hookInstructionCount;
    if (budget->progress && *budget->progress)
        (*budget->progress)();
    if (budget->instructions > instructionLimit) {
        budget->instructionsExceeded = true;
        luaL_error(L, "instruction limit exceeded");
    }
}

cLuaState::cUnbounded::cUnbounded(cLuaState& lua)
    : m_lua(lua)
    , m_limit(lua.m_budget.limit)
{
    m_lua.m_budget.limit = 0;
}

cLuaState::cUnbounded::~cUnbounded()
{
    m_lua.m_budget.limit = m_limit;
}

bool cLuaState::isConstantOverflow(const QString& error)
{
    return error.contains(QLatin1String("constant table overflow"));
}

namespace {

// Hands the chunk to the parser a piece at a time, so that the owner hears
// from a long parse now and then.
struct cPieceReader
{
    const char* text;
    size_t left;
    const std::function<void()>* progress;

    static const char* read(lua_State*, void* data, size_t* size)
    {
        constexpr size_t pieceBytes = 512 * 1024;
        auto* reader = static_cast<cPieceReader*>(data);
        if (reader->left == 0) {
            *size = 0;
            return nullptr;
        }
        if (*reader->progress)
            (*reader->progress)();
        const char* piece = reader->text;
        *size = std::min(reader->left, pieceBytes);
        reader->text += *size;
        reader->left -= *size;
        return piece;
    }
};

} // namespace

bool cLuaState::loadAndCall(const char* text, size_t length, const char* name, int results)
{
    cPieceReader reader{text, length, &m_progress};
    int status = lua_load(m_state, &cPieceReader::read, &reader, name);
    if (status == 0)
        status = lua_pcall(m_state, 0, results, 0);
    if (status == 0)
        return true;
    m_error = QString::fromLocal8Bit(lua_tostring(m_state, -1));
    lua_pop(m_state, 1);
    return false;
}

bool cLuaState::run(const QByteArray& chunk)
{
    if (!m_state) {
        m_error = QStringLiteral("not enough memory");
        return false;
    }
    m_error.clear();
    // The text ends at its first NUL byte, as a C string would.
    const size_t length = qstrlen(chunk.constData());
    m_budget.limit = memoryLimitFor(length);
    m_budget.instructions = 0;
    m_budget.memoryExceeded = false;
    m_budget.instructionsExceeded = false;
    lua_sethook(m_state, &cLuaState::countInstructions, LUA_MASKCOUNT, hookInstructionCount);

    bool ok = loadAndCall(chunk.constData(), length, "=chunk", 0);
    if (!ok && isConstantOverflow(m_error))
        ok = cLuaChunkSplitter(*this).run(chunk.constData(), length);

    lua_sethook(m_state, nullptr, 0, 0);
    if (!ok)
        logExceededLimit(m_budget.limit);
    m_budget.limit = 0;
    return ok;
}

// A file stopped by a bound is not broken, only too demanding; the log says
// which bound so that a genuine file that hits one can be told apart.
void cLuaState::logExceededLimit(size_t memoryLimit) const
{
    if (m_budget.instructionsExceeded)
        qWarning().noquote() << "File not read: it runs more than" << instructionLimit << "Lua instructions";
    else if (m_budget.memoryExceeded)
        qWarning().noquote() << "File not read: it needs more than" << memoryLimit << "bytes of memory";
}

// The file's text in the local 8-bit encoding, as Lua gets it. In a UTF-8
// locale the bytes already are that text; decoding them into a QString and
// back would only cost time and twice the memory. A byte-order mark is
// dropped, as a text stream would.
QByteArray cLuaState::localChunk(const QByteArray& bytes)
{
    static const QByteArray utf8Mark("\xEF\xBB\xBF");
    const bool unicodeMark = bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF");
    if (QTextCodec::codecForLocale()->mibEnum() == utf8Mib && !unicodeMark)
        return bytes.startsWith(utf8Mark) ? bytes.mid(utf8Mark.size()) : bytes;
    QTextStream stream(bytes);
    return stream.readAll().toLocal8Bit();
}

bool cLuaState::runFile(const QString& path, const char* global, const std::function<bool(lua_State*)>& read,
                        bool* result, QString* error, const std::function<void()>& progress)
{
    const auto fail = [error](const QString& text) {
        if (error)
            *error = text;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        fail(file.errorString());
        return false;
    }
    const QByteArray chunk = localChunk(file.readAll());
    file.close();

    *result = false;
    cLuaState lua;
    lua.m_progress = progress;
    const bool ran = lua.run(chunk);
    lua.m_progress = nullptr;
    if (!ran) {
        fail(lua.errorText());
        return true;
    }
    lua_State* L = lua.state();
    lua_getglobal(L, global);
    if (lua_istable(L, -1)) {
        *result = read(L);
    } else {
        const QString message = QStringLiteral("No %1 table in Lua-state... %2")
                                    .arg(QLatin1String(global), QLatin1String(luaL_typename(L, -1)));
        qDebug().noquote() << message;
        fail(message);
    }
    lua_pop(L, 1);
    return true;
}
