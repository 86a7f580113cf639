#include "routeselector.h"

#include "busyscope.h"
#include "convertprogress.h"
#include "converter.h"
#include "errordialog.h"
#include "gtfsimportdialog.h"
#include "exportnames.h"
#include "projecthistory.h"
#include "projectmanager.h"
#include "routecheck.h"
#include "routeexport.h"
#include "rowmoves.h"
#include "savedialog.h"
#include "textrules.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTextStream>
#include <QVBoxLayout>

namespace {

const char* const settingsGroup = "RouteSelector";
const char* const lastProjectKey = "LastProjectDir";
const char* const lastImportKey = "LastImportDir";

QString settingsValue(const char* key)
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    return settings.value(QLatin1String(key)).toString();
}

// Stores the file itself, not its folder: the next dialog opens beside it
// with the file preselected.
void storeSettingsValue(const char* key, const QString& path)
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    settings.setValue(QLatin1String(key), QFileInfo(path).absoluteFilePath());
    settings.endGroup();
    settings.sync();
}

QPushButton* makeButton(const QString& text, const QString& objectName, const QString& toolTip = QString())
{
    auto* button = new QPushButton(text);
    button->setObjectName(objectName);
    if (!toolTip.isEmpty())
        button->setToolTip(toolTip);
    return button;
}

} // namespace

cRouteSelector::cRouteSelector(cProjectManager* manager, QWidget* parent)
    : QDockWidget(parent)
    , routeList(new QListWidget)
    , projectManager(manager)
{
    setWindowTitle(tr("Routes"));
    setObjectName(QStringLiteral("routeSelector"));
    setFeatures(QDockWidget::DockWidgetMovable);
    setAllowedAreas(Qt::AllDockWidgetAreas);

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setSpacing(10);

    auto* fileButtons = new QGridLayout;
    fileButtons->setSpacing(5);
    QPushButton* newButton = makeButton(tr("New project"), QStringLiteral("newProjectBtn"));
    QPushButton* openButton = makeButton(tr("Open project"), QStringLiteral("openProjectBtn"));
    openButton->setShortcut(QKeySequence::Open);
    QPushButton* saveButton = makeButton(tr("Save"), QStringLiteral("saveProjectBtn"), tr("Save project"));
    saveButton->setShortcut(QKeySequence::Save);
    QPushButton* saveAsButton =
        makeButton(tr("Save as..."), QStringLiteral("saveAsProjectBtn"), tr("Select file and save project"));
    fileButtons->addWidget(newButton, 0, 0);
    fileButtons->addWidget(openButton, 0, 1);
    fileButtons->addWidget(saveButton, 1, 0);
    fileButtons->addWidget(saveAsButton, 1, 1);
    layout->addLayout(fileButtons);
    connect(newButton, &QPushButton::clicked, this, &cRouteSelector::newProject);
    connect(openButton, &QPushButton::clicked, this, &cRouteSelector::openProject);
    connect(saveButton, &QPushButton::clicked, this, &cRouteSelector::saveProject);
    connect(saveAsButton, &QPushButton::clicked, this, &cRouteSelector::saveAsProject);

    routeList->setObjectName(QStringLiteral("routeList"));
    routeList->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    routeList->setContextMenuPolicy(Qt::CustomContextMenu);
    routeList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    connect(routeList, &QListWidget::itemChanged, this, &cRouteSelector::itemChanged);
    connect(routeList, &QListWidget::itemClicked, this, &cRouteSelector::itemClicked);
    connect(routeList, &QListWidget::itemActivated, this, &cRouteSelector::itemClicked);
    connect(routeList, &QListWidget::customContextMenuRequested, this, &cRouteSelector::routeListContextMenu);
    connect(new cListDropFilter(routeList), &cListDropFilter::dropped, this, &cRouteSelector::moveRoutesTo);
    layout->addWidget(routeList);
    connect(projectManager, &cProjectManager::routeImported, this, &cRouteSelector::routeImported);

    routeMenu = new QMenu(this);
    addAction = routeMenu->addAction(tr("Add"));
    deleteAction = routeMenu->addAction(tr("Delete"));
    connect(addAction, &QAction::triggered, this, &cRouteSelector::addRoute);
    connect(deleteAction, &QAction::triggered, this, &cRouteSelector::routeDeleteRequest);
    routeMenu->addSeparator();
    connect(routeMenu->addAction(tr("Import from GTFS…")), &QAction::triggered, this,
            &cRouteSelector::importRouteGtfs);
    replayAction = routeMenu->addAction(tr("Replay track…"));
    replayAction->setObjectName(QStringLiteral("replayTrackAction"));
    connect(replayAction, &QAction::triggered, this, [this] { emit replayRequested(menuRouteId); });

    auto* routeButtons = new QHBoxLayout;
    routeButtons->setSpacing(5);
    QPushButton* addButton = makeButton(tr("Add"), QStringLiteral("addRouteBtn"), tr("Add new route to project"));
    connect(addButton, &QPushButton::clicked, this, &cRouteSelector::addRoute);
    QPushButton* importButton =
        makeButton(tr("Import"), QStringLiteral("importRouteBtn"), tr("Import route to project"));
    auto* importMenu = new QMenu(importButton);
    connect(importMenu->addAction(tr("Import Evt-file")), &QAction::triggered, this, &cRouteSelector::importRouteEvt);
    connect(importMenu->addAction(tr("Import Lua-file")), &QAction::triggered, this, &cRouteSelector::importRouteLua);
    connect(importMenu->addAction(tr("Import from GTFS…")), &QAction::triggered, this,
            &cRouteSelector::importRouteGtfs);
    importButton->setMenu(importMenu);
    routeButtons->addWidget(addButton);
    routeButtons->addWidget(importButton);
    layout->addLayout(routeButtons);

    QPushButton* saveRouteButton = makeButton(tr("Save selected routes"), QStringLiteral("saveRouteBtn"),
                                              tr("Save selected routes as separate files for loading to device"));
    connect(saveRouteButton, &QPushButton::clicked, this, &cRouteSelector::saveRoute);
    layout->addWidget(saveRouteButton);

    setWidget(content);
    connect(projectManager, &cProjectManager::projectOpened, this, &cRouteSelector::projectOpened);

    saveDialog = new cSaveDialog(this);
    saveDialog->hide();
    routeExport = new cRouteExport(this);
    connect(routeExport, &cRouteExport::scriptNotOpened, this, [this] {
        QMessageBox::critical(this, tr("Error"), tr("Failed to save route, file wasn't opened."), QMessageBox::Ok);
    });
    connect(routeExport, &cRouteExport::conversionStarted, this, &cRouteSelector::conversionStarted);
    connect(routeExport, &cRouteExport::fileProcessed, this, &cRouteSelector::fileProcessed);
    connect(routeExport, &cRouteExport::finished, this, &cRouteSelector::exportFinished);
    progress = new cConvertProgress(this);
}

