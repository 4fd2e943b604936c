#include "VekVersion.h"

unsigned int VekLibVersion()
{
    return VEKLIB_VERSION;
}
