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
    bool Write(void const * data, unsigned int count, bool advance) override;

private:
    friend class CVekTypedIOStream<PayloadStream, IVekIOStream>;

    bool MoveTo(long long position);
    bool Take(void * value, std::size_t size, bool advance)
    {
        return Read(value, static_cast<unsigned int>(size), advance);
    }
    void Give(void const * value, std::size_t size, bool advance)
    {
        Write(value, static_cast<unsigned int>(size), advance);
    }
    template <class Char>
    bool PrintText(Char const *, va_list)
    {
        return false;
    }
    template <class Char>
    bool ScanText(Char const *, va_list)
    {
        return false;
    }

    std::vector<unsigned char> m_bytes;
    std::size_t m_position = 0;
    unsigned int m_flags = VEK_IO_READ | VEK_IO_WRITE | VEK_IO_BINARY;
    VEK_BYTEORDER m_systemByteOrder = VEK_BYTEORDER_LITTLE;
    VEK_BYTEORDER m_streamByteOrder = VEK_BYTEORDER_LITTLE;
    bool m_whole = true;
};

} // namespace packetfile
