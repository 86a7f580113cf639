#include "exportnames.h"

QString safeFileBaseName(const QString& name)
{
    QString safe = name;
    for (const QChar c : QStringLiteral("\\/><:*|?\""))
        safe.replace(c, QLatin1Char('_'));
    return safe;
}

QString scriptBaseName(const cRoute& route)
{
    return route.short_name.isEmpty() ? route.name : route.short_name;
}

QString scriptFileName(const cRoute& route)
{
    return safeFileBaseName(scriptBaseName(route)) + QStringLiteral(".lua");
}
