#pragma once

#include "VekIO.h"

#include "io/StreamBits.h"

#include <stddef.h>
#include <string.h>

namespace vek
{

/// Writes values to a stream as its typed writes do, each with its result: in place in the library's memory streams, in
/// blocks to its files, and one call a value to any other stream.
class TypedDataSink
{
public:
    explicit TypedDataSink(IVekIOStream & stream) noexcept;
    TypedDataSink(TypedDataSink const &) = delete;
    TypedDataSink & operator=(TypedDataSink const &) = delete;

    template <class T>
    bool Put(T value) noexcept
    {
        if (static_cast<size_t>(m_end - m_at) < sizeof(T))
            return PutBeyond(value);
        BitsOf<T> const bits = ToBits(value, m_reversed);
        memcpy(m_at, &bits, sizeof(T));
        m_at += sizeof(T);
        return true;
    }
    template <class T>
    bool Put(T const * values, size_t count) noexcept
    {
        bool const inOneCopy = count != 0 && (!m_reversed || sizeof(T) == 1);
        if (inOneCopy && static_cast<size_t>(m_end - m_at) / sizeof(T) >= count)
        {
            memcpy(m_at, values, count * sizeof(T));
            m_at += count * sizeof(T);
            return true;
        }
        for (size_t i = 0; i < count; ++i)
        {
            if (!Put(values[i]))
                return false;
        }
        return true;
    }
    /// Whether PutBlock does the same as putting the values that so many bytes of the system's byte order are: a memory
    /// stream that is too small for all of them takes some.
    bool TakesAsStored(size_t count) const noexcept
    {
        return !m_reversed &&
               (m_kind == Kind::File || (m_kind == Kind::Memory && static_cast<size_t>(m_end - m_at) >= count));
    }
    /// Writes a block of one byte or more, which a memory stream takes whole or refuses.
    bool PutBlock(unsigned char const * bytes, size_t count) noexcept;
    /// Brings the stream up to date; false when a file refuses what was put.
    bool Flush() noexcept;

private:
    enum class Kind
    {
        Memory,
        File,
        Other
    };

    template <class T>
    bool PutBeyond(T value) noexcept
    {
        if (m_kind == Kind::File)
            return Flush() && Put(value);
        // Kept: what does not fit into a memory stream counts as written, as with its own typed writes.
        return m_kind == Kind::Memory || Write(value);
    }
    bool WriteBlock(unsigned char const * bytes, size_t count) noexcept;
    bool Write(bool value) noexcept = delete;
    bool Write(unsigned char value) noexcept { return m_stream.WriteByte(value, true); }
    bool Write(char value) noexcept { return m_stream.WriteChar(value, true); }
    bool Write(wchar_t value) noexcept { return m_stream.WriteWChar(value, true); }
    bool Write(short value) noexcept { return m_stream.WriteInt16(value, true); }
    bool Write(unsigned short value) noexcept { return m_stream.WriteWord(value, true); }
    bool Write(int value) noexcept { return m_stream.WriteInt32(value, true); }
    bool Write(unsigned int value) noexcept { return m_stream.WriteDWord(value, true); }
    bool Write(float value) noexcept { return m_stream.WriteFloat(value, true); }
    bool Write(double value) noexcept { return m_stream.WriteDouble(value, true); }

    static constexpr size_t FILE_BLOCK = 16 * 1024;

    IVekIOStream & m_stream;
    Kind m_kind = Kind::Other;
    bool m_reversed;
    unsigned char * m_begin = nullptr; // what was put but the stream doesn't know of yet
    unsigned char * m_at = nullptr;
    unsigned char * m_end = nullptr;
    unsigned char m_fileBlock[FILE_BLOCK];
};

} // namespace vek