void cRouteSelector::routeChangedSlot(const QUuid& id)
{
    QListWidgetItem* item = itemFor(id);
    if (!item)
        return;
    for (const cRoute& route : qAsConst(projectManager->project()->routes)) {
        if (route.id == id) {
            // Following a rename made elsewhere is not a change of its own.
            const QSignalBlocker quiet(routeList);
            item->setText(route.name);
            return;
        }
    }
}

void cRouteSelector::setHistory(cProjectHistory* projectHistory)
{
    history = projectHistory;
}

void cRouteSelector::showRoute(const QUuid& id)
{
    fillList();
    QListWidgetItem* item = itemFor(id);
    routeList->setCurrentItem(item);
    emit routeSelected(itemId(item));
}

void cRouteSelector::selectRoute(const QUuid& id)
{
    if (QListWidgetItem* item = itemFor(id)) {
        routeList->setCurrentItem(item);
        itemClicked(item);
    }
}

QString cRouteSelector::exportFolder() const
{
    return saveDialog->outputDir();
}

void cRouteSelector::newProject()
{
    projectManager->newProject();
    routeList->clear();
    emit routeSelected(QUuid());
    fileName.clear();
    emit fileNameChanged(fileName);
}

QString cRouteSelector::askProjectFile(bool forSaving)
{
    const QString start = settingsValue(lastProjectKey);
    const QString filter = tr("Voskantor project files (*.vosk);;All files (*.*)");
    return forSaving ? QFileDialog::getSaveFileName(this, tr("Open file"), start, filter)
                     : QFileDialog::getOpenFileName(this, tr("Open File"), start, filter);
}

void cRouteSelector::openProject()
{
    const QString path = askProjectFile(false);
    if (!path.isEmpty())
        openProjectFile(path);
}

void cRouteSelector::openProjectFiles(const QStringList& paths)
{
    if (paths.size() == 1) {
        openProjectFile(paths.first());
    } else if (paths.size() > 1) {
        qDebug().noquote() << "Only one project can be opened, given:" << paths.join(QStringLiteral(", "));
        setError(true, tr("Project has some errors, failed to open."));
    }
}

