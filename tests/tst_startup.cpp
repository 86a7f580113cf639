#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QApplication>
#include <QListWidget>

using namespace guisupport;

namespace {

const QString program = QStringLiteral("/usr/bin/voskantor");
const QString openFailure = QStringLiteral("Error|Project has some errors, failed to open.");

} // namespace

// A project named on the command line opens as if chosen with Open.
class tst_Startup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void fileArgumentOpensBesideSoundChoice();
    void missingOrSecondFileFailsLikeOpen();

private:
    QListWidget* routeList() { return m_window->findChild<QListWidget*>(QStringLiteral("routeList")); }
    QString lastProject() const { return QSettings().value("RouteSelector/LastProjectDir").toString(); }
    QString savedProject(const QString& name, int routes);

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<cMainWindow> m_window;
};

void tst_Startup::init()
{
    QSettings().clear();
    m_dir.reset(new QTemporaryDir);
    m_window.reset(new cMainWindow);
    m_window->show();
}

void tst_Startup::cleanup()
{
    const int unused = dropPendingAnswers();
    m_window.reset();
    QCOMPARE(unused, 0);
}

QString tst_Startup::savedProject(const QString& name, int routes)
{
    cProjectManager manager;
    manager.project()->routes = testsupport::generatedProject(routes, 2).routes;
    const QString path = m_dir->filePath(name);
    return manager.saveProject(path) ? path : QString();
}

void tst_Startup::fileArgumentOpensBesideSoundChoice()
{
    const QString file = savedProject(QStringLiteral("Маршруты 7.vosk"), 3);
    QVERIFY(!file.isEmpty());

    // Sound choices alone, even malformed ones, name no project: no message.
    QString message;
    answerMessageBox(&message);
    openProjectFromArguments(*m_window, {program, "/sound:2", "/sound:1:2", "/sound:x"});
    QCOMPARE(pendingAnswers(), 1);
    dropPendingAnswers();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21"));

    openProjectFromArguments(*m_window, {program, "/sound:2", file});
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21 - ") + QDir::toNativeSeparators(file));
    QCOMPARE(routeList()->count(), 3);
    QCOMPARE(routeList()->currentRow(), 0);
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(lastProject(), file);
}

void tst_Startup::missingOrSecondFileFailsLikeOpen()
{
    const QString missing = m_dir->filePath(QStringLiteral("missing.vosk"));
    QString message;
    answerMessageBox(&message);
    openProjectFromArguments(*m_window, {program, missing});
    QCOMPARE(message, openFailure);
    QVERIFY(routeList()->styleSheet().contains("red"));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21"));
    QCOMPARE(lastProject(), missing);

    // Two readable projects: neither opens, and the last file is not changed.
    QSettings().clear();
    const QString first = savedProject(QStringLiteral("a.vosk"), 1);
    const QString second = savedProject(QStringLiteral("b.vosk"), 2);
    message.clear();
    answerMessageBox(&message);
    openProjectFromArguments(*m_window, {program, first, "/sound:1", second});
    QCOMPARE(message, openFailure);
    QCOMPARE(routeList()->count(), 0);
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21"));
    QVERIFY(lastProject().isEmpty());
}

VOSK_GUI_TEST_MAIN(tst_Startup)
#include "tst_startup.moc"
