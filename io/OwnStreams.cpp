#include "io/OwnStreams.h"

#include "core/TableOf.h"

namespace vek
{
namespace
{

// The classes are final, so that the table tells them exactly. A dynamic cast would read from a host's table what
// other compilers don't put there.
template <class Own>
Own * To(IVekIOStream & stream) noexcept
{
    Own const known;
    return TableOf<IVekIOStream>(known) == TableOf(stream) ? static_cast<Own *>(&stream) : nullptr;
}

} // namespace

CVekMemoryIOStream * ToMemoryStream(IVekIOStream & stream) noexcept
{
    return To<CVekMemoryIOStream>(stream);
}

CVekFileIOStream * ToFileStream(IVekIOStream & stream) noexcept
{
    return To<CVekFileIOStream>(stream);
}

} // namespace vek
