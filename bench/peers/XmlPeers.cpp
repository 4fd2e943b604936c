#include "../Documents.h"
#include "Peers.h"
#include "VekLib.h"

#include <expat.h>
#include <pugixml.hpp>
#include <tinyxml2.h>

#include <memory>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace bench
{

namespace
{

using Document = CVekRef<IVekXMLDocument>;

constexpr std::size_t DOCUMENT_BYTES = 2'400'000; // as many as mime has
constexpr double KEEP_AIM = 1 / 1.35;             // of the plain parse's speed

std::wstring TemporaryPath(wchar_t const * name)
{
    wchar_t folder[MAX_PATH + 1] = L"";
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + L"veklib-peers-" + std::to_wstring(GetCurrentProcessId()) + L"-" + name;
}

Document Parse(std::string const & text, VEK_XML_KEEP keep = VEK_XML_KEEP_NOTHING)
{
    Document document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    CVekXMLParser parser;
    parser.SetKeepAll(keep);
    parser.ParseXMLMemory(text.data(), static_cast<unsigned int>(text.size()), document.Get());
    return document;
}

/// The document as the library writes it, without what the plain parse drops and without a document type.
std::string Written(IVekXMLDocument * document)
{
    std::wstring const path = TemporaryPath(L"written.xml");
    CVekXMLWriter writer;
    writer.WriteXMLFile(path.c_str(), document);
    std::string text = ReadFile(path);
    DeleteFileW(path.c_str());
    std::size_t const begin = text.find("<!DOCTYPE"), end = text.find("]>\r\n");
    if (begin != std::string::npos && end != std::string::npos)
        text.erase(begin, end - begin + 4);
    return text;
}

struct Source
{
    std::string name;
    std::string text;
    std::string data; // what the plain parse keeps of it
};

std::vector<Source> Sources(std::wstring const & database)
{
    return {{"mime", ReadFile(database), {}},
            {"svg", Drawing(DOCUMENT_BYTES), {}},
            {"elements", ElementHeavy(DOCUMENT_BYTES), {}},
            {"text as CDATA", TextInSections(DOCUMENT_BYTES), {}}};
}

// --- the peers
// --------------------------------------------------------------------------------------------------------

void XMLCALL OnStart(void *, XML_Char const *, XML_Char const **) {}
void XMLCALL OnEnd(void *, XML_Char const *) {}
void XMLCALL OnText(void *, XML_Char const *, int) {}

void ParseByExpat(std::string const & text)
{
    XML_Parser const parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetReparseDeferralEnabled(parser, XML_FALSE);
    XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE);
    XML_ParserFree(parser);
}

std::unique_ptr<pugi::xml_document> ParseByPugi(std::string const & text, unsigned int options)
{
    auto document = std::make_unique<pugi::xml_document>();
    document->load_buffer(text.data(), text.size(), options, pugi::encoding_utf8);
    return document;
}

std::unique_ptr<tinyxml2::XMLDocument> ParseByTiny(std::string const & text)
{
    auto document = std::make_unique<tinyxml2::XMLDocument>();
    document->Parse(text.data(), text.size());
    return document;
}

// --- the rows
// ---------------------------------------------------------------------------------------------------------

void AddParse(Duels & duels, std::shared_ptr<Source const> const & source)
{
    Document document;
    duels.Add(
        "XML parse: " + source->name, "expat alone", 0,
        [source, document]() mutable
        {
            Stopwatch watch;
            document = Parse(source->text);
            double const seconds = watch.Lap();
            document.Reset();
            return seconds;
        },
        Repeat(1, [source] { ParseByExpat(source->text); }));
}

void AddKeep(Duels & duels, std::shared_ptr<Source const> const & source)
{
    Work const keep = [source]
    {
        Stopwatch watch;
        Document const document = Parse(source->text, VEK_XML_KEEP_ALL);
        return watch.Lap();
    };
    duels.Add("XML parse, all kept: " + source->name, "plain parse", KEEP_AIM, keep,
              [source]
              {
                  Stopwatch watch;
                  Document const document = Parse(source->text);
                  return watch.Lap();
              });
    duels.Add("XML parse, all kept: " + source->name, "pugixml, all kept", 0, keep,
              [source]
              {
                  Stopwatch watch;
                  auto const document = ParseByPugi(source->text, pugi::parse_full | pugi::parse_ws_pcdata);
                  return watch.Lap();
              });
}

void AddWrite(Duels & duels, std::shared_ptr<Source const> const & source)
{
    std::wstring const path = TemporaryPath(L"target.xml");
    Document const own = Parse(source->data);
    std::shared_ptr<pugi::xml_document const> const other =
        ParseByPugi(source->data, pugi::parse_default | pugi::parse_doctype);
    auto const save = [path, other]
    { other->save_file(path.c_str(), L"   ", pugi::format_default, pugi::encoding_utf8); };
    save();
    duels.Expect(Written(Parse(ReadFile(path)).Get()) == source->data, "written XML: " + source->name);
    DeleteFileW(path.c_str());
    duels.Add(
        "XML write: " + source->name, "pugixml", 0,
        [path, own]
        {
            CVekXMLWriter writer;
            Stopwatch watch;
            writer.WriteXMLFile(path.c_str(), own.Get());
            double const seconds = watch.Lap();
            DeleteFileW(path.c_str());
            return seconds;
        },
        [path, save]
        {
            Stopwatch watch;
            save();
            double const seconds = watch.Lap();
            DeleteFileW(path.c_str());
            return seconds;
        });
}

void AddRelease(Duels & duels, std::shared_ptr<Source const> const & source)
{
    duels.Add(
        "XML release: " + source->name, "tinyxml2", 0,
        [source]
        {
            Document document = Parse(source->data);
            Stopwatch watch;
            document.Reset();
            return watch.Lap();
        },
        [source]
        {
            auto document = ParseByTiny(source->data);
            Stopwatch watch;
            document.reset();
            return watch.Lap();
        });
}

/// The library's trees first, as it has nothing in reserve yet; they stay while the peer's are made.
void AddMemory(Duels & duels, std::vector<Source> & sources)
{
    std::vector<Document> own;
    std::vector<std::unique_ptr<tinyxml2::XMLDocument>> others;
    std::vector<std::size_t> bytes;
    for (Source const & source : sources)
    {
        std::size_t const before = CommittedBytes();
        own.push_back(Parse(source.text));
        bytes.push_back(CommittedBytes() - before);
    }
    for (std::size_t i = 0; i < sources.size(); ++i)
        sources[i].data = Written(own[i].Get());
    for (std::size_t i = 0; i < sources.size(); ++i)
    {
        std::size_t const before = CommittedBytes();
        others.push_back(ParseByTiny(sources[i].data));
        duels.AddBytes("XML memory of the tree: " + sources[i].name, "tinyxml2", bytes[i], CommittedBytes() - before);
    }
}

} // namespace

void AddXml(Duels & duels, std::wstring const & database)
{
    std::vector<Source> sources = Sources(database);
    AddMemory(duels, sources);
    std::vector<std::shared_ptr<Source const>> shared;
    shared.reserve(sources.size());
    for (Source & source : sources)
        shared.push_back(std::make_shared<Source const>(std::move(source)));
    for (auto const add : {AddParse, AddKeep, AddWrite, AddRelease})
        for (auto const & source : shared)
            add(duels, source);
}

} // namespace bench
