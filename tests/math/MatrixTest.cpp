#include "VekMath.h"

#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

static_assert(sizeof(CVekVector4D<double>) == 32 && sizeof(CVekVector4D<int>) == 16);
static_assert(sizeof(CVekRGBA<unsigned char>) == 4 && sizeof(CVekRGBA<float>) == 16);
static_assert(std::is_trivially_copyable_v<CVekVector4D<float>> &&
              std::is_trivially_copyable_v<CVekRGBA<unsigned char>>);
static_assert(CVekVector4D<int>() != CVekVector4D<int>(0, 0, 0, 1) && CVekRGBA<float>(1, 2, 3, 4).alpha == 4);

template <class T>
class Matrix : public testing::Test
{
protected:
    using Elements = std::vector<T>;

    template <class M>
    static Elements All(M const & matrix)
    {
        return Elements(matrix.GetElements(), matrix.GetElements() + size_t{matrix.GetRows()} * matrix.GetColumns());
    }
    // Elements 1, 2, 3 and so on.
    static CVekMatrix<T> Counting(unsigned int rows, unsigned int columns)
    {
        CVekMatrix<T> matrix(rows, columns);
        for (unsigned int i = 0; i < rows * columns; ++i)
            matrix.GetElements()[i] = static_cast<T>(i + 1);
        return matrix;
    }
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Matrix, Precisions);

TYPED_TEST(Matrix, CreateAndDestroy)
{
    CVekMatrix<TypeParam> matrix;
    EXPECT_TRUE(matrix.GetRows() == 0 && matrix.GetColumns() == 0 && matrix.GetElements() == nullptr);
    EXPECT_TRUE(matrix.Create(3, 2) && &matrix(2, 1) == matrix.GetElements() + 5);
    // Kept: true without memory too, with the old sizes and no elements.
    EXPECT_TRUE(matrix.Create(UINT_MAX, UINT_MAX));
    EXPECT_TRUE(matrix.GetRows() == 3 && matrix.GetColumns() == 2 && matrix.GetElements() == nullptr);
    // Nothing of this has elements to touch.
    matrix.SetIdentity();
    matrix.AddTranslation(1, 2, 3);
    matrix.Scale(1, 2, 3);
    matrix *= matrix;
    matrix(0, 0) = 5;
    EXPECT_EQ(matrix(0, 0), 0);
    EXPECT_TRUE(matrix.Create(1, 1));
    matrix.Destroy();
    EXPECT_TRUE(matrix.GetRows() == 1 && matrix.GetElements() == nullptr);
    VekGuard::FailFrom(1);
    EXPECT_TRUE(matrix.Create(2, 2));
    EXPECT_EQ(VekGuard::FailReset(), VekGuard::Active);
    EXPECT_TRUE(!VekGuard::Active || (matrix.GetRows() == 1 && matrix.GetElements() == nullptr));
}

TYPED_TEST(Matrix, FixedSize)
{
    CVekMatrix4x4<TypeParam> matrix;
    TypeParam const * const elements = matrix.GetElements();
    CVekMatrix<TypeParam> & base = matrix;
    EXPECT_TRUE(base.Create(2, 9));
    base.Destroy();
    EXPECT_TRUE(matrix.GetRows() == 4 && matrix.GetColumns() == 4 && matrix.GetElements() == elements);
    EXPECT_EQ(reinterpret_cast<char const *>(elements + 16), reinterpret_cast<char const *>(&matrix + 1));
    base = this->Counting(5, 2); // takes what both have
    EXPECT_EQ(this->All(matrix), (std::vector<TypeParam>{1, 2, 0, 0, 3, 4, 0, 0, 5, 6, 0, 0, 7, 8, 0, 0}));
    CVekMatrixMxN<TypeParam, 2, 3> other; // any size, made by the host
    other.SetIdentity();
    EXPECT_EQ(this->All(other), (std::vector<TypeParam>{1, 0, 0, 0, 1, 0}));
}

