// Its own file, as programs with a C++ library have it from there.
#include <new>

namespace std
{
nothrow_t const nothrow{};
}
