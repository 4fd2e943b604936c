/// @file
/// Resource files as trees of packets: the packets, and the interfaces of what stores and creates them.
///
/// @code
/// // A packet that holds one number. A handler creates it, registered under the type's number.
/// class NumberPacket final : public CVekResourceFilePacket
/// {
/// public:
///     using CVekResourceFilePacket::CVekResourceFilePacket;
///     bool Read(IVekIOStream * stream) override { return stream->Read(&m_number, sizeof m_number, true); }
///     bool Write(IVekIOStream * stream) override { return stream->Write(&m_number, sizeof m_number, true); }
///     int m_number = 0;
/// };
/// @endcode
#ifndef VEK_PACKETS_H
#define VEK_PACKETS_H

#include "VekCore.h"
#include "VekExport.h"

VEK_HEADER_BEGIN

class CVekResourceFilePacket;
class IVekResourceFilePacketHandler;

/// Keeps a tree of packets in a resource file. Hosts implement it: the library has no manager and no file format of its
/// own. Packets know their manager and don't hold it, so that it must outlive them; it is not counted and belongs to
/// whoever made it. Operations that return false or null leave the reason in GetLastErrorText. For one thread at a
/// time.
class IVekResourceFileManager
{
public:
    /// Replaces the tree by that of a file, which is not kept open; false, with the old tree in place, when the file
    /// can't be opened or is damaged.
    virtual bool Open(wchar_t const * path) = 0;
    /// Writes the tree to a file, which becomes the manager's; null for the file it has. False when that fails.
    virtual bool Save(wchar_t const * path) = 0;
    /// The same through a stream, from its position to its end. The file path stays; a tree that was read counts as
    /// modified.
    virtual bool ReadTree(IVekIOStream * stream) = 0;
    virtual bool WriteTree(IVekIOStream * stream) = 0;
    /// Drops the tree, without saving it, and the file path.
    virtual void Close() = 0;
    /// The path of the last Open or Save that succeeded, empty when there is none; valid until the next one.
    virtual wchar_t const * GetFilePath() const = 0;
    /// True when the tree differs from its file, as far as the manager was told.
    virtual bool IsModified() const = 0;
    /// Tells the manager that the tree differs from its file, or doesn't.
    virtual void SetModified(bool modified) = 0;
    /// The packet that holds all others, no reference added; null only when there is no memory for one.
    virtual CVekResourceFilePacket * GetRoot() = 0;
    /// The first packet at a path of names that are separated by slashes or backslashes, no reference added; the root
    /// for an empty path. Null when there is none.
    virtual CVekResourceFilePacket * FindPacket(wchar_t const * path) = 0;
    /// Asks the type's handler for a new packet of that name, with count 1, in no tree yet. Null when there is no
    /// handler, the name can't be stored, or the handler fails.
    virtual CVekResourceFilePacket * CreatePacket(unsigned int type, wchar_t const * name) = 0;
    /// The type and name that a packet was created with; 0 and an empty text for a packet of a foreign kind.
    virtual unsigned int GetPacketType(CVekResourceFilePacket const * packet) const = 0;
    virtual wchar_t const * GetPacketName(CVekResourceFilePacket const * packet) const = 0;
    /// Makes a handler create the packets of a type and holds a reference to it; false when the type has one already.
    virtual bool RegisterHandler(unsigned int type, IVekResourceFilePacketHandler * handler) = 0;
    /// Takes a type's handler out and releases it; false when there is none.
    virtual bool UnregisterHandler(unsigned int type) = 0;
    /// A type's handler, no reference added, or null.
    virtual IVekResourceFilePacketHandler * FindHandler(unsigned int type) = 0;
    /// Why the last operation that failed did so; empty when none has. Valid until the next one.
    virtual wchar_t const * GetLastErrorText() const = 0;

protected:
    ~IVekResourceFileManager() = default;
};

