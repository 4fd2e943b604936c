#pragma once

#include <stddef.h>
#include <stdint.h>

namespace vek
{

/// Hashes names without regard to the case of ASCII letters. Each hash has a seed of its own: a hostile file must not
/// be able to choose names that share a slot.
class NameHash
{
public:
    NameHash() noexcept;

    uint32_t operator()(wchar_t const * text, size_t length) const noexcept;

private:
    uint32_t m_seed;
};

} // namespace vek
