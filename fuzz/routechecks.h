#ifndef VOSK_FUZZ_ROUTECHECKS_H
#define VOSK_FUZZ_ROUTECHECKS_H

#include "fuzzsupport.h"
#include "project.h"

namespace fuzz {

// Routes that were read can be worked on: every route and stop has its id.
inline void checkIds(const QList<cRoute>& routes)
{
    for (const cRoute& route : routes) {
        FUZZ_CHECK(!route.id.isNull());
        for (const cBranch* branch : {&route.direct, &route.reverse}) {
            for (const cStop& stop : branch->stops)
                FUZZ_CHECK(!stop.id.isNull());
        }
    }
}

} // namespace fuzz

#endif
