// Event-list files, read with regular expressions.
#include "fuzzsupport.h"
#include "projectmanager.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    cProjectManager manager;
    QString error;
    const bool imported = manager.importEvtRoute(fuzz::writeInput(fuzz::bytes(data, size)), &error);
    // Either one route more, or an explanation and nothing changed.
    FUZZ_CHECK(manager.project()->routes.size() == (imported ? 1 : 0));
    FUZZ_CHECK(imported || !error.isEmpty());
    return 0;
}
