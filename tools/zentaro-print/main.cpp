#include "printrun.h"

int main(int argc, char** argv)
{
    return compile(argc, argv);
}
