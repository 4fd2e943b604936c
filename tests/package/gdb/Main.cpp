// What gdb's printers are shown. Behind "//:" stands the line that gdb is to print, each address as "@".
#include <VekLib.h>

namespace
{

struct Item
{
    Item * GetPrev() const { return links.previous; }
    Item * GetNext() const { return links.next; }
    void SetPrev(Item * item) { links.previous = item; }
    void SetNext(Item * item) { links.next = item; }

    VekDirectLinkedListPtr<Item> links;
};

struct Packet : CVekResourceFilePacket
{
    Packet() : CVekResourceFilePacket(nullptr) {}
    bool Read(IVekIOStream *) override { return true; }
    bool Write(IVekIOStream *) override { return true; }
};

void Stop() {}

} // namespace

int wmain()
{
    CVekLibrary const library;
    CVekString<char> const narrow("narrow");                                    //: narrow = "narrow"
    CVekString<wchar_t> wide(L"\x20AC 5");                                      //: wide = L""
    CVekString<wchar_t> const moved(static_cast<CVekString<wchar_t> &&>(wide)); //: moved = L"€ 5"

    VEK_VARIANT const number(-7);
    VEK_VARIANT const text(L"wide");
    VEK_VARIANT const vector(CVekVector4D<float>(1, 2, 3, 4));
    VEK_VARIANT const matrix(CVekMatrix4x4<double>::Identity());
    VEK_VARIANT buffer(VEK_DT_BUFFER);
    unsigned char const bytes[2] = {65, 66};
    buffer.CopyBuffer(bytes, 2);
    auto const *v1 = &number, *v2 = &text, *v3 = &vector, *v4 = &matrix;
    //: v1 = @ VEK_DT_INT = {value = -7}
    //: v2 = @ VEK_DT_STRINGW = {value = L"wide"}
    //: v3 = @ VEK_DT_VECTOR4D_FLOAT = {value = {1, 2, 3, 4}}
    //: v4 = @ VEK_DT_MATRIX4X4_DOUBLE = {value = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}

    CVekMatrix<double> rows(2, 3); //: rows = 2 x 3 = {[0] = {0, 0.5, 1}, [1] = {1.5, 2, 2.5}}
    for (int i = 0; i < 6; ++i)
        rows.GetElements()[i] = i * 0.5;
    CVekRGBA<unsigned char> const color(1, 2, 3, 255); //: color = (1, 2, 3, 255)
    CVekVector3D<double> const point(1, 2.5, -3);      //: point = (1, 2.5, -3)

    CVekPointerArray<VEK_VARIANT> array;
    array.Reserve(4);
    array.Append(&buffer);
    array.Append(nullptr);
    //: array = 2 pointers, room for 4 = {@ VEK_DT_BUFFER = {size = 2, value = "AB"}, @}
    Item one, two;
    CVekDirectLinkedList<Item *> list; //: list = 2 linked elements = {[0] = @, [1] = @}
    list.AddTail(&one);
    list.AddTail(&two);

    CVekRef<IVekXMLElement> const mesh{library->GetXMLManager()->CreateXMLElement()};
    mesh->SetName(L"m");
    mesh->AddAttribute(L"on", true, -1);
    mesh->FindChild(L"p", true)->AddCDATASection(bytes, 2);
    //: mesh = {m_object = @ <m on="TRUE">, 1 children = {references = 1, [0] = @ <p>, 0 children, CDATA of 2 bytes}}
    auto const * const part = mesh->GetChild(0);
    //: part = @ <p>, 0 children, CDATA of 2 bytes = {references = 1, CDATA = L"䉁"}

    Packet outer, inner;
    outer.AddChild(&inner, -1);
    CVekResourceFilePacket * const packet = &inner;
    //: packet = @ packet, 0 children = {references = 2, parent = @ packet, 1 children, manager = @}

    Stop();
    return v1 && v2 && v3 && v4 && part && packet ? 0 : 1;
}
