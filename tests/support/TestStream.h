// A stream of a host's own: keeps what is written, gives what was put in, and fails from the n-th block transfer on.
#pragma once

#include "VekIO.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

class TestStream : public CVekRefCounted<IVekIOStream>
{
public:
    std::string bytes;
    unsigned int failFrom = UINT32_MAX; // counts Read and Write from 1
    unsigned int transfers = 0;
    VEK_BYTEORDER streamOrder = VEK_BYTEORDER_BIG;
    VEK_BYTEORDER systemOrder = VEK_BYTEORDER_BIG;

    bool Open(wchar_t const *, unsigned int, unsigned int) override { return true; }
    void Close() override {}
    unsigned int GetSize() const override { return static_cast<unsigned int>(bytes.size()); }
    bool IsReadable() const override { return true; }
    bool IsWritable() const override { return true; }
    void SetStreamByteOrder(VEK_BYTEORDER order) override { streamOrder = order; }
    void SetSystemByteOrder(VEK_BYTEORDER order) override { systemOrder = order; }
    VEK_BYTEORDER GetStreamByteOrder() override { return streamOrder; }
    VEK_BYTEORDER GetSystemByteOrder() override { return systemOrder; }
    int GetPosition() const override { return static_cast<int>(m_position); }
    bool SetPosition(int position, bool fromEnd) override
    {
        m_position = fromEnd ? bytes.size() - static_cast<std::size_t>(position) : static_cast<std::size_t>(position);
        return true;
    }
    bool MovePosition(int offset) override
    {
        m_position += static_cast<std::size_t>(offset);
        return true;
    }
    bool IsAtEnd() const override { return m_position == bytes.size(); }
    bool Read(void * data, unsigned int count, bool advance) override
    {
        if (++transfers >= failFrom || bytes.size() - m_position < count)
            return false;
        std::memcpy(data, bytes.data() + m_position, count);
        m_position += advance ? count : 0;
        return true;
    }
    char ReadChar(bool advance) override { return Get<char>(advance); }
    wchar_t ReadWChar(bool advance) override { return Get<wchar_t>(advance); }
    wchar_t ReadTChar(bool advance) override { return Get<wchar_t>(advance); }
    short ReadInt16(bool advance) override { return Get<short>(advance); }
    int ReadInt32(bool advance) override { return Get<int>(advance); }
    long long ReadInt64(bool advance) override { return Get<long long>(advance); }
    unsigned char ReadByte(bool advance) override { return Get<unsigned char>(advance); }
    unsigned short ReadWord(bool advance) override { return Get<unsigned short>(advance); }
    unsigned int ReadDWord(bool advance) override { return Get<unsigned int>(advance); }
    unsigned long long ReadQWord(bool advance) override { return Get<unsigned long long>(advance); }
    float ReadFloat(bool advance) override { return Get<float>(advance); }
    double ReadDouble(bool advance) override { return Get<double>(advance); }
    bool Write(void const * data, unsigned int count, bool advance) override
    {
        if (++transfers >= failFrom)
            return false;
        bytes.resize(m_position);
        bytes.append(static_cast<char const *>(data), count);
        m_position += advance ? count : 0;
        return true;
    }
    bool WriteChar(char value, bool advance) override { return Put(value, advance); }
    bool WriteWChar(wchar_t value, bool advance) override { return Put(value, advance); }
    bool WriteTChar(wchar_t value, bool advance) override { return Put(value, advance); }
    bool WriteInt16(short value, bool advance) override { return Put(value, advance); }
    bool WriteInt32(int value, bool advance) override { return Put(value, advance); }
    bool WriteInt64(int value, bool advance) override { return Put(static_cast<long long>(value), advance); }
    bool WriteByte(unsigned char value, bool advance) override { return Put(value, advance); }
    bool WriteWord(unsigned short value, bool advance) override { return Put(value, advance); }
    bool WriteDWord(unsigned int value, bool advance) override { return Put(value, advance); }
    bool WriteQWord(unsigned long long value, bool advance) override { return Put(value, advance); }
    bool WriteFloat(float value, bool advance) override { return Put(value, advance); }
    bool WriteDouble(double value, bool advance) override { return Put(value, advance); }
    bool Printf(wchar_t const *, ...) override { return false; }
    bool Printf(char const *, ...) override { return false; }
    bool Scanf(wchar_t const *, ...) override { return false; }
    bool Scanf(char const *, ...) override { return false; }

private:
    template <class T>
    T InOrder(T value) const
    {
        auto * const first = reinterpret_cast<char *>(&value);
        if (streamOrder != systemOrder)
            std::reverse(first, first + sizeof value);
        return value;
    }
    template <class T>
    T Get(bool advance)
    {
        T value{};
        Read(&value, sizeof value, advance);
        return InOrder(value);
    }
    template <class T>
    bool Put(T value, bool advance)
    {
        value = InOrder(value);
        return Write(&value, sizeof value, advance);
    }

    std::size_t m_position = 0;
};
