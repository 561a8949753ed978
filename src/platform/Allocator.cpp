#include "platform/Allocator.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace mervola
{

void keepFreedMemoryForReuse()
{
#if defined(__GLIBC__)
    // Blocks up to 32 MiB come from the heap and are reused; the heap gives
    // memory back once 128 MiB lie free at its top.
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 128 * 1024 * 1024);
#endif
}

} // namespace mervola
