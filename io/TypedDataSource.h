#pragma once

#include "VekData.h"
#include "VekIO.h"

#include "base/Buffer.h"
#include "io/StreamBits.h"
#include "text/StringAccess.h"

#include <stddef.h>
#include <string.h>

namespace vek
{

/// Reads values from a stream as its typed reads do, but tells when the stream doesn't hold them: in place from the
/// library's memory streams, in blocks from its files, and one call a value from any other stream.
/// A stream that can't tell its size gives blocks of the size of a value.
class TypedDataSource
{
public:
    explicit TypedDataSource(IVekIOStream & stream) noexcept;
    TypedDataSource(TypedDataSource const &) = delete;
    TypedDataSource & operator=(TypedDataSource const &) = delete;
    /// Leaves the stream behind what was taken.
    ~TypedDataSource();

    /// Whether Holds can tell the end before it is reached; if not, what is read must be stored piece by piece.
    bool KnowsSize() const noexcept { return m_kind != Kind::OfUnknownSize; }
    /// Whether the stream may hold that many values more.
    bool Holds(size_t count, size_t valueBytes) const noexcept
    {
        return !KnowsSize() || count <= (static_cast<size_t>(m_end - m_at) + m_beyond) / valueBytes;
    }

    template <class T>
    bool Get(T & value) noexcept
    {
        if (static_cast<size_t>(m_end - m_at) < sizeof(T) && !Fill(sizeof(T)))
            return ReadFromOther(value);
        if (m_reversed)
        {
            BitsOf<T> bits;
            memcpy(&bits, m_at, sizeof(T));
            value = FromBits<T>(bits, true);
        }
        else
            memcpy(&value, m_at, sizeof(T)); // in one move, also of 8 bytes
        m_at += sizeof(T);
        return true;
    }
    template <class T>
    bool Get(T * values, size_t count) noexcept
    {
        bool const inOneCopy = count != 0 && (!m_reversed || sizeof(T) == 1);
        if (inOneCopy && static_cast<size_t>(m_end - m_at) / sizeof(T) >= count)
        {
            CopyShort(values, m_at, count * sizeof(T));
            m_at += count * sizeof(T);
            return true;
        }
        if (inOneCopy && m_kind == Kind::OfUnknownSize)
            return m_stream.Read(values, static_cast<unsigned int>(count * sizeof(T)), true) || EndsEarly();
        for (size_t i = 0; i < count; ++i)
        {
            if (!Get(values[i]))
                return false;
        }
        return true;
    }
    /// The next bytes, where they are in memory and stand there as the system stores values; null otherwise.
    unsigned char const * InPlace(size_t count) const noexcept
    {
        return !m_reversed && static_cast<size_t>(m_end - m_at) >= count ? m_at : nullptr;
    }
    /// Passes bytes that are in place.
    void Skip(size_t count) noexcept { m_at += count; }
    bool GetBlock(unsigned char * bytes, size_t count) noexcept;

    /// Memory for the objects that are read.
    PoolSpares & Memory() noexcept { return m_memory; }

    /// Keeps what is wrong with the stream; always false.
    bool Fail(VEK_DATA_ERROR fault) noexcept
    {
        m_fault = fault;
        return false;
    }
    /// The index of the entry that is read; -1 before the first.
    void BeginEntry(int index) noexcept { m_entry = index; }
    int GetEntry() const noexcept { return m_entry; }
    VEK_DATA_ERROR GetFault() const noexcept { return m_fault; }

private:
    enum class Kind
    {
        InMemory,
        InFile,
        OfKnownSize,
        OfUnknownSize
    };

    bool EndsEarly() noexcept { return Fail(VEK_DATA_ERROR_ENDS_EARLY); }
    void Measure() noexcept;
    bool Fill(size_t count) noexcept;
    template <class T>
    bool ReadFromOther(T & value) noexcept
    {
        if (m_kind == Kind::OfUnknownSize)
        {
            // Only a block's result tells that the end is reached.
            BitsOf<T> bits;
            if (!m_stream.Read(&bits, sizeof bits, true))
                return EndsEarly();
            value = FromBits<T>(bits, m_reversed);
            return true;
        }
        if (m_kind != Kind::OfKnownSize || !Holds(1, sizeof(T)))
            return EndsEarly();
        Read(value);
        m_beyond -= sizeof(T);
        return true;
    }
    void Read(unsigned char & value) noexcept { value = m_stream.ReadByte(true); }
    void Read(char & value) noexcept { value = m_stream.ReadChar(true); }
    void Read(wchar_t & value) noexcept { value = m_stream.ReadWChar(true); }
    void Read(short & value) noexcept { value = m_stream.ReadInt16(true); }
    void Read(unsigned short & value) noexcept { value = m_stream.ReadWord(true); }
    void Read(int & value) noexcept { value = m_stream.ReadInt32(true); }
    void Read(unsigned int & value) noexcept { value = m_stream.ReadDWord(true); }
    void Read(float & value) noexcept { value = m_stream.ReadFloat(true); }
    void Read(double & value) noexcept { value = m_stream.ReadDouble(true); }

    static constexpr size_t FILE_BLOCK = 16 * 1024;

    IVekIOStream & m_stream;
    PoolSpares m_memory;
    Kind m_kind = Kind::OfKnownSize;
    int m_entry = -1;
    VEK_DATA_ERROR m_fault = VEK_DATA_ERROR_NONE;
    bool m_reversed;
    unsigned char const * m_begin = nullptr; // where the stream stands in memory
    unsigned char const * m_at = nullptr;
    unsigned char const * m_end = nullptr;
    size_t m_beyond = 0; // bytes behind those in memory
    unsigned char m_fileBlock[FILE_BLOCK];
};

} // namespace vek
