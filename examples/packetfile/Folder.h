#pragma once

#include "NamedPacket.h"

namespace packetfile
{

/// A folder: children, and nothing of its own to store.
class Folder final : public NamedPacket<CVekResourceFileFolderPacket>
{
public:
    using NamedPacket::NamedPacket;

    bool Read(IVekIOStream *) override { return true; }
    bool Write(IVekIOStream *) override { return true; }
};

} // namespace packetfile
