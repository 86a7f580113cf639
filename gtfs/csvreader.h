#ifndef VOSK_CSVREADER_H
#define VOSK_CSVREADER_H

#include <QByteArray>
#include <QCoreApplication>
#include <QHash>
#include <QString>
#include <QVector>

#include <vector>

class QIODevice;

// Reads comma-separated records (RFC 4180, as GTFS files are written) from a
// device a block at a time, so files of any size pass through in constant
// memory. Accepts a UTF-8 byte-order mark, CRLF, LF or CR line ends, quoted
// fields with commas, doubled quotes and line breaks, and blank lines.
class cCsvReader
{
    Q_DECLARE_TR_FUNCTIONS(cCsvReader)

public:
    cCsvReader(QIODevice* device, const QString& fileName);

    // Reads the first record as column names. Fails on an empty file.
    bool readHeader(QString* error);
    // Column index by header name, or -1 when the file has no such column.
    int column(const QString& name) const;

    // Reads the next record. False at the end of the file with `error` left
    // empty, or on a fault with `error` naming the file and line.
    bool readRecord(QString* error);
    // A field of the current record; empty when the record is shorter or the
    // column is -1. The bytes stay valid until the next readRecord().
    QByteArray field(int column) const;
    QString text(int column) const;
    int fieldCount() const { return m_fieldEnds.size(); }

    // Line on which the current record starts, counted from 1.
    int line() const { return m_recordLine; }
    // Bytes taken from the device so far.
    qint64 position() const { return m_position; }
    const QString& fileName() const { return m_fileName; }
    // "<file>, line <n>: <message>" for the current record.
    QString lineError(const QString& message) const;

private:
    bool fill();
    void endField();

    QIODevice* m_device;
    QString m_fileName;
    QByteArray m_buffer;
    int m_pos = 0;
    int m_end = 0;
    bool m_atStart = true;
    bool m_deviceFailed = false;
    bool m_skipLineFeed = false;
    qint64 m_position = 0;
    int m_line = 1;
    int m_recordLine = 0;

    // Unquoted contents of the current record's fields, each followed by a
    // zero byte, and where each of those zero bytes is.
    std::vector<char> m_record;
    QVector<int> m_fieldEnds;
    QHash<QString, int> m_columns;
};

#endif
