// Feeds arbitrary bytes to the "cfg" configuration reader and the lookup.
#include "fuzz_lookups.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    readAndLookUp(data, size, "cfg");
    return 0;
}
