#include "VekIO.h"
#include "VekLib.h"
#include "VekRef.h"

#include "base/LiveObjects.h"
#include "xml/XMLElementSupport.h"
#include "xml/XMLErrorCode.h"
#include "xml/XMLManager.h"
#include "xml/XMLParserState.h"

#include <limits.h>
#include <stdlib.h>

#include <new>

namespace
{

// Kept: bits 1 and 8, binary reading.
constexpr unsigned int OPEN_MODE = VEK_IO_READ | VEK_IO_BINARY;

struct FileBytes
{
    FileBytes() = default;
    FileBytes(FileBytes const &) = delete;
    FileBytes & operator=(FileBytes const &) = delete;
    ~FileBytes() { free(data); }

    char * data = nullptr;
    int size = 0;
};

bool ReadFile(wchar_t const * path, FileBytes & bytes, CVekXMLParser::State & state)
{
    auto const stream = CVekRef<IVekFileIOStream>::Adopt(getVekLibKernel()->CreateFileIOStream());
    if (!stream)
    {
        VekLogOutput(0, L"CVekXMLParser::Parse --> Failed to create file io stream");
        return state.Fail(VEK_XML_ERROR_MEMORY, L"out of memory");
    }
    if (!stream->Open(path, OPEN_MODE, 0))
    {
        VekLogOutput(0, L"CVekXMLParser::Parse --> Failed to open file %s", path ? path : L"");
        return state.Fail(VEK_XML_ERROR_FILE, L"the file can't be opened", vek::SystemCodeOf(*stream));
    }
    unsigned int const size = stream->GetSize();
    bytes.data = size < INT_MAX ? static_cast<char *>(malloc(size + size_t{1})) : nullptr;
    if (!bytes.data)
    {
        VekLogOutput(0, L"CVekXMLParser::Parse --> Failed to allocate buffer");
        return size < INT_MAX ? state.Fail(VEK_XML_ERROR_MEMORY, L"out of memory")
                              : state.Fail(VEK_XML_ERROR_TOO_LONG, L"has 2 GB or more");
    }
    if (size > 0 && !stream->Read(bytes.data, size, true))
    {
        VekLogOutput(0, L"CVekXMLParser::Parse --> Failed to read file %s", path);
        return state.Fail(VEK_XML_ERROR_FILE, L"the file can't be read", vek::SystemCodeOf(*stream));
    }
    bytes.data[size] = 0;
    bytes.size = static_cast<int>(size);
    return true;
}

/// The tokenizer, the root and the element stack for the length of one parse.
class ParseScope
{
public:
    explicit ParseScope(CVekXMLParser::State & state, IVekXMLDocument * document) : m_state(state)
    {
        state.document = document;
        state.expat = XML_ParserCreate(nullptr);
        if (state.expat)
            vek::InstallXMLCallbacks(state.expat, &state);
        if (state.expat && state.extras)
            vek::InstallExtraXMLCallbacks(state.expat, &state);
    }
    ParseScope(ParseScope const &) = delete;
    ParseScope & operator=(ParseScope const &) = delete;
    ~ParseScope()
    {
        m_state.LeaveElements();
        m_state.document = nullptr;
        if (m_state.extras)
            m_state.source.End();
        if (m_state.expat)
            XML_ParserFree(m_state.expat);
        m_state.expat = nullptr;
    }

private:
    CVekXMLParser::State & m_state;
};

bool EnsureRootElement(IVekXMLDocument * document)
{
    if (document->GetRootElement())
        return true;
    auto const root = CVekRef<IVekXMLElement>::Adopt(CVekXMLManager::NewElement(L"", 0));
    return root && document->SetRootElement(root.Get());
}

} // namespace

CVekXMLParser::CVekXMLParser() : m_state(nullptr)
{
    vek::CountBirth(vek::LiveClass::XMLParser);
}

CVekXMLParser::~CVekXMLParser()
{
    vek::CountEnd(vek::LiveClass::XMLParser);
    delete m_state;
}

bool CVekXMLParser::IsComplete() const
{
    return m_state && m_state->complete;
}

VekXMLError CVekXMLParser::GetError() const
{
    if (m_state)
        return m_state->error;
    VekXMLError error;
    error.code = VEK_XML_ERROR_NOT_STARTED;
    error.text = L"nothing was parsed";
    return error;
}

// Null when memory is exhausted.
CVekXMLParser::Options * CVekXMLParser::ChangeOptions()
{
    if (!m_state)
        m_state = new (std::nothrow) State(Options());
    if (!m_state)
        VekLogOutput(0, L"CVekXMLParser::SetKeepAll --> Failed to allocate memory");
    return m_state ? &m_state->options : nullptr;
}

