#ifndef VOSK_GTFSIMPORTDIALOG_H
#define VOSK_GTFSIMPORTDIALOG_H

#include "gtfsfeed.h"
#include "progresstask.h"
#include "project.h"

#include <QDialog>
#include <QHash>
#include <QList>
#include <QVector>

class QComboBox;
class QListWidget;

namespace Ui {
class cGtfsImportDialog;
}

// Picks routes of a GTFS feed for import: the feed's route list with a
// filter, the stop patterns of the current route per branch with their
// trips, and whether stops get courses. The stops are read only for the
// routes chosen, since a city's stop times take a while.
class cGtfsImportDialog : public QDialog
{
    Q_OBJECT

public:
    explicit cGtfsImportDialog(QWidget* parent);
    ~cGtfsImportDialog() override;

    // The routes built on Import, in the feed's order.
    QList<cRoute> routes() const { return m_routes; }
    QString feedPath() const { return m_feedPath; }

private slots:
    void chooseZip();
    void chooseFolder();
    void filterRoutes(const QString& text);
    void selectionChanged();
    void showPreview();
    void showStops();
    void patternChosen();
    void importSelected();

private:
    void openFeed(const QString& path);
    bool loadRoutes(const QVector<int>& routes);
    bool succeeded(cProgressTask::Outcome outcome, const QString& error);
    void showError(const QString& error);
    void fillRouteTree();
    QVector<int> selectedRoutes() const;
    int currentRoute() const;
    void fillBranch(QComboBox* combo, QListWidget* stopList, int route, int chosen);
    void listStops(QListWidget* stopList, int route, int pattern);
    QString patternText(const cGtfsPattern& pattern) const;

    Ui::cGtfsImportDialog* ui;
    cGtfsFeed m_feed;
    QString m_feedPath;
    // The patterns picked per route; a route's patterns come out the same
    // whichever other routes are read with it, so picks outlive a new read.
    QHash<int, cGtfsRouteChoice> m_choices;
    QList<cRoute> m_routes;
};

#endif
