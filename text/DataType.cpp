#include "text/DataTypes.h"

int VekDataTypeSize(VEK_DATATYPE type)
{
    return vek::Visit(type, [](auto held) { return vek::SizeOf(held); });
}
