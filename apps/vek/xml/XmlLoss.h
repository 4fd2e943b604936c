#pragma once

#include "xml/LineBreaks.h"
#include "xml/XmlCount.h"

#include <cstdint>
#include <string>

namespace tool
{

/// What a well-formed file holds that the document read from it doesn't: counted from the file's own characters,
/// because a document can't tell what it never got.
struct XmlLoss
{
    std::uint64_t text = 0;          // characters outside CDATA sections, white space left out
    std::uint64_t cdataSections = 0; // an element keeps its first
    std::uint64_t attributes = 0;    // an element keeps the first of a name, whatever its case
    std::uint64_t comments = 0;
    std::uint64_t instructions = 0; // the XML declaration is none
    LineBreaks lineBreaks;          // not lost, once they are restored

    /// Whether data is lost, not only remarks.
    bool IsData() const { return text || cdataSections || attributes; }
    /// Empty when nothing is lost, else such as "12 characters of text outside CDATA sections, 1 comment".
    std::wstring Describe() const;
};

/// Compares the file with what was kept of it; false when it can't be read. Attributes that a document type or an
/// entity adds can hide as many lost ones.
bool FindLoss(std::wstring const & path, XmlCount const & kept, XmlLoss & loss);

} // namespace tool
