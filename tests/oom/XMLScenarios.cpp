#include "oom/Scenarios.h"

#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

constexpr char DOCUMENT[] = "<?xml version='1.0'?><!DOCTYPE scene [<!ELEMENT scene (node*, (a|b)+)><!ELEMENT node ANY>"
                            "<!ATTLIST node name CDATA #REQUIRED kind (x|y) 'x'><!ENTITY e 'text'>]>"
                            "<scene><node name='first &amp; last &e;' size='1, 2, 3, 4'><![CDATA[some bytes]]></node>"
                            "<node name='second'><a/><b/><a/><b/><a/><b/><a/><b/><a/></node></scene>";

IVekXMLManager & Manager()
{
    return *getVekLibKernel()->GetXMLManager();
}

bool Build()
{
    CVekRef<IVekXMLElement> const root(Manager().CreateXMLElement());
    if (!root)
        return false;
    root->SetName(L"root");
    VEK_VARIANT const values[] = {VEK_VARIANT(true),     VEK_VARIANT(5),
                                  VEK_VARIANT(1.5F),     VEK_VARIANT(L"a < b & c"),
                                  VEK_VARIANT("narrow"), VEK_VARIANT(CVekVector4D<float>(1, 2, 3, 4))};
    bool succeeded = true;
    for (VEK_VARIANT const & value : values)
        for (wchar_t const * const name : {L"a", L"b", L"c", L"d"})
            succeeded &= root->SetAttributeValue(name, value, true);
    for (wchar_t const * const name : {L"child", L"other", L"CHILD"})
        succeeded &= root->FindChild(name, true) != nullptr;
    succeeded &= root->AddCDATASection(reinterpret_cast<unsigned char const *>(L"text"), 8);
    CVekString<wchar_t> text;
    succeeded &= root->GetAttributeValue(L"d", text, L"default");
    root->RemoveAllAttributes();
    // Names and texts that found no memory are empty.
    return succeeded && root->GetName().GetLength() == 4 && root->GetNumChildren() == 2 && !text.IsEmpty();
}

// Kept: what AddChild can't store keeps the reference that was added, and the index of the last child comes back.
bool AddAChild()
{
    CVekRef<IVekXMLElement> const parent(Manager().CreateXMLElement());
    CVekRef<IVekXMLElement> const child(Manager().CreateXMLElement());
    if (!parent || !child)
        return false;
    int const index = parent->AddChild(child.Get(), -1);
    bool const isStored = parent->GetNumChildren() == 1;
    EXPECT_EQ(index, isStored ? 0 : -1);
    EXPECT_EQ(child->GetRefCount(), 2u);
    if (!isStored)
        child->Release();
    return isStored;
}

bool Make()
{
    auto const document = VekNewXMLDocument(L"index");
    IVekXMLElement * const child = document ? VekAddXMLChild(*document->GetRootElement(), L"asset") : nullptr;
    isSound =
        !document || (document->GetRootElement()->GetName() == L"index" && (!child || child->GetName() == L"asset"));
    return child != nullptr;
}

// Of a wide element everything is found, with an index or without.
bool SearchAWideElement()
{
    CVekRef<IVekXMLElement> const parent(Manager().CreateXMLElement());
    bool succeeded = parent ? true : false;
    std::wstring name = L"n00";
    for (int i = 0; succeeded && i < 60; ++i)
    {
        name[1] = static_cast<wchar_t>(L'0' + i / 10);
        name[2] = static_cast<wchar_t>(L'0' + i % 10);
        succeeded = parent->FindChild(name.c_str(), true) && parent->AddAttribute(name.c_str(), 1, -1) == i;
    }
    for (int i = 0; parent && i < parent->GetNumAttributes(); ++i)
    {
        wchar_t const * const each = parent->GetChild(i)->GetName();
        EXPECT_EQ(parent->FindChild(each, false), parent->GetChild(i));
        EXPECT_EQ(parent->FindAttributeIndex(each), i);
    }
    return succeeded;
}

bool Parse()
{
    CVekRef<IVekXMLDocument> const document(Manager().CreateXMLDocument());
    CVekRef<CVekXMLParser> const parser(new (std::nothrow) CVekXMLParser);
    if (!document || !parser)
        return false;
    bool const parsed = parser->ParseXMLMemory(DOCUMENT, sizeof DOCUMENT - 1, document.Get());
    // What was read before the failure can be searched and released.
    bool const found = document->FindElementFromPath(L"node", false) || document->GetRootElement() == nullptr;
    return parsed && found && document->GetNumDTDRules() == 2;
}

