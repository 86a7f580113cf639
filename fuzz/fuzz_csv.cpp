// GTFS tables: the CSV reader over a device that hands out the bytes in
// pieces of the size the input's first byte chooses, as archive streams
// may, against the same bytes read whole.
#include "csvreader.h"
#include "fuzzsupport.h"

#include <QBuffer>
#include <QStringList>

namespace {

// A sequential device giving at most `piece` bytes per read.
class cPiecewiseDevice : public QIODevice
{
public:
    cPiecewiseDevice(const QByteArray& bytes, int piece)
        : m_bytes(bytes)
        , m_piece(piece)
    {
        open(QIODevice::ReadOnly);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const int count = int(qMin<qint64>(qMin(maxSize, qint64(m_piece)), m_bytes.size() - m_pos));
        memcpy(data, m_bytes.constData() + m_pos, size_t(count));
        m_pos += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    int m_piece;
    int m_pos = 0;
};

// Every record as its fields, then the error or the end.
QStringList readAll(QIODevice* device)
{
    cCsvReader reader(device, QStringLiteral("stop_times.txt"));
    QString error;
    QStringList out;
    if (!reader.readHeader(&error))
        return {error};
    out << QString::number(reader.column(QStringLiteral("stop_id")));
    int lastLine = 0;
    while (reader.readRecord(&error)) {
        FUZZ_CHECK(reader.fieldCount() >= 1);
        FUZZ_CHECK(reader.line() > lastLine);
        lastLine = reader.line();
        QStringList fields;
        for (int i = 0; i < reader.fieldCount(); ++i)
            fields << reader.text(i);
        FUZZ_CHECK(reader.field(reader.fieldCount()).isEmpty());
        out << QString::number(reader.line()) + ':' + fields.join(QChar(0x1f));
    }
    out << error;
    return out;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const int piece = 1 + data[0] % 64;
    const QByteArray bytes = fuzz::bytes(data + 1, size - 1);
    QBuffer whole;
    whole.setData(bytes);
    whole.open(QIODevice::ReadOnly);
    cPiecewiseDevice pieces(bytes, piece);
    FUZZ_CHECK(readAll(&whole) == readAll(&pieces));
    return 0;
}
