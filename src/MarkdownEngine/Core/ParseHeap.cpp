#include "MarkdownEngine/Core/ParseHeap.h"

#include <cstdlib> // defines __GLIBC__ on glibc

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace velmo::markdown {

void ParseHeap::keepWarm()
{
#ifdef __GLIBC__
    // Freed heap kept mapped between parses, up to this much.
    constexpr int keptFreeHeapBytes = 128 * 1024 * 1024;
    // Blocks below this come from the heap, and so stay warm too; glibc takes no larger value.
    constexpr int mmapThresholdBytes = 32 * 1024 * 1024;
    mallopt(M_TRIM_THRESHOLD, keptFreeHeapBytes);
    mallopt(M_MMAP_THRESHOLD, mmapThresholdBytes);
#endif
}

}
