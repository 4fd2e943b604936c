// Typed data beside a reader that follows the format's description; what is read can be written again as it was.

#include "VekLib.h"

#include "fuzz/Target.h"
#include "support/DataKit.h"
#include "support/TestStream.h"

#include <algorithm>
#include <vector>

namespace fuzz
{

namespace
{

struct Entry
{
    int type;
    std::string bytes; // as a writer stores it, numbers in the system's order
    bool isWritable;   // again, by an operation of the writer
};

class PlainReader
{
public:
    PlainReader(Bytes input, bool reversed, bool knowsSize) : m_rest(input), m_reversed(reversed), m_knows(knowsSize) {}

    bool Read()
    {
        int const count = Number();
        if (m_failed || (count > 0 && m_knows && static_cast<std::size_t>(count) > m_rest.size() / 8))
            return false;
        for (int i = 0; i < count && !m_failed; ++i)
            ReadEntry();
        return !m_failed;
    }
    std::vector<Entry> const & Entries() const { return m_entries; }
    std::size_t Left() const { return m_rest.size(); }
    // A number that a processor may change where it is handed from function to function.
    bool HasSignallingNumber() const { return m_signalling; }

private:
    std::string Take(std::size_t size, std::size_t count)
    {
        m_failed = m_failed || count > m_rest.size() / size;
        if (m_failed)
            return {};
        std::string taken(m_rest.begin(), m_rest.begin() + static_cast<std::ptrdiff_t>(size * count));
        m_rest = m_rest.subspan(size * count);
        for (auto part = taken.begin(); m_reversed && part != taken.end(); part += static_cast<std::ptrdiff_t>(size))
            std::reverse(part, part + static_cast<std::ptrdiff_t>(size));
        return taken;
    }
    int Number()
    {
        int number = 0;
        std::string const bytes = Take(4, 1);
        std::memcpy(&number, bytes.data(), bytes.size());
        return number;
    }
    static std::string Stored(std::size_t number) { return {reinterpret_cast<char const *>(&number), 4}; }
    // A length and what it counts, up to the first zero if it is a text.
    std::string Counted(std::size_t size, bool isText)
    {
        int const count = Number();
        m_failed = m_failed || count < 0;
        std::string units = m_failed ? "" : Take(size, static_cast<std::size_t>(count));
        for (std::size_t at = 0; isText && at < units.size(); at += size)
            if (std::all_of(units.data() + at, units.data() + at + size, [](char byte) { return byte == 0; }))
                units.resize(at);
        return Stored(units.size() / size) + units;
    }
    std::string Numbers(std::size_t size, std::size_t count, bool isFloat)
    {
        std::string const taken = Take(size, count);
        // Exponent all ones, the fraction's first bit zero.
        for (std::size_t end = size; isFloat && end <= taken.size(); end += size)
            m_signalling =
                m_signalling || ((taken[end - 1] & 0x7F) == 0x7F &&
                                 (size == 4 ? (taken[end - 2] & 0xC0) == 0x80 : (taken[end - 2] & 0xF8) == 0xF0));
        return taken;
    }
    std::string Value(int type)
    {
        static constexpr std::uint8_t sizes[] = {0, 1, 1, 1, 2, 2, 2, 4, 4, 4, 8, 0, 0, 1, 4, 4, 4, 8, 4, 8};
        if (type == VEK_DT_STRINGA || type == VEK_DT_STRINGW)
            return Counted(type == VEK_DT_STRINGA ? 1 : 2, true);
        if (type == VEK_DT_BUFFER)
            return Counted(1, false);
        if (type <= 0 || type >= VEK_DT_GUID)
            return {};
        bool const isFloat =
            type == VEK_DT_FLOAT || type == VEK_DT_DOUBLE || type == VEK_DT_RGBA_FLOAT || type >= VEK_DT_VECTOR4D_FLOAT;
        std::string value = Numbers(sizes[type],
                                    type >= VEK_DT_MATRIX4X4_FLOAT ? 16
                                    : type > VEK_DT_STRINGW        ? 4
                                                                   : 1,
                                    isFloat);
        return type == VEK_DT_BOOL && value != std::string(1, '\0') ? "\1" : value;
    }
    void ReadEntry()
    {
        std::string const name = Counted(2, true);
        int const type = Number();
        std::string const value = Value(type);
        bool const isKnown = type > 0 && type <= VEK_DT_BUFFER;
        if (!m_failed)
            m_entries.push_back({type, name + Stored(static_cast<unsigned int>(type)) + value,
                                 isKnown && (type != VEK_DT_BUFFER || value.size() > 4)});
    }

