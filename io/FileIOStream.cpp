#include "VekIO.h"

#include "io/ByteOrder.h"
#include "io/ScanText.h"

#include <limits.h>
#include <stdio.h>
#include <string.h>

namespace
{

constexpr size_t FILE_BUFFER_SIZE = 65536;

// The mode text of the flags: 'r', 'w', 'b', 't' in this order. Empty for a mode that the runtime does not know, which
// must not even be asked for.
struct OpenMode
{
    wchar_t text[3] = {};

    explicit OpenMode(unsigned int flags)
    {
        bool const reads = (flags & VEK_IO_READ) != 0;
        bool const binary = (flags & VEK_IO_BINARY) != 0;
        bool const plainText = (flags & VEK_IO_TEXT) != 0;
        if (reads == ((flags & VEK_IO_WRITE) != 0) || (binary && plainText))
            return;
        text[0] = reads ? L'r' : L'w';
        if (binary || plainText)
            text[1] = binary ? L'b' : L't';
    }
    bool IsKnown() const { return text[0] != L'\0'; }
};

// Seeks to the end and back; 0 where the runtime can't tell.
long long EndPosition(FILE * file)
{
    long long const before = _ftelli64(file);
    _fseeki64(file, 0, SEEK_END);
    long long const end = _ftelli64(file);
    _fseeki64(file, before, SEEK_SET);
    return end < 0 ? 0 : end;
}

template <class Result>
Result Clip(long long position, Result limit)
{
    return position > static_cast<long long>(limit) ? limit : static_cast<Result>(position);
}

} // namespace

CVekFileIOStream::CVekFileIOStream() = default;

CVekFileIOStream::~CVekFileIOStream()
{
    Close();
}

bool CVekFileIOStream::Open(wchar_t const * name, unsigned int flags, unsigned int)
{
    Close();
    if (!name)
    {
        VekLogOutput(0, L"CVekFileIOStream::Open --> Filename is NULL");
        return false;
    }
    if (!*name)
    {
        VekLogOutput(0, L"CVekFileIOStream::Open --> Filename has no character");
        return false;
    }
    m_flags = flags;
    OpenMode const mode(flags);
    wchar_t nothing[1];
    CVekString<wchar_t> path(name);
    CVekString<wchar_t> fileName(VekGetFileNameFromPathW(name, nothing, 0));
    if (mode.IsKnown() && !path.IsEmpty())
        m_file = VekFileOpenW(name, mode.text);
    if (!m_file)
    {
        VekLogOutput(0, L"CVekFileIOStream::Open --> Failed to open file");
        return false;
    }
    static_cast<void>(setvbuf(m_file, nullptr, _IOFBF, FILE_BUFFER_SIZE));
    m_path.Swap(path);
    m_fileName.Swap(fileName);
    return true;
}

void CVekFileIOStream::Close()
{
    if (m_file)
        VekFileCloseW(m_file);
    m_file = nullptr;
}

bool CVekFileIOStream::Flush()
{
    return m_file && IsWritable() && fflush(m_file) == 0 && !ferror(m_file);
}

bool CVekFileIOStream::CheckOpen() const
{
    // Kept: every reading operation reports under the name of GetSize.
    if (!m_file)
        VekLogOutput(0, L"CVekFileIOStream::GetSize --> File is not opened");
    return m_file != nullptr;
}

unsigned int CVekFileIOStream::GetSize() const
{
    return CheckOpen() ? Clip(EndPosition(m_file), UINT_MAX) : 0;
}

int CVekFileIOStream::GetPosition() const
{
    return CheckOpen() ? Clip(_ftelli64(m_file), INT_MAX) : 0;
}

bool CVekFileIOStream::SetPosition(int position, bool fromEnd)
{
    if (!m_file)
        return false;
    long long const offset = position;
    return _fseeki64(m_file, fromEnd ? -offset : offset, fromEnd ? SEEK_END : SEEK_SET) == 0;
}

bool CVekFileIOStream::MovePosition(int offset)
{
    return m_file && _fseeki64(m_file, offset, SEEK_CUR) == 0;
}

bool CVekFileIOStream::IsAtEnd() const
{
    if (!m_file)
        return false;
    if (!IsReadable())
        return _ftelli64(m_file) == EndPosition(m_file);
    int const next = getc(m_file);
    if (next == EOF)
        return true;
    static_cast<void>(ungetc(next, m_file));
    return false;
}

bool CVekFileIOStream::Read(void * data, unsigned int count, bool advance)
{
    if (!CheckOpen())
        return false;
    if (count == 0)
        return true;
    if (!data || !IsReadable())
        return false;
    long long const before = advance ? 0 : _ftelli64(m_file);
    bool const whole = fread(data, 1, count, m_file) == count;
    if (!advance)
        _fseeki64(m_file, before, SEEK_SET);
    return whole;
}

