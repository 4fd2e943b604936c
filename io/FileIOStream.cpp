#include "VekIO.h"

#include "base/LiveObjects.h"
#include "base/QuietRuntime.h"
#include "io/ScanText.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t FILE_BUFFER_SIZE = 65536;

// Where the last failure stands beside the flags of Open, of which there are five bits.
constexpr unsigned int FLAGS_MASK = 0xFF;
constexpr int OPERATION_SHIFT = 8;
constexpr unsigned int OPERATION_MASK = 0xFF;
constexpr int CODE_SHIFT = 16;

// The mode text of the flags; the opening routine refuses what is no mode.
struct OpenMode
{
    wchar_t text[5] = {};

    explicit OpenMode(unsigned int flags)
    {
        wchar_t * end = text;
        if (flags & VEK_IO_READ)
            *end++ = L'r';
        if (flags & VEK_IO_WRITE)
            *end++ = L'w';
        if (flags & VEK_IO_BINARY)
            *end++ = L'b';
        if (flags & VEK_IO_TEXT)
            *end++ = L't';
    }
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

// On its way to refusing a place before the start, the runtime drops what it has read ahead and stands behind it.
bool MoveOrStay(FILE * file, long long offset, int origin)
{
    if (offset >= 0)
        return _fseeki64(file, offset, origin) == 0;
    long long const before = _ftelli64(file);
    if (_fseeki64(file, offset, origin) == 0)
        return true;
    _fseeki64(file, before, SEEK_SET);
    return false;
}

int PrintToFile(FILE * file, char const * format, va_list arguments)
{
    vek::QuietRuntime const quiet;
    return vfprintf_s(file, format, arguments);
}
int PrintToFile(FILE * file, wchar_t const * format, va_list arguments)
{
    vek::QuietRuntime const quiet;
    return vfwprintf_s(file, format, arguments);
}

template <class Result>
Result Clip(long long position, Result limit)
{
    return position > static_cast<long long>(limit) ? limit : static_cast<Result>(position);
}

VekFileError ErrorOf(unsigned int flags)
{
    VekFileError error;
    error.operation = static_cast<VEK_IO_OPERATION>(flags >> OPERATION_SHIFT & OPERATION_MASK);
    error.systemCode = flags >> CODE_SHIFT;
    return error;
}

// Keeps a failure beside the flags; always false.
bool Fail(unsigned int & flags, VEK_IO_OPERATION operation, bool askSystem)
{
    unsigned long const code = askSystem ? _doserrno : 0;
    // Flush meets again what a write has met: the system told the write alone.
    if (code == 0 && ErrorOf(flags).operation == operation && operation == VEK_IO_OPERATION_WRITE)
        return false;
    flags = (flags & FLAGS_MASK) | static_cast<unsigned int>(operation) << OPERATION_SHIFT |
            static_cast<unsigned int>(code) << CODE_SHIFT;
    return false;
}

bool Move(FILE * file, unsigned int & flags, long long offset, int origin)
{
    _doserrno = 0;
    return (file && MoveOrStay(file, offset, origin)) || Fail(flags, VEK_IO_OPERATION_MOVE, file != nullptr);
}

} // namespace

CVekFileIOStream::CVekFileIOStream()
{
    vek::CountBirth(vek::LiveClass::FileIOStream);
}

CVekFileIOStream::~CVekFileIOStream()
{
    vek::CountEnd(vek::LiveClass::FileIOStream);
    Close();
}

