#include "csvreader.h"

#include <QBuffer>
#include <QtTest>

namespace {

struct cParsed
{
    QList<QStringList> records;
    QList<int> lines;
    QString error;
};

// Hands out one byte per read, as a device may.
class cTrickle : public QIODevice
{
public:
    explicit cTrickle(const QByteArray& bytes)
        : m_bytes(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (m_pos >= m_bytes.size() || maxSize < 1)
            return 0;
        *data = m_bytes.at(m_pos++);
        return 1;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    int m_pos = 0;
};

// Every record read from `device` as text, with the line each starts on;
// the first record is the header.
cParsed parse(QIODevice* device)
{
    cCsvReader reader(device, QStringLiteral("test.txt"));
    cParsed parsed;
    if (!reader.readHeader(&parsed.error))
        return parsed;
    const auto take = [&] {
        QStringList fields;
        for (int i = 0; i < reader.fieldCount(); ++i)
            fields << reader.text(i);
        parsed.records << fields;
        parsed.lines << reader.line();
    };
    take();
    while (reader.readRecord(&parsed.error))
        take();
    return parsed;
}

cParsed parse(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return parse(&buffer);
}

} // namespace

class tst_GtfsCsv : public QObject
{
    Q_OBJECT

private slots:
    void records_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QList<QStringList>>("records");
        QTest::addColumn<QList<int>>("lines");

        const QList<QStringList> ab{{"a", "b"}, {"1", "2"}, {"3", "4"}};
        QTest::newRow("LF") << QByteArray("a,b\n1,2\n3,4\n") << ab << QList<int>{1, 2, 3};
        QTest::newRow("CRLF, no final line end") << QByteArray("a,b\r\n1,2\r\n3,4") << ab << QList<int>{1, 2, 3};
        QTest::newRow("CR") << QByteArray("a,b\r1,2\r3,4\r") << ab << QList<int>{1, 2, 3};
        QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF" "a,b\n1,2\n3,4\n") << ab << QList<int>{1, 2, 3};
        QTest::newRow("blank lines skipped") << QByteArray("a,b\n\n1,2\r\n\r\n3,4\n\n") << ab << QList<int>{1, 3, 5};
        QTest::newRow("quoted comma and quotes")
            << QByteArray("name,x\n\"R. Pio, 160\",\"say \"\"hi\"\"\"\n")
            << QList<QStringList>{{"name", "x"}, {"R. Pio, 160", "say \"hi\""}} << QList<int>{1, 2};
        QTest::newRow("line breaks inside quotes count as lines")
            << QByteArray("a,b\n\"one\ntwo\",\"x\r\ny\"\n3,4\n")
            << QList<QStringList>{{"a", "b"}, {"one\ntwo", "x\r\ny"}, {"3", "4"}} << QList<int>{1, 2, 5};
        QTest::newRow("empty and missing fields")
            << QByteArray("a,b,c\n,,\n1\n\"\",2,\n")
            << QList<QStringList>{{"a", "b", "c"}, {"", "", ""}, {"1"}, {"", "2", ""}} << QList<int>{1, 2, 3, 4};
        QTest::newRow("text after a closing quote is kept")
            << QByteArray("a\n\"ab\"c\n") << QList<QStringList>{{"a"}, {"abc"}} << QList<int>{1, 2};
        QTest::newRow("UTF-8 kept")
            << QByteArray("a\nМетрô 'Ц'\n") << QList<QStringList>{{"a"}, {"Метрô 'Ц'"}} << QList<int>{1, 2};
    }

    void records()
    {
        QFETCH(QByteArray, bytes);
        const cParsed parsed = parse(bytes);
        QCOMPARE(parsed.error, QString());
        QTEST(parsed.records, "records");
        QTEST(parsed.lines, "lines");
    }

    void unclosedQuoteNamesFileAndLine()
    {
        QCOMPARE(parse("a,b\n1,2\n3,\"open\n\n").error,
                 QStringLiteral("test.txt, line 3: a quoted field is not closed."));
        QCOMPARE(parse("").error, QStringLiteral("test.txt is empty."));
    }

    // Records, quotes and CRLF pairs fall across the reader's block edges.
    void largeFileAcrossBlocks()
    {
        // Quoted first, so a mark read on its own must not hide the quote.
        QByteArray bytes = "\"id\",text\r\n";
        QList<QStringList> expected{{"id", "text"}};
        QList<int> lines{1};
        int line = 2;
        for (int i = 0; i < 30000; ++i) {
            const QString text = i % 3 == 0 ? QStringLiteral("q\"uo,te\n%1").arg(i) : QStringLiteral("plain %1").arg(i);
            QByteArray quoted = text.toUtf8();
            quoted.replace("\"", "\"\"");
            bytes += QByteArray::number(i) + ",\"" + quoted + "\"\r\n";
            expected << QStringList{QString::number(i), text};
            lines << line;
            line += text.contains('\n') ? 2 : 1;
        }
        QVERIFY(bytes.size() > 5 * 65536);
        const cParsed parsed = parse(bytes);
        QCOMPARE(parsed.error, QString());
        QCOMPARE(parsed.records.size(), expected.size());
        QCOMPARE(parsed.records, expected);
        QCOMPARE(parsed.lines, lines);

        // Read a byte at a time, the byte-order mark and CRLF pairs fall apart too.
        cTrickle trickle("\xEF\xBB\xBF" + bytes.left(1000));
        const cParsed trickled = parse(&trickle);
        QCOMPARE(trickled.records, parse(bytes.left(1000)).records);
    }

    // A quote never closed, or a line of nothing but separators, must not
    // take a whole (possibly huge) file into memory.
    void overlongRecordsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("unclosed quote") << "a,b\n1,2\n3,\"" + QByteArray(3 << 20, 'x');
        QTest::newRow("separators") << "a,b\n1,2\n" + QByteArray(3 << 20, ',');
    }

    void overlongRecordsAreRefused()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(parse(bytes).error, QStringLiteral("test.txt, line 3: a record is longer than 1 MB."));
    }
};

QTEST_GUILESS_MAIN(tst_GtfsCsv)
#include "tst_gtfscsv.moc"