bool cRouteSelector::openWhileBusy(const QString& path)
{
    cBusyScope busy(this, tr("Opening %1...").arg(QDir::toNativeSeparators(path)));
    const QMetaObject::Connection painting
        = connect(projectManager, &cProjectManager::openInProgress, this, [&busy]() { busy.keepPainting(); });
    const bool opened = projectManager->openProject(path);
    disconnect(painting);
    return opened;
}

bool cRouteSelector::saveWhileBusy(const QString& path)
{
    cBusyScope busy(this, tr("Saving %1...").arg(QDir::toNativeSeparators(path)));
    return projectManager->saveProject(path);
}

void cRouteSelector::openProjectFile(const QString& path)
{
    if (openWhileBusy(path)) {
        setError(false);
        fileName = path;
        emit fileNameChanged(path);
    } else {
        setError(true, tr("Project has some errors, failed to open."));
    }
    storeSettingsValue(lastProjectKey, path);
}

// Values are written into the file unescaped, so a text with a quote, a
// backslash, a line break or a %-digit sequence would not read back as it
// is; the user decides whether to save all the same.
bool cRouteSelector::confirmUnsafeTexts()
{
    const QList<cProblem> unsafe = cTextRules::unsafeTexts(projectManager->project()->routes);
    if (unsafe.isEmpty())
        return true;
    const int shown = 5;
    QStringList lines;
    for (const cProblem& problem : unsafe.mid(0, shown))
        lines << QStringLiteral("%1: %2").arg(cProblemText::place(problem), problem.message);
    if (unsafe.size() > shown)
        lines << tr("... and %1 more.").arg(unsafe.size() - shown);
    const QString text = tr("These texts would not read back as they are:\n\n%1\n\nSave anyway?")
                             .arg(lines.join(QStringLiteral("\n\n")));
    return QMessageBox::question(this, tr("Save project"), text, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No)
        == QMessageBox::Yes;
}

bool cRouteSelector::openRecovered(const QString& autosave, const QString& projectFile)
{
    if (!openWhileBusy(autosave)) {
        setError(true, tr("Project has some errors, failed to open."));
        return false;
    }
    setError(false);
    fileName = projectFile;
    emit fileNameChanged(fileName);
    return true;
}

void cRouteSelector::saveProject()
{
    if (fileName.isEmpty()) {
        saveAsProject();
        return;
    }
    if (!confirmUnsafeTexts())
        return;
    if (saveWhileBusy(fileName))
        setError(false);
    else
        setError(true, tr("Failed to save project."));
}

void cRouteSelector::saveAsProject()
{
    if (!confirmUnsafeTexts())
        return;
    const QString path = askProjectFile(true);
    if (path.isEmpty())
        return;
    if (saveWhileBusy(path)) {
        setError(false);
        fileName = path;
        emit fileNameChanged(path);
    } else {
        setError(true, tr("Failed to save project."));
    }
    storeSettingsValue(lastProjectKey, path);
}

void cRouteSelector::addRoute()
{
    const QString base = tr("New route");
    QString name = base;
    for (int suffix = 1; !routeList->findItems(name, Qt::MatchExactly).isEmpty(); ++suffix)
        name = base + QStringLiteral(" %1").arg(suffix);

    cRoute route;
    route.name = name;
    route.id = QUuid::createUuid();
    route.base_text.current = tr("Stop: ");
    route.base_text.next = tr("Next: ");
    route.base_text.last = tr(". Last");
    projectManager->project()->routes.append(route);
    if (history)
        history->routeListChanged({}, {qMakePair(projectManager->project()->routes.size() - 1, route)},
                                  tr("Add route '%1'").arg(route.name));

    QListWidgetItem* item = makeItem(route.name, route.id);
    routeList->addItem(item);
    routeList->setCurrentItem(item);
    emit routeSelected(route.id);
    emit routeAdded(route.id);
}

void cRouteSelector::importRouteEvt()
{
    importRoute(ImportKind::Evt);
}

void cRouteSelector::importRouteLua()
{
    importRoute(ImportKind::Lua);
}

void cRouteSelector::importRoute(ImportKind kind)
{
    const bool evt = kind == ImportKind::Evt;
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Route file"), settingsValue(lastImportKey),
        evt ? tr("Evt files (*.evt);;All files (*.*)") : tr("Lua files (*.lua);;All files (*.*)"));
    if (path.isEmpty())
        return;
    QString error;
    const cProjectHistory::cImportMark mark = history ? history->beginImport() : cProjectHistory::cImportMark();
    const bool ok = evt ? projectManager->importEvtRoute(path, &error) : projectManager->importLuaRoute(path, &error);
    if (!ok) {
        qDebug().noquote() << (evt ? "Error importing evt-route!" : "Error importing lua-route!") << error;
        QMessageBox::critical(this, tr("Error"), tr("Failed to import route to project:\n%1").arg(error),
                              QMessageBox::Ok);
    }
    if (history)
        history->endImport(mark);
    storeSettingsValue(lastImportKey, path);
}

