#pragma once

#include <VekLib.h>

#include <map>
#include <string>

namespace packetfile
{

/// Keeps trees of folders, blobs and the packets of registered handlers in files (Format.h). Names are found exactly,
/// case included. All packets derive from NamedPacket. Nothing but the constructor throws.
class Manager final : public IVekResourceFileManager
{
public:
    /// Handlers for folders and blobs are there from the start.
    Manager();
    ~Manager();
    Manager(Manager const &) = delete;
    Manager & operator=(Manager const &) = delete;

    bool Open(wchar_t const * path) override;
    /// The new file is written beside the old one and then takes its place: after a failure nothing has changed.
    bool Save(wchar_t const * path) override;
    bool ReadTree(IVekIOStream * stream) override;
    bool WriteTree(IVekIOStream * stream) override;
    void Close() override;
    wchar_t const * GetFilePath() const override { return m_path.c_str(); }
    bool IsModified() const override { return m_modified; }
    void SetModified(bool modified) override { m_modified = modified; }
    CVekResourceFilePacket * GetRoot() override;
    CVekResourceFilePacket * FindPacket(wchar_t const * path) override;
    CVekResourceFilePacket * CreatePacket(unsigned int type, wchar_t const * name) override;
    unsigned int GetPacketType(CVekResourceFilePacket const * packet) const override;
    wchar_t const * GetPacketName(CVekResourceFilePacket const * packet) const override;
    bool RegisterHandler(unsigned int type, IVekResourceFilePacketHandler * handler) override;
    bool UnregisterHandler(unsigned int type) override;
    IVekResourceFilePacketHandler * FindHandler(unsigned int type) override;
    wchar_t const * GetLastErrorText() const override { return m_error; }

    /// Sets the error, of which up to 240 characters are kept; false always.
    bool Fail(wchar_t const * format, ...);

private:
    template <class Work>
    bool Guarded(Work work);
    bool SaveBeside(std::wstring const & target);

    std::map<unsigned int, CVekRef<IVekResourceFilePacketHandler>> m_handlers;
    CVekRef<CVekResourceFilePacket> m_root;
    std::wstring m_path;
    bool m_modified = false;
    wchar_t m_error[241] = L"";
};

} // namespace packetfile
