#ifndef VOSK_MEMORYPAGES_H
#define VOSK_MEMORYPAGES_H

// A program linked with the voskmemory objects allocates through mimalloc on
// 2 MiB pages where the system offers them. A large project is hundreds of
// thousands of small blocks (stops, their texts, a queued event per log
// line); on 4 KiB pages every fresh page costs a fault, and the faults were
// most of what made opening such a project slower than Lua reading it. The
// sanitizer builds keep the system allocator.

// Whether this program allocates on large pages; benchmarks print it.
bool usesLargeMemoryPages();

#endif
