#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTableWidget>

using namespace guisupport;
using namespace testsupport;

namespace {

cStop placedStop(const QString& name, double lon, double lat = 59.9)
{
    cStop stop;
    stop.id = QUuid::createUuid();
    stop.name = name;
    stop.lon = lon;
    stop.lat = lat;
    return stop;
}

// A clean one-way route of three stops 560 m apart.
cRoute lineRoute(const QString& name)
{
    cRoute route;
    route.id = QUuid::createUuid();
    route.name = name;
    route.short_name = name;
    route.type = "line";
    for (int i = 0; i < 3; ++i)
        route.direct.stops << placedStop(QString("%1-%2").arg(name).arg(i + 1), 30.3 + 0.01 * i);
    return route;
}

QStringList columnTexts(const QTableWidget* table, int column)
{
    QStringList texts;
    for (int row = 0; row < table->rowCount(); ++row)
        texts << table->item(row, column)->text();
    return texts;
}

} // namespace

// The check in the window: the action, the Problems dock, and the marks and
// question that keep unsafe texts out of files unnoticed.
class tst_Problems : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void checkFillsTheDockAndLeadsToTheStop();
    void cleanProjectSaysSo();
    void editorsMarkUnsafeTexts();
    void savingUnsafeTextsAsksFirst();

private:
    cProjectManager* manager() { return m_window->findChild<cProjectManager*>(); }
    QTableWidget* table() { return m_window->findChild<QTableWidget*>("problemTable"); }
    void load(const QList<cRoute>& routes)
    {
        manager()->project()->routes = routes;
        emit manager()->projectOpened();
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<cMainWindow> m_window;
};

void tst_Problems::init()
{
    QSettings().clear();
    m_dir.reset(new QTemporaryDir);
    m_window.reset(new cMainWindow);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.data()));
}

void tst_Problems::cleanup()
{
    const int unused = dropPendingAnswers();
    m_window.reset();
    QCOMPARE(unused, 0);
}

void tst_Problems::checkFillsTheDockAndLeadsToTheStop()
{
    cRoute first = lineRoute("1");
    cRoute second = lineRoute("2");
    second.type = "bidir";
    second.reverse.stops << placedStop("back-1", 30.32, 59.901) << placedStop("back-2", 30.31, 59.901);
    second.reverse.stops[1].radius = 0;
    second.direct.stops[2].sound = m_dir->filePath("missing.mp3");
    load({first, second});

    auto* dock = m_window->findChild<QDockWidget*>("problemsDock");
    QVERIFY(!dock->isVisible());
    QTest::keyClick(m_window.data(), Qt::Key_F7);
    QVERIFY(dock->isVisible());
    QCOMPARE(dock->findChild<QLabel*>("problemsSummary")->text(), QString("Errors: 2, warnings: 0"));
    QCOMPARE(columnTexts(table(), 3), (QStringList{"3. 2-3", "2. back-2"}));
    QCOMPARE(columnTexts(table(), 2), (QStringList{"direct", "reverse"}));

    // Sorting by stop puts the reverse branch's second stop first.
    table()->horizontalHeader()->setSortIndicator(3, Qt::AscendingOrder);
    QCOMPARE(columnTexts(table(), 3), (QStringList{"2. back-2", "3. 2-3"}));

    // A double-click shows the stop in its branch, on the Stops page.
    auto* tabs = qobject_cast<QTabWidget*>(m_window->centralWidget());
    tabs->setCurrentIndex(0);
    QCoreApplication::processEvents();
    // The view takes a double-click only after a press on the same cell.
    const QPoint cell = table()->visualRect(table()->model()->index(0, 4)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, cell);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, cell);
    QCOMPARE(m_window->findChild<QListWidget*>("routeList")->currentItem()->text(), QString("2"));
    QCOMPARE(tabs->currentIndex(), 1);
    QCOMPARE(m_window->findChild<QSlider*>("isReverse")->value(), 1);
    QCOMPARE(m_window->findChild<QListView*>("stopList")->currentIndex().data().toString(), QString("back-2"));
    QCOMPARE(m_window->findChild<QLineEdit*>("stopNameEdit")->text(), QString("back-2"));
}

void tst_Problems::cleanProjectSaysSo()
{
    load({lineRoute("1")});
    m_window->findChild<QAction*>("checkProjectAction")->trigger();
    QCOMPARE(m_window->findChild<QLabel*>("problemsSummary")->text(), QString("No problems found"));
    QVERIFY(!table()->isVisible());
}

void tst_Problems::editorsMarkUnsafeTexts()
{
    cRoute route = lineRoute("1");
    route.name = "Кольцо 100%2";
    route.direct.stops[0].other_text = "Пересадка\\метро";
    route.direct.stops[0].sound = "/snd/it's.mp3";
    load({route});

    auto* name = m_window->findChild<QLineEdit*>("nameEdit");
    QVERIFY(name->property("unsafe").toBool());
    QVERIFY2(name->toolTip().contains("percent sign followed by a digit"), qPrintable(name->toolTip()));
    // Typing a safe text takes the mark away, an unsafe one brings it back.
    name->selectAll();
    QTest::keyClicks(name, "Ring");
    QVERIFY(!name->property("unsafe").toBool());
    QVERIFY(name->toolTip().isEmpty());
    QTest::keyClick(name, '\'');
    QVERIFY(name->property("unsafe").toBool());

    auto* stops = m_window->findChild<QListView*>("stopList");
    stops->setCurrentIndex(stops->model()->index(0, 0));
    auto* stopName = m_window->findChild<QLineEdit*>("stopNameEdit");
    auto* otherText = m_window->findChild<QLineEdit*>("otherTextEdit");
    QCOMPARE(stopName->text(), QString("1-1"));
    QVERIFY(!stopName->property("unsafe").toBool());
    QVERIFY(otherText->property("unsafe").toBool());
    QVERIFY2(otherText->toolTip().contains("backslash"), qPrintable(otherText->toolTip()));
    const QList<QLabel*> soundLabels = m_window->findChildren<QLabel*>();
    QVERIFY(std::any_of(soundLabels.begin(), soundLabels.end(), [](const QLabel* label) {
        return label->text() == "it's.mp3" && label->property("unsafe").toBool()
            && label->toolTip().contains("single quote");
    }));
}

void tst_Problems::savingUnsafeTextsAsksFirst()
{
    cRoute route = lineRoute("5");
    route.direct.stops[1].name = "O'Hare";
    load({route});
    const QString path = m_dir->filePath("city.vosk");
    QString question;
    answerMessageBox(&question, "No");
    m_window->findChild<QPushButton*>("saveProjectBtn")->click();
    QVERIFY2(question.startsWith("Save project|")
                 && question.contains("Route \"5\", direct, stop 2 \"O'Hare\": The stop name \"O'Hare\" holds a "
                                      "single quote")
                 && question.endsWith("Save anyway?"),
             qPrintable(question));
    QCOMPARE(pendingAnswers(), 0);

    answerMessageBox(nullptr, "Yes");
    answerFileDialog(path);
    m_window->findChild<QPushButton*>("saveProjectBtn")->click();
    QVERIFY(QFile::exists(path));
    // The file holds the text as it is, and so no longer opens.
    QVERIFY(!cProjectManager().openProject(path));
}

VOSK_GUI_TEST_MAIN(tst_Problems)
#include "tst_problems.moc"
