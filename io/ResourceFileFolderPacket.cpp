#include "VekPackets.h"

CVekResourceFileFolderPacket::CVekResourceFileFolderPacket(IVekResourceFileManager * manager)
    : CVekResourceFilePacket(manager)
{
}

CVekResourceFileFolderPacket::~CVekResourceFileFolderPacket() = default;
