#ifndef VOSK_VERSION_H
#define VOSK_VERSION_H

// The program's name and version: shown in the main window's title and
// logged at start, and sent to tile servers, which ask to know who calls.
namespace version {

constexpr const char* programName = "Voskantor";
constexpr int major = 1;
constexpr int minor = 21;
constexpr int build = 0;
constexpr int revision = 1;

} // namespace version

#endif
