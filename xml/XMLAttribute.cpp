#include "VekXML.h"

#include "text/Fold.h"
#include "text/StringAccess.h"
#include "xml/XMLValueText.h"

#include <utility>

namespace
{

bool IsText(CVekString<wchar_t> const & value, wchar_t const * text, int length)
{
    return vek::EqualsNoCase(value, value.GetLength(), text, length);
}

} // namespace

CVekXMLAttribute::CVekXMLAttribute(wchar_t const * name, int nameLength, wchar_t const * value, int valueLength)
    : m_name(name, nameLength), m_value(value, valueLength)
{
}

CVekXMLAttribute::CVekXMLAttribute(CVekString<wchar_t> && name, CVekString<wchar_t> && value)
    : m_name(std::move(name)), m_value(std::move(value))
{
}

// Null when memory is exhausted.
CVekXMLAttribute * CVekXMLAttribute::Make(wchar_t const * name, int nameLength, wchar_t const * value, int valueLength)
{
    return vek::MakeInOneBlock<CVekXMLAttribute>(
        [](void * block, CVekString<wchar_t> && nameText, CVekString<wchar_t> && valueText)
        { return new (block) CVekXMLAttribute(std::move(nameText), std::move(valueText)); },
        vek::TextPiece{name, nameLength}, vek::TextPiece{value, valueLength});
}

// A copy is an object of its own, with a count of its own.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
CVekXMLAttribute::CVekXMLAttribute(CVekXMLAttribute const & other)
    // NOLINTNEXTLINE(readability-redundant-member-init): GCC asks for it
    : CVekRefCounted<IVekObject>(), CVekPooled(), m_name(other.m_name), m_value(other.m_value)
{
}

// NOLINTNEXTLINE(cert-oop54-cpp): the texts bear being assigned to themselves
CVekXMLAttribute & CVekXMLAttribute::operator=(CVekXMLAttribute const & other)
{
    m_name = other.m_name;
    m_value = other.m_value;
    return *this;
}

CVekXMLAttribute::~CVekXMLAttribute() = default;

void CVekXMLAttribute::SetName(wchar_t const * name)
{
    m_name.Assign(name);
}

bool CVekXMLAttribute::SetValue(bool value)
{
    return SetValue(vek::BooleanText(value));
}

bool CVekXMLAttribute::SetValue(int value)
{
    vek::ValueText text;
    vek::PrintInteger(text, value);
    return SetValue(text);
}

bool CVekXMLAttribute::SetValue(float value)
{
    return SetValue(static_cast<double>(value));
}

bool CVekXMLAttribute::SetValue(double value)
{
    vek::ValueText text;
    vek::PrintReal(text, value);
    return SetValue(text);
}

bool CVekXMLAttribute::SetValue(CVekRGBA<unsigned char> const & value)
{
    return SetValue(CVekVector4D<int>(value.red, value.green, value.blue, value.alpha));
}

bool CVekXMLAttribute::SetValue(CVekRGBA<float> const & value)
{
    return SetValue(CVekVector4D<float>(value.red, value.green, value.blue, value.alpha));
}

bool CVekXMLAttribute::SetValue(CVekVector4D<int> const & value)
{
    vek::ValueText text;
    vek::PrintIntegers(text, value.x, value.y, value.z, value.w);
    return SetValue(text);
}

bool CVekXMLAttribute::SetValue(CVekVector4D<float> const & value)
{
    vek::ValueText text;
    vek::PrintReals(text, static_cast<double>(value.x), static_cast<double>(value.y), static_cast<double>(value.z),
                    static_cast<double>(value.w));
    return SetValue(text);
}

bool CVekXMLAttribute::SetValue(CVekVector4D<double> const & value)
{
    // Kept: the components are cut to the precision of a float; they are read back with no more.
    return SetValue(CVekVector4D<float>(static_cast<float>(value.x), static_cast<float>(value.y),
                                        static_cast<float>(value.z), static_cast<float>(value.w)));
}

bool CVekXMLAttribute::SetValue(wchar_t const * value)
{
    m_value.Assign(value);
    return true;
}

bool CVekXMLAttribute::GetValue(bool & value) const
{
    bool const isTrue = IsText(m_value, L"TRUE", 4);
    if (!isTrue && !IsText(m_value, L"FALSE", 5))
        return false;
    value = isTrue;
    return true;
}

bool CVekXMLAttribute::GetValue(int & value) const
{
    value = VekStrToIntW(m_value);
    return true;
}

bool CVekXMLAttribute::GetValue(float & value) const
{
    value = static_cast<float>(VekStrToFloatW(m_value));
    return true;
}

bool CVekXMLAttribute::GetValue(double & value) const
{
    // Kept: no more than a float's precision.
    value = static_cast<double>(static_cast<float>(VekStrToFloatW(m_value)));
    return true;
}

bool CVekXMLAttribute::GetValue(CVekRGBA<unsigned char> & value) const
{
    int parts[4];
    vek::ScanIntegers(m_value, m_value.GetLength(), parts);
    value = CVekRGBA<unsigned char>(static_cast<unsigned char>(parts[0]), static_cast<unsigned char>(parts[1]),
                                    static_cast<unsigned char>(parts[2]), static_cast<unsigned char>(parts[3]));
    return true;
}

bool CVekXMLAttribute::GetValue(CVekRGBA<float> & value) const
{
    float parts[4];
    vek::ScanReals(m_value, m_value.GetLength(), parts);
    value = CVekRGBA<float>(parts[0], parts[1], parts[2], parts[3]);
    return true;
}

bool CVekXMLAttribute::GetValue(CVekVector4D<int> & value) const
{
    int parts[4];
    vek::ScanIntegers(m_value, m_value.GetLength(), parts);
    value = CVekVector4D<int>(parts[0], parts[1], parts[2], parts[3]);
    return true;
}

bool CVekXMLAttribute::GetValue(CVekVector4D<float> & value) const
{
    float parts[4];
    vek::ScanReals(m_value, m_value.GetLength(), parts);
    value = CVekVector4D<float>(parts[0], parts[1], parts[2], parts[3]);
    return true;
}

bool CVekXMLAttribute::GetValue(CVekVector4D<double> & value) const
{
    float parts[4];
    vek::ScanReals(m_value, m_value.GetLength(), parts);
    value = CVekVector4D<double>(static_cast<double>(parts[0]), static_cast<double>(parts[1]),
                                 static_cast<double>(parts[2]), static_cast<double>(parts[3]));
    return true;
}
