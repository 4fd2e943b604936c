// What tests do with typed data.
#pragma once

#include "VekData.h"

#include <windows.h>

// Writes what a reader has got once more.
inline bool CopyEntry(CVekTypedDataEntry const & entry, CVekTypedDataWriter & writer)
{
    wchar_t const * const name = entry.GetName();
    VEK_VARIANT const & value = entry.Val();
    switch (value.GetType())
    {
#define COPY(type, operation, held)                                                                                    \
    case type:                                                                                                         \
        return writer.operation(name, static_cast<held const &>(value));
        COPY(1, WriteBool, bool)
        COPY(2, WriteByte, unsigned char)
        COPY(3, WriteChar, char)
        COPY(4, WriteWChar, unsigned short)
        COPY(5, WriteInt16, short)
        COPY(6, WriteWord, unsigned short)
        COPY(7, WriteInt32, int)
        COPY(8, WriteDWord, unsigned int)
        COPY(9, WriteFloat, float)
        COPY(10, WriteDouble, double)
        COPY(11, WriteString, CVekString<char>)
        COPY(12, WriteWString, CVekString<wchar_t>)
        COPY(13, WriteColor, CVekRGBA<unsigned char>)
        COPY(14, WriteColor, CVekRGBA<float>)
        COPY(15, WriteVector, CVekVector4D<int>)
        COPY(16, WriteVector, CVekVector4D<float>)
        COPY(17, WriteVector, CVekVector4D<double>)
        COPY(18, WriteMatrix, CVekMatrix4x4<float>)
        COPY(19, WriteMatrix, CVekMatrix4x4<double>)
        COPY(20, WriteGUID, GUID)
#undef COPY
    default:
        return writer.WriteBuffer(name, value.GetBuffer(), value.GetBufferSize());
    }
}
