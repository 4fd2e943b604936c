// Packet files and changes to their trees: what is accepted is written again byte for byte, and a changed tree comes
// back from its file as it was.

#include "packetfile/Blob.h"
#include "packetfile/Format.h"
#include "packetfile/Manager.h"

#include "fuzz/Target.h"
#include "support/TestStream.h"

#include <vector>

namespace fuzz
{

namespace
{

using namespace packetfile;

constexpr unsigned int TYPE_NUMBERS = TypeOf("NUMB");

// A packet of a host's own, which asks the stream for a number of values that the file tells.
class Numbered final : public NamedPacket<CVekResourceFilePacket>
{
public:
    using NamedPacket::NamedPacket;

    bool Read(IVekIOStream * stream) override
    {
        unsigned int const count = stream->ReadByte(true);
        for (unsigned int i = 0; i < count; ++i)
            m_values.push_back(stream->ReadQWord(true));
        // What is behind the end reads as zeros.
        return stream->GetSize() == 1 + 8 * count;
    }
    bool Write(IVekIOStream * stream) override
    {
        bool written = stream->WriteByte(static_cast<unsigned char>(m_values.size()), true);
        for (unsigned long long const value : m_values)
            written = stream->WriteQWord(value, true) && written;
        return written;
    }

private:
    std::vector<unsigned long long> m_values;
};

class NumberedHandler final : public CVekRefCounted<IVekResourceFilePacketHandler>
{
public:
    CVekResourceFilePacket * CreatePacket(unsigned int type, wchar_t const * name,
                                          IVekResourceFileManager * manager) override
    {
        return new Numbered(type, name, manager);
    }
};

struct Tree
{
    Tree()
    {
        CVekRef<NumberedHandler> const handler(new NumberedHandler);
        Check(manager.RegisterHandler(TYPE_NUMBERS, handler.Get()), "RegisterHandler");
    }
    std::string Written()
    {
        TestStream stream;
        Check(manager.WriteTree(&stream), "a tree is written");
        return stream.bytes;
    }
    bool Read(std::string const & bytes)
    {
        TestStream stream;
        stream.bytes = bytes;
        return manager.ReadTree(&stream);
    }
    Manager manager;
};

// With its size and checksum right, as changed bytes seldom have them.
std::string Sealed(std::string file)
{
    unsigned char number[4];
    StoreNumber(static_cast<unsigned int>(file.size() + sizeof number), number);
    if (file.size() >= 12)
        file.replace(8, sizeof number, reinterpret_cast<char const *>(number), sizeof number);
    Checksum checksum;
    checksum.Add(file.data(), file.size());
    StoreNumber(checksum.Value(), number);
    return file.append(reinterpret_cast<char const *>(number), sizeof number);
}

// One more child, or one less, of a packet that is found by going down a few steps.
void Change(Tree & tree, Reader & reader)
{
    CVekResourceFilePacket * at = tree.manager.GetRoot();
    for (unsigned int steps = reader.Below(4); steps > 0 && at->GetNumChildren() > 0; --steps)
        at = at->GetChild(static_cast<int>(reader.Byte()) % at->GetNumChildren());
    int const count = at->GetNumChildren(), index = reader.Number();
    bool const isInside = index >= 0 && index < count;
    if (reader.Below(3) == 0)
    {
        Check(at->RemoveChild(index) == isInside && at->GetNumChildren() == count - isInside, "RemoveChild");
        return;
    }
    std::wstring const name = reader.Text<wchar_t>(4);
    bool const isName = name.find_first_of(L"/\\") == name.npos;
    CVekRef<CVekResourceFilePacket> const packet(
        tree.manager.CreatePacket(reader.Below(2) ? TYPE_FOLDER : TYPE_BLOB, name.c_str()));
    Check((packet != nullptr) == isName, "a packet is created when its name can be");
    if (!packet)
        return;
    // Kept: the index that was asked for is what is returned.
    Check(at->AddChild(packet.Get(), index) == (index == -1 ? count : index), "AddChild");
    Check(at->GetChild(isInside ? index : count) == packet.Get() && packet->GetParent() == at, "a child's place");
    Check(!name.empty() || tree.manager.FindPacket(L"//") == tree.manager.GetRoot(), "an empty path");
}

} // namespace

void RunPackets(Bytes input)
{
    Reader reader(input);
    bool const seals = reader.Below(4) != 0;
    unsigned int const changes = reader.Below(5);
    std::uint8_t ways[40] = {};
    for (std::uint8_t & way : ways)
        way = static_cast<std::uint8_t>(reader.Byte());
    Bytes const rest = reader.Rest();
    std::string file(rest.begin(), rest.end());
    file = seals ? Sealed(file) : file;

    Tree tree;
    std::string const before = tree.Written();
    bool const isRead = tree.Read(file);
    Check(tree.Written() == (isRead ? file : before), "a file comes back byte for byte, or nothing has changed");
    Check(isRead || *tree.manager.GetLastErrorText(), "what is refused is told");
    Reader way(ways);
    for (unsigned int i = 0; i < changes; ++i)
        Change(tree, way);
    Tree again;
    std::string const changed = tree.Written();
    Check(again.Read(changed) && again.Written() == changed, "a changed tree comes back");
}

} // namespace fuzz
