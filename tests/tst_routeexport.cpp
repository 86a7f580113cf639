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
#include <QTableWidget>

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
    // Placed beside the first stop, so that the check before the export has
    // only the faults a case means.
    route.direct.stops[1].lon = 30.51;
    route.direct.stops[1].lat = 59.94;
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
    void errorsFoundBeforehandCanBeShownInstead();
    void missingSourceIsNeverPassedOver();
    void commandLineWritesTheSameFiles();

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
    QString question;
    exportRows({0, 1, 2}, m_out->path(), QDialogButtonBox::Ok, [&] {
        answerMessageBox(&question, "Export anyway");
        answerNextModal([&](QWidget* dialog) {
            listed = dialog->findChild<QPlainTextEdit*>("fileList")->toPlainText();
            clearBehind = m_window->isEnabled() && !bar->isVisible();
            dialog->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok)->click();
        });
    });
    QCOMPARE(m_tabs, (QStringList{"Депо — Вокзал", "Кольцо", "Сломанный"}));
    QTRY_COMPARE_WITH_TIMEOUT(pendingAnswers(), 0, 60000);
    QVERIFY(clearBehind);
    // The check saw the undecodable file and a path the project file would
    // not read back, and the user exported all the same.
    QVERIFY2(question.startsWith("Save selected routes|The check found 2 errors"), qPrintable(question));
    // The undecodable file also leaves no output to rewrite: reported and
    // listed twice, counted once, and found missing on reading back.
    QCOMPARE(listed, sound("broken.wav") + ",\n" + sound("broken.wav") + "\n\nNot as written:\n"
                         + m_out->filePath("voskdev/broken.wav") + " was not written.");
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
        // Both routes numbered 7 would write 7.lua.
        answerMessageBox(nullptr, "Export anyway");
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

void tst_RouteExport::errorsFoundBeforehandCanBeShownInstead()
{
    exportRows({2}, m_out->path(), QDialogButtonBox::Ok, [] { answerMessageBox(nullptr, "Show problems"); });
    QVERIFY(QDir(m_out->path()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot));
    auto* table = m_window->findChild<QTableWidget*>("problemTable");
    QVERIFY(table->isVisible());
    QStringList messages;
    for (int row = 0; row < table->rowCount(); ++row)
        messages << table->item(row, 4)->text();
    QVERIFY2(messages.filter("broken.wav").size() == 1, qPrintable(messages.join('\n')));
}

// ffmpeg says only "No such file or directory" for a missing source, which
// is no conversion failure of its own: the read-back still finds it.
void tst_RouteExport::missingSourceIsNeverPassedOver()
{
    auto* manager = m_window->findChild<cProjectManager*>();
    manager->project()->routes[4].base_sound.current = sound("gone.mp3");
    QString listed;
    exportRows({4}, m_out->path(), QDialogButtonBox::Ok, [&] {
        answerMessageBox(nullptr, "Export anyway");
        answerNextModal([&](QWidget* dialog) {
            listed = dialog->findChild<QPlainTextEdit*>("fileList")->toPlainText();
            dialog->close();
        });
    });
    QTRY_COMPARE_WITH_TIMEOUT(pendingAnswers(), 0, 30000);
    QVERIFY2(listed.endsWith("Not as written:\n" + m_out->filePath("voskdev/gone.wav") + " was not written."),
             qPrintable(listed));
}

void tst_RouteExport::commandLineWritesTheSameFiles()
{
    QVERIFY(QDir(m_out->path()).mkdir("window"));
    exportRows({0, 4}, m_out->filePath("window"));
    QTRY_VERIFY_WITH_TIMEOUT(m_window->isEnabled() && QFile::exists(m_out->filePath("window/voskdev/b.wav")), 30000);
    QTRY_VERIFY(m_window->isEnabled());

    auto* manager = m_window->findChild<cProjectManager*>();
    const QString project = m_out->filePath("city.vosk");
    QVERIFY(manager->saveProject(project));
    QProcess cli;
    cli.start(VOSK_CLI, {"export", project, m_out->filePath("cli"), "--route", "12/A", "--route", "Пустой тоже"});
    QVERIFY(cli.waitForFinished(60000));
    QCOMPARE(cli.exitCode(), 0);

    QStringList compared;
    for (const char* folder : {"route", "voskdev"}) {
        const QDir window(m_out->filePath(QString("window/") + folder));
        const QStringList files = window.entryList(QDir::Files, QDir::Name);
        QCOMPARE(QDir(m_out->filePath(QString("cli/") + folder)).entryList(QDir::Files, QDir::Name), files);
        for (const QString& file : files) {
            QVERIFY2(readFile(window.filePath(file)) == readFile(m_out->filePath(QString("cli/%1/%2").arg(folder, file))),
                     qPrintable(file));
            compared << file;
        }
    }
    QCOMPARE(compared, (QStringList{"12_A.lua", "7.lua", "a.wav", "b.wav", "shared.wav"}));
}

VOSK_GUI_TEST_MAIN(tst_RouteExport)
#include "tst_routeexport.moc"
