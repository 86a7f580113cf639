#include "command.h"

#include "cli.h"
#include "projectmanager.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

cCliContext::cCliContext(const QCommandLineParser& parser, int sharedOptions, QTextStream& out, QTextStream& err)
    : m_parser(parser)
    , m_sharedOptions(sharedOptions)
    , m_out(out)
    , m_err(err)
{
}

QString cCliContext::argument(int index) const
{
    // The command's own name comes first.
    return m_parser.positionalArguments().value(index + 1);
}

bool cCliContext::json() const
{
    return (m_sharedOptions & cCommand::FormatOption) && m_parser.value(QStringLiteral("format")) == QLatin1String("json");
}

void cCliContext::printJson(const QJsonObject& object)
{
    m_out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented));
}

void cCliContext::complain(const QString& text)
{
    m_err << QCoreApplication::applicationName() << QStringLiteral(": ") << text << '\n';
}

bool cCliContext::loadProject()
{
    cProjectManager manager;
    if (!openProject(&manager, projectPath()))
        return false;
    m_project = *manager.project();
    return true;
}

bool cCliContext::openProject(cProjectManager* manager, const QString& path)
{
    QString error;
    if (manager->openProject(path, &error))
        return true;
    if (error.isEmpty())
        error = lastDebugMessage();
    complain(tr("Cannot read the project %1: %2").arg(path, error));
    return false;
}

bool cCliContext::selectRoutes(QList<cRoute>* routes)
{
    const bool routeOption = m_sharedOptions & (cCommand::RouteOption | cCommand::OneRouteOption);
    const QStringList names = routeOption ? m_parser.values(QStringLiteral("route")) : QStringList();
    routes->clear();
    if (names.isEmpty()) {
        *routes = m_project.routes;
        return true;
    }
    QStringList unknown = names;
    for (const cRoute& route : m_project.routes) {
        if (names.contains(route.name) || names.contains(route.short_name)) {
            *routes << route;
            unknown.removeAll(route.name);
            unknown.removeAll(route.short_name);
        }
    }
    if (unknown.isEmpty())
        return true;
    complain(tr("No route is named \"%1\". The project's routes:").arg(unknown.first()));
    for (const cRoute& route : m_project.routes)
        m_err << QStringLiteral("  %1 (%2)\n").arg(route.name, route.short_name);
    return false;
}

void cCommand::addOptions(QCommandLineParser&) const
{
}
