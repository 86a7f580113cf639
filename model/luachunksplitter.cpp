#include "luachunksplitter.h"

#include "luastate.h"

#include <QByteArray>

#include <cctype>
#include <lua.hpp>

namespace {

constexpr size_t npos = static_cast<size_t>(-1);

// Each distinct constant needs at least a character of its own and one of
// separation, so a piece of this size stays well below Lua's 262,143.
constexpr size_t maxPieceBytes = 256 * 1024;

// As deep as Lua's own parser lets constructors nest.
constexpr int maxDepth = 200;

bool isIdentifierStart(char c)
{
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}

bool isIdentifierChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

} // namespace

cLuaChunkSplitter::cLuaChunkSplitter(cLuaState& lua)
    : m_lua(lua)
    , m_state(lua.state())
{
}

bool cLuaChunkSplitter::run(const char* chunk, size_t length)
{
    m_text = chunk;
    m_length = length;
    size_t pos = skipBlank(0);
    while (pos < m_length) {
        const size_t nameEnd = identifierEnd(pos);
        if (nameEnd == pos)
            return false;
        const QByteArray name = text(Span{pos, nameEnd});
        size_t open = skipBlank(nameEnd);
        if (!isAssignment(open))
            return false;
        open = skipBlank(open + 1);
        if (open >= m_length || m_text[open] != '{')
            return false;
        const size_t close = findClose(open);
        if (close == npos || !pushConstructor(Span{open, close + 1}, 0))
            return false;
        {
            const cLuaState::cUnbounded unbounded(m_lua);
            lua_setglobal(m_state, name.constData());
        }
        pos = skipBlank(close + 1);
        if (pos < m_length && m_text[pos] == ';')
            pos = skipBlank(pos + 1);
    }
    return true;
}

bool cLuaChunkSplitter::pushConstructor(Span constructor, int depth)
{
    if (depth > maxDepth)
        return false;
    QVector<Field> fields;
    if (!splitFields(constructor, &fields))
        return false;
    {
        const cLuaState::cUnbounded unbounded(m_lua);
        lua_checkstack(m_state, LUA_MINSTACK);
        lua_newtable(m_state);
    }
    int nextIndex = 1;
    int first = 0;
    while (first < fields.size()) {
        if (fields[first].whole.size() > maxPieceBytes) {
            Span inner;
            const bool ok = isConstructor(fields[first].value, &inner)
                ? splitLargeField(fields[first], inner, depth, &nextIndex)
                : loadFields(fields, first, 1, depth, &nextIndex);
            if (!ok)
                return false;
            ++first;
            continue;
        }
        int count = 0;
        size_t bytes = 0;
        while (first + count < fields.size() && bytes + fields[first + count].whole.size() <= maxPieceBytes) {
            bytes += fields[first + count].whole.size();
            ++count;
        }
        if (!loadFields(fields, first, count, depth, &nextIndex))
            return false;
        first += count;
    }
    return true;
}

bool cLuaChunkSplitter::loadFields(const QVector<Field>& fields, int first, int count, int depth, int* nextIndex)
{
    // A line break before each separator ends a trailing line comment.
    QByteArray code("return {\n");
    int positional = 0;
    for (int i = first; i < first + count; ++i) {
        code += text(fields[i].whole);
        code += "\n,";
        if (fields[i].kind == KeyKind::Positional)
            ++positional;
    }
    code += "\n}";
    if (evaluate(code)) {
        mergeBatch(positional, nextIndex);
        return true;
    }
    if (!cLuaState::isConstantOverflow(m_lua.errorText()))
        return false;
    if (count == 1) {
        Span inner;
        return isConstructor(fields[first].value, &inner)
            && splitLargeField(fields[first], inner, depth, nextIndex);
    }
    const int half = count / 2;
    return loadFields(fields, first, half, depth, nextIndex)
        && loadFields(fields, first + half, count - half, depth, nextIndex);
}

