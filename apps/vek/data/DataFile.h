#pragma once

#include "VekLib.h"

#include <string>

namespace tool
{

/// How the values of a file are stored.
struct DataOptions
{
    bool bigEndian = false;
};

/// Reads a typed data file into the reader. False after telling the user why; the entries before the fault are there.
/// Tells how many bytes follow behind the last entry.
bool LoadData(std::wstring const & path, DataOptions const & options, CVekTypedDataReader & reader,
              unsigned int & bytesBehind);

/// Writes entries so that either the whole new file stands at the path or nothing has changed there. False after
/// telling the user why.
bool SaveData(std::wstring const & path, DataOptions const & options, CVekTypedDataWriter & writer);

/// Whether the file holds just what the writer writes, a number of bytes at its end left out.
bool IsSameData(std::wstring const & path, DataOptions const & options, CVekTypedDataWriter & writer,
                unsigned int bytesBehind);

} // namespace tool
