#include "memorypages.h"

#ifdef VOSK_MIMALLOC
#include <mimalloc.h>

namespace {

void enableLargePages(int, char**, char**)
{
    mi_option_enable(mi_option_large_os_pages);
}

// Run by the loader before any library's initialisers allocate. The option
// only applies to memory mimalloc takes from the system after it is set, and
// a process goes on filling the first memory it took for a long while.
__attribute__((section(".preinit_array"), used)) void (*const enableLargePagesFirst)(int, char**, char**)
    = enableLargePages;

} // namespace
#endif

bool usesLargeMemoryPages()
{
#ifdef VOSK_MIMALLOC
    return mi_option_is_enabled(mi_option_large_os_pages);
#else
    return false;
#endif
}
