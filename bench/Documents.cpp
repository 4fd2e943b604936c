#include "Documents.h"

#include "VekText.h"

#include <cstdio>

namespace bench
{

namespace
{

constexpr std::size_t LONGEST_RECORD = 256;
constexpr char const * DECLARATION = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

template <class... Values>
void AppendFormat(std::string & text, char const * format, Values... values)
{
    char record[LONGEST_RECORD];
    int const length = std::snprintf(record, sizeof record, format, values...);
    text.append(record, static_cast<std::size_t>(length));
}

/// Fills a document with records until it has the size; append(text, n) adds the n-th.
template <class Append>
std::string Fill(std::size_t bytes, Append append)
{
    std::string text;
    text.reserve(bytes + LONGEST_RECORD); // exactly: the largest document leaves little room
    text += DECLARATION;
    text += "<model>\n";
    for (int n = 0; text.size() < bytes; ++n)
        append(text, n);
    text += "</model>\n";
    return text;
}

} // namespace

std::string ElementHeavy(std::size_t bytes)
{
    return Fill(bytes,
                [](std::string & text, int n)
                {
                    AppendFormat(
                        text,
                        "  <part>\n    <name>plate %d</name>\n    <size><width>%d</width><height>%d</height></size>\n"
                        "    <material>steel</material>\n    <hidden/>\n  </part>\n",
                        n, n % 977, n % 411);
                });
}

std::string AttributeHeavy(std::size_t bytes)
{
    return Fill(
        bytes,
        [](std::string & text, int n)
        {
            AppendFormat(
                text,
                "  <vertex id=\"v%d\" x=\"%d.%03d\" y=\"-%d.5\" z=\"0.25\" normal=\"0, 0, 1\" color=\"#%06x\"/>\n", n,
                n % 1000, n % 997, n % 313, static_cast<unsigned int>(n) * 2654435761U >> 8);
        });
}

std::string Drawing(std::size_t bytes)
{
    return Fill(bytes,
                [](std::string & text, int n)
                {
                    AppendFormat(text,
                                 "  <g>\n    <path style=\"fill:#%06x;stroke:none\" d=\"M %d.5,%d C %d.25,%d %d,%d "
                                 "%d.125,%d z\"/>\n  </g>\n",
                                 static_cast<unsigned int>(n) * 2654435761U >> 8, n % 977, n % 411, n % 313, n % 997,
                                 n % 211, n % 557, n % 131, n % 701);
                    if (n % 10 == 0)
                        AppendFormat(text, "  <text x=\"%d\"><tspan>plate %d</tspan></text>\n", n % 1000, n);
                });
}

std::string TextInSections(std::size_t bytes)
{
    return Fill(bytes,
                [](std::string & text, int n)
                {
                    AppendFormat(text,
                                 "  <note id=\"n%d\"><![CDATA[Plate %d goes over plate %d & its <frame>: the holes\n"
                                 "have to be %d mm from the edge, and are drilled before the paint.]]></note>\n",
                                 n, n, n % 977, n % 411);
                });
}

std::string Siblings(int count)
{
    std::string text = "<model>";
    for (int n = 0; n < count; ++n)
        text += "<item/>\n";
    return text + "</model>";
}

std::string Attributes(int count)
{
    std::string text = "<model";
    for (int n = 0; n < count; ++n)
        AppendFormat(text, " key%d=\"%d\"", n, n % 1000);
    return text + "/>";
}

std::string ReadFile(std::wstring const & path)
{
    std::string bytes;
    std::FILE * const file = VekFileOpenW(path.c_str(), L"rb");
    if (!file)
        return bytes;
    std::fseek(file, 0, SEEK_END);
    bytes.resize(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size())
        bytes.clear();
    std::fclose(file);
    return bytes;
}

} // namespace bench
