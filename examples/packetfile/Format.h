// The numbers of the packet file, which docs/packets.md describes.
#pragma once

#include <array>
#include <climits>
#include <cstddef>
#include <cstring>

namespace packetfile
{

constexpr unsigned int TypeOf(char const (&text)[5])
{
    unsigned int type = 0;
    for (int i = 0; i < 4; ++i)
        type |= static_cast<unsigned int>(static_cast<unsigned char>(text[i])) << 8 * i;
    return type;
}

constexpr unsigned int FILE_MAGIC = TypeOf("VKPF");
constexpr unsigned int FILE_VERSION = 1;
constexpr unsigned int TYPE_FOLDER = TypeOf("FLDR");
constexpr unsigned int TYPE_BLOB = TypeOf("BLOB");

constexpr unsigned int HEADER_SIZE = 16; // of the file and of each packet
constexpr unsigned int CHECKSUM_SIZE = 4;
constexpr unsigned int LARGEST_FILE = INT_MAX;

/// Four numbers, as the file's and the packets' headers are made of.
using Numbers = std::array<unsigned int, 4>;

inline unsigned int Number(unsigned char const * bytes)
{
    return bytes[0] | static_cast<unsigned int>(bytes[1]) << 8 | static_cast<unsigned int>(bytes[2]) << 16 |
           static_cast<unsigned int>(bytes[3]) << 24;
}

inline void StoreNumber(unsigned int number, unsigned char * bytes)
{
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(number >> 8 * i);
}

inline bool IsNameUnit(wchar_t unit)
{
    return unit != L'\0' && unit != L'/' && unit != L'\\';
}

/// CRC-32 (the reflected polynomial EDB88320) of bytes that come in pieces.
class Checksum
{
public:
    void Add(void const * data, std::size_t size)
    {
        auto const * const bytes = static_cast<unsigned char const *>(data);
        for (std::size_t i = 0; i < size; ++i)
            m_rest = m_rest >> 8 ^ TABLE[(m_rest ^ bytes[i]) & 0xFF];
    }
    unsigned int Value() const { return ~m_rest; }

private:
    static constexpr std::array<unsigned int, 256> TABLE = []
    {
        std::array<unsigned int, 256> table{};
        for (unsigned int i = 0; i < 256; ++i)
        {
            unsigned int rest = i;
            for (int bit = 0; bit < 8; ++bit)
                rest = rest >> 1 ^ (rest & 1 ? 0xEDB88320U : 0U);
            table[i] = rest;
        }
        return table;
    }();

    unsigned int m_rest = 0xFFFFFFFF;
};

} // namespace packetfile