bool CVekFileIOStream::Open(wchar_t const * name, unsigned int flags, unsigned int)
{
    Close();
    if (!name)
    {
        VekLogOutput(0, L"CVekFileIOStream::Open --> Filename is NULL");
        return Fail(m_flags, VEK_IO_OPERATION_OPEN, false);
    }
    if (!*name)
    {
        VekLogOutput(0, L"CVekFileIOStream::Open --> Filename has no character");
        return Fail(m_flags, VEK_IO_OPERATION_OPEN, false);
    }
    m_flags = flags & FLAGS_MASK;
    OpenMode const mode(flags);
    wchar_t nothing[1];
    _doserrno = 0;
    CVekString<wchar_t> path(name);
    CVekString<wchar_t> fileName(VekGetFileNameFromPathW(name, nothing, 0));
    if (!path.IsEmpty())
        m_file = VekFileOpenW(name, mode.text);
    if (!m_file)
    {
        Fail(m_flags, VEK_IO_OPERATION_OPEN, true);
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
    bool const isOpen = m_file && IsWritable();
    return (isOpen && fflush(m_file) == 0 && !ferror(m_file)) || Fail(m_flags, VEK_IO_OPERATION_WRITE, isOpen);
}

VekFileError CVekFileIOStream::GetError() const
{
    return ErrorOf(m_flags);
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
    long long const offset = position;
    return Move(m_file, m_flags, fromEnd ? -offset : offset, fromEnd ? SEEK_END : SEEK_SET);
}

bool CVekFileIOStream::MovePosition(int offset)
{
    return Move(m_file, m_flags, offset, SEEK_CUR);
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
        return Fail(m_flags, VEK_IO_OPERATION_READ, false);
    if (count == 0)
        return true;
    if (!data || !IsReadable())
        return Fail(m_flags, VEK_IO_OPERATION_READ, false);
    long long const before = advance ? 0 : _ftelli64(m_file);
    bool const whole = fread(data, 1, count, m_file) == count;
    if (!whole)
        Fail(m_flags, VEK_IO_OPERATION_READ, ferror(m_file) != 0);
    if (!advance)
        _fseeki64(m_file, before, SEEK_SET);
    return whole;
}

bool CVekFileIOStream::Write(void const * data, unsigned int count, bool advance)
{
    if (!m_file)
    {
        VekLogOutput(0, L"CVekFileIOStream::Write --> File is not opened");
        return Fail(m_flags, VEK_IO_OPERATION_WRITE, false);
    }
    if (count == 0)
        return true;
    if (!data || !IsWritable())
        return Fail(m_flags, VEK_IO_OPERATION_WRITE, false);
    long long const before = advance ? 0 : _ftelli64(m_file);
    bool const whole = fwrite(data, 1, count, m_file) == count;
    if (!whole)
        Fail(m_flags, VEK_IO_OPERATION_WRITE, true);
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
    return CheckOpen() ? CVekTypedIOStream::ReadWChar(advance) : L'\0';
}

bool CVekFileIOStream::Take(void * value, size_t size, bool advance)
{
    if (!m_file || !IsReadable())
        return false;
    size_t const count = fread(value, 1, size, m_file);
    if (count != size)
        Fail(m_flags, VEK_IO_OPERATION_READ, ferror(m_file) != 0);
    if (!advance && count != 0)
        _fseeki64(m_file, -static_cast<long long>(count), SEEK_CUR);
    return count == size;
}

void CVekFileIOStream::Give(void const * value, size_t size, bool advance)
{
    if (!m_file || !IsWritable())
        return;
    size_t const count = fwrite(value, 1, size, m_file);
    if (count != size)
        Fail(m_flags, VEK_IO_OPERATION_WRITE, true);
    if (!advance)
        _fseeki64(m_file, -static_cast<long long>(count), SEEK_CUR);
}

template <class Char>
bool CVekFileIOStream::PrintText(Char const * format, va_list arguments)
{
    if (!m_file)
    {
        VekLogOutput(0, L"CVekFileIOStream::Printf --> File is not opened");
        return false;
    }
    if (format && IsWritable())
        static_cast<void>(PrintToFile(m_file, format, arguments));
    return true;
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

template VEK_API bool CVekFileIOStream::PrintText(wchar_t const *, va_list);
template VEK_API bool CVekFileIOStream::PrintText(char const *, va_list);
template VEK_API bool CVekFileIOStream::ScanText(wchar_t const *, va_list);
template VEK_API bool CVekFileIOStream::ScanText(char const *, va_list);

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
