#ifndef VOSK_FUZZSUPPORT_H
#define VOSK_FUZZSUPPORT_H

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

// What every harness needs: a Qt application for the readers' translations
// and codecs, a silent log (the readers log whole inputs, which would slow
// fuzzing to a crawl) and a scratch folder for the files the readers open.
namespace fuzz {

void initialise(int* argc, char*** argv);

// Writes the bytes to a file of this name in the scratch folder; returns
// its path.
QString writeInput(const QByteArray& bytes, const QString& name = QStringLiteral("input"));
QString scratchPath(const QString& name);

inline QByteArray bytes(const uint8_t* data, size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

// A property every reader promises was broken: libFuzzer keeps the input.
[[noreturn]] void fail(const char* what);

} // namespace fuzz

#define FUZZ_CHECK(condition) \
    do { \
        if (!(condition)) \
            fuzz::fail(#condition); \
    } while (false)

#endif
