#include "PayloadStream.h"

#include <climits>
#include <cstring>
#include <new>

namespace packetfile
{

unsigned char * PayloadStream::Resize(unsigned int size)
{
    try
    {
        m_position = 0;
        m_whole = true;
        m_bytes.resize(size);
        if (m_bytes.empty())
            m_bytes.reserve(1); // a place even for nothing
        return m_bytes.data();
    }
    catch (std::bad_alloc const &)
    {
        return nullptr;
    }
}

bool PayloadStream::Open(wchar_t const *, unsigned int flags, unsigned int)
{
    m_flags = flags;
    return Resize(0) != nullptr;
}

bool PayloadStream::MoveTo(long long position)
{
    if (position < 0 || position > static_cast<long long>(m_bytes.size()))
        return false;
    m_position = static_cast<std::size_t>(position);
    return true;
}

bool PayloadStream::SetPosition(int position, bool fromEnd)
{
    long long const offset = position;
    return MoveTo(fromEnd ? static_cast<long long>(m_bytes.size()) - offset : offset);
}

bool PayloadStream::MovePosition(int offset)
{
    return MoveTo(static_cast<long long>(m_position) + offset);
}

bool PayloadStream::Read(void * data, unsigned int count, bool advance)
{
    if (count > m_bytes.size() - m_position)
        return false;
    if (count > 0)
        std::memcpy(data, m_bytes.data() + m_position, count);
    m_position += advance ? count : 0;
    return true;
}

bool PayloadStream::Write(void const * data, unsigned int count, bool advance)
{
    bool isDone = count <= INT_MAX - m_position;
    try
    {
        if (isDone && count > m_bytes.size() - m_position)
            m_bytes.resize(m_position + count);
    }
    catch (std::bad_alloc const &)
    {
        isDone = false;
    }
    m_whole = m_whole && isDone;
    if (!isDone)
        return false;
    if (count > 0)
        std::memcpy(m_bytes.data() + m_position, data, count);
    m_position += advance ? count : 0;
    return true;
}

} // namespace packetfile
