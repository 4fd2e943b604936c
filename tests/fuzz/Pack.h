// A corpus in one file: input after input, each behind its length in four bytes, the lowest first.
#pragma once

#include "support/Files.h"

#include <algorithm>
#include <vector>

namespace fuzz
{

inline std::vector<std::string> LoadPack(std::wstring const & path)
{
    std::vector<std::string> inputs;
    std::string const pack = FileBytes(path);
    for (std::size_t at = 0; at + 4 <= pack.size();)
    {
        std::size_t size = 0;
        for (std::size_t i = 4; i > 0; --i)
            size = size << 8 | static_cast<unsigned char>(pack[at + i - 1]);
        inputs.push_back(pack.substr(at + 4, size));
        at += 4 + inputs.back().size();
    }
    return inputs;
}

// The smallest input first, and each of them once, whatever the order they came in.
inline void SortInputs(std::vector<std::string> & inputs)
{
    std::sort(inputs.begin(), inputs.end(),
              [](auto const & a, auto const & b) { return a.size() != b.size() ? a.size() < b.size() : a < b; });
    inputs.erase(std::unique(inputs.begin(), inputs.end()), inputs.end());
}

inline void StorePack(std::wstring const & path, std::vector<std::string> inputs)
{
    SortInputs(inputs);
    std::string pack;
    for (std::string const & input : inputs)
    {
        for (std::size_t shift = 0; shift < 32; shift += 8)
            pack += static_cast<char>(input.size() >> shift);
        pack += input;
    }
    StoreBytes(path, pack);
}

} // namespace fuzz
