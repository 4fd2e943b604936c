#include "xml/XmlLoss.h"

#include "Console.h"
#include "Platform.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace tool
{

namespace
{

bool IsSpace(unsigned int unit)
{
    return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n';
}

/// Follows the units of a well-formed file from markup to markup. It need not understand them: the parser did.
class Scanner
{
public:
    void Take(unsigned int unit)
    {
        switch (m_state)
        {
        case State::Text:
            TakeText(unit);
            break;
        case State::Opening:
            TakeOpening(unit);
            break;
        case State::Tag:
            TakeTag(unit);
            break;
        case State::Doctype:
            TakeDoctype(unit);
            break;
        case State::Comment:
            TakeUntil(unit, '-', 2);
            break;
        case State::CDATA:
            TakeUntil(unit, ']', 2);
            break;
        case State::Instruction:
            TakeInstruction(unit);
            break;
        }
        m_previous = unit;
    }

    /// Everything of each kind that the file holds.
    XmlLoss Held() const
    {
        XmlLoss held = m_held;
        held.lineBreaks = m_lineBreaks.Found();
        return held;
    }

private:
    enum class State
    {
        Text,
        Opening, // behind "<", until it is clear what it opens
        Tag,
        Doctype,
        Comment,
        CDATA,
        Instruction
    };

    void TakeText(unsigned int unit)
    {
        if (unit == '<')
        {
            Open();
            return;
        }
        // The later bytes of a character of several, and the second half of a pair, are not counted again.
        bool const continues = ((unit & ~0x3FU) == 0x80 && m_previous >= 0x80) || (unit & ~0x3FFU) == 0xDC00;
        if (!IsSpace(unit) && !continues)
            ++m_held.text;
    }

    void Open()
    {
        m_outer = m_state;
        m_state = State::Opening;
        m_opening.clear();
    }

    void TakeOpening(unsigned int unit)
    {
        m_opening.push_back(static_cast<char>(unit < 0x80 ? unit : 0x7F));
        if (m_opening == "?")
        {
            m_state = State::Instruction;
            m_opening.clear();
            ++m_held.instructions;
        }
        else if (m_opening == "!--")
        {
            Begin(State::Comment, m_held.comments);
        }
        else if (m_opening == "![CDATA[")
        {
            Begin(State::CDATA, m_held.cdataSections);
        }
        else if (!std::string_view("!--").starts_with(m_opening) &&
                 !std::string_view("![CDATA[").starts_with(m_opening))
        {
            BeginDeclarationOrTag(unit);
        }
    }

    void Begin(State state, std::uint64_t & counter)
    {
        m_state = state;
        m_run = 0;
        ++counter;
    }

    void BeginDeclarationOrTag(unsigned int unit)
    {
        bool const inDoctype = m_outer == State::Doctype;
        m_state = inDoctype || m_opening[0] == '!' ? State::Doctype : State::Tag;
        m_nesting = inDoctype ? m_nesting + 1 : 1;
        m_quote = 0;
        Take(unit);
    }

    void TakeTag(unsigned int unit)
    {
        bool const isValue = m_quote != 0;
        if (TakeQuoted(unit))
        {
            if (m_quote && isValue)
                m_lineBreaks.Take(unit);
            return;
        }
        if (unit == '=')
        {
            ++m_held.attributes;
            m_lineBreaks.BeginValue();
        }
        else if (unit == '>')
            m_state = State::Text;
    }

    void TakeDoctype(unsigned int unit)
    {
        if (TakeQuoted(unit))
            return;
        if (unit == '<')
            Open();
        else if (unit == '>' && --m_nesting == 0)
            m_state = State::Text;
    }

    bool TakeQuoted(unsigned int unit)
    {
        if (m_quote)
        {
            m_quote = unit == m_quote ? 0 : m_quote;
            return true;
        }
        if (unit != '"' && unit != '\'')
            return false;
        m_quote = unit;
        return true;
    }

    /// Ends at a ">" behind so many of the mark.
    void TakeUntil(unsigned int unit, unsigned int mark, int count)
    {
        if (unit == '>' && m_run >= count)
            m_state = m_outer;
        m_run = unit == mark ? m_run + 1 : 0;
    }

    void TakeInstruction(unsigned int unit)
    {
        if (unit == '>' && m_previous == '?')
            m_state = m_outer;
        if (m_opening.size() > 3)
            return;
        m_opening.push_back(static_cast<char>(unit < 0x80 ? unit : 0x7F));
        if (m_opening.size() == 4 && m_opening.starts_with("xml") && IsSpace(unit))
            --m_held.instructions;
    }

    XmlLoss m_held;
    LineBreakScanner m_lineBreaks;
    State m_state = State::Text;
    State m_outer = State::Text;
    std::string m_opening;
    unsigned int m_previous = 0;
    unsigned int m_quote = 0;
    int m_nesting = 0; // of "<" in a document type
    int m_run = 0;
};

/// Cuts bytes into units: pairs of them in a UTF-16 file, single ones in every other encoding that can be read.
class Units
{
public:
    void Take(unsigned char const * bytes, std::size_t size, Scanner & scanner)
    {
        std::size_t i = 0;
        if (!m_begun)
            i = Begin(bytes, size);
        if (m_width == 1)
        {
            for (; i < size; ++i)
                scanner.Take(bytes[i]);
            return;
        }
        for (; i + 1 < size; i += 2)
            scanner.Take(m_bigEndian ? bytes[i] << 8U | bytes[i + 1] : bytes[i + 1] << 8U | bytes[i]);
    }

private:
    /// Returns the size of the byte order mark.
    std::size_t Begin(unsigned char const * bytes, std::size_t size)
    {
        m_begun = true;
        if (size >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF)
            return 3;
        if (size < 2)
            return 0;
        bool const bigMark = bytes[0] == 0xFE && bytes[1] == 0xFF;
        bool const littleMark = bytes[0] == 0xFF && bytes[1] == 0xFE;
        m_bigEndian = bigMark || bytes[0] == 0;
        m_width = bigMark || littleMark || bytes[0] == 0 || bytes[1] == 0 ? 2 : 1;
        return bigMark || littleMark ? 2 : 0;
    }

    bool m_begun = false;
    bool m_bigEndian = false;
    int m_width = 1;
};

void AppendPart(std::wstring & text, std::uint64_t count, wchar_t const * one, wchar_t const * many)
{
    if (count == 0)
        return;
    if (!text.empty())
        text += L", ";
    text += std::to_wstring(count) + (count == 1 ? one : many);
}

} // namespace

std::wstring XmlLoss::Describe() const
{
    std::wstring description;
    AppendPart(description, text, L" character of text outside CDATA sections",
               L" characters of text outside CDATA sections");
    AppendPart(description, cdataSections, L" CDATA section (an element keeps one)",
               L" CDATA sections (an element keeps one)");
    AppendPart(description, attributes, L" attribute (an element keeps one of a name, whatever its case)",
               L" attributes (an element keeps one of a name, whatever its case)");
    AppendPart(description, comments, L" comment", L" comments");
    AppendPart(description, instructions, L" processing instruction", L" processing instructions");
    return description;
}

bool FindLoss(std::wstring const & path, XmlCount const & kept, XmlLoss & loss)
{
    HANDLE const file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    std::vector<unsigned char> buffer(0x10000);
    Scanner scanner;
    Units units;
    DWORD size = 0;
    bool good = true;
    while ((good = ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr) != 0) && size > 0)
        units.Take(buffer.data(), size, scanner);
    CloseHandle(file);
    loss = scanner.Held();
    loss.cdataSections -= std::min(loss.cdataSections, kept.cdataSections);
    loss.attributes -= std::min(loss.attributes, kept.attributes);
    return good;
}

} // namespace tool