bool cLuaChunkSplitter::splitLargeField(const Field& field, Span constructor, int depth, int* nextIndex)
{
    const int target = lua_gettop(m_state);
    if (field.kind == KeyKind::Name) {
        const QByteArray name = text(field.key);
        const cLuaState::cUnbounded unbounded(m_lua);
        lua_pushlstring(m_state, name.constData(), static_cast<size_t>(name.size()));
    } else if (field.kind == KeyKind::Expression) {
        if (!evaluate("return " + text(field.key) + "\n"))
            return false;
        if (lua_isnil(m_state, -1) || (lua_isnumber(m_state, -1) && lua_tonumber(m_state, -1) != lua_tonumber(m_state, -1))) {
            lua_settop(m_state, target);
            return false;
        }
    }
    if (!pushConstructor(constructor, depth + 1)) {
        lua_settop(m_state, target);
        return false;
    }
    const cLuaState::cUnbounded unbounded(m_lua);
    if (field.kind == KeyKind::Positional)
        lua_rawseti(m_state, target, (*nextIndex)++);
    else
        lua_rawset(m_state, target);
    return true;
}

bool cLuaChunkSplitter::evaluate(const QByteArray& code)
{
    return m_lua.loadAndCall(code.constData(), static_cast<size_t>(code.size()), "=piece", 1);
}

void cLuaChunkSplitter::mergeBatch(int positionalCount, int* nextIndex)
{
    // Moving values between tables may grow them; that must not fail outside
    // a protected call, and it only rearranges what the limit already allowed.
    const cLuaState::cUnbounded unbounded(m_lua);
    const int batch = lua_gettop(m_state);
    const int target = batch - 1;
    for (int i = 1; i <= positionalCount; ++i) {
        lua_rawgeti(m_state, batch, i);
        lua_rawseti(m_state, target, (*nextIndex)++);
    }
    lua_pushnil(m_state);
    while (lua_next(m_state, batch) != 0) {
        const bool positional = lua_type(m_state, -2) == LUA_TNUMBER
            && lua_tonumber(m_state, -2) >= 1 && lua_tonumber(m_state, -2) <= positionalCount
            && lua_tonumber(m_state, -2) == static_cast<int>(lua_tonumber(m_state, -2));
        if (positional) {
            lua_pop(m_state, 1);
            continue;
        }
        lua_pushvalue(m_state, -2);
        lua_insert(m_state, -2);
        lua_rawset(m_state, target);
    }
    lua_pop(m_state, 1);
}

bool cLuaChunkSplitter::splitFields(Span constructor, QVector<Field>* fields) const
{
    size_t fieldStart = constructor.begin + 1;
    int depth = 0;
    size_t pos = skipBlank(fieldStart);
    const size_t close = constructor.end - 1;
    while (pos < close) {
        const char c = m_text[pos];
        if (depth == 0 && (c == ',' || c == ';')) {
            const Span field{fieldStart, pos};
            if (skipBlank(field.begin) >= field.end)
                return false;
            fields->append(classify(field));
            fieldStart = pos + 1;
            pos = skipBlank(fieldStart);
            continue;
        }
        if (c == '{' || c == '(' || (c == '[' && longBracketLevel(pos) < 0))
            ++depth;
        else if (c == '}' || c == ')' || c == ']')
            --depth;
        pos = skipToken(pos);
        if (pos == npos)
            return false;
        pos = skipBlank(pos);
    }
    if (skipBlank(fieldStart) < close)
        fields->append(classify(Span{fieldStart, close}));
    return true;
}

cLuaChunkSplitter::Field cLuaChunkSplitter::classify(Span whole) const
{
    Field field;
    field.whole = whole;
    field.value = whole;
    const size_t start = skipBlank(whole.begin);
    if (m_text[start] == '[' && longBracketLevel(start) < 0) {
        const size_t close = findClose(start);
        if (close != npos && close < whole.end) {
            const size_t equals = skipBlank(close + 1);
            if (equals < whole.end && isAssignment(equals)) {
                field.kind = KeyKind::Expression;
                field.key = Span{start + 1, close};
                field.value = Span{equals + 1, whole.end};
            }
        }
    } else if (isIdentifierStart(m_text[start])) {
        const size_t nameEnd = identifierEnd(start);
        const size_t equals = skipBlank(nameEnd);
        if (equals < whole.end && isAssignment(equals)) {
            field.kind = KeyKind::Name;
            field.key = Span{start, nameEnd};
            field.value = Span{equals + 1, whole.end};
        }
    }
    return field;
}

