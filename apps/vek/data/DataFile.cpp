#include "data/DataFile.h"

#include "Console.h"
#include "FileErrors.h"
#include "NewFile.h"

#include <cstring>
#include <vector>

namespace tool
{

namespace
{

void SetOrder(IVekIOStream & stream, DataOptions const & options)
{
    // Two orders that differ reverse what a PC has in little-endian order.
    stream.SetSystemByteOrder(VEK_BYTEORDER_LITTLE);
    stream.SetStreamByteOrder(options.bigEndian ? VEK_BYTEORDER_BIG : VEK_BYTEORDER_LITTLE);
}

std::wstring WhyDamaged(VekDataError const & error)
{
    wchar_t const * const why = error.code == VEK_DATA_ERROR_ENDS_EARLY ? L"ends early"
                                : error.code == VEK_DATA_ERROR_LENGTH   ? L"has a length that can't be"
                                                                        : L"is too large for memory";
    std::wstring const entry = error.entry < 0 ? L"the number of entries" : Format(L"entry %d", error.entry + 1);
    return L"is no typed data of this byte order, or damaged: " + entry + Format(L", at byte %u, ", error.offset) + why;
}

} // namespace

bool LoadData(std::wstring const & path, DataOptions const & options, CVekTypedDataReader & reader,
              unsigned int & bytesBehind)
{
    CVekFileIOStream stream;
    SetOrder(stream, options);
    if (!stream.Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0))
    {
        unsigned int const code = stream.GetError().systemCode;
        Fail(path, WhyUnreadable(path, code ? (L"can't be read: " + ErrorText(code)).c_str() : L"can't be read"));
        return false;
    }
    VekDataError error;
    bool const read = reader.Read(&stream, error);
    auto const position = static_cast<unsigned int>(stream.GetPosition());
    bytesBehind = stream.GetSize() - position;
    if (!read)
        Fail(path, WhyDamaged(error));
    return read;
}

bool SaveData(std::wstring const & path, DataOptions const & options, CVekTypedDataWriter & writer)
{
    if (!IsWritable(path))
        return false;
    NewFile file(path);
    CVekFileIOStream stream;
    SetOrder(stream, options);
    bool const written =
        stream.Open(file.Path().c_str(), VEK_IO_WRITE | VEK_IO_BINARY, 0) && writer.Write(&stream) && stream.Flush();
    stream.Close();
    if (written)
        return file.Place();
    Fail(path, WhyUnwritable(file.Path()));
    return false;
}

bool IsSameData(std::wstring const & path, DataOptions const & options, CVekTypedDataWriter & writer,
                unsigned int bytesBehind)
{
    CVekFileIOStream file;
    CVekMemoryIOStream memory;
    SetOrder(memory, options);
    if (!file.Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0))
        return false;
    unsigned int const size = file.GetSize() - bytesBehind;
    // One byte more tells a writer that writes more.
    std::vector<unsigned char> bytes(size);
    return memory.Open(nullptr, VEK_IO_WRITE, size + 1) && writer.Write(&memory) &&
           memory.GetPosition() == static_cast<int>(size) && file.Read(bytes.data(), size, true) &&
           std::memcmp(bytes.data(), memory.GetBuffer(), size) == 0;
}

} // namespace tool
