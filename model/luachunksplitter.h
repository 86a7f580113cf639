#ifndef VOSK_LUACHUNKSPLITTER_H
#define VOSK_LUACHUNKSPLITTER_H

#include <QVector>

#include <cstddef>

class cLuaState;
struct lua_State;

// Runs a chunk of the form `name = { ... }` (one or more such statements)
// that is too large for a single Lua 5.1 function: Lua 5.1 refuses a function
// with more than 262,143 distinct constants, which a project of some 50,000
// stops reaches. The table constructors are split at their top-level fields
// and evaluated in pieces small enough for Lua, then merged into the same
// tables the whole chunk would have built.
class cLuaChunkSplitter
{
public:
    explicit cLuaChunkSplitter(cLuaState& lua);

    bool run(const char* chunk, size_t length);

private:
    struct Span
    {
        size_t begin = 0;
        size_t end = 0;
        size_t size() const { return end - begin; }
    };

    enum class KeyKind { Positional, Name, Expression };

    struct Field
    {
        Span whole;
        KeyKind kind = KeyKind::Positional;
        Span key;
        Span value;
    };

    bool pushConstructor(Span constructor, int depth);
    bool loadFields(const QVector<Field>& fields, int first, int count, int depth, int* nextIndex);
    bool splitLargeField(const Field& field, Span constructor, int depth, int* nextIndex);
    bool evaluate(const QByteArray& code);
    void mergeBatch(int positionalCount, int* nextIndex);

    bool splitFields(Span constructor, QVector<Field>* fields) const;
    Field classify(Span field) const;
    bool isConstructor(Span value, Span* constructor) const;

    // Scanning that knows just enough Lua to skip strings and comments.
    size_t skipBlank(size_t pos) const;
    size_t skipToken(size_t pos) const;
    size_t findClose(size_t open) const;
    size_t identifierEnd(size_t pos) const;
    bool isAssignment(size_t pos) const;
    int longBracketLevel(size_t pos) const;
    size_t skipLongBracket(size_t pos, int level) const;
    QByteArray text(Span span) const;

    cLuaState& m_lua;
    lua_State* m_state;
    const char* m_text = nullptr;
    size_t m_length = 0;
};

#endif
