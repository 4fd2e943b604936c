/// @file
/// Byte streams over files and memory.
///
/// @code
/// CVekFileIOStream file;
/// if (file.Open(L"mesh.bin", VEK_IO_READ | VEK_IO_BINARY, 0))
/// {
///     file.SetSystemByteOrder(VEK_BYTEORDER_LITTLE); // the file is big-endian
///     unsigned int const count = file.ReadDWord(true);
///     float const firstX = file.ReadFloat(true);
/// }
/// @endcode
#ifndef VEK_IO_H
#define VEK_IO_H

#include "VekCore.h"
#include "VekExport.h"
#include "VekText.h"

#include <stdarg.h>
#include <stddef.h>

VEK_HEADER_BEGIN

/// The order of the bytes of a value in a stream or in the system. A stream reverses the bytes of every value of more
/// than one byte when its two orders differ; both are VEK_BYTEORDER_BIG at the start, which leaves values as they are:
/// for big-endian values on this little-endian system, SetSystemByteOrder(VEK_BYTEORDER_LITTLE).
enum VEK_BYTEORDER : int
{
    VEK_BYTEORDER_BIG = 1,
    VEK_BYTEORDER_LITTLE = 2
};

/// Flags for IVekIOStream::Open, which may be combined. A file is opened for reading or for writing, not both; writing
/// begins a new file. Without VEK_IO_BINARY it is text; the system's runtime decides what a file with both is.
enum VEK_IO_FLAGS : unsigned int
{
    VEK_IO_BINARY = 1,
    VEK_IO_TEXT = 2,
    VEK_IO_READ = 8,
    VEK_IO_WRITE = 16
};

