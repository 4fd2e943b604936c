#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <type_traits>

namespace vek
{

/// A growable array of plain values that reports a failed allocation instead of throwing. Growth doubles.
template <class T>
class Buffer
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Buffer() noexcept = default;
    Buffer(Buffer const &) = delete;
    Buffer & operator=(Buffer const &) = delete;
    ~Buffer() { free(m_data); }

    size_t Size() const noexcept { return m_size; }
    bool Empty() const noexcept { return m_size == 0; }
    T * Data() noexcept { return m_data; }
    T const * Data() const noexcept { return m_data; }
    T & operator[](size_t index) noexcept { return m_data[index]; }
    T const & operator[](size_t index) const noexcept { return m_data[index]; }
    T & Back() noexcept { return m_data[m_size - 1]; }
    void PopBack() noexcept { --m_size; }
    /// Empties the array and keeps its storage.
    void Clear() noexcept { m_size = 0; }
    /// Drops what stands behind that many values, of which there are at least as many.
    void Shrink(size_t size) noexcept { m_size = size; }
    /// Empties the array and frees its storage.
    void Free() noexcept
    {
        free(m_data);
        m_data = nullptr;
        m_size = m_capacity = 0;
    }

    /// Makes room for that many values in all; false when there is no memory.
    bool Reserve(size_t capacity) noexcept
    {
        if (capacity <= m_capacity)
            return true;
        constexpr size_t LIMIT = PTRDIFF_MAX / sizeof(T);
        if (capacity > LIMIT)
            return false;
        size_t grown = m_capacity < 16 ? 16 : (m_capacity > LIMIT / 2 ? LIMIT : m_capacity * 2);
        if (grown < capacity)
            grown = capacity;
        auto * const data = static_cast<T *>(realloc(m_data, grown * sizeof(T)));
        if (!data)
            return false;
        m_data = data;
        m_capacity = grown;
        return true;
    }
    // cppcheck-suppress passedByValue ; values are small
    bool Append(T value) noexcept
    {
        if (m_size == m_capacity && !Reserve(m_size + 1))
            return false;
        m_data[m_size++] = value;
        return true;
    }
    bool Append(T const * values, size_t count) noexcept
    {
        T * const place = Extend(count);
        if (place && count)
            memcpy(place, values, count * sizeof(T));
        return place != nullptr;
    }
    /// Adds room for that many values, not initialised, and returns the place of the first; null when there is no
    /// memory.
    T * Extend(size_t count) noexcept
    {
        if (count > PTRDIFF_MAX / sizeof(T) - m_size || !Reserve(m_size + count + !m_data))
            return nullptr;
        T * const place = m_data + m_size;
        m_size += count;
        return place;
    }

private:
    T * m_data = nullptr;
    size_t m_size = 0;
    size_t m_capacity = 0;
};

} // namespace vek
