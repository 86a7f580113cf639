#include "gtfsfeed.h"
#include "gtfsimportdialog.h"
#include "gtfssupport.h"
#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>

using namespace guisupport;
using namespace gtfssupport;
using testsupport::stopNames;

namespace {

// Presses Cancel of the next progress dialog as soon as it shows, before the
// read behind it can finish.
class cCancelNextProgress : public QObject
{
public:
    cCancelNextProgress() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* progress = qobject_cast<QProgressDialog*>(watched);
        if (progress && event->type() == QEvent::Show) {
            qApp->removeEventFilter(this);
            QMetaObject::invokeMethod(progress->findChild<QPushButton*>(), "click", Qt::QueuedConnection);
        }
        return false;
    }
};

QStringList visibleRoutes(const QTreeWidget* tree)
{
    QStringList names;
    for (int row = 0; row < tree->topLevelItemCount(); ++row) {
        if (!tree->topLevelItem(row)->isHidden())
            names << tree->topLevelItem(row)->text(0);
    }
    return names;
}

QTreeWidgetItem* routeItem(const QTreeWidget* tree, const QString& shortName)
{
    const QList<QTreeWidgetItem*> found = tree->findItems(shortName, Qt::MatchExactly, 0);
    if (found.size() != 1)
        qFatal("no route %s in the list", qPrintable(shortName));
    return found.first();
}

QStringList texts(const QListWidget* list)
{
    QStringList result;
    for (int row = 0; row < list->count(); ++row)
        result << list->item(row)->text();
    return result;
}

QStringList patternStops(const cGtfsFeed& feed, int route, int pattern, bool numbered)
{
    QStringList names;
    for (const int stop : feed.patterns(route).value(pattern).stops) {
        const QString name = feed.stops().at(stop).name;
        names << (numbered ? QStringLiteral("%1. %2").arg(names.size() + 1).arg(name) : name);
    }
    return names;
}

} // namespace

class tst_GtfsDialog : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QScopedPointer<cMainWindow> m_window;

    cProjectManager* manager() { return m_window->findChild<cProjectManager*>(); }

    // Opens the import from the File menu and runs `steps` on the dialog from
    // its own event loop, so that they may open dialogs of their own; the
    // dialog is closed after them unless they imported.
    void importWith(const std::function<void(cGtfsImportDialog*)>& steps)
    {
        answerNextModal([steps](QWidget* widget) {
            QTimer::singleShot(0, widget, [widget, steps] {
                if (auto* dialog = qobject_cast<cGtfsImportDialog*>(widget))
                    steps(dialog);
                widget->close();
            });
        });
        child<QAction>(m_window.data(), "importGtfsAction")->trigger();
    }

    // `message`, when given, takes the text of the message box that follows.
    static void openFeed(cGtfsImportDialog* dialog, const QString& path, QString* message = nullptr)
    {
        answerFileDialog(path);
        if (message)
            answerMessageBox(message);
        child<QPushButton>(dialog, "zipButton")->click();
    }

