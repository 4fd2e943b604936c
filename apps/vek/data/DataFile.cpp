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

} // namespace

bool LoadData(std::wstring const & path, DataOptions const & options, CVekTypedDataReader & reader,
              unsigned int & bytesBehind)
{
    CVekFileIOStream stream;
    SetOrder(stream, options);
    if (!stream.Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0))
    {
        Fail(path, WhyUnreadable(path, L"can't be read"));
        return false;
    }
    bool const read = reader.Read(&stream);
    auto const position = static_cast<unsigned int>(stream.GetPosition());
    bytesBehind = stream.GetSize() - position;
    if (!read)
        Fail(path, Format(L"is no typed data of this byte order, or damaged: entry %d, around byte %u, can't be read",
                          reader.GetNumEntries() + 1, position));
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
