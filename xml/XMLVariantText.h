#pragma once

#include "VekVariant.h"

#include "base/Buffer.h"
#include "xml/XMLValueText.h"

namespace vek
{

/// The text form of a variant's value. The text of a wide text variant is used where it stands, without a copy.
class XMLVariantText
{
public:
    /// Converts; false, with a message, for a type that has no text form, and false when memory is exhausted.
    bool Convert(VEK_VARIANT const & value) noexcept;
    /// Valid as long as this object and the variant.
    wchar_t const * Text() const noexcept { return m_text; }

private:
    friend struct XMLVariantForms;

    wchar_t const * m_text = L"";
    ValueText m_value;
    Buffer<wchar_t> m_widened;
};

} // namespace vek