bool CVekXMLParser::SetKeepAll(VEK_XML_KEEP keep)
{
    Options * const options = ChangeOptions();
    if (options)
        options->keep = static_cast<VEK_XML_KEEP>(keep & VEK_XML_KEEP_ALL);
    return options != nullptr;
}

bool CVekXMLParser::SetKeepPositions(bool keep)
{
    Options * const options = ChangeOptions();
    if (options)
        options->positions = keep;
    return options != nullptr;
}

bool CVekXMLParser::SetPlatformEncodings(bool use)
{
    Options * const options = ChangeOptions();
    if (options)
        options->encodings = use;
    return options != nullptr;
}

bool CVekXMLParser::GetPosition(IVekXMLElement const * element, VekXMLPosition & position) const
{
    return m_state && m_state->extras && m_state->extras->positions.Find(element, position);
}

bool CVekXMLParser::GetAttributePosition(IVekXMLElement const * element, int index, unsigned int & offset,
                                         unsigned int & length) const
{
    vek::XMLRange value = {0, 0};
    if (!m_state || !m_state->extras || !m_state->extras->positions.FindValue(element, index, value))
        return false;
    offset = value.offset;
    length = value.length;
    return true;
}

unsigned int CVekXMLParser::GetSourceCodePage() const
{
    return m_state && m_state->extras ? m_state->source.CodePage() : 0;
}

bool CVekXMLParser::ParseXMLFile(wchar_t const * path, IVekXMLDocument * document)
{
    return ParseDocument(document,
                         [path](State & state)
                         {
                             FileBytes bytes;
                             return ReadFile(path, bytes, state) && state.ParseBytes(bytes.data, bytes.size);
                         });
}

bool CVekXMLParser::ParseXMLMemory(void const * bytes, unsigned int size, IVekXMLDocument * document)
{
    return ParseDocument(document,
                         [bytes, size](State & state)
                         {
                             if (size >= INT_MAX || (!bytes && size))
                             {
                                 VekLogOutput(0, bytes ? L"CVekXMLParser::ParseXMLMemory --> Text is too long"
                                                       : L"CVekXMLParser::ParseXMLMemory --> Text is NULL");
                                 return state.Fail(VEK_XML_ERROR_TOO_LONG, bytes ? L"has 2 GB or more" : L"no text");
                             }
                             return state.ParseBytes(bytes, static_cast<int>(size));
                         });
}

template <class Source>
bool CVekXMLParser::ParseDocument(IVekXMLDocument * document, Source source)
{
    if (m_state && m_state->expat)
    {
        VekLogOutput(0, L"CVekXMLParser::Parse --> Parser is parsing already");
        return false;
    }
    // What a host's element is told, it may answer by letting go of both.
    auto const self = CVekRef<CVekXMLParser>::Share(this);
    auto const shared = CVekRef<IVekXMLDocument>::Share(document);
    // A fresh state for each document, with what was asked for.
    State * const fresh = new (std::nothrow) State(m_state ? m_state->options : Options());
    if (fresh)
    {
        delete m_state;
        m_state = fresh;
    }
    else if (m_state)
        m_state->Forget();
    if (!document)
    {
        VekLogOutput(0, L"CVekXMLParser::ParseXMLFile --> Document is NULL");
        return m_state && m_state->Fail(VEK_XML_ERROR_NO_DOCUMENT, L"no document");
    }
    if (!fresh || (fresh->options.Any() && !fresh->InstallExtras()))
    {
        VekLogOutput(0, L"CVekXMLParser::ParseXMLFile --> Error creating XML Parser");
        return m_state && m_state->Fail(VEK_XML_ERROR_MEMORY, L"out of memory");
    }
    ParseScope const scope(*m_state, document);
    if (!m_state->expat)
    {
        VekLogOutput(0, L"CVekXMLParser::ParseXMLFile --> Error creating XML Parser");
        return m_state->Fail(VEK_XML_ERROR_MEMORY, L"out of memory");
    }
    if (!EnsureRootElement(document))
    {
        VekLogOutput(0, L"CVekXMLParser::ParseXMLFile --> Failed to create root Element for document");
        return m_state->Fail(VEK_XML_ERROR_MEMORY, L"out of memory");
    }
    if (!m_state->PushRoot(vek::ToLibraryElement(document->GetRootElement())))
    {
        VekLogOutput(0, L"CVekXMLParser::ParseXMLFile --> Failed to push Element");
        return m_state->Fail(VEK_XML_ERROR_NO_DOCUMENT, L"the document's root element can't be read into");
    }
    if (!source(*m_state))
    {
        m_state->complete = false;
        VekLogOutput(0, L"CVekXMLParser::ParseXMLFile --> Failed on parsing");
        return false;
    }
    return true;
}
