#include "oom/Scenarios.h"

#include "support/TestStream.h"

namespace
{

bool WriteDocument(IVekIOStream & stream)
{
    IVekXMLManager & manager = *getVekLibKernel()->GetXMLManager();
    CVekRef<IVekXMLDocument> const document(manager.CreateXMLDocument());
    CVekRef<IVekXMLElement> const root(manager.CreateXMLElement());
    document->SetRootElement(root.Get());
    // More than what the writer collects before it writes.
    for (int i = 0; i < 4000; ++i)
        root->AddChild(CVekRef<IVekXMLElement>(manager.CreateXMLElement()).Get(), -1);
    return CVekRef<IVekXMLWriter>(manager.CreateXMLWriter())->WriteXML(&stream, document.Get());
}

void Fill(CVekTypedDataWriter & writer)
{
    unsigned char const bytes[5] = {1, 2, 3};
    writer.WriteInt32(L"int", 5);
    writer.WriteWString(L"text", L"wide");
    writer.WriteBuffer(L"buffer", bytes, sizeof bytes);
    writer.WriteVector(L"vector", CVekVector4D<float>(1, 2, 3, 4));
}

bool WriteTypedData(IVekIOStream & stream)
{
    CVekTypedDataWriter writer;
    Fill(writer);
    return writer.Write(&stream);
}

std::string TypedData()
{
    TestStream stream;
    WriteTypedData(stream);
    return stream.bytes;
}

bool ReadTypedData(IVekIOStream & stream)
{
    CVekTypedDataReader reader;
    bool const read = reader.Read(&stream);
    // What came before the failure stays, and can be asked for.
    int number = 0;
    reader.ReadInt32(L"int", number, 0);
    return read && (number == 5 || number == 0);
}

} // namespace

std::vector<StreamScenario> const streamScenarios = {
    {"WriteDocument", WriteDocument, nullptr, true},
    {"WriteTypedData", WriteTypedData, nullptr, true},
    {"ReadTypedData", ReadTypedData, TypedData, false},
};