/// Creates the packets of a type. Hosts implement it and register it with their manager.
class IVekResourceFilePacketHandler : public IVekObject
{
public:
    /// A new packet with count 1, or null. The manager may be stored, not counted.
    virtual CVekResourceFilePacket * CreatePacket(unsigned int type, wchar_t const * name,
                                                  IVekResourceFileManager * manager) = 0;

protected:
    ~IVekResourceFilePacketHandler() = default;
};

/// A packet of a resource file: the base of a host's own packets, which read and write themselves. It holds one
/// reference to each of its children. For one thread at a time, apart from the count.
class VEK_API CVekResourceFilePacket : public CVekRefCounted<IVekObject>
{
public:
    /// A packet without parent or children. The manager is stored, not counted; it may be null.
    explicit CVekResourceFilePacket(IVekResourceFileManager * manager);
    /// Shallow, kept: the count, the parent, the manager and the children's pointers are copied without references of
    /// the copy's own; only the array is. Without memory for it the copy has no children.
    CVekResourceFilePacket(CVekResourceFilePacket const & other);
    /// Shallow as the copy constructor; what the target held is not released. Without memory nothing changes.
    CVekResourceFilePacket & operator=(CVekResourceFilePacket const & other);
    /// Does not release the children, kept: a host's packet or its manager does.
    ~CVekResourceFilePacket() override;

    /// Adds a reference to the child and inserts it before the index, or at the end for -1 or an index outside the
    /// list. Becomes the parent of a child that has none; one that has keeps it, with a message, and is added all the
    /// same. Returns the index that was asked for, wherever the child came to stand, and the child's own index for -1.
    /// Null is stored as a null entry. -1, with a message, when memory is exhausted.
    virtual int AddChild(CVekResourceFilePacket * child, int index);
    /// Removes and releases the child at an index (a bad one is logged), or the first entry of a child; false when
    /// there is none. The child keeps its parent. By index the child is released before its place goes: if it ends
    /// with that, its destructor finds a null entry there. By pointer the place goes first.
    VEK_OVERLOADS2(virtual bool RemoveChild(int index), virtual bool RemoveChild(CVekResourceFilePacket * child))
    /// Does nothing, kept: a host's packet says what happens to its children.
    virtual void RemoveAllChildren();
    /// Reads what the packet itself consists of from the stream's position on, without its children; false when it
    /// can't be read.
    virtual bool Read(IVekIOStream * stream) = 0;
    /// Writes what Read reads; false when it can't be written.
    virtual bool Write(IVekIOStream * stream) = 0;

    /// Records the parent, not counted, when none is recorded yet; otherwise logs and keeps the old one, for good.
    void SetParent(CVekResourceFilePacket * parent);
    /// The recorded parent, no reference added.
    CVekResourceFilePacket * GetParent();
    CVekResourceFilePacket const * GetParent() const;
    /// The child at an index, no reference added; null, with a message, for a bad index.
    CVekResourceFilePacket * GetChild(int index);
    CVekResourceFilePacket const * GetChild(int index) const;
    /// The places in the list of children, null entries included.
    int GetNumChildren() const;
    /// The manager that it was created with, no reference added.
    IVekResourceFileManager * GetManager();
    IVekResourceFileManager const * GetManager() const;

private:
    CVekResourceFilePacket * m_parent = nullptr;
    CVekPointerArray<CVekResourceFilePacket> m_children;
    IVekResourceFileManager * m_manager;
};

/// The base of packets that are folders; what it adds is its kind alone.
class VEK_API CVekResourceFileFolderPacket : public CVekResourceFilePacket
{
public:
    /// A folder without children.
    explicit CVekResourceFileFolderPacket(IVekResourceFileManager * manager);
    /// Shallow as the base's.
    CVekResourceFileFolderPacket(CVekResourceFileFolderPacket const &) = default;
    CVekResourceFileFolderPacket & operator=(CVekResourceFileFolderPacket const &) = default;
    ~CVekResourceFileFolderPacket() override;
};

VEK_HEADER_END

#endif
