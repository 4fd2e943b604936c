#include "Peers.h"
#include "VekLib.h"

#include <msgpack.hpp>

#include <memory>

namespace bench
{

namespace
{

constexpr unsigned int BUFFER_BYTES = 1024;
constexpr wchar_t const * TEXT = L"a text of some length";
constexpr char const * NARROW_TEXT = "a text of some length";

using Packer = msgpack::packer<msgpack::sbuffer>;

/// Records of several named values, as the library writes them and as the peer does.
struct Kind
{
    char const * name;
    int records;
    int values; // of each
    void (*write)(CVekTypedDataWriter & writer, int record);
    void (*pack)(Packer & packer, int record);
};

void WriteSmall(CVekTypedDataWriter & writer, int record)
{
    writer.WriteInt32(L"number", record);
    writer.WriteFloat(L"weight", static_cast<float>(record));
    writer.WriteBool(L"visible", record % 8 == 0);
    writer.WriteDouble(L"distance", record);
}

void PackSmall(Packer & packer, int record)
{
    packer.pack("number").pack(record);
    packer.pack("weight").pack(static_cast<float>(record));
    packer.pack("visible").pack(record % 8 == 0);
    packer.pack("distance").pack(static_cast<double>(record));
}

unsigned char const * Bytes()
{
    static std::vector<unsigned char> const bytes(BUFFER_BYTES, 7);
    return bytes.data();
}

void WriteMixed(CVekTypedDataWriter & writer, int record)
{
    static auto const matrix = CVekMatrix4x4<float>::Identity();
    writer.WriteInt32(L"number", record);
    writer.WriteFloat(L"weight", static_cast<float>(record));
    writer.WriteWString(L"title", TEXT);
    writer.WriteString(L"comment", NARROW_TEXT);
    writer.WriteVector(L"position", CVekVector4D<double>(1, 2, 3, 4));
    writer.WriteColor(L"colour", CVekRGBA<unsigned char>(1, 2, 3, 4));
    writer.WriteMatrix(L"transform", matrix);
    writer.WriteBuffer(L"image", Bytes(), BUFFER_BYTES);
}

template <class T>
void PackArray(Packer & packer, T const * values, unsigned int count)
{
    packer.pack_array(count);
    for (unsigned int i = 0; i < count; ++i)
        packer.pack(values[i]);
}

void PackMixed(Packer & packer, int record)
{
    static auto const matrix = CVekMatrix4x4<float>::Identity();
    constexpr double POSITION[] = {1, 2, 3, 4};
    constexpr unsigned char COLOUR[] = {1, 2, 3, 4};
    packer.pack("number").pack(record);
    packer.pack("weight").pack(static_cast<float>(record));
    packer.pack("title").pack(NARROW_TEXT);
    packer.pack("comment").pack(NARROW_TEXT);
    packer.pack("position");
    PackArray(packer, POSITION, 4);
    packer.pack("colour");
    PackArray(packer, COLOUR, 4);
    packer.pack("transform");
    PackArray(packer, matrix.GetElements(), 16);
    packer.pack("image").pack_bin(BUFFER_BYTES);
    packer.pack_bin_body(reinterpret_cast<char const *>(Bytes()), BUFFER_BYTES);
}

constexpr Kind KINDS[] = {{"small records", 20000, 4, WriteSmall, PackSmall},
                          {"mixed records with 1 KB", 2000, 8, WriteMixed, PackMixed}};

/// The memory that records are written to and read from, made once for all rounds.
class Records
{
public:
    explicit Records(Kind const & kind) : m_kind(kind), m_stream(getVekLibKernel()->CreateMemoryIOStream())
    {
        m_stream->Open(L"", VEK_IO_WRITE | VEK_IO_BINARY, static_cast<unsigned int>(kind.records * 2048));
    }

    void Write()
    {
        CVekTypedDataWriter writer;
        for (int i = 0; i < m_kind.records; ++i)
            m_kind.write(writer, i);
        Rewind();
        writer.Write(m_stream.Get());
    }
    void Read()
    {
        CVekTypedDataReader reader;
        Rewind();
        reader.Read(m_stream.Get());
        m_values = reader.GetNumEntries();
    }
    void Pack()
    {
        m_packed.clear();
        Packer packer(m_packed);
        packer.pack_map(static_cast<unsigned int>(m_kind.records * m_kind.values));
        for (int i = 0; i < m_kind.records; ++i)
            m_kind.pack(packer, i);
    }
    void Unpack()
    {
        msgpack::object_handle const handle = msgpack::unpack(m_packed.data(), m_packed.size());
        m_unpacked = static_cast<int>(handle->via.map.size);
    }

    bool IsComplete() const
    {
        int const all = m_kind.records * m_kind.values;
        return m_values == all && m_unpacked == all;
    }

private:
    void Rewind() { m_stream->SetPosition(static_cast<int>(m_stream->GetSize()), true); }

    Kind const & m_kind;
    CVekRef<IVekMemoryIOStream> m_stream;
    msgpack::sbuffer m_packed;
    int m_values = 0;
    int m_unpacked = 0;
};

} // namespace

void AddData(Duels & duels)
{
    for (Kind const & kind : KINDS)
    {
        auto const records = std::make_shared<Records>(kind);
        records->Write(), records->Read(), records->Pack(), records->Unpack();
        duels.Expect(records->IsComplete(), kind.name);
        duels.Add(std::string("typed data, write ") + kind.name, "msgpack", 0, Repeat(1, [=] { records->Write(); }),
                  Repeat(1, [=] { records->Pack(); }));
        duels.Add(std::string("typed data, read ") + kind.name, "msgpack", 0, Repeat(1, [=] { records->Read(); }),
                  Repeat(1, [=] { records->Unpack(); }));
    }
}

} // namespace bench
