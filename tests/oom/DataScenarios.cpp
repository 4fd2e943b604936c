#include "oom/Scenarios.h"

#include <windows.h>

#include <cstdlib>
#include <cwchar>

namespace
{

bool UseMemoryStream()
{
    CVekRef<IVekMemoryIOStream> const stream(getVekLibKernel()->CreateMemoryIOStream());
    if (!stream || !stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 1000))
        return false;
    int found = 0;
    bool const printed = stream->Printf(L"%d %s", 17, L"text") && stream->Scanf(L"%d", &found);
    return printed && found == 17;
}

bool UseFileStream()
{
    wchar_t const * const folder = _wgetenv(L"VEK_TEST_TMP");
    wchar_t path[300] = L"oom.bin";
    if (folder)
        VekStrPrintfW(path, 300, L"%s/oom.bin", folder);
    CVekRef<IVekFileIOStream> const stream(getVekLibKernel()->CreateFileIOStream());
    if (!stream || !stream->Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0))
        return false;
    bool const printed = stream->Printf("%d %s", 17, "text") && stream->WriteDouble(1.5, true);
    stream->Close();
    int found = 0;
    return stream->Open(path, VEK_IO_READ | VEK_IO_BINARY, 0) && stream->Scanf("%d", &found) && found == 17 && printed;
}

bool KeepTypedData()
{
    CVekRef<IVekMemoryIOStream> const stream(getVekLibKernel()->CreateMemoryIOStream());
    if (!stream || !stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 4096))
        return false;
    CVekTypedDataWriter writer;
    unsigned char const bytes[50] = {1, 2, 3};
    bool succeeded = writer.WriteInt32(L"int", 5) & writer.WriteString(L"text", "narrow");
    succeeded &= writer.WriteWString(L"wide text with a name that is not short", L"wide");
    succeeded &= writer.WriteBuffer(L"buffer", bytes, sizeof bytes) & writer.WriteGUID(L"guid", GUID());
    succeeded &= writer.WriteMatrix(L"matrix", CVekMatrix4x4<double>::Identity());
    for (int i = 0; i < 35; ++i) // so many that there is an index
        succeeded &= writer.WriteColor(L"colour", CVekRGBA<float>(1, 2, 3, 4));
    succeeded &= writer.Write(stream.Get());
    stream->SetPosition(static_cast<int>(stream->GetSize()), true);
    CVekTypedDataReader reader;
    int number = 0;
    CVekString<wchar_t> text;
    CVekMatrix<double> matrix;
    succeeded &= reader.Read(stream.Get());
    succeeded &= reader.ReadInt32(L"INT", number, 0) & reader.ReadMatrix(L"matrix", matrix);
    succeeded &= reader.ReadWString(L"wide text with a name that is not short", text, L"") && text.GetLength() == 4;
    // What was read is found, with an index or without; and so is what is read later.
    for (int round = 0; round < 2; ++round)
    {
        for (int i = 0; i < reader.GetNumEntries(); ++i)
        {
            CVekTypedDataEntry const * const found = reader.FindEntry(reader.GetEntry(i)->GetName());
            isSound &= found && found->GetName().Compare(reader.GetEntry(i)->GetName()) == 0;
        }
        stream->SetPosition(static_cast<int>(stream->GetSize()), true);
        succeeded &= reader.Read(stream.Get());
    }
    return succeeded;
}

class Packet final : public CVekResourceFileFolderPacket
{
public:
    Packet() : CVekResourceFileFolderPacket(nullptr) {}
    ~Packet() override
    {
        while (GetNumChildren() > 0)
            RemoveChild(0);
    }
    bool Read(IVekIOStream *) override { return true; }
    bool Write(IVekIOStream *) override { return true; }
};

struct Bare final : CVekResourceFilePacket
{
    using CVekResourceFilePacket::CVekResourceFilePacket;
    bool Read(IVekIOStream *) override { return true; }
    bool Write(IVekIOStream *) override { return true; }
};

// The indices that are asked for have messages of their own. A copy is shallow and without references.
template <int INDEX>
bool BuildPackets()
{
    CVekRef<Packet> const root(new (std::nothrow) Packet);
    bool succeeded = root.Get() != nullptr;
    for (int i = 0; i < 5 && root; ++i)
    {
        CVekRef<CVekResourceFilePacket> const child(new (std::nothrow) Packet);
        int const count = root->GetNumChildren();
        int const added = child ? root->AddChild(child.Get(), INDEX) : -1;
        isSound &= root->GetNumChildren() == count + (added != -1) &&
                   (!child || (child->GetRefCount() == 1U + (added != -1) && !child->GetParent() == (added == -1)));
        succeeded &= added == (INDEX == -1 ? i : INDEX);
    }
    if (!root)
        return false;
    Bare copy(nullptr);
    copy.CVekResourceFilePacket::operator=(*root.Get());
    bool const isCopied = copy.GetNumChildren() == root->GetNumChildren();
    isSound &= isCopied || copy.GetNumChildren() == 0;
    return succeeded && isCopied && root->GetNumChildren() == 5;
}

