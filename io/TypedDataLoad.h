#pragma once

#include "VekVariant.h"

#include "base/Buffer.h"
#include "io/TypedDataSource.h"

namespace vek
{

/// Reads the value of the variant's type; false when the stream doesn't hold it, a length is negative or memory is
/// exhausted. Of a GUID and of types that are not known nothing is read.
bool LoadValue(TypedDataSource & source, VEK_VARIANT & value) noexcept;

/// Reads that many characters or bytes (none for a negative number) and stores a terminating zero behind them, taking
/// no more memory than the stream is known to fill; false when it doesn't hold them or memory is exhausted.
template <class T>
bool LoadUnits(TypedDataSource & source, int count, Buffer<T> & units) noexcept
{
    constexpr size_t UNPROVEN = 16 * 1024; // values of a stream that can't tell whether it holds them
    if (count < 0 || !source.Holds(static_cast<size_t>(count), sizeof(T)))
        return source.Fail(VEK_DATA_ERROR_LENGTH);
    auto left = static_cast<size_t>(count);
    if (source.KnowsSize() && !units.Reserve(left + 1))
        return false;
    while (left != 0)
    {
        size_t const piece = source.KnowsSize() || left < UNPROVEN ? left : UNPROVEN;
        T * const place = units.Extend(piece);
        if (!place || !source.Get(place, piece))
            return false;
        left -= piece;
    }
    return units.Append(T());
}

} // namespace vek