bool cLuaChunkSplitter::isConstructor(Span value, Span* constructor) const
{
    const size_t open = skipBlank(value.begin);
    if (open >= value.end || m_text[open] != '{')
        return false;
    const size_t close = findClose(open);
    if (close == npos || skipBlank(close + 1) < value.end)
        return false;
    *constructor = Span{open, close + 1};
    return true;
}

size_t cLuaChunkSplitter::skipBlank(size_t pos) const
{
    while (pos < m_length) {
        const char c = m_text[pos];
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++pos;
        } else if (c == '-' && pos + 1 < m_length && m_text[pos + 1] == '-') {
            const int level = longBracketLevel(pos + 2);
            if (level >= 0) {
                pos = skipLongBracket(pos + 2, level);
                if (pos == npos)
                    return m_length;
            } else {
                while (pos < m_length && m_text[pos] != '\n')
                    ++pos;
            }
        } else {
            break;
        }
    }
    return pos;
}

size_t cLuaChunkSplitter::skipToken(size_t pos) const
{
    const char c = m_text[pos];
    if (c == '\'' || c == '"') {
        for (size_t i = pos + 1; i < m_length; ++i) {
            if (m_text[i] == '\\')
                ++i;
            else if (m_text[i] == c)
                return i + 1;
            else if (m_text[i] == '\n')
                return npos;
        }
        return npos;
    }
    const int level = longBracketLevel(pos);
    if (level >= 0)
        return skipLongBracket(pos, level);
    return pos + 1;
}

size_t cLuaChunkSplitter::findClose(size_t open) const
{
    int depth = 0;
    size_t pos = open;
    while (pos < m_length) {
        const char c = m_text[pos];
        if (c == '{' || c == '(' || (c == '[' && longBracketLevel(pos) < 0)) {
            ++depth;
        } else if (c == '}' || c == ')' || c == ']') {
            if (--depth == 0)
                return pos;
        }
        pos = skipToken(pos);
        if (pos == npos)
            return npos;
        pos = skipBlank(pos);
    }
    return npos;
}

size_t cLuaChunkSplitter::identifierEnd(size_t pos) const
{
    if (pos >= m_length || !isIdentifierStart(m_text[pos]))
        return pos;
    while (pos < m_length && isIdentifierChar(m_text[pos]))
        ++pos;
    return pos;
}

bool cLuaChunkSplitter::isAssignment(size_t pos) const
{
    return pos < m_length && m_text[pos] == '=' && (pos + 1 >= m_length || m_text[pos + 1] != '=');
}

int cLuaChunkSplitter::longBracketLevel(size_t pos) const
{
    if (pos >= m_length || m_text[pos] != '[')
        return -1;
    size_t i = pos + 1;
    while (i < m_length && m_text[i] == '=')
        ++i;
    return i < m_length && m_text[i] == '[' ? static_cast<int>(i - pos - 1) : -1;
}

size_t cLuaChunkSplitter::skipLongBracket(size_t pos, int level) const
{
    for (size_t i = pos + static_cast<size_t>(level) + 2; i < m_length; ++i) {
        if (m_text[i] != ']')
            continue;
        size_t j = i + 1;
        while (j < m_length && m_text[j] == '=')
            ++j;
        if (j < m_length && m_text[j] == ']' && static_cast<int>(j - i - 1) == level)
            return j + 1;
    }
    return npos;
}

QByteArray cLuaChunkSplitter::text(Span span) const
{
    return QByteArray(m_text + span.begin, static_cast<int>(span.size()));
}
