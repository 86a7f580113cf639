#include "convertprogress.h"
#include "converter.h"
#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "routetable.h"
#include "savedialog.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QApplication>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>

#include <lua.hpp>

using namespace guisupport;
using namespace testsupport;

namespace {

// Empty when `script` is `route` as the device's interpreter reads it.
QString scriptDifference(const QByteArray& script, const cRoute& route)
{
    lua_State* L = runInStockLua(script, "route");
    if (!L)
        return QStringLiteral("no route table");
    cRoute read;
    readRoute(read, L, true);
    lua_close(L);
    return deviceDifference(read, route);
}

cRoute soundRoute(const QString& name, const QString& shortName, const QStringList& sounds = {})
{
    cRoute route = sampleRoute();
    route.name = name;
    route.short_name = shortName;
    route.base_sound = {sounds.value(0), sounds.value(1), sounds.value(2)};
    route.direct.stops[0].sound = sounds.value(3);
    route.direct.stops[0].other_sounds = QStringList{sounds.value(4), QString()};
    route.direct.stops[1].sound = sounds.value(5);
    return route;
}

} // namespace

class tst_RouteExport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void pageFileNames();
    void exportConvertsEachSoundOnceAndListsFailures();
    void scriptsOnlyAndUnwritableFile();
    void cancelWritesNothingAndFolderIsKept();

private:
    QString sound(const QString& name) const { return m_sounds.filePath(name); }
    cConverter* converter() const { return m_window->findChild<cConverter*>(); }
    const cRoute& route(int row) const { return m_window->findChild<cProjectManager*>()->project()->routes[row]; }
    // Selects the rows and presses "Save selected routes"; the save dialog
    // records its tab titles and shown folder, gets `dir` and is closed with
    // `button`. `next` queues answers for the dialogs that follow it.
    void exportRows(const QList<int>& rows, const QString& dir,
                    QDialogButtonBox::StandardButton button = QDialogButtonBox::Ok,
                    const std::function<void()>& next = {});

    QTemporaryDir m_sounds;
    QScopedPointer<QTemporaryDir> m_out;
    QScopedPointer<cMainWindow> m_window;
    QStringList m_tabs;
    QString m_shownDir;
};

void tst_RouteExport::initTestCase()
{
    // A name with a backslash, as a project made on Windows holds it.
    for (const char* name : {"shared.mp3", "a.mp3", "b.ogg", "c.wav", "snd\\back.mp3"}) {
        QProcess::execute("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=duration=0.3", sound(name)});
        QVERIFY(QFile::exists(sound(name)));
    }
    QVERIFY(writeFile(sound("broken.wav"), QByteArray("This is not a sound.\n").repeated(40)));
}

void tst_RouteExport::init()
{
    QSettings().clear();
    m_out.reset(new QTemporaryDir);
    m_window.reset(new cMainWindow);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.data()));
    m_tabs.clear();

    // Two routes sharing sounds, a failing one, two with the same short name
    // and one whose file cannot be written.
    auto* manager = m_window->findChild<cProjectManager*>();
    manager->project()->routes
        << soundRoute("Депо — Вокзал", "12/A", {sound("shared.mp3"), sound("a.mp3"), "", sound("a.mp3"),
                                                sound("shared.mp3"), sound("b.ogg")})
        << soundRoute("Кольцо", "", {sound("shared.mp3"), sound("snd\\back.mp3"), "", sound("c.wav"), sound("b.ogg")})
        << soundRoute("Сломанный", "9", {sound("broken.wav"), sound("a.mp3")}) << soundRoute("Пустой", "7")
        << soundRoute("Пустой тоже", "7") << soundRoute("Locked", "") << soundRoute("Full", "");
    emit manager->projectOpened();
}

void tst_RouteExport::cleanup()
{
    const int unused = dropPendingAnswers();
    m_window.reset();
    QCOMPARE(unused, 0);
}

void tst_RouteExport::exportRows(const QList<int>& rows, const QString& dir, QDialogButtonBox::StandardButton button,
                                 const std::function<void()>& next)
{
    auto* list = m_window->findChild<QListWidget*>("routeList");
    list->clearSelection();
    for (int row : rows)
        list->item(row)->setSelected(true);
    answerNextModal([this, dir, button](QWidget* dialog) {
        auto* tabs = dialog->findChild<QTabWidget*>("tabWidget");
        for (int i = 0; i < tabs->count(); ++i)
            m_tabs << tabs->tabText(i);
        auto* edit = dialog->findChild<QLineEdit*>("outputDir");
        m_shownDir = edit->text();
        edit->setText(dir);
        dialog->findChild<QDialogButtonBox*>("buttonBox")->button(button)->click();
    });
    if (next)
        next();
    m_window->findChild<QPushButton*>("saveRouteBtn")->click();
}

void tst_RouteExport::pageFileNames()
{
    cSaveDialog dialog;
    const QUuid id = QUuid::createUuid();
    dialog.addPage(id, "first", "route =\n{}", "a\\b/c>d<e:f*g|h?i\"j");
    QCOMPARE(dialog.fileName(id), QStringLiteral("a_b_c_d_e_f_g_h_i_j.lua"));
    // The extension is never the user's to type.
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText("x.lua");
    QCOMPARE(dialog.fileName(id), QStringLiteral("x.lua.lua"));
    dialog.clearPages();
    QCOMPARE(dialog.fileName(id), QString());
}

