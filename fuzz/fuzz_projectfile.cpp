// Project files: opened as the editor opens them, from a file on disk.
#include "fuzzsupport.h"
#include "projectmanager.h"
#include "routechecks.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    cProjectManager manager;
    if (!manager.openProject(fuzz::writeInput(fuzz::bytes(data, size))))
        return 0;
    // An opened project can be worked on: every record has its id.
    FUZZ_CHECK(!manager.project()->id.isNull());
    fuzz::checkIds(manager.project()->routes);
    return 0;
}
