#include "io/TypedDataSource.h"

#include "base/AsOwn.h"
#include "base/StreamSize.h"

namespace vek
{

TypedDataSource::TypedDataSource(IVekIOStream & stream) noexcept
    : m_stream(stream), m_reversed(stream.GetStreamByteOrder() != stream.GetSystemByteOrder())
{
    if (CVekMemoryIOStream * const memory = AsOwn<CVekMemoryIOStream>(stream))
    {
        m_kind = Kind::InMemory;
        if (!memory->GetBuffer() || memory->GetPosition() > static_cast<int>(memory->GetSize()))
            return;
        m_begin = m_at = memory->GetBuffer() + memory->GetPosition();
        m_end = memory->GetBuffer() + memory->GetSize();
    }
    else if (CVekFileIOStream * const file = AsOwn<CVekFileIOStream>(stream))
    {
        m_kind = Kind::InFile;
        if (!file->GetFileHandle() || !file->IsReadable())
            return;
        m_at = m_end = m_fileBlock;
        Measure();
        // As text a file holds fewer bytes than its size tells, and can't be put back by a number of them.
        if (!file->IsBinary())
            m_kind = Kind::OfUnknownSize;
    }
    else
        Measure();
}

TypedDataSource::~TypedDataSource()
{
    if (m_kind == Kind::InMemory && m_at != m_begin)
        m_stream.MovePosition(static_cast<int>(m_at - m_begin));
    else if (m_kind == Kind::InFile && m_at != m_end)
        m_stream.MovePosition(-static_cast<int>(m_end - m_at));
}

void TypedDataSource::Measure() noexcept
{
    unsigned int const size = m_stream.GetSize();
    int const position = m_stream.GetPosition();
    if (m_kind == Kind::OfKnownSize && TellsNoSize(size))
        m_kind = Kind::OfUnknownSize;
    else if (position >= 0 && static_cast<unsigned int>(position) < size)
        m_beyond = size - static_cast<unsigned int>(position);
}

// Has that many bytes of a file in memory, if it holds them.
bool TypedDataSource::Fill(size_t count) noexcept
{
    auto const left = static_cast<size_t>(m_end - m_at);
    if (m_kind != Kind::InFile || count - left > m_beyond)
        return false;
    size_t const room = FILE_BLOCK - left;
    size_t const more = m_beyond < room ? m_beyond : room;
    memmove(m_fileBlock, m_at, left);
    m_at = m_fileBlock;
    m_end = m_fileBlock + left;
    if (!m_stream.Read(m_fileBlock + left, static_cast<unsigned int>(more), true))
    {
        m_beyond = 0;
        return false;
    }
    m_end += more;
    m_beyond -= more;
    return true;
}

bool TypedDataSource::GetBlock(unsigned char * bytes, size_t count) noexcept
{
    if (!Holds(count, 1))
        return false;
    auto const ready = static_cast<size_t>(m_end - m_at);
    if (count <= ready)
        return Get(bytes, count);
    Get(bytes, ready); // as many as are in memory
    bytes += ready;
    count -= ready;
    // A stream may keep its last byte for single values, as the library's memory streams do.
    size_t const inOneBlock = m_kind == Kind::InFile ? count : count - 1;
    if (inOneBlock != 0 && !m_stream.Read(bytes, static_cast<unsigned int>(inOneBlock), true))
        return EndsEarly();
    m_beyond -= inOneBlock;
    return inOneBlock == count || Get(bytes[inOneBlock]);
}

} // namespace vek
