#include "VekVariant.h"

#include "text/TextKit.h"

#include <guiddef.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

namespace
{

static_assert(sizeof(VEK_DATATYPE) == 4);

TEST(DataType, Sizes)
{
    // Kept: type 14 counts 4 instead of 16, and the matrices count with their headers.
    int const sizes[] = {0, 1, 1, 1, 2, 2, 2, 4, 4, 4, 8, 0, 0, 4, 4, 16, 16, 32, 80, 144, 16, 0, 0};
    for (int type = 0; type < 23; ++type)
        EXPECT_EQ(VekDataTypeSize(static_cast<VEK_DATATYPE>(type)), sizes[type]) << "type " << type;
    for (int type : {-1, INT_MAX, INT_MIN})
        EXPECT_EQ(VekDataTypeSize(static_cast<VEK_DATATYPE>(type)), 0) << "type " << type;
}

// A type with its number.
template <class T, int number>
struct Typed
{
    using Type = T;
    using Read = std::conditional_t<std::is_same_v<T, wchar_t>, unsigned short, T>; // no operator for wchar_t
    static constexpr int NUMBER = number;
    static constexpr bool HAS_OBJECT = number >= 13 && number <= 19;

    static T Value(bool second)
    {
        T value{};
        if constexpr (std::is_arithmetic_v<T>)
            value = T(second ? 7 : 0);
        else if constexpr (requires { value.GetElements(); })
            for (int i = 0; i < 16; ++i)
                value.GetElements()[i] = second ? static_cast<float>(100 + i) : static_cast<float>(1 + i);
        else if constexpr (HAS_OBJECT)
            value = second ? T(1, 2, 3, 4) : T(5, 6, 7, 8);
        else
            value = {second ? 7u : 1u, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
        return value;
    }
};

template <class T>
std::string Bytes(T const & value)
{
    if constexpr (requires { value.GetElements(); })
        return std::string(reinterpret_cast<char const *>(value.GetElements()), 16 * sizeof value(0, 0));
    else
        return std::string(reinterpret_cast<char const *>(&value), sizeof value);
}

template <class T>
class Variant : public testing::Test
{
};
using VariantTypes =
    testing::Types<Typed<bool, 1>, Typed<unsigned char, 2>, Typed<char, 3>, Typed<wchar_t, 4>, Typed<short, 5>,
                   Typed<unsigned short, 6>, Typed<int, 7>, Typed<unsigned int, 8>, Typed<float, 9>, Typed<double, 10>,
                   Typed<CVekRGBA<unsigned char>, 13>, Typed<CVekRGBA<float>, 14>, Typed<CVekVector4D<int>, 15>,
                   Typed<CVekVector4D<float>, 16>, Typed<CVekVector4D<double>, 17>, Typed<CVekMatrix4x4<float>, 18>,
                   Typed<CVekMatrix4x4<double>, 19>, Typed<GUID, 20>>;
TYPED_TEST_SUITE(Variant, VariantTypes);

TYPED_TEST(Variant, HoldsAndReplacesItsValue)
{
    using Read = typename TypeParam::Read;
    auto const first = TypeParam::Value(true), second = TypeParam::Value(false);
    VEK_VARIANT variant(first);
    EXPECT_EQ(variant.GetType(), TypeParam::NUMBER);
    EXPECT_EQ(Bytes(static_cast<Read &>(variant)), Bytes(first));
    variant = second;
    EXPECT_EQ(variant.GetType(), TypeParam::NUMBER);
    VEK_VARIANT const & constant = variant;
    EXPECT_EQ(Bytes(static_cast<Read const &>(constant)), Bytes(second));
    static_cast<Read &>(variant) = static_cast<Read>(first);
    EXPECT_EQ(Bytes(static_cast<Read const &>(constant)), Bytes(first));
    EXPECT_EQ(variant.GetBufferSize(), 0);
    EXPECT_TRUE(static_cast<CVekString<char> const &>(variant).IsEmpty());
    EXPECT_TRUE(static_cast<CVekString<wchar_t> const &>(variant).IsEmpty());

    VEK_VARIANT ofATypeAlone(static_cast<VEK_DATATYPE>(TypeParam::NUMBER));
    EXPECT_EQ(ofATypeAlone.GetType(), TypeParam::NUMBER);
    EXPECT_EQ(ofATypeAlone.GetBuffer() != nullptr, TypeParam::HAS_OBJECT);
    ofATypeAlone = first;
    EXPECT_EQ(Bytes(static_cast<Read &>(ofATypeAlone)), Bytes(first));
    ofATypeAlone.DestroyBuffer();
    EXPECT_EQ(ofATypeAlone.GetBuffer(), nullptr);
}

// An object type read from, and assigned to, a variant of every other type touches nothing and finds zeros.
TYPED_TEST(Variant, WithoutAnObjectOfTheTypeReadsZerosAndIgnoresAssignment)
{
    using T = typename TypeParam::Type;
    auto const value = TypeParam::Value(true);
    for (int type = 0; type < 22 && TypeParam::HAS_OBJECT; ++type)
    {
        SCOPED_TRACE(type);
        VEK_VARIANT variant(static_cast<VEK_DATATYPE>(type));
        if (type == TypeParam::NUMBER)
            variant.DestroyBuffer();
        if (type == VEK_DT_BUFFER)
            variant.SetBuffer(static_cast<unsigned char *>(malloc(1)), 1);
        if constexpr (TypeParam::HAS_OBJECT)
        {
            T const & nothing = std::as_const(variant);
            variant = value;
            static_cast<T &>(variant) = value;
            EXPECT_EQ(Bytes(nothing), Bytes(T())) << "reads write nothing";
        }
    }
    // What SetBuffer puts into a variant of an object type is no object unless it is large enough for one.
    for (int size : {0, -1, 1, static_cast<int>(sizeof(T))})
        if constexpr (TypeParam::HAS_OBJECT)
        {
            SCOPED_TRACE(size);
            VEK_VARIANT variant(static_cast<VEK_DATATYPE>(TypeParam::NUMBER));
            void * const block = calloc(1, size > 0 ? static_cast<size_t>(size) : 1);
            EXPECT_TRUE(variant.SetBuffer(static_cast<unsigned char *>(block), size));
            EXPECT_EQ(variant.GetBufferSize(), size > 0 ? size : 0);
            variant = value;
            EXPECT_FALSE(Bytes(static_cast<T &>(variant)).empty());
            unsigned char const bytes[200] = {};
            EXPECT_TRUE(variant.CopyBuffer(bytes, 200) && variant.GetBufferSize() == 200);
            EXPECT_TRUE(variant.SetBuffer(variant.GetBuffer(), size)); // its own again
            EXPECT_EQ(variant.GetBufferSize(), size > 0 ? size : 0);
            VEK_VARIANT own(value);
            EXPECT_TRUE(own.SetBuffer(own.GetBuffer(), size));
            EXPECT_EQ(Bytes(static_cast<T &>(own)), Bytes(value)) << "its own object is no buffer";
        }
}

TEST(VariantRules, KeptAssigningNeverChangesTheTypeButCopyingDoes)
{
    VEK_VARIANT variant(5);
    variant = 2.5f;
    EXPECT_EQ(variant.GetType(), VEK_DT_INT);
    EXPECT_EQ(static_cast<int>(variant), 0x40200000);
    variant = L"text";
    EXPECT_EQ(variant.GetType(), VEK_DT_INT);
    EXPECT_EQ(Text(static_cast<CVekString<wchar_t> const &>(variant)), L"text");
    EXPECT_EQ(static_cast<int>(variant), 0x40200000);

    VEK_VARIANT narrow("abc"), wide(L"xyz"), nothing(static_cast<char const *>(nullptr));
    EXPECT_TRUE(narrow.GetType() == 11 && wide.GetType() == 12);
    EXPECT_EQ(Text(static_cast<CVekString<char> const &>(narrow)), "abc");
    EXPECT_TRUE(static_cast<CVekString<wchar_t> const &>(narrow).IsEmpty());
    EXPECT_EQ(Text(static_cast<CVekString<wchar_t> const &>(wide)), L"xyz");
    EXPECT_TRUE(static_cast<CVekString<char> const &>(nothing).IsEmpty());
    VEK_VARIANT const copy(wide);
    wide = L"other";
    EXPECT_EQ(Text(static_cast<CVekString<wchar_t> const &>(copy)), L"xyz");
    narrow = copy;
    EXPECT_EQ(narrow.GetType(), 12);
    EXPECT_TRUE(static_cast<CVekString<char> const &>(narrow).IsEmpty());
}

TEST(VariantRules, Buffer)
{
    VEK_VARIANT variant(VEK_DT_BUFFER);
    unsigned char const bytes[] = {1, 2, 3};
    EXPECT_FALSE(variant.CopyBuffer(bytes, 0) || variant.CopyBuffer(bytes, -1) || variant.CopyBuffer(nullptr, 3));
    EXPECT_TRUE(variant.GetBuffer() == nullptr && variant.GetBufferSize() == 0);
    ASSERT_TRUE(variant.CopyBuffer(bytes, 3));
    EXPECT_TRUE(memcmp(variant.GetBuffer(), bytes, 3) == 0 && variant.GetBuffer() != bytes);
#ifndef VEKLIB_GUARD // whose heap can't be asked
    EXPECT_EQ(_msize(variant.GetBuffer()), 3U) << "kept: hosts that detach it give it to free";
#endif
    ASSERT_TRUE(variant.CopyBuffer(variant.GetBuffer() + 1, 2)); // its own bytes
    EXPECT_TRUE(variant.GetBufferSize() == 2 && memcmp(variant.GetBuffer(), bytes + 1, 2) == 0);
    ASSERT_TRUE(variant.SetBuffer(variant.GetBuffer(), 1)); // its own block
    EXPECT_TRUE(variant.GetBufferSize() == 1 && variant.GetBuffer()[0] == 2);
    EXPECT_FALSE(variant.CopyBuffer(bytes, 0));
    EXPECT_TRUE(variant.GetBuffer() == nullptr && variant.GetBufferSize() == 0);
    // A block of this program's own global allocator is freed by the library.
    auto * const block = static_cast<unsigned char *>(operator new(8));
    EXPECT_TRUE(variant.SetBuffer(block, 8));
    EXPECT_TRUE(std::as_const(variant).GetBuffer() == block && variant.GetBufferSize() == 8);
    VEK_VARIANT const taken(static_cast<unsigned char *>(malloc(5)), 5);
    EXPECT_TRUE(taken.GetType() == 21 && taken.GetBufferSize() == 5);
}

TEST(VariantRules, KeptCopiesShareTheObjectUntilTheyAreDetached)
{
    VEK_VARIANT const source(CVekVector4D<int>(1, 2, 3, 4));
    VEK_VARIANT copy(source), target(1);
    target = source;
    for (VEK_VARIANT * one : {&copy, &target})
    {
        EXPECT_EQ(one->GetType(), 15);
        EXPECT_EQ(std::as_const(*one).GetBuffer(), source.GetBuffer());
        *one = VEK_VARIANT(VEK_DT_UNKNOWN);
        EXPECT_EQ(one->GetBuffer(), nullptr);
    }
    EXPECT_EQ(static_cast<CVekVector4D<int> const &>(source).w, 4);
}

} // namespace
