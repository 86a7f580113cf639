#ifndef VOSK_ROUTECHECK_H
#define VOSK_ROUTECHECK_H

#include "problem.h"
#include "project.h"

#include <QCoreApplication>
#include <QHash>
#include <QList>
#include <QString>
#include <QUuid>

struct cCheckOptions
{
    // The program that converts the sounds: looked up on the search path and
    // asked about sound files of unknown kind. Empty: neither.
    QString converter;
    // Whether sound files are opened to see that they hold sound, or only
    // looked for.
    bool readSoundHeaders = true;
    // The folder the export writes into; empty when not yet chosen.
    QString outputDir;
    // Script file names by route id, as the user set them for the export;
    // other routes get their default name.
    QHash<QUuid, QString> scriptFileNames;
};

// Looks for everything that would make the device announce a route wrongly,
// or not at all, before the routes go to the bus. The routes are taken as
// exported together: their sounds and scripts share the card.
class cRouteCheck
{
    Q_DECLARE_TR_FUNCTIONS(cRouteCheck)

public:
    static QList<cProblem> run(const QList<cRoute>& routes, const cCheckOptions& options);
};

#endif
