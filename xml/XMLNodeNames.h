#pragma once

namespace vek
{

/// The name of a child that stands for what is no element.
struct XMLNodeName
{
    template <int N>
    constexpr XMLNodeName(wchar_t const (&name)[N]) noexcept : text(name), length(N - 1)
    {
    }

    wchar_t const * text;
    int length;
};

constexpr XMLNodeName TEXT_NODE = L"#text";
constexpr XMLNodeName COMMENT_NODE = L"#comment";
constexpr XMLNodeName INSTRUCTION_NODE = L"#processing-instruction";
constexpr XMLNodeName SECTION_NODE = L"#cdata-section";
constexpr XMLNodeName REFERENCE_NODE = L"#entity-reference";

} // namespace vek
