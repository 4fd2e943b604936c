// Variants beside what was put into them last.

#include "VekVariant.h"

#include "fuzz/targets/Targets.h"

#include <vector>

namespace fuzz
{

namespace
{

// Each object or buffer has one owner: copies would share it.
struct Slot
{
    explicit Slot(VEK_DATATYPE type_) : value(type_), type(type_) {}
    VEK_VARIANT value;
    VEK_DATATYPE type;
    std::wstring wide;
    std::string narrow;
    std::vector<unsigned char> bytes;
    double number = 0;
};

bool IsShared(VEK_DATATYPE type)
{
    return (type >= VEK_DT_RGBA_UCHAR && type <= VEK_DT_MATRIX4X4_DOUBLE) || type == VEK_DT_BUFFER;
}

void Fill(Slot & slot, Reader & reader)
{
    slot.number = reader.Byte();
    switch (slot.type)
    {
    case VEK_DT_INT:
        slot.value = static_cast<int>(slot.number);
        break;
    case VEK_DT_DOUBLE:
        slot.value = slot.number;
        break;
    case VEK_DT_STRINGA:
        slot.narrow = reader.Text<char>(60);
        slot.value = slot.narrow.c_str();
        break;
    case VEK_DT_STRINGW:
        slot.wide = reader.Text<wchar_t>(60);
        slot.value = slot.wide.c_str();
        break;
    case VEK_DT_VECTOR4D_DOUBLE:
        slot.value = CVekVector4D<double>(slot.number, 2, 3, 4);
        break;
    case VEK_DT_MATRIX4X4_FLOAT:
    {
        CVekMatrix4x4<float> matrix;
        matrix(1, 2) = static_cast<float>(slot.number);
        slot.value = matrix;
        break;
    }
    case VEK_DT_BUFFER:
    {
        std::string const text = reader.Text<char>(50);
        slot.bytes.assign(text.begin(), text.end());
        Check(slot.value.CopyBuffer(slot.bytes.data(), static_cast<int>(slot.bytes.size())) == !slot.bytes.empty(),
              "CopyBuffer");
        break;
    }
    default:
        break;
    }
}

void CheckSlot(Slot const & slot)
{
    VEK_VARIANT const & value = slot.value;
    Check(value.GetType() == slot.type, "the type stays");
    bool right = true;
    if (slot.type == VEK_DT_INT)
        right = static_cast<int const &>(value) == static_cast<int>(slot.number);
    else if (slot.type == VEK_DT_DOUBLE)
        right = static_cast<double const &>(value) == slot.number;
    else if (slot.type == VEK_DT_VECTOR4D_DOUBLE)
        right = static_cast<CVekVector4D<double> const &>(value).x == slot.number;
    else if (slot.type == VEK_DT_MATRIX4X4_FLOAT)
        right = static_cast<CVekMatrix4x4<float> const &>(value)(1, 2) == static_cast<float>(slot.number);
    else if (slot.type == VEK_DT_BUFFER)
        right = value.GetBufferSize() == static_cast<int>(slot.bytes.size()) &&
                std::equal(slot.bytes.begin(), slot.bytes.end(), value.GetBuffer());
    Check(right, "a variant holds its value");
    Check(slot.wide == static_cast<wchar_t const *>(static_cast<CVekString<wchar_t> const &>(value)),
          "a variant holds its wide text");
    Check(slot.narrow == static_cast<char const *>(static_cast<CVekString<char> const &>(value)),
          "a variant holds its narrow text");
}

} // namespace

void RunVariants(Bytes input)
{
    Reader reader(input);
    // They keep their types; a copy of a plain one takes over the type, too.
    Slot slots[] = {Slot(VEK_DT_INT),     Slot(VEK_DT_DOUBLE),          Slot(VEK_DT_STRINGA),
                    Slot(VEK_DT_STRINGW), Slot(VEK_DT_VECTOR4D_DOUBLE), Slot(VEK_DT_MATRIX4X4_FLOAT),
                    Slot(VEK_DT_BUFFER)};
    constexpr unsigned count = sizeof slots / sizeof *slots;
    for (Slot & slot : slots)
        Fill(slot, reader);
    while (!reader.AtEnd())
    {
        Slot & slot = slots[reader.Below(count)];
        Slot const & other = slots[reader.Below(count)];
        if (reader.Below(4) || IsShared(slot.type) || IsShared(other.type))
            Fill(slot, reader);
        else
            slot = other;
        for (Slot const & each : slots)
            CheckSlot(each);
    }
}

} // namespace fuzz