    Bytes m_rest;
    bool m_reversed, m_knows, m_failed = false, m_signalling = false;
    std::vector<Entry> m_entries;
};

std::size_t FirstOfName(CVekTypedDataReader const & reader, wchar_t const * name)
{
    int first = 0;
    while (VekStrCompareW(reader.GetEntry(first)->GetName(), name, false) != 0)
        ++first;
    return static_cast<std::size_t>(first);
}

void CheckEntries(CVekTypedDataReader const & reader, PlainReader const & plain, bool compareBytes)
{
    std::vector<Entry> const & entries = plain.Entries();
    Check(reader.GetNumEntries() == static_cast<int>(entries.size()), "as many entries as were stored");
    CVekTypedDataWriter writer;
    std::string expected;
    int written = 0;
    for (int i = 0; i < reader.GetNumEntries(); ++i)
    {
        CVekTypedDataEntry const & entry = *reader.GetEntry(i);
        auto const & [type, bytes, isWritable] = entries[static_cast<std::size_t>(i)];
        Check(entry.Val().GetType() == type, "an entry's type");
        Check(CopyEntry(entry, writer) == isWritable, "what holds a value can be written");
        written += isWritable;
        expected += isWritable ? bytes : "";
        if (i < 100)
            Check(reader.FindEntry(entry.GetName()) ==
                      reader.GetEntry(static_cast<int>(FirstOfName(reader, entry.GetName()))),
                  "the first entry of a name is found");
    }
    expected.insert(0, reinterpret_cast<char const *>(&written), sizeof written);
    TestStream stream;
    Check(writer.Write(&stream), "a stream without limits takes all");
    Check(!compareBytes || stream.bytes == expected, "what was read is written");
    CVekMemoryIOStream memory;
    Check(memory.Open(nullptr, VEK_IO_WRITE, static_cast<unsigned int>(stream.bytes.size())), "it opens");
    Check(writer.Write(&memory) && memory.IsAtEnd() &&
              std::memcmp(memory.GetBuffer(), stream.bytes.data(), stream.bytes.size()) == 0,
          "every stream gets the same bytes");
}

struct EndlessStream final : TestStream
{
    unsigned int GetSize() const override { return 0xFFFFFFFF; }
};

} // namespace

void RunData(Bytes input)
{
    Reader reader(input);
    bool const reversed = reader.Below(2) != 0;
    Bytes const bytes = reader.Rest();
    if (bytes.empty())
        return;
    CVekMemoryIOStream memory;
    Check(memory.Open(nullptr, VEK_IO_READ, static_cast<unsigned int>(bytes.size())), "it opens");
    std::memcpy(memory.GetBuffer(), bytes.data(), bytes.size());
    memory.SetSystemByteOrder(VEK_BYTEORDER_LITTLE);
    TestStream host;
    EndlessStream endless;
    host.bytes.assign(bytes.begin(), bytes.end());
    endless.bytes = host.bytes;
    for (IVekIOStream * const stream : {static_cast<IVekIOStream *>(&memory), static_cast<IVekIOStream *>(&host),
                                        static_cast<IVekIOStream *>(&endless)})
    {
        VEK_BYTEORDER const system = stream->GetSystemByteOrder();
        VEK_BYTEORDER const other = system == VEK_BYTEORDER_BIG ? VEK_BYTEORDER_LITTLE : VEK_BYTEORDER_BIG;
        stream->SetStreamByteOrder(reversed ? other : system);
        PlainReader plain(bytes, reversed, stream != &endless);
        CVekTypedDataReader read;
        bool const isWhole = plain.Read();
        Check(read.Read(stream) == isWhole, "what is whole is read, and nothing else");
        Check(!isWhole || static_cast<std::size_t>(stream->GetPosition()) + plain.Left() == bytes.size(),
              "the stream is left behind what was read");
        CheckEntries(read, plain, stream != &host || !plain.HasSignallingNumber());
    }
}

} // namespace fuzz
