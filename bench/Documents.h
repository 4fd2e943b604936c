#pragma once

#include <cstddef>
#include <string>

namespace bench
{

/// A document of about that many bytes that consists of elements with short texts, nested three deep.
std::string ElementHeavy(std::size_t bytes);

/// A document of about that many bytes whose elements have six attributes each.
std::string AttributeHeavy(std::size_t bytes);

/// A drawing of about that many bytes: groups of paths with indentation, and now and then a text.
std::string Drawing(std::size_t bytes);

/// A document of about that many bytes whose elements have a text each, in CDATA sections.
std::string TextInSections(std::size_t bytes);

/// A root with so many empty children.
std::string Siblings(int count);

/// One element with so many attributes.
std::string Attributes(int count);

/// The whole file; empty when it can't be read.
std::string ReadFile(std::wstring const & path);

} // namespace bench
