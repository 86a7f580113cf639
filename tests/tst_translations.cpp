#include <QtTest>

#include <QProcess>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

struct cMessage
{
    QString context;
    QString source;
    bool operator<(const cMessage& other) const
    {
        return std::tie(context, source) < std::tie(other.context, other.source);
    }
    bool operator==(const cMessage& other) const { return context == other.context && source == other.source; }
};

QList<cMessage> readTs(const QString& path)
{
    QList<cMessage> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString context;
    QString source;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation")
                 && xml.attributes().value(QLatin1String("type")) != QLatin1String("vanished")
                 && xml.attributes().value(QLatin1String("type")) != QLatin1String("obsolete"))
            messages.append({context, source});
    }
    std::sort(messages.begin(), messages.end());
    return messages;
}

const QString sourceDir = QStringLiteral(VOSK_SOURCE_DIR);
const QString tsFile = sourceDir + QStringLiteral("/resources/translations/vosk.ts");

} // namespace

class tst_Translations : public QObject
{
    Q_OBJECT

private slots:
    void everyTextIsTranslated();
    void catalogueMatchesTheSources();
};

void tst_Translations::everyTextIsTranslated()
{
    const QList<cMessage> messages = readTs(tsFile);
    QVERIFY(messages.size() > 30);
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(":/tr/vosk.qm")));
    QStringList missing;
    for (const cMessage& message : messages) {
        const QString translated =
            translator.translate(message.context.toUtf8().constData(), message.source.toUtf8().constData());
        if (translated.isEmpty())
            missing << message.context + QStringLiteral("::") + message.source;
    }
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QStringLiteral("\n"))));
    QCOMPARE(translator.translate("cRouteSelector", "New route"), QStringLiteral("Новый маршрут"));
}

// A text added to the code must reach the catalogue (run lupdate) before it
// can be translated.
void tst_Translations::catalogueMatchesTheSources()
{
    QTemporaryDir dir;
    const QString fresh = dir.filePath(QStringLiteral("fresh.ts"));
    QProcess lupdate;
    lupdate.setWorkingDirectory(sourceDir);
    lupdate.start(QStringLiteral(VOSK_LUPDATE),
                  {QStringLiteral("-silent"), QStringLiteral("app"), QStringLiteral("ui"), QStringLiteral("model"),
                   QStringLiteral("export"), QStringLiteral("map"), QStringLiteral("logger"), QStringLiteral("gtfs"),
                   QStringLiteral("replay"),
                   QStringLiteral("check"), QStringLiteral("cli"),
                   QStringLiteral("-ts"), fresh});
    QVERIFY(lupdate.waitForFinished(60000));
    QCOMPARE(lupdate.exitCode(), 0);
    QList<cMessage> expected = readTs(fresh);
    QList<cMessage> actual = readTs(tsFile);
    QStringList onlyInCode;
    for (const cMessage& message : expected) {
        if (!actual.contains(message))
            onlyInCode << message.context + QStringLiteral("::") + message.source;
    }
    QVERIFY2(onlyInCode.isEmpty(), qPrintable(onlyInCode.join(QStringLiteral("\n"))));
    QCOMPARE(actual.size(), expected.size());
}

QTEST_GUILESS_MAIN(tst_Translations)
#include "tst_translations.moc"