void tst_RouteExport::exportConvertsEachSoundOnceAndListsFailures()
{
    QSignalSpy processed(converter(), &cConverter::fileProcessed);
    auto* bar = m_window->findChild<cConvertProgress*>()->findChild<QProgressBar*>();
    // Window state and progress (done * 10 + total) as each file is reported.
    QList<int> states;
    connect(converter(), &cConverter::fileProcessed, m_window.data(), [&] {
        states << (m_window->isEnabled() ? -1 : bar->isVisible() ? bar->value() * 10 + bar->maximum() : -2);
    });
    QString listed;
    bool clearBehind = false;
    exportRows({0, 1, 2}, m_out->path(), QDialogButtonBox::Ok, [&] {
        answerNextModal([&](QWidget* dialog) {
            listed = dialog->findChild<QPlainTextEdit*>("fileList")->toPlainText();
            clearBehind = m_window->isEnabled() && !bar->isVisible();
            dialog->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok)->click();
        });
    });
    QCOMPARE(m_tabs, (QStringList{"Депо — Вокзал", "Кольцо", "Сломанный"}));
    QTRY_COMPARE_WITH_TIMEOUT(pendingAnswers(), 0, 60000);
    QVERIFY(clearBehind);
    // The undecodable file also leaves no output to rewrite: reported and
    // listed twice, counted once.
    QCOMPARE(listed, sound("broken.wav") + ",\n" + sound("broken.wav"));
    QCOMPARE(states, (QList<int>{16, 26, 36, 46, 56, 66, 66}));
    QStringList converted;
    for (const QList<QVariant>& report : processed)
        converted << QFileInfo(report.at(0).toString()).fileName() + '=' + QString::number(report.at(1).toBool());
    QCOMPARE(converted, (QStringList{"shared.mp3=1", "a.mp3=1", "b.ogg=1", "snd\\back.mp3=1", "c.wav=1",
                                     "broken.wav=0", "broken.wav=0"}));

    const QDir out(m_out->path());
    QCOMPARE(out.entryList(QDir::Files), QStringList());
    // Every sound a script names is on the card under that name, but the
    // one that could not be converted.
    QStringList missing;
    QRegularExpression named("'/sdmmc/voskdev/([^']+)'");
    for (const QString& script : QDir(out.filePath("route")).entryList(QDir::Files)) {
        auto found = named.globalMatch(QString::fromUtf8(readFile(out.filePath("route/" + script))));
        while (found.hasNext()) {
            const QString name = found.next().captured(1);
            if (!QFile::exists(out.filePath("voskdev/" + name)))
                missing << name;
        }
    }
    QCOMPARE(missing, QStringList{"broken.wav"});
    const QStringList files{"12_A.lua", "Кольцо.lua", "9.lua"};
    QCOMPARE(QDir(out.filePath("route")).entryList(QDir::Files).size(), files.size());
    for (int i = 0; i < files.size(); ++i)
        QCOMPARE(scriptDifference(readFile(out.filePath("route/" + files[i])), route(i)), QString());
}

void tst_RouteExport::scriptsOnlyAndUnwritableFile()
{
    QSignalSpy finished(converter(), &cConverter::convertFinished);
    QVERIFY(QDir(m_out->path()).mkpath("route/Locked.lua"));
    // A full card opens the file and then takes nothing.
    QVERIFY(QFile::link("/dev/full", m_out->filePath("route/Full.lua")));
    QString message;
    QString listed;
    exportRows({3, 4, 5, 6}, m_out->path(), QDialogButtonBox::Ok, [&] {
        answerMessageBox(&message);
        answerNextModal([&](QWidget* dialog) {
            listed = dialog->findChild<QPlainTextEdit*>("fileList")->toPlainText();
            dialog->close();
        });
    });
    QCOMPARE(message, QStringLiteral("Error|Failed to save route, file wasn't opened."));
    QCOMPARE(listed, m_out->filePath("route/Full.lua"));
    QVERIFY(m_window->isEnabled());
    // Same short name, same file: the later route wins.
    QCOMPARE(QDir(m_out->filePath("route")).entryList(QDir::Files | QDir::System, QDir::Name),
             (QStringList{"7.lua", "Full.lua"}));
    QCOMPARE(scriptDifference(readFile(m_out->filePath("route/7.lua")), route(4)), QString());
    QTest::qWait(200);
    QCOMPARE(finished.count(), 0);
}

void tst_RouteExport::cancelWritesNothingAndFolderIsKept()
{
    const QString dir = m_out->path();
    exportRows({0}, dir, QDialogButtonBox::Cancel);
    QVERIFY(QDir(dir).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot));
    // The next export shows the routes as they are now and the folder typed.
    m_window->findChild<cProjectManager*>()->project()->routes[1].name = "Новое имя";
    exportRows({1, 0}, dir, QDialogButtonBox::Cancel);
    QCOMPARE(m_tabs, (QStringList{"Депо — Вокзал", "Новое имя", "Депо — Вокзал"}));
    QCOMPARE(m_shownDir, dir);

    m_window.reset();
    QCOMPARE(QSettings().value("SaveDialog/Output").toString(), dir);
    m_window.reset(new cMainWindow);
    QCOMPARE(m_window->findChild<QLineEdit*>("outputDir")->text(), dir);
}

VOSK_GUI_TEST_MAIN(tst_RouteExport)
#include "tst_routeexport.moc"