/// A stream of bytes. Every read and write takes an "advance" flag: whether the position moves past the data.
/// Offsets and sizes are bytes. Apart from the reference count a stream is for one thread at a time.
class IVekIOStream : public IVekObject
{
public:
    /// Opens the stream, after closing what it holds; false with a message when that fails. Files use the name, memory
    /// streams the size.
    virtual bool Open(wchar_t const * name, unsigned int flags, unsigned int size) = 0;
    /// Closes the stream; nothing when it is closed.
    virtual void Close() = 0;
    /// The size, at most 0xFFFFFFFF; 0 with a message for a file stream that is not open.
    virtual unsigned int GetSize() const = 0;
    /// True when the flags of the last Open hold VEK_IO_READ.
    virtual bool IsReadable() const = 0;
    /// True when the flags of the last Open hold VEK_IO_WRITE.
    virtual bool IsWritable() const = 0;
    /// The order of the values in the stream.
    virtual void SetStreamByteOrder(VEK_BYTEORDER order) = 0;
    /// The order of the values that are handed in and out.
    virtual void SetSystemByteOrder(VEK_BYTEORDER order) = 0;
    /// The order of the values in the stream.
    virtual VEK_BYTEORDER GetStreamByteOrder() = 0;
    /// The order of the values that are handed in and out.
    virtual VEK_BYTEORDER GetSystemByteOrder() = 0;
    /// The offset of the next access from the start, at most 0x7FFFFFFF; 0 with a message for a file stream that is not
    /// open.
    virtual int GetPosition() const = 0;
    /// Moves to an offset from the start, or that many bytes before the end; false when refused, with the position as
    /// it was. A memory stream takes offsets from the start only at its end and beyond. A closed stream refuses this,
    /// and what follows: a memory stream with a message, a file without.
    virtual bool SetPosition(int position, bool fromEnd) = 0;
    /// Moves by an offset; false when refused, with the position as it was.
    virtual bool MovePosition(int offset) = 0;
    /// True at the end of the data; false when closed.
    virtual bool IsAtEnd() const = 0;
    /// Reads a block; false unless all of it was read. A memory stream refuses a block that reaches its last byte, and
    /// stays behind the block even without advance. In files a look without advance is slow, but for ReadChar: the
    /// runtime reads anew what it had ahead.
    virtual bool Read(void * data, unsigned int count, bool advance) = 0;
    /// Reads one value; 0 when it is not there.
    virtual char ReadChar(bool advance) = 0;
    virtual wchar_t ReadWChar(bool advance) = 0;
    virtual wchar_t ReadTChar(bool advance) = 0;
    virtual short ReadInt16(bool advance) = 0;
    virtual int ReadInt32(bool advance) = 0;
    virtual long long ReadInt64(bool advance) = 0;
    virtual unsigned char ReadByte(bool advance) = 0;
    virtual unsigned short ReadWord(bool advance) = 0;
    virtual unsigned int ReadDWord(bool advance) = 0;
    virtual unsigned long long ReadQWord(bool advance) = 0;
    virtual float ReadFloat(bool advance) = 0;
    virtual double ReadDouble(bool advance) = 0;
    /// Writes a block; false unless all of it was written. A memory stream refuses a block that reaches its last byte,
    /// and stays behind the block even without advance.
    virtual bool Write(void const * data, unsigned int count, bool advance) = 0;
    /// Writes one value; true always. A value that does not fit into a memory stream is not written.
    virtual bool WriteChar(char value, bool advance) = 0;
    virtual bool WriteWChar(wchar_t value, bool advance) = 0;
    virtual bool WriteTChar(wchar_t value, bool advance) = 0;
    virtual bool WriteInt16(short value, bool advance) = 0;
    virtual bool WriteInt32(int value, bool advance) = 0;
    virtual bool WriteInt64(int value, bool advance) = 0; ///< As the others: 8 bytes, the sign extended.
    virtual bool WriteByte(unsigned char value, bool advance) = 0;
    virtual bool WriteWord(unsigned short value, bool advance) = 0;
    virtual bool WriteDWord(unsigned int value, bool advance) = 0;
    virtual bool WriteQWord(unsigned long long value, bool advance) = 0;
    virtual bool WriteFloat(float value, bool advance) = 0;
    virtual bool WriteDouble(double value, bool advance) = 0;
    /// Writes formatted text at the position and moves behind it; false when the stream is not open or the text does
    /// not fit. In a memory stream a terminator follows where there is room for it. A file that is open for reading
    /// takes nothing, and that is true.
    VEK_OVERLOADS2(virtual bool Printf(wchar_t const * format, ...) = 0,
                   virtual bool Printf(char const * format, ...) = 0)
    /// Scans formatted text: a file from its position, a memory stream from its start, without moving. Every "%s", "%c"
    /// and "%[" takes two arguments, the buffer and its size in characters. True when the stream is open, whatever was
    /// found, and for a file that is open for writing, which gives nothing; false, with nothing read, when the
    /// conversions need more than 64 arguments.
    VEK_OVERLOADS2(virtual bool Scanf(wchar_t const * format, ...) = 0,
                   virtual bool Scanf(char const * format, ...) = 0)

protected:
    ~IVekIOStream() = default;
};

/// A stream over a block of memory of fixed size.
class IVekMemoryIOStream : public IVekIOStream
{
public:
    /// The block, owned by the stream and valid until Close; null when closed.
    VEK_OVERLOADS2(virtual unsigned char * GetBuffer() = 0, virtual unsigned char const * GetBuffer() const = 0)

protected:
    ~IVekMemoryIOStream() = default;
};

/// A stream over a file.
class IVekFileIOStream : public IVekIOStream
{
public:
    /// The C runtime's file of the library's own runtime, owned by the stream; null when closed. Only for functions of
    /// that runtime: a host with another one must not use it.
    VEK_OVERLOADS2(virtual struct _iobuf * GetFileHandle() = 0, virtual struct _iobuf * GetFileHandle() const = 0)
    /// The name given to the last Open that succeeded, owned by the stream.
    virtual CVekString<wchar_t> const & GetFilePath() const = 0;
    /// The part of that name behind the last slash, backslash or colon.
    virtual CVekString<wchar_t> const & GetFileName() const = 0;

protected:
    ~IVekFileIOStream() = default;
};

/// The value with its bytes in reverse order.
constexpr unsigned char VekReverseBytes(unsigned char value) noexcept
{
    return value;
}
constexpr unsigned short VekReverseBytes(unsigned short value) noexcept
{
    return static_cast<unsigned short>(value << 8 | value >> 8);
}
constexpr unsigned int VekReverseBytes(unsigned int value) noexcept
{
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}
constexpr unsigned long long VekReverseBytes(unsigned long long value) noexcept
{
    return static_cast<unsigned long long>(VekReverseBytes(static_cast<unsigned int>(value))) << 32 |
           VekReverseBytes(static_cast<unsigned int>(value >> 32));
}

