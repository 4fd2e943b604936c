#pragma once

#include "xml/XmlTags.h"

#include <string>
#include <vector>

namespace tool
{

/// What is to change in the bytes of a file.
class XmlPatch
{
public:
    /// Bytes that take others' place; several at one empty place stand in the order of these calls.
    void Replace(XmlRange range, std::string const & bytes) { m_changes.push_back({range, bytes}); }
    bool IsEmpty() const { return m_changes.empty(); }
    /// Brings the changes in the file's order; false when one changes what another changes.
    bool Sort();

    // All that follows wants them in order.
    std::string Apply(std::string const & bytes) const;
    /// The lines that change, with a minus sign as they are and with a plus sign as they become, in the form of diff.
    std::wstring Describe(std::wstring const & name, std::string const & bytes, XmlEncoding const & encoding) const;

private:
    struct Change
    {
        XmlRange range;
        std::string bytes;
    };

    std::string Apply(std::string_view bytes, XmlRange range, std::size_t first, std::size_t last) const;

    std::vector<Change> m_changes;
};

} // namespace tool
