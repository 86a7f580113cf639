// Device route scripts taken back into a project.
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
    QString error;
    // The file exists, so the import reports success whatever it holds.
    FUZZ_CHECK(manager.importLuaRoute(fuzz::writeInput(fuzz::bytes(data, size)), &error));
    const QList<cRoute>& routes = manager.project()->routes;
    FUZZ_CHECK(routes.size() <= 1);
    // The device form creates every id the script lacks.
    fuzz::checkIds(routes);
    return 0;
}
