#pragma once

#include <VekLib.h>

#include <vector>

namespace packetfile
{

/// What packets read themselves from and write themselves to: exactly the bytes of one packet, in memory that grows
/// with what is written. No packet sees more of the file, whatever it asks for. Values are little-endian. Printf and
/// Scanf are not there and fail.
class PayloadStream final : public CVekTypedIOStream<PayloadStream, IVekIOStream>
{
public:
    /// Makes room for that many bytes and gives their place; null without memory. The position becomes 0.
    unsigned char * Resize(unsigned int size);
    unsigned char const * Data() const { return m_bytes.data(); }
    /// False once a write did not fit.
    bool IsWhole() const { return m_whole; }

    /// Empties the stream; neither name nor size is used.
    bool Open(wchar_t const * name, unsigned int flags, unsigned int size) override;
    void Close() override {}
    unsigned int GetSize() const override { return static_cast<unsigned int>(m_bytes.size()); }
    int GetPosition() const override { return static_cast<int>(m_position); }
    bool SetPosition(int position, bool fromEnd) override;
    bool MovePosition(int offset) override;
    bool IsAtEnd() const override { return m_position == m_bytes.size(); }
    bool Read(void * data, unsigned int count, bool advance) override;
    char ReadChar(bool advance) override { return static_cast<char>(ReadByte(advance)); }
    wchar_t ReadWChar(bool advance) override { return static_cast<wchar_t>(ReadWord(advance)); }
    bool Write(void const * data, unsigned int count, bool advance) override;
    bool Printf(wchar_t const *, ...) override { return false; }
    bool Printf(char const *, ...) override { return false; }
    bool Scanf(wchar_t const *, ...) override { return false; }
    bool Scanf(char const *, ...) override { return false; }

private:
    friend class CVekTypedIOStream<PayloadStream, IVekIOStream>;

    bool MoveTo(long long position);
    template <class Unsigned>
    void ReadFixed(Unsigned & value, bool advance)
    {
        unsigned char bytes[sizeof value] = {};
        Read(bytes, sizeof value, advance);
        for (std::size_t i = 0; i < sizeof value; ++i)
            value = static_cast<Unsigned>(value | static_cast<Unsigned>(bytes[i]) << 8 * i);
    }
    template <class Unsigned>
    void WriteFixed(Unsigned value, bool advance)
    {
        unsigned char bytes[sizeof value];
        for (std::size_t i = 0; i < sizeof value; ++i)
            bytes[i] = static_cast<unsigned char>(value >> 8 * i);
        Write(bytes, sizeof value, advance);
    }

    std::vector<unsigned char> m_bytes;
    std::size_t m_position = 0;
    unsigned int m_flags = VEK_IO_READ | VEK_IO_WRITE | VEK_IO_BINARY;
    VEK_BYTEORDER m_systemByteOrder = VEK_BYTEORDER_LITTLE;
    VEK_BYTEORDER m_streamByteOrder = VEK_BYTEORDER_LITTLE;
    bool m_whole = true;
};

} // namespace packetfile
