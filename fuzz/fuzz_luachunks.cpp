// The bounded Lua state that runs project and route files, including the
// piecewise reader of chunks too large for one Lua function. Any Lua error
// whose text mentions a constant table overflow sends a chunk down that
// path, so the seeds carry one (a syntax error near such a string) at
// several depths of their tables and small inputs reach the splitter too.
#include "fuzzsupport.h"
#include "luastate.h"

#include <lua.hpp>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray chunk = fuzz::bytes(data, size);
    cLuaState lua;
    if (!lua.run(chunk))
        return 0;
    FUZZ_CHECK(lua_gettop(lua.state()) == 0);
    // Read piecewise or not, only what Lua itself can load is run: a chunk
    // this small cannot overflow the constants, so Lua must load it whole.
    lua_State* stock = luaL_newstate();
    const int status = luaL_loadbuffer(stock, chunk.constData(), qstrlen(chunk.constData()), "=chunk");
    lua_close(stock);
    FUZZ_CHECK(status == 0);
    return 0;
}
