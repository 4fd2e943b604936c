// Whole files of tests.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// A file in the test program's own temporary folder.
inline std::wstring TemporaryPath(std::wstring const & name)
{
    wchar_t const * const folder = _wgetenv(L"VEK_TEST_TMP");
    return folder ? folder + (L"/" + name) : name;
}

// Empty when it can't be read.
inline std::string FileBytes(std::wstring const & path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void StoreBytes(std::wstring const & path, std::string const & bytes)
{
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

inline std::wstring WriteFileBytes(wchar_t const * name, std::string const & bytes)
{
    StoreBytes(TemporaryPath(name), bytes);
    return TemporaryPath(name);
}
