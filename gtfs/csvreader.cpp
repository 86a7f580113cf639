#include "csvreader.h"

#include <QIODevice>

#include <cstring>

namespace {

constexpr int kBlockSize = 1 << 16;
// Far beyond any real record. A quote that is never closed would otherwise
// take a whole file into one record, and a zip entry may unpack to
// gigabytes from a few kilobytes.
constexpr size_t kMaxRecordBytes = 1 << 20;

enum class State {
    FieldStart,
    Unquoted,
    Quoted,
    QuoteInQuoted, // a quote seen inside a quoted field: doubled or closing
    AfterQuote,
};

} // namespace

cCsvReader::cCsvReader(QIODevice* device, const QString& fileName)
    : m_device(device)
    , m_fileName(fileName)
{
    m_buffer.resize(kBlockSize);
}

bool cCsvReader::fill()
{
    if (m_deviceFailed)
        return false;
    qint64 count = m_device->read(m_buffer.data(), m_buffer.size());
    // A device may hand out fewer bytes than asked for; a byte-order mark
    // split over two reads must still be seen as one.
    while (m_atStart && count > 0 && count < 3) {
        const qint64 more = m_device->read(m_buffer.data() + count, m_buffer.size() - count);
        if (more <= 0)
            break;
        count += more;
    }
    if (count < 0) {
        m_deviceFailed = true;
        return false;
    }
    m_position += count;
    m_pos = 0;
    m_end = int(count);
    if (m_atStart) {
        m_atStart = false;
        if (m_end >= 3 && std::memcmp(m_buffer.constData(), "\xEF\xBB\xBF", 3) == 0) {
            m_pos = 3;
            // A first read of the mark alone leaves nothing to parse yet.
            if (m_end == 3)
                return fill();
        }
    }
    return count > 0;
}

void cCsvReader::endField()
{
    m_fieldEnds.append(int(m_record.size()));
    m_record.push_back('\0');
}

bool cCsvReader::readRecord(QString* error)
{
    m_record.clear();
    m_fieldEnds.clear();
    m_recordLine = m_line;
    State state = State::FieldStart;
    for (;;) {
        if (m_record.size() > kMaxRecordBytes) {
            *error = lineError(tr("a record is longer than %1 MB.").arg(kMaxRecordBytes >> 20));
            return false;
        }
        if (m_pos == m_end && !fill()) {
            if (m_deviceFailed) {
                *error = lineError(tr("the file is damaged or cut short."));
                return false;
            }
            if (state == State::Quoted) {
                *error = lineError(tr("a quoted field is not closed."));
                return false;
            }
            if (state == State::FieldStart && m_fieldEnds.isEmpty())
                return false;
            endField();
            return true;
        }
        const char* data = m_buffer.constData();
        const char c = data[m_pos];
        if (m_skipLineFeed) {
            m_skipLineFeed = false;
            if (c == '\n') {
                ++m_pos;
                continue;
            }
        }

        if (state != State::Quoted && state != State::QuoteInQuoted) {
            if (c == ',') {
                ++m_pos;
                endField();
                state = State::FieldStart;
                continue;
            }
            if (c == '\n' || c == '\r') {
                ++m_pos;
                ++m_line;
                m_skipLineFeed = c == '\r';
                if (state == State::FieldStart && m_fieldEnds.isEmpty()) {
                    m_recordLine = m_line; // blank line
                    continue;
                }
                endField();
                return true;
            }
        }

        switch (state) {
        case State::FieldStart:
            if (c == '"') {
                ++m_pos;
                state = State::Quoted;
            } else {
                state = State::Unquoted;
            }
            break;
        case State::AfterQuote:
            // Text after a closing quote is kept as it stands rather than
            // rejecting the feed for it.
            state = State::Unquoted;
            break;
        case State::Unquoted: {
            const char* begin = data + m_pos;
            const char* end = data + m_end;
            const char* p = begin;
            while (p != end && *p != ',' && *p != '\n' && *p != '\r')
                ++p;
            m_record.insert(m_record.end(), begin, p);
            m_pos = int(p - data);
            break;
        }
        case State::Quoted: {
            const char* begin = data + m_pos;
            const char* end = data + m_end;
            const char* p = begin;
            while (p != end && *p != '"') {
                if (*p == '\n')
                    ++m_line;
                ++p;
            }
            m_record.insert(m_record.end(), begin, p);
            m_pos = int(p - data);
            if (p != end) {
                ++m_pos;
                state = State::QuoteInQuoted;
            }
            break;
        }
        case State::QuoteInQuoted:
            if (c == '"') {
                ++m_pos;
                m_record.push_back('"');
                state = State::Quoted;
            } else {
                state = State::AfterQuote;
            }
            break;
        }
    }
}

bool cCsvReader::readHeader(QString* error)
{
    error->clear();
    if (!readRecord(error)) {
        if (error->isEmpty())
            *error = tr("%1 is empty.").arg(m_fileName);
        return false;
    }
    m_columns.clear();
    for (int i = 0; i < m_fieldEnds.size(); ++i) {
        const QString name = text(i).trimmed();
        if (!m_columns.contains(name))
            m_columns.insert(name, i);
    }
    return true;
}

int cCsvReader::column(const QString& name) const
{
    return m_columns.value(name, -1);
}

QByteArray cCsvReader::field(int column) const
{
    if (column < 0 || column >= m_fieldEnds.size())
        return QByteArray();
    const int start = column == 0 ? 0 : m_fieldEnds.at(column - 1) + 1;
    return QByteArray::fromRawData(m_record.data() + start, m_fieldEnds.at(column) - start);
}

QString cCsvReader::text(int column) const
{
    const QByteArray bytes = field(column);
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

QString cCsvReader::lineError(const QString& message) const
{
    return tr("%1, line %2: %3").arg(m_fileName, QString::number(m_recordLine), message);
}