bool CVekFileIOStream::Write(void const * data, unsigned int count, bool advance)
{
    if (!m_file)
    {
        VekLogOutput(0, L"CVekFileIOStream::Write --> File is not opened");
        return false;
    }
    if (count == 0)
        return true;
    if (!data || !IsWritable())
        return false;
    long long const before = advance ? 0 : _ftelli64(m_file);
    bool const whole = fwrite(data, 1, count, m_file) == count;
    if (!advance)
        _fseeki64(m_file, before, SEEK_SET);
    return whole;
}

char CVekFileIOStream::ReadChar(bool advance)
{
    if (!CheckOpen() || !IsReadable())
        return 0;
    int const character = getc(m_file);
    if (character == EOF)
        return 0;
    if (!advance)
        static_cast<void>(ungetc(character, m_file));
    return static_cast<char>(character);
}

wchar_t CVekFileIOStream::ReadWChar(bool advance)
{
    return CheckOpen() ? static_cast<wchar_t>(ReadWord(advance)) : L'\0';
}

template <class Unsigned>
void CVekFileIOStream::ReadValue(Unsigned & value, bool advance)
{
    if (!m_file || !IsReadable())
        return;
    Unsigned stored;
    size_t const count = fread(&stored, 1, sizeof(stored), m_file);
    if (!advance && count != 0)
        _fseeki64(m_file, -static_cast<long long>(count), SEEK_CUR);
    if (count != sizeof(stored))
        return;
    value = m_systemByteOrder != m_streamByteOrder ? vek::ReverseBytes(stored) : stored;
}

template <class Unsigned>
void CVekFileIOStream::WriteValue(Unsigned value, bool advance)
{
    if (!m_file || !IsWritable())
        return;
    if (m_systemByteOrder != m_streamByteOrder)
        value = vek::ReverseBytes(value);
    size_t const count = fwrite(&value, 1, sizeof(value), m_file);
    if (!advance)
        _fseeki64(m_file, -static_cast<long long>(count), SEEK_CUR);
}

void CVekFileIOStream::ReadFixed(unsigned char & value, bool advance)
{
    ReadValue(value, advance);
}
void CVekFileIOStream::ReadFixed(unsigned short & value, bool advance)
{
    ReadValue(value, advance);
}
void CVekFileIOStream::ReadFixed(unsigned int & value, bool advance)
{
    ReadValue(value, advance);
}
void CVekFileIOStream::ReadFixed(unsigned long long & value, bool advance)
{
    ReadValue(value, advance);
}
void CVekFileIOStream::WriteFixed(unsigned char value, bool advance)
{
    WriteValue(value, advance);
}
void CVekFileIOStream::WriteFixed(unsigned short value, bool advance)
{
    WriteValue(value, advance);
}
void CVekFileIOStream::WriteFixed(unsigned int value, bool advance)
{
    WriteValue(value, advance);
}
void CVekFileIOStream::WriteFixed(unsigned long long value, bool advance)
{
    WriteValue(value, advance);
}

bool CVekFileIOStream::CheckPrintf() const
{
    if (!m_file)
        VekLogOutput(0, L"CVekFileIOStream::Printf --> File is not opened");
    return m_file != nullptr;
}

template <class Char>
bool CVekFileIOStream::ScanText(Char const * format, va_list arguments)
{
    if (!m_file)
    {
        VekLogOutput(0, L"CVekFileIOStream::Scanf --> File is not opened");
        return false;
    }
    if (!format || !IsReadable())
        return true;
    return vek::ScanWithList(format, arguments, [&](auto... places) { vek::ScanFile(m_file, format, places...); });
}

bool CVekFileIOStream::Printf(wchar_t const * format, ...)
{
    if (!CheckPrintf())
        return false;
    va_list arguments;
    va_start(arguments, format);
    if (format && IsWritable())
        static_cast<void>(vfwprintf_s(m_file, format, arguments));
    va_end(arguments);
    return true;
}

bool CVekFileIOStream::Printf(char const * format, ...)
{
    if (!CheckPrintf())
        return false;
    va_list arguments;
    va_start(arguments, format);
    if (format && IsWritable())
        static_cast<void>(vfprintf_s(m_file, format, arguments));
    va_end(arguments);
    return true;
}

bool CVekFileIOStream::Scanf(wchar_t const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    bool const scanned = ScanText(format, arguments);
    va_end(arguments);
    return scanned;
}

bool CVekFileIOStream::Scanf(char const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    bool const scanned = ScanText(format, arguments);
    va_end(arguments);
    return scanned;
}

struct _iobuf * CVekFileIOStream::GetFileHandle()
{
    return m_file;
}

struct _iobuf * CVekFileIOStream::GetFileHandle() const
{
    return m_file;
}

CVekString<wchar_t> const & CVekFileIOStream::GetFilePath() const
{
    return m_path;
}

CVekString<wchar_t> const & CVekFileIOStream::GetFileName() const
{
    return m_fileName;
}
