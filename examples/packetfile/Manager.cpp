#include "Manager.h"

#include "Blob.h"
#include "Folder.h"
#include "TreeReader.h"
#include "TreeWriter.h"

#include <climits>
#include <cstdarg>
#include <cwchar>
#include <new>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace packetfile
{

namespace
{

template <class Packet>
class HandlerOf final : public CVekRefCounted<IVekResourceFilePacketHandler>
{
public:
    CVekResourceFilePacket * CreatePacket(unsigned int type, wchar_t const * name,
                                          IVekResourceFileManager * manager) override
    {
        try
        {
            return new Packet(type, name, manager);
        }
        catch (std::bad_alloc const &)
        {
            return nullptr;
        }
    }
};

/// A file that is gone at the end of the scope unless it took another one's place.
class FileBeside
{
public:
    explicit FileBeside(std::wstring const & target)
        : m_target(target), m_path(target + L"." + std::to_wstring(GetCurrentProcessId()) + L".new")
    {
    }
    ~FileBeside()
    {
        if (!m_placed)
            DeleteFileW(m_path.c_str());
    }
    FileBeside(FileBeside const &) = delete;
    FileBeside & operator=(FileBeside const &) = delete;

    wchar_t const * Path() const { return m_path.c_str(); }
    bool Place()
    {
        m_placed = MoveFileExW(Path(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
        return m_placed;
    }

private:
    std::wstring const & m_target;
    std::wstring m_path;
    bool m_placed = false;
};

/// The part of a path up to the next separator, which is taken off with it.
std::wstring_view TakeName(std::wstring_view & path)
{
    std::size_t const end = path.find_first_of(L"/\\");
    std::wstring_view const name = path.substr(0, end);
    path.remove_prefix(end == std::wstring_view::npos ? path.size() : end + 1);
    return name;
}

CVekResourceFilePacket * FindChild(CVekResourceFilePacket & packet, std::wstring_view name)
{
    for (int i = 0; i < packet.GetNumChildren(); ++i)
    {
        Named const * const child = Named::Of(packet.GetChild(i));
        if (child && name == std::wstring_view(child->Name(), child->NameLength()))
            return packet.GetChild(i);
    }
    return nullptr;
}

bool KnowsSize(IVekIOStream const & stream)
{
    unsigned int const size = stream.GetSize();
    return size != 0 && size != UINT_MAX;
}

/// Copies the rest of a stream byte by byte, as only a block's result tells the end; false without memory.
bool CopyToEnd(IVekIOStream & from, PayloadStream & to)
{
    unsigned char byte = 0;
    while (from.Read(&byte, 1, true))
        if (!to.Write(&byte, 1, true))
            return false;
    return to.SetPosition(0, false);
}

} // namespace

Manager::Manager()
{
    m_handlers[TYPE_FOLDER].Reset(new HandlerOf<Folder>);
    m_handlers[TYPE_BLOB].Reset(new HandlerOf<Blob>);
}

Manager::~Manager() = default;

template <class Work>
bool Manager::Guarded(Work work)
{
    try
    {
        return work();
    }
    catch (std::bad_alloc const &)
    {
        return Fail(L"is too large for memory");
    }
}

bool Manager::Open(wchar_t const * path)
{
    return Guarded(
        [&]
        {
            CVekFileIOStream stream;
            std::wstring newPath = path ? path : L"";
            if (!stream.Open(path, VEK_IO_READ | VEK_IO_BINARY, 0))
                return Fail(L"can't be opened");
            if (!ReadTree(&stream))
                return false;
            m_path.swap(newPath);
            m_modified = false;
            return true;
        });
}

bool Manager::Save(wchar_t const * path)
{
    return Guarded(
        [&]
        {
            std::wstring target = path ? path : m_path;
            if (target.empty())
                return Fail(L"has no name");
            if (!SaveBeside(target))
                return false;
            m_path.swap(target);
            m_modified = false;
            return true;
        });
}

bool Manager::SaveBeside(std::wstring const & target)
{
    FileBeside file(target);
    CVekFileIOStream stream;
    if (!stream.Open(file.Path(), VEK_IO_WRITE | VEK_IO_BINARY, 0))
        return Fail(L"can't be written");
    if (!WriteTree(&stream))
        return stream.Close(), false;
    bool const isWhole = stream.Flush();
    stream.Close();
    if (!isWhole)
        return Fail(L"can't be written whole; is the disk full?");
    return file.Place() || Fail(L"can't be replaced");
}

bool Manager::ReadTree(IVekIOStream * stream)
{
    bool const wasModified = m_modified;
    bool const isDone = Guarded(
        [&]
        {
            if (!stream)
                return Fail(L"there is no stream");
            PayloadStream copy;
            bool const isCopied = !KnowsSize(*stream);
            if (isCopied && !CopyToEnd(*stream, copy))
                return Fail(L"is too large for memory");
            IVekIOStream & source = isCopied ? copy : *stream;
            CVekRef<CVekResourceFilePacket> root = TreeReader(*this, source).Read();
            if (!root)
                return false;
            m_root = std::move(root);
            return true;
        });
    m_modified = isDone || wasModified;
    return isDone;
}

bool Manager::WriteTree(IVekIOStream * stream)
{
    return Guarded(
        [&]
        {
            CVekResourceFilePacket * const root = GetRoot();
            if (!stream || !root)
                return Fail(stream ? L"is too large for memory" : L"there is no stream");
            return TreeWriter(*this, *stream).Write(*root);
        });
}

void Manager::Close()
{
    m_root.Reset();
    m_path.clear();
    m_modified = false;
}

CVekResourceFilePacket * Manager::GetRoot()
{
    Guarded(
        [this]
        {
            if (!m_root)
                m_root.Reset(new Folder(TYPE_FOLDER, L"", this));
            return true;
        });
    return m_root.Get();
}

CVekResourceFilePacket * Manager::FindPacket(wchar_t const * path)
{
    CVekResourceFilePacket * packet = GetRoot();
    std::wstring_view rest = path ? path : L"";
    while (packet && !rest.empty())
    {
        std::wstring_view const name = TakeName(rest);
        if (!name.empty())
            packet = FindChild(*packet, name);
    }
    if (!packet)
        Fail(L"holds no \"%.100s\"", path ? path : L"");
    return packet;
}

CVekResourceFilePacket * Manager::CreatePacket(unsigned int type, wchar_t const * name)
{
    CVekRef<CVekResourceFilePacket> packet;
    Guarded(
        [&]
        {
            if (!name)
                return Fail(L"a packet needs a name");
            if (std::wcspbrk(name, L"/\\"))
                return Fail(L"a packet's name can't hold slashes or backslashes");
            IVekResourceFilePacketHandler * const handler = FindHandler(type);
            if (!handler)
                return Fail(L"no handler for packets of type %08X", type);
            packet.Reset(handler->CreatePacket(type, name, this));
            Named const * const named = Named::Of(packet.Get());
            if (named && named->Type() == type && std::wcscmp(named->Name(), name) == 0)
                return true;
            packet.Reset();
            return Fail(L"the handler for packets of type %08X has failed", type);
        });
    return packet.Detach();
}

unsigned int Manager::GetPacketType(CVekResourceFilePacket const * packet) const
{
    Named const * const named = Named::Of(packet);
    return named ? named->Type() : 0;
}

wchar_t const * Manager::GetPacketName(CVekResourceFilePacket const * packet) const
{
    Named const * const named = Named::Of(packet);
    return named ? named->Name() : L"";
}

bool Manager::RegisterHandler(unsigned int type, IVekResourceFilePacketHandler * handler)
{
    return Guarded(
        [&]
        {
            if (!handler)
                return Fail(L"there is no handler");
            if (FindHandler(type))
                return Fail(L"packets of type %08X have a handler already", type);
            m_handlers[type] = CVekRef<IVekResourceFilePacketHandler>::Share(handler);
            return true;
        });
}

bool Manager::UnregisterHandler(unsigned int type)
{
    return m_handlers.erase(type) > 0 || Fail(L"packets of type %08X have no handler", type);
}

IVekResourceFilePacketHandler * Manager::FindHandler(unsigned int type)
{
    auto const found = m_handlers.find(type);
    return found == m_handlers.end() ? nullptr : found->second.Get();
}

bool Manager::Fail(wchar_t const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    _vsnwprintf(m_error, 240, format, arguments);
    va_end(arguments);
    return false;
}

} // namespace packetfile