// The dialog builds every route before any is added, so a feed that fails
// or a read that is cancelled leaves the project as it was.
void cRouteSelector::importRouteGtfs()
{
    cGtfsImportDialog dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QList<cRoute> routes = dialog.routes();
    qDebug().noquote() << "Importing" << routes.size() << "routes from GTFS feed" << dialog.feedPath();
    const cProjectHistory::cImportMark mark = history ? history->beginImport() : cProjectHistory::cImportMark();
    projectManager->importRoutes(routes);
    if (history)
        history->endImport(mark);
}

void cRouteSelector::fillList()
{
    routeList->clear();
    for (const cRoute& route : qAsConst(projectManager->project()->routes))
        routeList->addItem(makeItem(route.name, route.id));
}

void cRouteSelector::projectOpened()
{
    fillList();
    if (routeList->count() > 0) {
        routeList->setCurrentRow(0);
        itemClicked(routeList->item(0));
    }
}

void cRouteSelector::itemChanged(QListWidgetItem* item)
{
    const QUuid id = itemId(item);
    for (cRoute& route : projectManager->project()->routes) {
        if (route.id == id) {
            const cRouteFields before = cRouteFields::of(route);
            route.name = item->text();
            if (history)
                history->routeFieldsEdited(id, before, cRouteFields::of(route));
            break;
        }
    }
    emit routeChanged(id);
}

void cRouteSelector::itemClicked(QListWidgetItem* item)
{
    emit routeSelected(itemId(item));
}

void cRouteSelector::routeListContextMenu(const QPoint& p)
{
    deleteAction->setEnabled(routeList->itemAt(p) != nullptr);
    // The route under the pointer, which a right click need not select.
    menuRouteId = itemId(routeList->itemAt(p));
    replayAction->setEnabled(!menuRouteId.isNull());
    routeMenu->popup(routeList->viewport()->mapToGlobal(p));
}

void cRouteSelector::routeDeleteRequest()
{
    QListWidgetItem* item = routeList->currentItem();
    if (!item)
        return;
    const QUuid id = itemId(item);
    QList<cRoute>& routes = projectManager->project()->routes;
    const auto found = std::find_if(routes.begin(), routes.end(), [&id](const cRoute& route) { return route.id == id; });
    if (found == routes.end())
        return;
    const int row = static_cast<int>(found - routes.begin());
    if (history)
        history->routeListChanged({qMakePair(row, *found)}, {}, tr("Delete route '%1'").arg(found->name));
    routes.erase(found);
    delete item;
    itemClicked(routeList->currentItem());
    emit routeDeleted(id);
}

// Items stand in the order of the routes, so list rows are route rows.
void cRouteSelector::moveRoutesTo(int destination)
{
    QList<int> rows;
    for (const QListWidgetItem* item : routeList->selectedItems())
        rows << routeList->row(item);
    std::sort(rows.begin(), rows.end());
    const QList<int> to = droppedRows(rows, destination);
    if (rows.isEmpty() || rows == to)
        return;
    QList<cRoute>& routes = projectManager->project()->routes;
    const auto entries = moveEntries(routes, rows, to);
    spliceRows(routes, entries.first, entries.second);
    const QUuid first = entries.second.first().second.id;
    if (history)
        history->routeListChanged(entries.first, entries.second,
                                  rows.size() == 1 ? tr("Move route '%1'").arg(entries.first.first().second.name)
                                                   : tr("Move %n routes", nullptr, rows.size()));
    fillList();
    for (int row : to)
        routeList->item(row)->setSelected(true);
    routeList->setCurrentItem(routeList->item(to.first()), QItemSelectionModel::NoUpdate);
    emit routeSelected(first);
    emit routeChanged(first);
}

void cRouteSelector::routeImported(const QUuid& id)
{
    QListWidgetItem* item = itemFor(id);
    if (!item)
        return;
    routeList->setCurrentItem(item);
    emit routeSelected(id);
}

