#ifndef VOSK_REPLAYWINDOW_H
#define VOSK_REPLAYWINDOW_H

#include "replayresult.h"
#include "track.h"

#include <QUuid>
#include <QWidget>

#include <memory>

class QTableWidgetItem;
class cChosenMapSource;
class cProjectManager;
class cReplay;
class cStopFixer;
class cTrackLine;
class cVehicleMarker;
struct cBranch;
struct cRoute;

namespace Ui {
class cReplayWindow;
}

namespace qmapcontrol {
class MapControl;
class RouteOverlay;
} // namespace qmapcontrol

// Drives a recorded ride through one route: the map with the branch's stops
// coloured by what the device would do, the track and a vehicle that a
// slider moves along it, and a row per stop with the reason for each miss
// and the fixes that would have caught the ride. Only the fixes the user
// applies change the project, through the stop fixer.
class cReplayWindow : public QWidget
{
    Q_OBJECT

public:
    cReplayWindow(cProjectManager* manager, cStopFixer* fixer, QWidget* parent);
    ~cReplayWindow() override;

    void setRoute(const QUuid& routeId);
    QUuid routeId() const { return m_routeId; }
    bool hasTrack() const { return !m_file.tracks.isEmpty(); }
    const cReplayResult& result() const { return m_result; }

    static QColor statusColour(eStopStatus status);

public slots:
    // Asks for a track file and replays it.
    void openTrack();
    bool loadTrack(const QString& path);
    // The project changed: the replay runs again once control returns to
    // the event loop, however many changes came before.
    void projectChanged();

private slots:
    void trackChosen(int index);
    void replay();
    void showPosition(int point);
    void rowDoubleClicked(int row);
    void rowSelected(int row);

private:
    const cRoute* route() const;
    const cBranch* shownBranch() const;
    void clearResult(const QString& why);
    void fillTable();
    void addFixButtons(int row, const cStopReplay& stop);
    void applyFix(int stopIndex, const cSuggestedFix& fix);
    void showStops();
    void showSummary(bool detected);
    void buildLegend();
    void showWholeRide();

    Ui::cReplayWindow* ui;
    cProjectManager* m_manager;
    cStopFixer* m_fixer;
    QUuid m_routeId;
    cTrackFile m_file;
    std::unique_ptr<cReplay> m_replay;
    cReplayResult m_result;
    bool m_replayPending = false;

    qmapcontrol::MapControl* m_map = nullptr;
    std::unique_ptr<cChosenMapSource> m_source;
    qmapcontrol::RouteOverlay* m_stopsOverlay = nullptr;
    cTrackLine* m_trackLine = nullptr;
    cVehicleMarker* m_vehicle = nullptr;
};

#endif
