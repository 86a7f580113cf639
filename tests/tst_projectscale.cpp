#include "luastate.h"
#include "projectmanager.h"
#include "testsupport.h"

#include <QtTest>

#include <lua.hpp>

using namespace testsupport;

namespace {

// Serialises a Lua value with sorted keys, so two tables built by different
// means can be compared as text.
QByteArray dump(lua_State* L, int index)
{
    index = index < 0 ? lua_gettop(L) + index + 1 : index;
    switch (lua_type(L, index)) {
    case LUA_TTABLE: {
        QList<QByteArray> entries;
        lua_pushnil(L);
        while (lua_next(L, index) != 0) {
            entries << dump(L, -2) + "=" + dump(L, -1);
            lua_pop(L, 1);
        }
        std::sort(entries.begin(), entries.end());
        return "{" + entries.join(",") + "}";
    }
    case LUA_TSTRING: {
        size_t length = 0;
        const char* bytes = lua_tolstring(L, index, &length);
        return "'" + QByteArray(bytes, static_cast<int>(length)) + "'";
    }
    case LUA_TNUMBER:
        return QByteArray::number(lua_tonumber(L, index), 'g', 17);
    case LUA_TBOOLEAN:
        return lua_toboolean(L, index) ? "true" : "false";
    default:
        return lua_typename(L, lua_type(L, index));
    }
}

// Text in which commas, braces and quotes hide inside strings and comments,
// with every kind of key, so a careless split would change the table.
QByteArray trickyEntries(int count, int salt)
{
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const QByteArray n = QByteArray::number(i * 7 + salt);
        text += "  { id = '" + n + "', name = 'a, b } {\\' " + n + "', [ [[k]] .. '" + n + "'] = [==[x]]}," + n + "]==],\n"
                "    -- , } a line comment with a quote '\n"
                "    list = { " + n + ", " + n + ".5; \"q\\\"" + n + "\" }, [" + n + "] = true --[[ } , ]] },\n";
    }
    return text;
}

} // namespace

class tst_ProjectScale : public QObject
{
    Q_OBJECT

private slots:
    void largeTablesEvaluateAsLuaWould();
    void hugeProjectSavesAndOpens();
    void runningOutOfMemoryBetweenPiecesFails();
    void damagedLargeFilesFail_data();
    void damagedLargeFilesFail();
};

void tst_ProjectScale::largeTablesEvaluateAsLuaWould()
{
    // Beyond the constant limit of one Lua function: pieces, nested tables
    // larger than one piece, and statements separated by semicolons.
    QByteArray flat = "flat = { ";
    for (int i = 0; i < 300000; ++i)
        flat += QByteArray::number(i) + ", ";
    flat += "x = 'end' };\n";
    const QByteArray nested = "nested = { first = { " + trickyEntries(4000, 1) + " }, [2] = 'two', { "
                            + trickyEntries(20000, 2) + " }, 'tail' }\n";
    const QByteArray chunk = "-- header comment\n" + flat + nested;

    cLuaState lua;
    QVERIFY2(lua.run(chunk), qPrintable(lua.errorText()));

    // Stock Lua cannot load it whole, but can build each table from its own
    // pieces; the results must agree.
    QString error;
    QVERIFY(!runInStockLua(chunk, "flat", &error));
    QVERIFY2(error.contains("constant table overflow"), qPrintable(error));
    lua_State* L = lua.state();
    lua_getglobal(L, "flat");
    QCOMPARE(lua_objlen(L, -1), size_t(300000));
    lua_rawgeti(L, -1, 300000);
    QCOMPARE(lua_tonumber(L, -1), 299999.0);
    lua_getglobal(L, "nested");
    lua_getfield(L, -1, "first");
    lua_State* stock = runInStockLua("first = { " + trickyEntries(4000, 1) + " }", "first", &error);
    QVERIFY2(stock, qPrintable(error));
    QCOMPARE(dump(L, -1), dump(stock, -1));
    lua_close(stock);
    lua_pop(L, 1);
    lua_rawgeti(L, -1, 1);
    stock = runInStockLua("second = { " + trickyEntries(20000, 2) + " }", "second", &error);
    QVERIFY2(stock, qPrintable(error));
    QCOMPARE(dump(L, -1), dump(stock, -1));
    lua_close(stock);
    lua_pop(L, 1);
    lua_rawgeti(L, -1, 2);
    QCOMPARE(QByteArray(lua_tostring(L, -1)), QByteArray("tail"));

    // A broken piece still fails the whole run.
    cLuaState broken;
    QVERIFY(!broken.run(chunk + "broken = { " + trickyEntries(20000, 3) + " 1 2 }"));
}

