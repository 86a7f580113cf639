#ifndef VOSK_TEXTRULES_H
#define VOSK_TEXTRULES_H

#include "problem.h"
#include "project.h"

#include <QCoreApplication>
#include <QString>

#include <functional>

class cProblemList;

// Every text of a route that goes into its script or the project file, with
// the rules that texts must keep.

enum class TextField {
    RouteName,
    ShortName,
    Type,
    CurrentSound,
    NextSound,
    LastSound,
    CurrentText,
    NextText,
    LastText,
    FirstName,
    LastName,
    StopName,
    FullName,
    StopSound,
    OtherSound,
    OtherText,
};

struct cTextPlace
{
    TextField field;
    Branch branch;
    // Position of the stop, from 1; 0 for the route's and branches' own texts.
    int stop;
    const cStop* stopRecord;
    // The other sound's number, from 1.
    int index;
    const QString& text;
};

class cTextRules
{
    Q_DECLARE_TR_FUNCTIONS(cTextRules)

public:
    static void forEachText(const cRoute& route, const std::function<void(const cTextPlace&)>& visit);

    static bool isSound(TextField field);
    // Shown on the passenger display as it is.
    static bool isDisplayed(TextField field);
    static QString label(TextField field, int index);

    // Why the text would be written so that the device script or the project
    // file reads it back differently, or not at all; empty when it is safe.
    // The writers put values between quotes unescaped on purpose.
    static QString unsafeReason(const QString& text);
    // The same, said to whoever types the text; empty when it is safe.
    static QString unsafeWarning(const QString& text);
    // What the passenger display would show wrongly; empty when nothing.
    // Edges do not count for texts that are prefixes of others.
    static QString badTextReason(const QString& text, bool edgesCount);

    // Adds an unsafe-text problem when the text at `place` is unsafe; false
    // then.
    static bool checkSafe(cProblemList& problems, const cTextPlace& place);
    // The unsafe texts of the routes, one problem each.
    static QList<cProblem> unsafeTexts(const QList<cRoute>& routes);
};

#endif