/// Most of a stream, for hosts too: `class Mine final : public CVekTypedIOStream<Mine, IVekIOStream>` writes the other
/// operations (Open, Close, sizes, positions and blocks) and gives its base, as a friend,
///
///     unsigned int m_flags;                                // of the last Open
///     VEK_BYTEORDER m_systemByteOrder, m_streamByteOrder;
///     bool Take(void * value, size_t size, bool advance);  // reads 1, 2, 4 or 8 bytes; false unless all were there
///     void Give(void const * value, size_t size, bool advance);
///     template <class Char> bool PrintText(Char const * format, va_list arguments);
///     template <class Char> bool ScanText(Char const * format, va_list arguments);
template <class Stream, class Interface>
class CVekTypedIOStream : public CVekRefCounted<Interface>
{
public:
    bool IsReadable() const override { return (Self().m_flags & VEK_IO_READ) != 0; }
    bool IsWritable() const override { return (Self().m_flags & VEK_IO_WRITE) != 0; }
    void SetStreamByteOrder(VEK_BYTEORDER order) override { Self().m_streamByteOrder = order; }
    void SetSystemByteOrder(VEK_BYTEORDER order) override { Self().m_systemByteOrder = order; }
    VEK_BYTEORDER GetStreamByteOrder() override { return Self().m_streamByteOrder; }
    VEK_BYTEORDER GetSystemByteOrder() override { return Self().m_systemByteOrder; }

    char ReadChar(bool advance) override { return static_cast<char>(Get<unsigned char>(advance)); }
    wchar_t ReadWChar(bool advance) override { return static_cast<wchar_t>(Get<unsigned short>(advance)); }
    wchar_t ReadTChar(bool advance) override { return this->ReadWChar(advance); }
    short ReadInt16(bool advance) override { return static_cast<short>(Get<unsigned short>(advance)); }
    int ReadInt32(bool advance) override { return static_cast<int>(Get<unsigned int>(advance)); }
    long long ReadInt64(bool advance) override { return static_cast<long long>(Get<unsigned long long>(advance)); }
    unsigned char ReadByte(bool advance) override { return Get<unsigned char>(advance); }
    unsigned short ReadWord(bool advance) override { return Get<unsigned short>(advance); }
    unsigned int ReadDWord(bool advance) override { return Get<unsigned int>(advance); }
    unsigned long long ReadQWord(bool advance) override { return Get<unsigned long long>(advance); }
    float ReadFloat(bool advance) override { return Bits<float>(Get<unsigned int>(advance)); }
    double ReadDouble(bool advance) override { return Bits<double>(Get<unsigned long long>(advance)); }

    bool WriteChar(char value, bool advance) override { return Put(static_cast<unsigned char>(value), advance); }
    bool WriteWChar(wchar_t value, bool advance) override { return Put(static_cast<unsigned short>(value), advance); }
    bool WriteTChar(wchar_t value, bool advance) override { return this->WriteWChar(value, advance); }
    bool WriteInt16(short value, bool advance) override { return Put(static_cast<unsigned short>(value), advance); }
    bool WriteInt32(int value, bool advance) override { return Put(static_cast<unsigned int>(value), advance); }
    // Kept: the argument has 32 bits, the written value 64 with the sign extended; formats are built on it.
    bool WriteInt64(int value, bool advance) override { return Put(static_cast<unsigned long long>(value), advance); }
    bool WriteByte(unsigned char value, bool advance) override { return Put(value, advance); }
    bool WriteWord(unsigned short value, bool advance) override { return Put(value, advance); }
    bool WriteDWord(unsigned int value, bool advance) override { return Put(value, advance); }
    bool WriteQWord(unsigned long long value, bool advance) override { return Put(value, advance); }
    bool WriteFloat(float value, bool advance) override { return Put(Bits<unsigned int>(value), advance); }
    bool WriteDouble(double value, bool advance) override { return Put(Bits<unsigned long long>(value), advance); }

