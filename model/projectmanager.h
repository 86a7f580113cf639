#ifndef VOSK_PROJECTMANAGER_H
#define VOSK_PROJECTMANAGER_H

#include "project.h"

#include <QObject>
#include <QUuid>

// Owns the one open project for the life of the window. Panels edit the
// records in place through project(); the manager only reports whole-project
// events (new, opened, saved, imported).
class cProjectManager : public QObject
{
    Q_OBJECT

public:
    explicit cProjectManager(QObject* parent = nullptr);

    void newProject();
    cProject* project();

    // `error`, when given, gets why the file could not be read as a
    // project: the file's or Lua's own message. Failures inside the project
    // table are only logged.
    bool openProject(const QString& path, QString* error = nullptr);
    bool saveProject(const QString& path);
    bool importEvtRoute(const QString& path, QString* error);
    bool importLuaRoute(const QString& path, QString* error);
    // Appends finished routes as every importer does, announcing each one as
    // it arrives. Routes are built whole beforehand, so this cannot fail.
    void importRoutes(const QList<cRoute>& routes);

    // The fixed display messages every new or imported route starts with.
    static cBaseTexts defaultBaseTexts();

signals:
    // The records are about to be replaced by a new or opened project; the
    // last moment to look at the old one.
    void aboutToResetProject();
    void projectCreated();
    void projectOpened();
    void projectSaved();
    void routeImported(QUuid id);
    // Now and then while a file being opened is parsed; the records are
    // untouched until it is parsed.
    void openInProgress();

private:
    void resetProject();
    void keepPreviousFile(const QString& path);

    cProject m_project;
};

#endif
