#include "projectmanager.h"
#include "testsupport.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString kZone = QStringLiteral("    <zone shape=circle>\n      <radius>40</radius>\n"
                                     "      <point lat=55.7512 lon=37.6184/>\n    </zone>\n");

QString play(const QString& file)
{
    return QStringLiteral("      <play file=%1 volume=10></play>\n").arg(file);
}

QString reaction(const QString& plays, const QString& logic = QStringLiteral("rise"))
{
    return QStringLiteral("    <reaction logic=%1>\n%2    </reaction>\n").arg(logic, plays);
}

QString stopEvent(const QString& name, const QString& zone = kZone,
                  const QString& reactions = reaction(play(QStringLiteral("/voskdev/a.wav"))))
{
    return "  <event>\n    <name>" + name + "</name>\n" + zone + reactions + "  </event>\n";
}

// A null name leaves out the name element that heads the list.
QString eventList(const QString& name, const QString& events)
{
    const QString head = name.isNull() ? QString() : "  <name>" + name + "</name>\n";
    return "<eventlist version=2>\n" + head + events + "</eventlist>\n";
}

QString evtFile(const QString& lists)
{
    return "<?xml version=\"1.0\"?>\n<route>\n" + lists + "</route>\n";
}

} // namespace

class tst_EvtImport : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_files = 0;

    // Writes UTF-8, the local 8-bit encoding of the test run. The importer logs
    // the whole decoded text; expecting it checks that and keeps the output quiet.
    bool import(cProjectManager& manager, const QString& text, QString* error = nullptr)
    {
        const QString path = m_dir.filePath(QStringLiteral("route%1.evt").arg(++m_files));
        QFile file(path);
        const QByteArray bytes = text.toUtf8();
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            return false;
        file.close();
        QTest::ignoreMessage(QtDebugMsg, bytes.constData());
        QString ignored;
        return manager.importEvtRoute(path, error ? error : &ignored);
    }

