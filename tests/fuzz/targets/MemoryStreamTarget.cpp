// The memory stream beside an array of bytes.

#include "VekLib.h"

#include "fuzz/targets/Targets.h"

#include <algorithm>
#include <vector>

namespace fuzz
{

namespace
{

class MemoryStream
{
public:
    explicit MemoryStream(Reader & reader) : m_reader(reader), m_bytes(reader.Below(100) + 1)
    {
        Check(m_stream.Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, static_cast<unsigned int>(m_bytes.size())),
              "it opens");
        std::memset(m_stream.GetBuffer(), 0, m_bytes.size());
    }

    void Step()
    {
        bool const advance = m_reader.Below(2) != 0;
        int const number = m_reader.Number();
        switch (m_reader.Below(9))
        {
        case 0:
            MoveTo(static_cast<long long>(m_position) + number, m_stream.MovePosition(number));
            break;
        case 1:
            MoveTo(static_cast<long long>(m_bytes.size()) - number, m_stream.SetPosition(number, true), 0x7FFFFFFF);
            break;
        case 2: // kept: only the end and beyond can be reached
            if (m_stream.SetPosition(number, false))
                m_position = number;
            Check(m_stream.GetPosition() == m_position &&
                      (m_position < number + 1 || number < 0 || m_position == number ||
                       number < static_cast<int>(m_bytes.size())),
                  "SetPosition");
            break;
        case 3:
            Write(advance);
            break;
        case 4:
            Read(advance);
            break;
        case 5:
            m_stream.SetStreamByteOrder(number % 2 ? VEK_BYTEORDER_BIG : VEK_BYTEORDER_LITTLE);
            break;
        case 6:
            Value<unsigned char>(advance, m_stream.ReadByte(advance));
            break;
        case 7:
            Value<unsigned int>(advance, m_stream.ReadDWord(advance));
            break;
        default:
            Put<unsigned short>(advance, static_cast<unsigned short>(number));
        }
        Check(m_stream.GetPosition() == m_position &&
                  std::memcmp(m_stream.GetBuffer(), m_bytes.data(), m_bytes.size()) == 0,
              "a stream holds what its model holds");
        Check(m_stream.IsAtEnd() == (m_position == static_cast<int>(m_bytes.size())), "IsAtEnd");
    }

private:
    void MoveTo(long long position, bool moved, long long largest = 0)
    {
        bool const allowed =
            position >= 0 && position <= std::max<long long>(largest, static_cast<long long>(m_bytes.size()));
        Check(moved == allowed, "a move");
        if (moved)
            m_position = static_cast<int>(position);
    }
    // Kept: a block that would reach the last byte is refused.
    bool Fits(std::size_t count) const { return static_cast<std::size_t>(m_position) + count < m_bytes.size(); }
    // Kept: without advance the way back fails, unless it leads beyond the end.
    void Write(bool advance)
    {
        std::string const data = m_reader.Text<char>(20);
        bool const fits = Fits(data.size());
        Check(m_stream.Write(data.data(), static_cast<unsigned int>(data.size()), advance) == fits, "Write");
        if (fits)
            std::copy(data.begin(), data.end(), m_bytes.begin() + m_position);
        m_position += fits ? static_cast<int>(data.size()) : 0;
    }
    void Read(bool advance)
    {
        std::vector<unsigned char> data(m_reader.Below(20));
        bool const fits = Fits(data.size());
        Check(m_stream.Read(data.data(), static_cast<unsigned int>(data.size()), advance) == (fits), "Read");
        if (fits)
            Check(std::equal(data.begin(), data.end(), m_bytes.begin() + m_position), "what is read");
        m_position += fits ? static_cast<int>(data.size()) : 0;
    }
    bool HasValue(std::size_t bytes) const
    {
        return m_position <= static_cast<int>(m_bytes.size()) - static_cast<int>(bytes);
    }
    bool IsReversed() { return m_stream.GetStreamByteOrder() != m_stream.GetSystemByteOrder(); }
    template <class T>
    void Value(bool advance, T value)
    {
        unsigned char bytes[sizeof(T)] = {};
        bool const there = HasValue(sizeof(T));
        if (there)
            std::copy_n(m_bytes.begin() + m_position, sizeof(T), bytes);
        if (IsReversed())
            std::reverse(bytes, bytes + sizeof(T));
        Check(std::memcmp(&value, bytes, sizeof(T)) == 0, "a value, or 0 behind the end");
        m_position += there && advance ? static_cast<int>(sizeof(T)) : 0;
    }
    template <class T>
    void Put(bool advance, T value)
    {
        Check(m_stream.WriteWord(value, advance), "kept: values are always written");
        unsigned char bytes[sizeof(T)];
        std::memcpy(bytes, &value, sizeof(T));
        if (IsReversed())
            std::reverse(bytes, bytes + sizeof(T));
        bool const there = HasValue(sizeof(T));
        if (there)
            std::copy_n(bytes, sizeof(T), m_bytes.begin() + m_position);
        m_position += there && advance ? static_cast<int>(sizeof(T)) : 0;
    }

    Reader & m_reader;
    CVekMemoryIOStream m_stream;
    std::vector<unsigned char> m_bytes;
    int m_position = 0;
};

} // namespace

void RunMemoryStream(Bytes input)
{
    Reader reader(input);
    while (!reader.AtEnd())
    {
        MemoryStream stream(reader);
        for (unsigned steps = reader.Byte(); steps > 0 && !reader.AtEnd(); --steps)
            stream.Step();
    }
}

} // namespace fuzz