    bool Printf(wchar_t const * format, ...) override
    {
        va_list arguments;
        va_start(arguments, format);
        bool const printed = Self().PrintText(format, arguments);
        va_end(arguments);
        return printed;
    }
    bool Printf(char const * format, ...) override
    {
        va_list arguments;
        va_start(arguments, format);
        bool const printed = Self().PrintText(format, arguments);
        va_end(arguments);
        return printed;
    }
    bool Scanf(wchar_t const * format, ...) override
    {
        va_list arguments;
        va_start(arguments, format);
        bool const scanned = Self().ScanText(format, arguments);
        va_end(arguments);
        return scanned;
    }
    bool Scanf(char const * format, ...) override
    {
        va_list arguments;
        va_start(arguments, format);
        bool const scanned = Self().ScanText(format, arguments);
        va_end(arguments);
        return scanned;
    }

private:
    Stream & Self() { return static_cast<Stream &>(*this); }
    Stream const & Self() const { return static_cast<Stream const &>(*this); }
    template <class Unsigned>
    Unsigned Ordered(Unsigned value) const
    {
        return Self().m_systemByteOrder != Self().m_streamByteOrder ? VekReverseBytes(value) : value;
    }
    template <class Unsigned>
    Unsigned Get(bool advance)
    {
        Unsigned value = 0;
        return Self().Take(&value, sizeof(value), advance) ? Ordered(value) : Unsigned{0};
    }
    template <class Unsigned>
    bool Put(Unsigned value, bool advance)
    {
        value = Ordered(value);
        Self().Give(&value, sizeof(value), advance);
        return true;
    }
    template <class To, class From>
    static To Bits(From from)
    {
        static_assert(sizeof(To) == sizeof(From), "a value and its bits have one size");
        To to{};
        for (size_t i = 0; i < sizeof(to); ++i)
            reinterpret_cast<unsigned char *>(&to)[i] = reinterpret_cast<unsigned char const *>(&from)[i];
        return to;
    }
};

/// A stream over a block of memory that Open allocates, with arbitrary contents, and that never grows.
class VEK_API CVekMemoryIOStream final : public CVekTypedIOStream<CVekMemoryIOStream, IVekMemoryIOStream>
{
public:
    CVekMemoryIOStream();
    CVekMemoryIOStream(CVekMemoryIOStream const &) = delete;
    CVekMemoryIOStream & operator=(CVekMemoryIOStream const &) = delete;
    ~CVekMemoryIOStream() override;

    bool Open(wchar_t const * name, unsigned int flags, unsigned int size) override;
    void Close() override;
    unsigned int GetSize() const override;
    int GetPosition() const override;
    bool SetPosition(int position, bool fromEnd) override;
    bool MovePosition(int offset) override;
    bool IsAtEnd() const override;
    bool Read(void * data, unsigned int count, bool advance) override;
    char ReadChar(bool advance) override;
    wchar_t ReadWChar(bool advance) override;
    bool Write(void const * data, unsigned int count, bool advance) override;
    unsigned char * GetBuffer() override;
    unsigned char const * GetBuffer() const override;

private:
    friend class CVekTypedIOStream<CVekMemoryIOStream, IVekMemoryIOStream>;

    /// Both transfer what lies wholly inside the block; anything else touches nothing. Here for speed: compilers make
    /// one move of the loop.
    bool Take(void * value, size_t size, bool advance)
    {
        int const before = m_position;
        if (!m_block || before > m_size - static_cast<int>(size))
            return false;
        unsigned char const * const place = m_block + before;
        for (size_t i = 0; i < size; ++i)
            static_cast<unsigned char *>(value)[i] = place[i];
        if (advance)
            m_position = before + static_cast<int>(size);
        return true;
    }
    void Give(void const * value, size_t size, bool advance)
    {
        int const before = m_position;
        if (!m_block || before > m_size - static_cast<int>(size))
            return;
        unsigned char * const place = m_block + before;
        for (size_t i = 0; i < size; ++i)
            place[i] = static_cast<unsigned char const *>(value)[i];
        if (advance)
            m_position = before + static_cast<int>(size);
    }
    bool TakesBlock(unsigned int count) const;
    void PassBlock(unsigned int count, bool advance);
    template <class Char>
    bool PrintText(Char const * format, va_list arguments);
    template <class Char>
    bool ScanText(Char const * format, va_list arguments);

