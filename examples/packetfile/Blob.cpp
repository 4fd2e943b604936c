#include "Blob.h"

#include <new>

namespace packetfile
{

void Blob::SetBytes(std::vector<unsigned char> && bytes)
{
    m_bytes = std::move(bytes);
    Touch();
}

bool Blob::Read(IVekIOStream * stream)
{
    unsigned int const size = stream->GetSize() - static_cast<unsigned int>(stream->GetPosition());
    try
    {
        m_bytes.resize(size); // the stream really holds that much
    }
    catch (std::bad_alloc const &)
    {
        return false;
    }
    return stream->Read(m_bytes.data(), size, true);
}

bool Blob::Write(IVekIOStream * stream)
{
    return stream->Write(m_bytes.data(), static_cast<unsigned int>(m_bytes.size()), true);
}

} // namespace packetfile