void tst_ProjectScale::hugeProjectSavesAndOpens()
{
    // 1000 routes of 50 stops a branch: far more constants than one Lua
    // function may hold.
    QTemporaryDir dir;
    cProjectManager manager;
    *manager.project() = generatedProject(1000, 50);
    const cProject saved = *manager.project();
    const QString file = dir.filePath("huge.vosk");
    QVERIFY(manager.saveProject(file));
    QVERIFY(QFileInfo(file).size() > 25 * 1000 * 1000);

    cProjectManager other;
    {
        cMessageCapture quiet;
        QVERIFY(other.openProject(file));
    }
    QCOMPARE(difference(*other.project(), saved), QString());
}

// Memory can run out between the pieces of a file too large for one Lua
// function, outside any protected call: such a file must fail to open, not
// end the editor. A million entries make their table's array double to
// 32 MB while the last piece is merged; strings of a megabyte built by the
// file itself fill the memory up to just below its bound before that; a
// large table comes after.
void tst_ProjectScale::runningOutOfMemoryBetweenPiecesFails()
{
    QByteArray last = "{ ";
    for (int i = 0; i < 300000; ++i)
        last += QByteArray::number(i) + ',';
    const QByteArray rest = QByteArray("1,").repeated((1 << 20) + 1) + "\n" + last + "} }\n";
    const QByteArray head = "project = { (function() local t, b = {}, 'x' while #b < 1048576 do b = b .. b end "
                            "for i = 1, %1 do t[i] = b .. i end return t end)(),\n";
    QTemporaryDir dir;
    const QString file = dir.filePath("filled.vosk");
    for (int belowBound : {50, 46}) {
        const qint64 bound = qint64(cLuaState::memoryLimitFor(size_t(head.size() + rest.size()))) >> 20;
        QVERIFY(writeFile(file, QString::fromLatin1(head).arg(bound - belowBound).toLatin1() + rest));
        cProjectManager manager;
        cMessageCapture capture;
        QVERIFY(!manager.openProject(file));
        QVERIFY(capture.messages().filter("File not read: it needs more than").size() == 1);
    }
}

// Lua stops at the constant overflow before it sees damage further on, so
// only the piecewise reader's own scanning meets it.
void tst_ProjectScale::damagedLargeFilesFail_data()
{
    QTest::addColumn<QByteArray>("project");
    QTest::addColumn<bool>("opens");
    const QByteArray routes = "routes = { { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3c}' } }";
    QTest::newRow("undamaged") << "{ id = '" + QUuid::createUuid().toByteArray() + "', version = 1, " + routes + " }"
                               << true;
    QTest::newRow("string not closed") << "{ id = 'x, version = 1, " + routes + " }" << false;
    QTest::newRow("string cut by a line end") << "{ id = 'x\n', version = 1, " + routes + " }" << false;
    QTest::newRow("long string not closed") << "{ id = [==[x]=], version = 1, " + routes + " }" << false;
    QTest::newRow("long comment not closed") << "{ --[[ version = 1, " + routes + " }" << false;
    QTest::newRow("brace not closed") << "{ version = 1, " + routes << false;
    QTest::newRow("empty field") << "{ version = 1,, " + routes + " }" << false;
    QTest::newRow("brace closed twice") << "{ version = 1 }, " + routes + " }" << false;
    QTest::newRow("not an assignment") << "{ version = 1, " + routes + " } project ( )" << false;
}

void tst_ProjectScale::damagedLargeFilesFail()
{
    QFETCH(QByteArray, project);
    QFETCH(bool, opens);
    QByteArray text = "pad = { ";
    for (int i = 0; i < 300000; ++i)
        text += QByteArray::number(i) + ',';
    text += "}\nproject = " + project;
    QTemporaryDir dir;
    const QString file = dir.filePath("damaged.vosk");
    QVERIFY(writeFile(file, text));
    cProjectManager manager;
    cMessageCapture quiet;
    QCOMPARE(manager.openProject(file), opens);
}

QTEST_GUILESS_MAIN(tst_ProjectScale)
#include "tst_projectscale.moc"