private slots:
    void init()
    {
        QSettings().clear();
        m_window.reset(new cMainWindow);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.data()));
        child<QPushButton>(m_window.data(), "addRouteBtn")->click();
    }

    void cleanup()
    {
        const int unused = dropPendingAnswers();
        m_window.reset();
        QCOMPARE(unused, 0);
    }

    // Filter, pick two routes, swap one's branches for other patterns: the
    // project gains exactly those routes with the stops shown.
    void importsThePickedPatterns()
    {
        const QString path = sharedFeed("saopaulo.zip");
        cGtfsFeed feed;
        QString error;
        QVERIFY(feed.open(path, nullptr, &error));
        const int lapa = feed.findRoute("148L-10");
        const int itaim = feed.findRoute("9050-10");
        QVERIFY(feed.loadPatterns({lapa, itaim}, nullptr, &error));
        // The reverse pattern, picked for the direct branch.
        const int picked = feed.defaultChoice(lapa).reverse;
        QVERIFY(picked >= 0);

        QStringList filtered;
        QStringList shownStops;
        importWith([&](cGtfsImportDialog* dialog) {
            openFeed(dialog, path);
            auto* tree = child<QTreeWidget>(dialog, "routeTree");
            QCOMPARE(tree->topLevelItemCount(), 72);
            child<QLineEdit>(dialog, "filterEdit")->setText("LAPA ");
            filtered = visibleRoutes(tree);
            routeItem(tree, "9050-10")->setSelected(true);
            tree->setCurrentItem(routeItem(tree, "148L-10"), 0, QItemSelectionModel::Select);
            QCOMPARE(child<QLabel>(dialog, "selectedLabel")->text(), QStringLiteral("Selected routes: 2"));
            child<QPushButton>(dialog, "showStopsButton")->click();

            auto* direct = child<QComboBox>(dialog, "directPatternCombo");
            QCOMPARE(direct->count(), feed.patterns(lapa).size() + 1);
            direct->setCurrentIndex(direct->findData(picked));
            child<QComboBox>(dialog, "reversePatternCombo")->setCurrentIndex(0);
            shownStops = texts(child<QListWidget>(dialog, "directStopList"));
            QVERIFY(texts(child<QListWidget>(dialog, "reverseStopList")).isEmpty());
            child<QCheckBox>(dialog, "courseCheck")->setChecked(true);
            child<QSpinBox>(dialog, "courseDiffSpin")->setValue(45);
            child<QPushButton>(dialog, "importButton")->click();
        });

        QCOMPARE(filtered.size(), 8);
        QVERIFY(filtered.contains("N131-11"));
        QCOMPARE(shownStops, patternStops(feed, lapa, picked, true));
        const QList<cRoute>& routes = manager()->project()->routes;
        QCOMPARE(routes.size(), 3);
        QCOMPARE(routes.at(1).short_name, QStringLiteral("148L-10"));
        QCOMPARE(stopNames(routes.at(1).direct.stops), patternStops(feed, lapa, picked, false));
        QVERIFY(routes.at(1).reverse.stops.isEmpty());
        QVERIFY(routes.at(1).direct.stops.first().course_enabled);
        QCOMPARE(routes.at(1).direct.stops.first().course_diff, 45);
        QCOMPARE(routes.at(2).name, QStringLiteral("Term. Lapa - Itaim Bibi"));
        const cGtfsRouteChoice usual = feed.defaultChoice(itaim);
        QCOMPARE(stopNames(routes.at(2).direct.stops), patternStops(feed, itaim, usual.direct, false));
        QCOMPARE(stopNames(routes.at(2).reverse.stops), patternStops(feed, itaim, usual.reverse, false));
        QCOMPARE(QSettings().value("RouteSelector/LastGtfsFeed").toString(), QFileInfo(path).absoluteFilePath());
    }

    // Neither a cancelled read nor a feed found faulty at any step adds a
    // route or renews the project.
    void cancelledAndBadFeedsImportNothing()
    {
        const QUuid projectId = manager()->project()->id;
        const QString truncated = m_dir.filePath("truncated.zip");
        QVERIFY(testsupport::writeFile(truncated, testsupport::readFile(sharedFeed("poa.zip")).left(60000)));
        cFeedFiles files = smallFeed();
        files["stop_times.txt"] += "T6,,,S9,3\n";
        const QString undefinedStop = m_dir.filePath("undefined.zip");
        QVERIFY(writeZip(undefinedStop, files));

        QStringList messages;
        int routesAfterCancel = -1;
        importWith([&](cGtfsImportDialog* dialog) {
            auto* tree = child<QTreeWidget>(dialog, "routeTree");
            QString message;
            openFeed(dialog, truncated, &message);
            messages << message;
            QCOMPARE(tree->topLevelItemCount(), 0);

            {
                cCancelNextProgress cancel;
                openFeed(dialog, sharedFeed("poa.zip"));
            }
            routesAfterCancel = tree->topLevelItemCount();

            // Routes and trips read well; a stop time names a stop that is not there.
            openFeed(dialog, undefinedStop);
            QCOMPARE(tree->topLevelItemCount(), 2);
            tree->selectAll();
            answerMessageBox(&message);
            child<QPushButton>(dialog, "importButton")->click();
            messages << message;
            QVERIFY(dialog->isVisible());

            openFeed(dialog, sharedFeed("poa.zip"));
            tree->selectAll();
            cCancelNextProgress cancel;
            child<QPushButton>(dialog, "importButton")->click();
            QVERIFY(dialog->isVisible());
        });

        QCOMPARE(messages.size(), 2);
        QVERIFY2(messages.at(0).startsWith("Error|Failed to read the GTFS feed:\n"), qPrintable(messages.at(0)));
        QCOMPARE(messages.at(1), QStringLiteral("Error|Failed to read the GTFS feed:\n"
                                                "stop_times.txt, line 34: stop_id \"S9\" is not defined in stops.txt."));
        QCOMPARE(routesAfterCancel, 0);
        QCOMPARE(manager()->project()->routes.size(), 1);
        QCOMPARE(manager()->project()->id, projectId);
    }
};

VOSK_GUI_TEST_MAIN(tst_GtfsDialog)
#include "tst_gtfsdialog.moc"
