#include "printrun.h"

#include <malloc.h>

int main(int argc, char** argv)
{
    // The output stream frees and takes back its buffers at every flush; left
    // to the default threshold, the heap is trimmed and regrown each time.
    mallopt(M_TRIM_THRESHOLD, 16 << 20);
    compile(argc, argv);
    return 0;
}