template <class T>
bool UseCurve()
{
    CVekNurbsCurve<T> curve, front, back;
    CVekVector3D<T> points[20];
    if (!curve.CreateCircle({}, {2, 0, 0}, {0, 2, 0}))
        return false;
    bool succeeded = curve.InsertKnot(T(0.3)) & curve.ElevateDegree() & curve.Split(T(0.4), front, back);
    CVekNurbsCurve<T> const copy(curve);
    succeeded &= curve.GetPoint(0).IsNear({2, 0, 0}, T(1e-4)) && !copy.IsEmpty();
    succeeded &= curve.Tessellate(T(0.1), points, nullptr, 20) > 4;
    return front.CreateInterpolation(3, points, 5) && succeeded;
}

bool SolveSystem()
{
    CVekMatrix<float> matrix(100, 100);
    if (!matrix.GetElements())
        return false;
    matrix.SetIdentity();
    unsigned int order[100];
    float const right[100] = {1, 2, 3};
    float result[100] = {9, 9, 9};
    bool const regular = CVekMath32::LUDecompose(matrix, order) == 1;
    CVekMath32::LUSubstitution(matrix, order, right, result);
    return regular && result[0] == 1 && result[2] == 3; // or untouched
}

bool Manipulate()
{
    CVekRef<IVekCameraUIController> const controller(getVekLibKernel()->CreateCameraUIController());
    return static_cast<bool>(controller);
}

bool Lex()
{
    CVekRef<IVekLexer> const lexer(getVekLibKernel()->CreateLexer());
    CVekRef<IVekTokenizer> const tokenizer(getVekLibKernel()->CreateTokenizer());
    if (!lexer || !tokenizer)
        return false;
    bool succeeded = lexer->AddComment(L"//", L"\n") == 1;
    int keywords = 0; // in the text
    for (wchar_t const * const word : {L"if", L"else", L"while", L"for"})
    {
        bool const added = lexer->AddKeyword(word, 1, word[0] == L'i');
        succeeded &= added;
        keywords += added && (word[0] == L'i' || word[0] == L'w');
    }
    for (wchar_t const * const sign : {L"=", L"==", L"(", L")", L";"})
        succeeded &= lexer->AddOperator(sign, 2);
    wchar_t const * const text = L"while (x == 10) y = 2.5; // and so on\n if \"a text\"";
    int const many = 40;
    CVekString<wchar_t> longText;
    for (int i = 0; i < many; ++i)
        longText.Append(text);
    bool const tokenized = tokenizer->Tokenize(lexer.Get(), longText, -1);
    // All or nothing, and the lexer has its own callback again.
    isSound &= (tokenizer->GetNumTokens() > 0) == tokenized && !lexer->GetCallback();
    bool const filtered = tokenizer->SetFilter(IVekTokenizer::TOKEN_KEYWORD);
    bool const isWhole = longText.GetLength() == many * static_cast<int>(wcslen(text));
    isSound &= !isWhole || !tokenized || !filtered || tokenizer->GetNumTokens() == keywords * many;
    bool const again = tokenizer->Tokenize(lexer.Get(), longText, -1);
    isSound &= again || tokenizer->GetNumTokens() == 0;
    return succeeded && tokenized && filtered && again && tokenizer->GetNumTokens() == 2 * many;
}

} // namespace

std::vector<Scenario> const dataScenarios = {
    {"UseMemoryStream", UseMemoryStream, {L"CVekMemoryIOStream"}},
    {"UseFileStream", UseFileStream, {L"CVekFileIOStream"}},
    {"KeepTypedData", KeepTypedData, {L"CVekMemoryIOStream"}},
    {"AppendPackets", BuildPackets<-1>, {L"CVekResourceFilePacket::AddPacket --> Add packet failed"}},
    {"InsertPackets", BuildPackets<0>, {L"CVekResourceFilePacket::AddPacket --> Add pckat failed"}}, // kept: so spelt
    {"AppendPacketsBeyond", BuildPackets<9>, {L"CVekResourceFilePacket::AddPacket --> Add pckat failed"}},
    {"UseCurve", UseCurve<float>, {L"CVekNurbsCurve"}},
    {"UseCurveOfDoubles", UseCurve<double>, {L"CVekNurbsCurve"}},
    {"SolveSystem", SolveSystem, {nullptr}},
    {"Manipulate", Manipulate, {nullptr}},
    {"Lex", Lex, {L"CVekLexer", L"CVekTokenizer"}},
};
