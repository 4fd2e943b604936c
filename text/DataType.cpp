#include "VekVariant.h"

int VekDataTypeSize(VEK_DATATYPE type)
{
    switch (type)
    {
    case VEK_DT_BOOL:
    case VEK_DT_UCHAR:
    case VEK_DT_CHAR:
        return 1;
    case VEK_DT_WCHAR:
    case VEK_DT_SHORT:
    case VEK_DT_USHORT:
        return 2;
    case VEK_DT_INT: // NOLINT(bugprone-branch-clone): the value below is told apart on purpose
    case VEK_DT_UINT:
    case VEK_DT_FLOAT:
    case VEK_DT_RGBA_UCHAR:
        return 4;
    case VEK_DT_RGBA_FLOAT:
        // Kept: 4, although the value has four floats; stored streams rely on it.
        return 4;
    case VEK_DT_DOUBLE:
        return 8;
    case VEK_DT_VECTOR4D_INT:
    case VEK_DT_VECTOR4D_FLOAT:
    case VEK_DT_GUID:
        return 16;
    case VEK_DT_VECTOR4D_DOUBLE:
        return 32;
    // Kept: the size of the whole 32-bit matrix object, its header of 16 bytes included.
    case VEK_DT_MATRIX4X4_FLOAT:
        return 80;
    case VEK_DT_MATRIX4X4_DOUBLE:
        return 144;
    case VEK_DT_UNKNOWN:
    case VEK_DT_STRINGA:
    case VEK_DT_STRINGW:
    case VEK_DT_BUFFER:
        break;
    }
    return 0;
}