    int m_size = 0;
    int m_position = 0;
    unsigned char * m_block = nullptr;
    unsigned int m_flags = 0;
    VEK_BYTEORDER m_systemByteOrder = VEK_BYTEORDER_BIG;
    VEK_BYTEORDER m_streamByteOrder = VEK_BYTEORDER_BIG;
};

/// What a file stream was doing when it failed.
enum VEK_IO_OPERATION : unsigned int
{
    VEK_IO_OPERATION_NONE = 0, ///< Nothing has failed since the last Open.
    VEK_IO_OPERATION_OPEN = 1,
    VEK_IO_OPERATION_READ = 2,
    VEK_IO_OPERATION_WRITE = 3, ///< Flush too: it is then that most writes reach the system.
    VEK_IO_OPERATION_MOVE = 4
};

/// What CVekFileIOStream::GetError tells.
struct VekFileError
{
    /// What was tried.
    VEK_IO_OPERATION operation = VEK_IO_OPERATION_NONE;
    /// The system's number, as GetLastError gives it; 0 when the system had nothing against it: the file's end, a place
    /// before its start, a stream that is not open, or not for that.
    unsigned int systemCode = 0;
};

/// A stream over a file that is opened for reading or for writing, not both.
class VEK_API CVekFileIOStream final : public CVekTypedIOStream<CVekFileIOStream, IVekFileIOStream>
{
public:
    CVekFileIOStream();
    CVekFileIOStream(CVekFileIOStream const &) = delete;
    CVekFileIOStream & operator=(CVekFileIOStream const &) = delete;
    ~CVekFileIOStream() override;

    bool Open(wchar_t const * name, unsigned int flags, unsigned int size) override;
    void Close() override;
    unsigned int GetSize() const override;
    int GetPosition() const override;
    bool SetPosition(int position, bool fromEnd) override;
    bool MovePosition(int offset) override;
    bool IsAtEnd() const override;
    bool Read(void * data, unsigned int count, bool advance) override;
    char ReadChar(bool advance) override;
    wchar_t ReadWChar(bool advance) override;
    bool Write(void const * data, unsigned int count, bool advance) override;
    struct _iobuf * GetFileHandle() override;
    struct _iobuf * GetFileHandle() const override;
    CVekString<wchar_t> const & GetFilePath() const override;
    CVekString<wchar_t> const & GetFileName() const override;

    /// True when the flags of the last Open hold VEK_IO_BINARY and not VEK_IO_TEXT.
    bool IsBinary() const { return (m_flags & (VEK_IO_BINARY | VEK_IO_TEXT)) == VEK_IO_BINARY; }
    /// Hands what is still buffered to the system; false when anything written since Open was lost, or nothing is open.
    /// Close can't tell, so that a writer who must know asks here first.
    bool Flush();
    /// The last failure since the last Open, that Open included; operations that succeed don't take it away. The
    /// formatted operations are not told of, their writes by Flush.
    VekFileError GetError() const;

private:
    friend class CVekTypedIOStream<CVekFileIOStream, IVekFileIOStream>;

    /// Reads a value; false when the file does not hold all of it.
    bool Take(void * value, size_t size, bool advance);
    /// Writes a value; Flush tells whether that worked.
    void Give(void const * value, size_t size, bool advance);
    template <class Char>
    bool PrintText(Char const * format, va_list arguments);
    template <class Char>
    bool ScanText(Char const * format, va_list arguments);
    bool CheckOpen() const;

    struct _iobuf * m_file = nullptr;
    unsigned int m_flags = 0; // those of Open in the low byte, the last failure above
    VEK_BYTEORDER m_systemByteOrder = VEK_BYTEORDER_BIG;
    VEK_BYTEORDER m_streamByteOrder = VEK_BYTEORDER_BIG;
    CVekString<wchar_t> m_path;
    CVekString<wchar_t> m_fileName;
};

VEK_HEADER_END

#endif
