#include "xml/XMLVariantText.h"

#include "VekCore.h"

#include <stdint.h>
#include <string.h>

#include <iterator>

namespace vek
{

/// One text form for each way a variant holds its value; they return the text, or null when memory is exhausted.
struct XMLVariantForms
{
    template <class T>
    static T const & Read(VEK_VARIANT const & value) noexcept
    {
        return static_cast<T const &>(value);
    }
    /// The object of a type that keeps it on the heap; null when memory for it was exhausted.
    template <class T>
    static T const * Object(VEK_VARIANT const & value) noexcept
    {
        return value.GetBuffer() ? &Read<T>(value) : nullptr;
    }

    static wchar_t const * Boolean(VEK_VARIANT const & value, XMLVariantText &) noexcept
    {
        return BooleanText(Read<unsigned char>(value) == 1);
    }
    template <class T>
    static wchar_t const * Integer(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        PrintInteger(text.m_value, Read<T>(value));
        return text.m_value;
    }
    /// A zero character ends the text before it begins; a narrow one is sign-extended, as "%c" gets it.
    template <class T>
    static wchar_t const * Character(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        text.m_value[0] = static_cast<wchar_t>(Read<T>(value));
        text.m_value[1] = 0;
        return text.m_value;
    }
    template <class T>
    static wchar_t const * Real(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        PrintReal(text.m_value, Read<T>(value));
        return text.m_value;
    }
    static wchar_t const * NarrowText(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        CVekString<char> const & narrow = Read<CVekString<char>>(value);
        wchar_t * const place = text.m_widened.Extend(static_cast<size_t>(narrow.GetLength()) + 1);
        if (place)
            VekStrAtoW(place, narrow);
        return place;
    }
    static wchar_t const * WideText(VEK_VARIANT const & value, XMLVariantText &) noexcept
    {
        return Read<CVekString<wchar_t>>(value);
    }
    static wchar_t const * ByteColour(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        auto const * const colour = Object<CVekRGBA<unsigned char>>(value);
        if (!colour)
            return nullptr;
        PrintIntegers(text.m_value, colour->red, colour->green, colour->blue, colour->alpha);
        return text.m_value;
    }
    static wchar_t const * FloatColour(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        auto const * const colour = Object<CVekRGBA<float>>(value);
        if (!colour)
            return nullptr;
        PrintReals(text.m_value, static_cast<double>(colour->red), static_cast<double>(colour->green),
                   static_cast<double>(colour->blue), static_cast<double>(colour->alpha));
        return text.m_value;
    }
    static wchar_t const * IntVector(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        auto const * const vector = Object<CVekVector4D<int>>(value);
        if (!vector)
            return nullptr;
        PrintIntegers(text.m_value, vector->x, vector->y, vector->z, vector->w);
        return text.m_value;
    }
    static wchar_t const * FloatVector(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        auto const * const vector = Object<CVekVector4D<float>>(value);
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
    static wchar_t const * DoubleVector(VEK_VARIANT const & value, XMLVariantText & text) noexcept
    {
        auto const * const vector = Object<CVekVector4D<double>>(value);
        if (!vector)
            return nullptr;
        PrintReals(text.m_value, vector->x, vector->y, vector->z, vector->w);
        return text.m_value;
    }

private:
    static int Low(uint64_t bits) noexcept { return static_cast<int>(static_cast<uint32_t>(bits)); }
    static int High(uint64_t bits) noexcept { return static_cast<int>(static_cast<uint32_t>(bits >> 32)); }
};

namespace
{

using Forms = XMLVariantForms;
using Form = wchar_t const * (*)(VEK_VARIANT const &, XMLVariantText &) noexcept;

// By the number of the variant's type.
constexpr Form FORMS[] = {
    nullptr,
    Forms::Boolean,
    Forms::Integer<unsigned char>,
    Forms::Character<char>,
    Forms::Character<unsigned short>,
    // Kept: the two 16-bit types are read as each other, so a negative short becomes a large number and an unsigned one
    // above 32,767 a negative number. Hosts that read them back into 16 bits get the same value.
    Forms::Integer<unsigned short>,
    Forms::Integer<short>,
    Forms::Integer<int>,
    Forms::Integer<int>, // kept: an unsigned value above 2,147,483,647 is printed as a negative one
    Forms::Real<float>,
    Forms::Real<double>,
    Forms::NarrowText,
    Forms::WideText,
    Forms::ByteColour,
    Forms::FloatColour,
    Forms::IntVector,
    Forms::FloatVector,
    Forms::DoubleVector,
};
static_assert(std::size(FORMS) == VEK_DT_VECTOR4D_DOUBLE + 1);

} // namespace

bool XMLVariantText::Convert(VEK_VARIANT const & value) noexcept
{
    auto const type = static_cast<unsigned int>(value.GetType());
    Form const form = type < std::size(FORMS) ? FORMS[type] : nullptr;
    if (!form)
    {
        VekLogOutput(0, L"CVekXMLElement::VariantToString --> Invalid data type");
        return false;
    }
    m_text = form(value, *this);
    return m_text != nullptr;
}

} // namespace vek