bool Write()
{
    // The document must be whole, so that only writing fails.
    CVekRef<IVekXMLDocument> const document(Manager().CreateXMLDocument());
    CVekRef<CVekXMLParser> const parser(new (std::nothrow) CVekXMLParser);
    CVekRef<IVekXMLWriter> const writer(Manager().CreateXMLWriter());
    CVekRef<IVekMemoryIOStream> const stream(getVekLibKernel()->CreateMemoryIOStream());
    if (!document || !parser || !writer || !stream)
        return false;
    return parser->ParseXMLMemory(DOCUMENT, sizeof DOCUMENT - 1, document.Get()) &&
           stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 4096) && writer->WriteXML(stream.Get(), document.Get());
}

// The free functions that copy, change, walk and save.
bool Edit()
{
    CVekRef<IVekXMLDocument> const document(Manager().CreateXMLDocument());
    CVekRef<CVekXMLParser> const parser(new (std::nothrow) CVekXMLParser);
    if (!document || !parser || !parser->ParseXMLMemory(DOCUMENT, sizeof DOCUMENT - 1, document.Get()))
        return false;
    IVekXMLElement & root = *document->GetRootElement();
    CVekRef<IVekXMLElement> const copy(VekCloneXMLElement(&root));
    bool succeeded = copy && VekIsSameXML(copy.Get(), &root);
    IVekXMLElement * const node = root.GetChild(0);
    bool const isReplaced = VekReplaceXMLAttribute(node, L"kind", L"sort", L"a < b");
    isSound = isSound && node->FindAttributeIndex(isReplaced ? L"sort" : L"kind") >= 0;
    auto walk = VekDescendants(root);
    int count = 0;
    for ([[maybe_unused]] IVekXMLElement const & element : walk)
        ++count;
    isSound = isSound && (count == 11 || walk.IsOutOfMemory());
    return succeeded && isReplaced && !walk.IsOutOfMemory();
}

constexpr char KEPT[] =
    "<?xml version='1.0' encoding='windows-1252'?><!DOCTYPE a [<!ENTITY e 'f'>]><a \xE9='1\xE9&#10;' c='2'>text<!-- c "
    "--><?p q?><b><![CDATA[d]]></b><![CDATA[d]]>&e;<g/></a><!-- e -->";
constexpr char COPIED[] = "<?xml version='1.0' encoding='windows-1252'?><!DOCTYPE a [<!ENTITY e 'f'>]><a "
                          "\xE9=\"1\xE9&#10;\" c=\"2\">text<!-- c "
                          "--><?p q?><b><![CDATA[d]]></b><![CDATA[d]]>f<g/></a><!-- e -->";

// What is told to have been kept and written is all there.
bool KeepAll()
{
    CVekRef<IVekXMLDocument> const document(Manager().CreateXMLDocument());
    CVekRef<CVekXMLParser> const parser(new (std::nothrow) CVekXMLParser);
    CVekRef<CVekXMLWriter> const writer(new (std::nothrow) CVekXMLWriter);
    CVekRef<IVekMemoryIOStream> const stream(getVekLibKernel()->CreateMemoryIOStream());
    if (!document || !parser || !writer || !stream || !parser->SetKeepAll(VEK_XML_KEEP_ALL) ||
        !parser->SetKeepPositions(true) || !stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 4096))
        return false;
    writer->SetKeepAll(true);
    if (!parser->ParseXMLMemory(KEPT, sizeof KEPT - 1, document.Get()) ||
        !writer->WriteXML(stream.Get(), document.Get()))
        return false;
    VekXMLPosition position;
    isSound = std::memcmp(stream->GetBuffer(), COPIED, sizeof COPIED - 1) == 0 &&
              parser->GetPosition(document->FindElementFromPath(L"g", false), position);
    return isSound;
}

} // namespace

std::vector<Scenario> const xmlScenarios = {
    {"Build", Build, {L"CVekXML"}},
    {"AddChild", AddAChild, {L"CVekXML"}},
    {"Make", Make, {L"CVekXML"}},
    {"Wide", SearchAWideElement, {L"CVekXML"}},
    {"Parse", Parse, {L"CVekXML", L"   "}},
    {"Edit", Edit, {L"CVekXML", L"   ", L"VekCloneXML", L"VekReplaceXML"}},
    {"Write", Write, {L"CVekXML", L"   ", L"CVekMemoryIOStream"}},
    {"KeepAll", KeepAll, {L"CVekXML", L"   ", L"CVekMemoryIOStream"}},
};
