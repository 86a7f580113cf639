#include "luastate.h"

#include "luachunksplitter.h"

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
    if (budget->limit != 0 && newSize > oldSize && budget->used - oldSize + newSize > budget->limit)
        return nullptr;
    void* block = std::realloc(ptr, newSize);
    if (block) {
        budget->used = budget->used - oldSize + newSize;
        budget->peak = qMax(budget->peak, budget->used);
    }
    return block;
}

void cLuaState::checkTime(lua_State* L, lua_Debug*)
{
    void* ud = nullptr;
    lua_getallocf(L, &ud);
    const Budget* budget = static_cast<Budget*>(ud);
    if (budget->executedMs + budget->clock.elapsed() > runTimeLimitMs)
        luaL_error(L, "run time limit exceeded");
}

size_t cLuaState::suspendMemoryLimit()
{
    const size_t limit = m_budget.limit;
    m_budget.limit = 0;
    return limit;
}

bool cLuaState::isConstantOverflow(const QString& error)
{
    return error.contains(QLatin1String("constant table overflow"));
}

bool cLuaState::loadAndCall(const char* text, size_t length, const char* name, int results)
{
    int status = luaL_loadbuffer(m_state, text, length, name);
    if (status == 0) {
        m_budget.clock.start();
        status = lua_pcall(m_state, 0, results, 0);
        m_budget.executedMs += m_budget.clock.elapsed();
    }
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
    m_budget.executedMs = 0;
    lua_sethook(m_state, &cLuaState::checkTime, LUA_MASKCOUNT, hookInstructionCount);

    bool ok = loadAndCall(chunk.constData(), length, "=chunk", 0);
    if (!ok && isConstantOverflow(m_error))
        ok = cLuaChunkSplitter(*this).run(chunk.constData(), length);

    lua_sethook(m_state, nullptr, 0, 0);
    m_budget.limit = 0;
    return ok;
}