void cRouteSelector::saveRoute()
{
    const QList<QListWidgetItem*> selected = routeList->selectedItems();
    if (selected.isEmpty())
        return;
    const QList<cRoute>& routes = projectManager->project()->routes;
    QList<const cRoute*> chosen;
    for (const QListWidgetItem* item : selected) {
        const QUuid id = itemId(item);
        const auto found = std::find_if(routes.begin(), routes.end(), [&id](const cRoute& r) { return r.id == id; });
        if (found != routes.end())
            chosen << &*found;
    }

    saveDialog->clearPages();
    for (const cRoute* route : qAsConst(chosen))
        saveDialog->addPage(route->id, route->name, cRouteExport::routeScript(*route), scriptBaseName(*route));
    if (saveDialog->exec() != QDialog::Accepted)
        return;

    QList<cExportItem> items;
    for (const cRoute* route : qAsConst(chosen))
        items << cExportItem{*route, saveDialog->fileName(route->id)};
    if (checkBeforeExport(items))
        routeExport->start(items, saveDialog->outputDir());
}

// With errors the user decides: export all the same, or see the problems
// first. Warnings alone do not hold the export up.
bool cRouteSelector::checkBeforeExport(const QList<cExportItem>& items)
{
    cCheckOptions options;
    options.converter = cConverter::program();
    options.outputDir = saveDialog->outputDir();
    QList<cRoute> routes;
    for (const cExportItem& item : items) {
        routes << item.route;
        options.scriptFileNames.insert(item.route.id, item.scriptFileName);
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const QList<cProblem> problems = cRouteCheck::run(routes, options);
    QApplication::restoreOverrideCursor();
    const int errors = errorCount(problems);
    if (errors == 0)
        return true;

    QStringList shown;
    for (const cProblem& problem : problems) {
        if (problem.severity() == Severity::Error && shown.size() < 5)
            shown << QStringLiteral("%1: %2").arg(cProblemText::place(problem), problem.message);
    }
    if (errors > shown.size())
        shown << tr("... and %1 more.").arg(errors - shown.size());
    QMessageBox box(QMessageBox::Warning, tr("Save selected routes"),
                    tr("The check found %1 errors: the device would announce these routes wrongly or not at all.")
                        .arg(errors),
                    QMessageBox::NoButton, this);
    box.setInformativeText(shown.join(QStringLiteral("\n\n")));
    QPushButton* exportButton = box.addButton(tr("Export anyway"), QMessageBox::AcceptRole);
    QPushButton* showButton = box.addButton(tr("Show problems"), QMessageBox::RejectRole);
    box.setDefaultButton(showButton);
    box.exec();
    if (box.clickedButton() == exportButton) {
        qDebug() << "Exporting despite" << errors << "errors";
        return true;
    }
    emit problemsFound(problems);
    return false;
}

void cRouteSelector::conversionStarted(const QStringList& sources)
{
    // Right after the dialog closes the platform may not have handed
    // activation back yet.
    blockedWindow = QApplication::activeWindow();
    if (!blockedWindow || !blockedWindow->isVisible())
        blockedWindow = window();
    blockedWindow->setEnabled(false);
    progress->start(sources);
}

void cRouteSelector::exportFinished(const cExportResult& result)
{
    progress->finish();
    QWidget* target = blockedWindow ? blockedWindow.data() : QApplication::activeWindow();
    if (target)
        target->setEnabled(true);
    blockedWindow.clear();
    if (!result.converted || result.writesFailed || !result.differences.isEmpty()) {
        cErrorDialog dialog(this);
        dialog.setFiles(result.failedFiles);
        dialog.setDifferences(result.differences);
        dialog.exec();
    }
}

void cRouteSelector::fileProcessed(const QString& fn)
{
    progress->fileProcessed(fn);
}

void cRouteSelector::setError(bool error, const QString& message)
{
    if (!error) {
        routeList->setStyleSheet(QString());
        return;
    }
    routeList->setStyleSheet(QStringLiteral("border: 1px solid red; background-color: #FFF5F5;"));
    qDebug().noquote() << message;
    QMessageBox::critical(this, tr("Error"), message, QMessageBox::Ok);
}

QListWidgetItem* cRouteSelector::itemFor(const QUuid& id) const
{
    for (int row = 0; row < routeList->count(); ++row) {
        if (itemId(routeList->item(row)) == id)
            return routeList->item(row);
    }
    return nullptr;
}

// Items are filled before they join the list, so that filling them is not
// taken for a rename by the user.
QListWidgetItem* cRouteSelector::makeItem(const QString& name, const QUuid& id)
{
    auto* item = new QListWidgetItem(name);
    item->setData(Qt::UserRole, QVariant::fromValue(id));
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsEnabled);
    return item;
}

QUuid cRouteSelector::itemId(const QListWidgetItem* item)
{
    return item ? item->data(Qt::UserRole).value<QUuid>() : QUuid();
}