private slots:
    void branches_data()
    {
        QTest::addColumn<QString>("lists");
        QTest::addColumn<QStringList>("direct");
        QTest::addColumn<QStringList>("reverse");

        const QString ab = stopEvent("A") + stopEvent("B");
        QTest::newRow("one list") << eventList("7", ab) << QStringList{"A", "B"} << QStringList();
        QTest::newRow("two lists") << eventList("7", ab) + eventList("7", stopEvent("C")) << QStringList{"A", "B"}
                                   << QStringList{"C"};
    }

    void branches()
    {
        QFETCH(QString, lists);
        QFETCH(QStringList, direct);
        QFETCH(QStringList, reverse);

        cProjectManager manager;
        QVERIFY(import(manager, evtFile(lists)));
        QCOMPARE(manager.project()->routes.size(), 1);
        const cRoute& route = manager.project()->routes.first();
        QCOMPARE(route.type, QString("bidir"));
        QCOMPARE(testsupport::stopNames(route.direct.stops), direct);
        QCOMPARE(testsupport::stopNames(route.reverse.stops), reverse);
    }

    void announcesImport()
    {
        cProjectManager manager;
        manager.project()->routes << cRoute();
        manager.project()->version = 5;
        const QUuid oldId = manager.project()->id;
        QStringList signalNames;
        connect(&manager, &cProjectManager::projectCreated, this, [&] { signalNames << "created"; });
        connect(&manager, &cProjectManager::projectOpened, this, [&] { signalNames << "opened"; });
        connect(&manager, &cProjectManager::routeImported, this, [&](QUuid id) { signalNames << id.toString(); });

        QVERIFY(import(manager, evtFile(eventList("7", stopEvent("A")))));
        const cProject& project = *manager.project();
        QVERIFY(!project.id.isNull() && project.id != oldId);
        QCOMPARE(project.version, 1);
        QCOMPARE(project.routes.size(), 2);
        QCOMPARE(signalNames, (QStringList{"opened", project.routes.last().id.toString()}));
    }

    void rejectsFile_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");

        const QString found = QStringLiteral("Route should have 1 or 2 branches, but found %1 branches.");
        QTest::newRow("missing file") << QString() << "Failed to open file";
        QTest::newRow("three lists") << evtFile(eventList("7", stopEvent("A")).repeated(3)) << found.arg(3);
        QTest::newRow("empty file") << QString("") << found.arg(0);
        QTest::newRow("unclosed list") << QString("<eventlist>\n  <name>7</name>\n") << found.arg(0);
    }

    void rejectsFile()
    {
        QFETCH(QString, text);
        QFETCH(QString, error);

        cProjectManager manager;
        manager.project()->routes << cRoute();
        manager.project()->version = 5;
        const QUuid oldId = manager.project()->id;
        QSignalSpy opened(&manager, &cProjectManager::projectOpened);
        QSignalSpy imported(&manager, &cProjectManager::routeImported);

        QString message;
        QVERIFY(text.isNull() ? !manager.importEvtRoute(m_dir.filePath("no/such.evt"), &message)
                              : !import(manager, text, &message));
        QCOMPARE(message, error);
        QCOMPARE(manager.project()->id, oldId);
        QCOMPARE(manager.project()->version, 5);
        QCOMPARE(manager.project()->routes.size(), 1);
        QCOMPARE(opened.count() + imported.count(), 0);
    }

    void routeHeader()
    {
        // Unlike stop names, the route name keeps its quote.
        const QString name = QString::fromUtf8("Маршрут 7 O'Brien");
        cProjectManager manager;
        QVERIFY(import(manager, evtFile(eventList(name, stopEvent("A")) + eventList("other", stopEvent("B")))));

        const cRoute& route = manager.project()->routes.first();
        QCOMPARE(route.name, name);
        QCOMPARE(route.short_name, name);
        QVERIFY(!route.id.isNull());
        QVERIFY(route.play_sound && route.display_text);
        QCOMPARE(route.base_text.current + route.base_text.next + route.base_text.last, QString("Stop: Next: . Last"));
        QVERIFY((route.base_sound.current + route.base_sound.next + route.base_sound.last).isEmpty());
    }

    void routeWithoutLeadingName()
    {
        cProjectManager manager;
        QSignalSpy imported(&manager, &cProjectManager::routeImported);
        QVERIFY(import(manager, evtFile(eventList(QString(), QString()) + eventList("7", stopEvent("C")))));

        QCOMPARE(manager.project()->routes.size(), 1);
        const cRoute& route = manager.project()->routes.first();
        QVERIFY(route.id.isNull());
        QVERIFY(route.name.isEmpty() && route.short_name.isEmpty() && route.base_text.current.isEmpty());
        QCOMPARE(testsupport::stopNames(route.reverse.stops), QStringList{"C"});
        QCOMPARE(imported.count(), 1);
        QVERIFY(imported.first().first().value<QUuid>().isNull());
    }

    void stopFields()
    {
        // Several points: the last lat and the last lon win, whatever their order.
        const QString zone = QStringLiteral("    <zone shape = circle >\n      <radius> 42 </radius>\n"
                                            "      <point lat=10.5 lon=20.5/>\n"
                                            "      <point lon=37.6184 lat=55.7512/>\n    </zone>\n");
        const QString cyrillic = QString::fromUtf8("Площадь Победы");
        cProjectManager manager;
        QVERIFY(import(manager, evtFile(eventList("7", stopEvent("O'Hara", zone) + stopEvent(cyrillic)))));

        const QList<cStop>& stops = manager.project()->routes.first().direct.stops;
        QCOMPARE(testsupport::stopNames(manager.project()->routes.first().direct.stops), (QStringList{"O\\'Hara", cyrillic}));
        const cStop& stop = stops.first();
        QCOMPARE(stop.radius, 42);
        QCOMPARE(stop.lat, 55.7512);
        QCOMPARE(stop.lon, 37.6184);
        QVERIFY(!stop.is_key_stop && !stop.course_enabled);
        QCOMPARE(stop.course_value, 0);
        QCOMPARE(stop.course_diff, 35);
        QCOMPARE(stops.last().course_diff, 35);
        QVERIFY(stop.full_name.isEmpty() && stop.other_text.isEmpty());
        QVERIFY(!stop.id.isNull() && stop.id != stops.last().id);
    }

    void sounds_data()
    {
        QTest::addColumn<QString>("reactions");
        QTest::addColumn<QString>("sound");
        QTest::addColumn<QStringList>("others");

        QTest::newRow("several") << reaction(play("snd/a.wav") + play("/b/b.wav") + play("c_1.wav")) << "/sdmmc/snd/a.wav"
                                 << QStringList{"/sdmmc/b/b.wav", "/sdmmc/c_1.wav"};
        QTest::newRow("quoted values") << reaction(play("\"a.wav\"") + play("'b.wav'") + play("c.wav"))
                                       << "/sdmmc/c.wav" << QStringList();
        QTest::newRow("no play") << reaction(QString()) << QString() << QStringList();
        QTest::newRow("rise reaction only") << reaction(play("fall.wav"), "fall") + reaction(play("rise.wav"))
                                            << "/sdmmc/rise.wav" << QStringList();
    }

    void sounds()
    {
        QFETCH(QString, reactions);
        QFETCH(QString, sound);
        QFETCH(QStringList, others);

        cProjectManager manager;
        QVERIFY(import(manager, evtFile(eventList("7", stopEvent("A", kZone, reactions)))));
        const QList<cStop>& stops = manager.project()->routes.first().direct.stops;
        QCOMPARE(stops.size(), 1);
        QCOMPARE(stops.first().other_sounds, others);
        QCOMPARE(stops.first().sound, sound);
    }

    void droppedEvents_data()
    {
        QTest::addColumn<QString>("badEvent");

        const auto zone = [](const QString& shape, const QString& radius, const QString& point) {
            return "    <zone shape=" + shape + ">\n      <radius>" + radius + "</radius>\n      <point " + point
                + "/>\n    </zone>\n";
        };
        const QString point = QStringLiteral("lat=55.75 lon=37.61");
        QTest::newRow("shape Circle") << stopEvent("X", zone("Circle", "40", point));
        QTest::newRow("radius 35.5") << stopEvent("X", zone("circle", "35.5", point));
        QTest::newRow("negative latitude") << stopEvent("X", zone("circle", "40", "lat=-55.75 lon=37.61"));
        QTest::newRow("no longitude") << stopEvent("X", zone("circle", "40", "lat=55.75"));
        QTest::newRow("no zone") << stopEvent("X", QString());
        QTest::newRow("no reaction") << stopEvent("X", kZone, QString());
        QTest::newRow("fall reaction only") << stopEvent("X", kZone, reaction(play("a.wav"), "fall"));
        QTest::newRow("no name") << stopEvent("X").remove("<name>X</name>");
    }

    // A megabyte of tags that are never closed, which the patterns would
    // otherwise rescan from every opening one.
    void damagedFilesEndInTime_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("stops");
        const int megabyte = 1 << 20;
        QTest::newRow("lists") << QString("<eventlist>").repeated(megabyte / 11) << -1;
        QTest::newRow("lists without >") << QString("<eventlist ").repeated(megabyte / 11) + "</eventlist>" << -1;
        QTest::newRow("events") << eventList("7", QString("<event><name>").repeated(megabyte / 13)) << 0;
        QTest::newRow("points") << eventList("7", stopEvent("A", "<zone shape=circle><radius>5</radius>"
                                                                 + QString("<point lat ").repeated(megabyte / 11)
                                                                 + "</zone>"))
                                << 0;
        QTest::newRow("plays") << eventList("7", stopEvent("A", kZone, reaction(QString("<play file=a ").repeated(megabyte / 13))))
                               << 1;
    }

    void damagedFilesEndInTime()
    {
        QFETCH(QString, text);
        QFETCH(int, stops);
        cProjectManager manager;
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(import(manager, text), stops >= 0);
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        if (stops >= 0)
            QCOMPARE(manager.project()->routes.first().direct.stops.size(), stops);
    }

    // Each bad event sits between two good ones, which must both survive.
    void droppedEvents()
    {
        QFETCH(QString, badEvent);

        cProjectManager manager;
        QVERIFY(import(manager, evtFile(eventList("7", stopEvent("Before") + badEvent + stopEvent("After")))));
        QCOMPARE(testsupport::stopNames(manager.project()->routes.first().direct.stops), (QStringList{"Before", "After"}));
    }
};

QTEST_GUILESS_MAIN(tst_EvtImport)
#include "tst_evtimport.moc"
