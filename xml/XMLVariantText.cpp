#include "xml/XMLVariantText.h"

#include "VekCore.h"

#include "text/DataTypes.h"

#include <stdint.h>
#include <string.h>

namespace vek
{

/// One text form for each type of value: they return the text, or null when memory is exhausted or the type has none.
struct XMLVariantForms
{
    VEK_VARIANT const & value;
    XMLVariantText & text;

    wchar_t const * operator()(Held<bool>) const noexcept { return BooleanText(Read<unsigned char>() == 1); }
    wchar_t const * operator()(Held<unsigned char>) const noexcept { return Integer<unsigned char>(); }
    wchar_t const * operator()(Held<char>) const noexcept { return Character<char>(); }
    wchar_t const * operator()(Held<wchar_t>) const noexcept { return Character<unsigned short>(); }
    // Kept: the two 16-bit types are read as each other, so a negative short becomes a large number and an unsigned one
    // above 32,767 a negative number. Hosts that read them back into 16 bits get the same value.
    wchar_t const * operator()(Held<short>) const noexcept { return Integer<unsigned short>(); }
    wchar_t const * operator()(Held<unsigned short>) const noexcept { return Integer<short>(); }
    wchar_t const * operator()(Held<int>) const noexcept { return Integer<int>(); }
    // Kept: an unsigned value above 2,147,483,647 is printed as a negative one.
    wchar_t const * operator()(Held<unsigned int>) const noexcept { return Integer<int>(); }
    wchar_t const * operator()(Held<float>) const noexcept { return Real<float>(); }
    wchar_t const * operator()(Held<double>) const noexcept { return Real<double>(); }

    wchar_t const * operator()(Held<CVekString<char>>) const noexcept
    {
        CVekString<char> const & narrow = Read<CVekString<char>>();
        wchar_t * const place = text.m_widened.Extend(static_cast<size_t>(narrow.GetLength()) + 1);
        if (place)
            VekStrAtoW(place, narrow);
        return place;
    }
    wchar_t const * operator()(Held<CVekString<wchar_t>>) const noexcept { return Read<CVekString<wchar_t>>(); }

    wchar_t const * operator()(Held<CVekRGBA<unsigned char>>) const noexcept
    {
        auto const * const colour = Object<CVekRGBA<unsigned char>>();
        if (!colour)
            return nullptr;
        PrintIntegers(text.m_value, colour->red, colour->green, colour->blue, colour->alpha);
        return text.m_value;
    }
    wchar_t const * operator()(Held<CVekRGBA<float>>) const noexcept
    {
        auto const * const colour = Object<CVekRGBA<float>>();
        if (!colour)
            return nullptr;
        PrintReals(text.m_value, static_cast<double>(colour->red), static_cast<double>(colour->green),
                   static_cast<double>(colour->blue), static_cast<double>(colour->alpha));
        return text.m_value;
    }
    wchar_t const * operator()(Held<CVekVector4D<int>>) const noexcept
    {
        auto const * const vector = Object<CVekVector4D<int>>();
        if (!vector)
            return nullptr;
        PrintIntegers(text.m_value, vector->x, vector->y, vector->z, vector->w);
        return text.m_value;
    }
    wchar_t const * operator()(Held<CVekVector4D<float>>) const noexcept
    {
        auto const * const vector = Object<CVekVector4D<float>>();
        if (!vector)
            return nullptr;
        // Kept: the text is that of the low and high halves of x and y as doubles, not of the four components. Files
        // that hosts have written hold such values.
        double const pair[2] = {static_cast<double>(vector->x), static_cast<double>(vector->y)};
        uint64_t bits[2];
        memcpy(bits, pair, sizeof bits);
        PrintIntegers(text.m_value, Low(bits[0]), High(bits[0]), Low(bits[1]), High(bits[1]));
        return text.m_value;
    }
    wchar_t const * operator()(Held<CVekVector4D<double>>) const noexcept
    {
        auto const * const vector = Object<CVekVector4D<double>>();
        if (!vector)
            return nullptr;
        PrintReals(text.m_value, vector->x, vector->y, vector->z, vector->w);
        return text.m_value;
    }
    template <class T>
    wchar_t const * operator()(Held<T>) const noexcept
    {
        VekLogOutput(0, L"CVekXMLElement::VariantToString --> Invalid data type");
        return nullptr;
    }

private:
    template <class T>
    T const & Read() const noexcept
    {
        return static_cast<T const &>(value);
    }
    /// The object of a type that keeps it on the heap; null when memory for it was exhausted.
    template <class T>
    T const * Object() const noexcept
    {
        return value.GetBuffer() ? &Read<T>() : nullptr;
    }
    template <class T>
    wchar_t const * Integer() const noexcept
    {
        PrintInteger(text.m_value, Read<T>());
        return text.m_value;
    }
    /// A zero character ends the text before it begins; a narrow one is sign-extended, as "%c" gets it.
    template <class T>
    wchar_t const * Character() const noexcept
    {
        text.m_value[0] = static_cast<wchar_t>(Read<T>());
        text.m_value[1] = 0;
        return text.m_value;
    }
    template <class T>
    wchar_t const * Real() const noexcept
    {
        PrintReal(text.m_value, Read<T>());
        return text.m_value;
    }
    static int Low(uint64_t bits) noexcept { return static_cast<int>(static_cast<uint32_t>(bits)); }
    static int High(uint64_t bits) noexcept { return static_cast<int>(static_cast<uint32_t>(bits >> 32)); }
};

bool XMLVariantText::Convert(VEK_VARIANT const & value) noexcept
{
    m_text = Visit(value.GetType(), XMLVariantForms{value, *this});
    return m_text != nullptr;
}

} // namespace vek
