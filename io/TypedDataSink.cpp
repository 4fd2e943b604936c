#include "io/TypedDataSink.h"

#include "base/AsOwn.h"

namespace vek
{

TypedDataSink::TypedDataSink(IVekIOStream & stream) noexcept
    : m_stream(stream), m_reversed(stream.GetStreamByteOrder() != stream.GetSystemByteOrder())
{
    if (CVekMemoryIOStream * const memory = AsOwn<CVekMemoryIOStream>(stream))
    {
        size_t const size = memory->GetSize();
        auto const position = static_cast<size_t>(memory->GetPosition());
        if (!memory->GetBuffer() || position > size)
            return;
        m_kind = Kind::Memory;
        m_begin = memory->GetBuffer() + position;
        m_end = memory->GetBuffer() + size;
    }
    else if (CVekFileIOStream * const file = AsOwn<CVekFileIOStream>(stream))
    {
        // A file that takes nothing tells nothing of single values.
        if (!file->GetFileHandle() || !file->IsWritable())
            return;
        m_kind = Kind::File;
        m_begin = m_fileBlock;
        m_end = m_fileBlock + FILE_BLOCK;
    }
    m_at = m_begin;
}

bool TypedDataSink::PutBlock(unsigned char const * bytes, size_t count) noexcept
{
    if (static_cast<size_t>(m_end - m_at) < count)
        return Flush() && WriteBlock(bytes, count);
    memcpy(m_at, bytes, count);
    m_at += count;
    return true;
}

// A memory stream's last byte is for single values only, so that the block's last one is written as such.
bool TypedDataSink::WriteBlock(unsigned char const * bytes, size_t count) noexcept
{
    return (count == 1 || m_stream.Write(bytes, static_cast<unsigned int>(count - 1), true)) && Write(bytes[count - 1]);
}

bool TypedDataSink::Flush() noexcept
{
    auto const count = static_cast<unsigned int>(m_at - m_begin);
    if (count == 0)
        return true;
    if (m_kind == Kind::Memory)
    {
        m_begin = m_at;
        return m_stream.MovePosition(static_cast<int>(count));
    }
    m_at = m_begin;
    return m_stream.Write(m_begin, count, true);
}

} // namespace vek
