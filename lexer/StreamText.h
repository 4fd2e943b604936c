#pragma once

#include "VekIO.h"

#include "base/Buffer.h"

namespace vek
{

enum class StreamReading
{
    Done,
    Failed,
    NoMemory
};

/// Reads a stream from its position to its end: UTF-16 with a byte order mark, otherwise UTF-8.
StreamReading ReadStreamText(IVekIOStream & stream, Buffer<wchar_t> & text) noexcept;

} // namespace vek