TYPED_TEST(Matrix, CopiesOwnTheirElements)
{
    auto source = this->Counting(3, 5);
    CVekMatrix<TypeParam> copy(source), assigned(2, 2);
    assigned = source;
    source(0, 0) = 99;
    for (auto const * one : {&copy, &assigned})
        EXPECT_EQ(this->All(*one), this->All(this->Counting(3, 5)));
    assigned = *&assigned;
    EXPECT_EQ(assigned(2, 4), 15);

    CVekMatrix4x4<TypeParam> first, second;
    first.SetIdentity();
    second = first;
    CVekMatrix4x4<TypeParam> const third(first);
    CVekMatrix<TypeParam> const loose(first);
    first(0, 0) = 99;
    EXPECT_TRUE(second(0, 0) == 1 && third(0, 0) == 1 && loose(0, 0) == 1 && loose(3, 3) == 1);
    source.Destroy();
    assigned = source;
    EXPECT_EQ(assigned.GetElements(), nullptr);
}

TYPED_TEST(Matrix, IdentityTranslationAndScale)
{
    CVekMatrix4x4<TypeParam> matrix;
    matrix.SetIdentity();
    matrix.AddTranslation(1, 2, 3);
    EXPECT_EQ(this->All(matrix), (std::vector<TypeParam>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}));
    matrix.Scale(2, 3, 4);
    EXPECT_EQ(this->All(matrix), (std::vector<TypeParam>{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 2, 6, 12, 1}));
    auto narrow = this->Counting(2, 3);
    narrow.SetIdentity();
    narrow.AddTranslation(1, 2, 3); // there is no row 3
    EXPECT_EQ(this->All(narrow), (std::vector<TypeParam>{1, 0, 0, 0, 1, 0}));
    auto thin = this->Counting(4, 2);
    thin.AddTranslation(10, 20, 30);
    EXPECT_EQ(this->All(thin), (std::vector<TypeParam>{1, 2, 3, 4, 5, 6, 17, 28}));
}

// Sums of products over the row count, with elements that count as 0 outside their matrix.
TYPED_TEST(Matrix, ProductStaysWithinBothMatrices)
{
    for (unsigned int shape = 0; shape < 6 * 7 * 5 * 6; ++shape)
    {
        unsigned int const rows = 1 + shape % 6, columns = 1 + shape / 6 % 7;
        auto const before = this->Counting(rows, columns), other = this->Counting(1 + shape / 42 % 5, 1 + shape / 210);
        auto product = before;
        product *= other;
        for (unsigned int i = 0; i < rows; ++i)
            for (unsigned int j = 0; j < columns; ++j)
            {
                TypeParam sum = 0;
                for (unsigned int k = 0; k < rows; ++k) // kept: the row count is the inner dimension
                    sum += before(i, k) * other(k, j);
                ASSERT_EQ(product(i, j), i < 4 && j < 4 ? sum : before(i, j))
                    << rows << 'x' << columns << " by " << other.GetRows() << 'x' << other.GetColumns() << " at " << i
                    << ", " << j;
            }
    }
    auto square = this->Counting(4, 4);
    square *= square;
    EXPECT_TRUE(square(0, 0) == 90 && square(3, 3) == 600) << "by itself";
}

TYPED_TEST(Matrix, AnElementOutsideBelongsToNoMatrix)
{
    auto matrix = this->Counting(2, 2);
    for (unsigned int outside : {2u, 3u, UINT_MAX})
    {
        matrix(outside, 0) = 7;
        matrix(0, outside) = 7;
        EXPECT_EQ(matrix(outside, outside), 0);
    }
    TypeParam & written = matrix(9, 9);
    written = 7;
    EXPECT_EQ(std::as_const(matrix)(9, 9), 0);
    std::thread([&] { EXPECT_NE(&matrix(9, 9), &written); }).join();
    EXPECT_EQ(written, 7) << "neither reading nor another thread changes it";
    EXPECT_EQ(this->All(matrix), (std::vector<TypeParam>{1, 2, 3, 4}));
}

} // namespace
