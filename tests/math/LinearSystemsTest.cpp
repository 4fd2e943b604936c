#include "VekLib.h"

#include "support/GuardHeap.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace
{

template <class M, class E, class V>
struct Kind
{
    using Math = M;
    using Element = E;
    using Value = V;
};

// Plain loops in the order of operations that the library keeps.
template <class Element, class Value>
struct Plain
{
    std::vector<Element> a;
    std::vector<unsigned int> order;
    size_t n;

    Element & At(size_t i, size_t j) { return a[order[i] * n + j]; }

    Value Decompose()
    {
        for (unsigned int i = 0; i < n; ++i)
            order[i] = i;
        Value d = 1;
        for (size_t k = 0; k + 1 < n; ++k)
        {
            for (size_t i = k + 1; i < n; ++i)
                if (std::fabs(At(i, k)) > std::fabs(At(k, k)))
                {
                    std::swap(order[i], order[k]);
                    d = -d;
                }
            Element const p = At(k, k);
            if (p == 0)
                return 0;
            d = d * p;
            for (size_t i = k + 1; i < n; ++i)
            {
                At(i, k) = At(i, k) / p;
                for (size_t j = k + 1; j < n; ++j)
                    At(i, j) = At(i, j) - At(k, j) * At(i, k);
            }
        }
        return At(n - 1, n - 1) * d;
    }

    std::vector<Value> Substitute(std::vector<Value> const & src)
    {
        std::vector<Value> y(n), x(n);
        auto const sum = [this](size_t i, size_t begin, size_t end, std::vector<Value> const & values)
        {
            Value result = 0;
            for (size_t j = begin; j < end; ++j)
                result += At(i, j) * values[j];
            return result;
        };
        for (size_t i = 0; i < n; ++i)
            y[i] = src[order[i]] - sum(i, 0, i, y);
        for (size_t i = n; i-- > 0;)
            x[i] = (y[i] - sum(i, i + 1, n, x)) / At(i, i);
        return x;
    }
};

// The same bits; which NaN it is does not count.
template <class T>
bool Same(T a, T b)
{
    return a == b ? std::signbit(a) == std::signbit(b) : std::isnan(a) && std::isnan(b);
}

template <class Values, class Other>
testing::AssertionResult AllSame(Values const & expected, Other const * actual)
{
    for (size_t i = 0; i < expected.size(); ++i)
        if (!Same(expected[i], actual[i]))
            return testing::AssertionFailure() << "at " << i << ": " << actual[i] << ", not " << expected[i];
    return testing::AssertionSuccess();
}

template <class Element>
CVekMatrix<Element> Matrix(size_t n, std::vector<Element> const & elements)
{
    CVekMatrix<Element> matrix(static_cast<unsigned int>(n), static_cast<unsigned int>(n));
    std::copy(elements.begin(), elements.end(), matrix.GetElements());
    return matrix;
}

// Decomposes and substitutes both ways. The state after a pivot of 0 counts too.
template <class Kind, class Element>
void Compare(size_t n, std::vector<Element> const & elements)
{
    using Value = typename Kind::Value;
    Plain<Element, Value> plain{elements, std::vector<unsigned int>(n), n};
    CVekMatrix<Element> matrix = Matrix(n, elements);
    std::vector<unsigned int> order(n, 77);
    Value const expected = plain.Decompose(), determinant = Kind::Math::LUDecompose(matrix, order.data());
    EXPECT_TRUE(Same(expected, determinant)) << determinant << ", not " << expected;
    EXPECT_EQ(order, plain.order);
    EXPECT_TRUE(AllSame(plain.a, matrix.GetElements())) << "decomposed";
    std::vector<Value> vector(n);
    for (size_t i = 0; i < n; ++i)
        vector[i] = static_cast<Value>(i % 7) - Value(2.3);
    auto const solution = plain.Substitute(vector);
    Kind::Math::LUSubstitution(matrix, order.data(), vector.data(), vector.data());
    EXPECT_TRUE(AllSame(solution, vector.data())) << "substituted in place";
}

template <class Kind>
class LinearSystems : public testing::Test
{
};
using Kinds =
    testing::Types<Kind<CVekMath32, float, float>, Kind<CVekMath64, float, double>, Kind<CVekMath64, double, double>>;
TYPED_TEST_SUITE(LinearSystems, Kinds);

TYPED_TEST(LinearSystems, WorkedByHand)
{
    using Element = typename TypeParam::Element;
    Element const nan = std::numeric_limits<Element>::quiet_NaN();
    struct Row
    {
        char const * name;
        std::vector<Element> elements;
        double determinant;
        std::vector<unsigned int> order;
        std::vector<Element> result;
    };
    Row const rows[] = {
        {"one element", {5}, 5, {0}, {5}},
        {"an exchange", {0, 1, 1, 0}, -1, {1, 0}, {0, 1, 1, 0}},
        {"kept: the last pivot may be 0", {1, 2, 2, 4}, -0.0, {1, 0}, {0.5, 0, 2, 4}},
        {"equal magnitudes keep their order", {2, 1, -2, 3}, 8, {0, 1}, {2, 1, -1, 4}},
        {"kept: a NaN exchanges nothing", {1, 0, nan, 1}, nan, {0, 1}, {1, 0, nan, nan}},
        {"each larger one is exchanged at once", {1, 1, 0, 2, 0, 0, 4, 0, 1}, -2, {2, 0, 1}, {}},
        {"a zero column ends it", {0, 1, 0, 2}, 0, {0, 1}, {0, 1, 0, 2}},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        auto matrix = Matrix(row.order.size(), row.elements);
        std::vector<unsigned int> order(row.order.size(), 77);
        EXPECT_TRUE(Same(static_cast<double>(TypeParam::Math::LUDecompose(matrix, order.data())), row.determinant));
        EXPECT_EQ(order, row.order);
        EXPECT_TRUE(AllSame(row.result, matrix.GetElements()));
    }
    auto const factors = Matrix<Element>(3, {2, -4, 2, -4, 8, 8, 0.5, 2, -1}); // its row 0 is the last pivot
    unsigned int const order[] = {1, 2, 0};
    typename TypeParam::Value solution[] = {74, 36, 19};
    TypeParam::Math::LUSubstitution(factors, order, solution, solution);
    EXPECT_TRUE(AllSame(std::vector<typename TypeParam::Value>{1, 2, 3}, solution));
}

TYPED_TEST(LinearSystems, ArgumentsThatMakeNoSystem)
{
    using Math = typename TypeParam::Math;
    using Value = typename TypeParam::Value;
    std::wstring const name = std::is_same_v<Math, CVekMath32> ? L"CVekMath32::" : L"CVekMath64::";
    std::wstring const square = L" --> matrix must be square ( eg, 3x3, 4x4 )";
    std::wstring const order = L"LUSubstitution --> pOrderTable must not be NULL";
    CVekMatrix<typename TypeParam::Element> none, wide(2, 3), gone(2, 2), good(2, 2);
    gone.Destroy();
    good.SetIdentity();
    unsigned int rows01[] = {0, 1}, rows02[] = {0, 2};
    Value const src[] = {3, 4};
    Value result[] = {-1, -1};
    struct Row
    {
        char const * name;
        CVekMatrix<typename TypeParam::Element> & matrix;
        unsigned int * order;
        Value const * src;
        Value * result;
        std::wstring decomposition, substitution;
    };
    Row const rows[] = {
        {"not square", wide, nullptr, nullptr, nullptr, L"LUDecompose" + square, L"LUSubstitution" + square},
        {"kept: the substitution's text for both", good, nullptr, nullptr, nullptr, order, order},
        {"no source", good, rows01, nullptr, result, L"", L"LUSubstitution --> src must not be NULL"},
        {"no result", good, rows01, src, nullptr, L"", L"LUSubstitution --> result must not be NULL"},
        {"no rows", none, rows01, src, result, L"", L""},
        {"no elements", gone, rows01, src, result, L"", L""},
        {"another matrix's rows", good, rows02, src, result, L"", L""},
    };
    LogCapture log;
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        Math::LUSubstitution(row.matrix, row.order, row.src, row.result);
        EXPECT_EQ(log.Take(), row.substitution.empty() ? L"" : name + row.substitution);
        EXPECT_TRUE(result[0] == -1 && result[1] == -1);
        bool const fails = &row.matrix != &good || !row.order;
        EXPECT_EQ(Math::LUDecompose(row.matrix, row.order), fails ? 0 : 1);
        EXPECT_EQ(log.Take(), row.decomposition.empty() ? L"" : name + row.decomposition);
    }
    EXPECT_EQ(log.Oddities(), L"");
}

// Blocks, tiles and packs change no bit, whatever they meet.
TYPED_TEST(LinearSystems, AreWorkedInTheOrderOfThePlainLoops)
{
    using Element = typename TypeParam::Element;
    std::mt19937 random(1);
    std::uniform_real_distribution<Element> values(-1, 1);
    using Limits = std::numeric_limits<Element>;
    Element const odd[] = {
        0, -Element(0), Limits::infinity(), Limits::quiet_NaN(), Limits::denorm_min(), Limits::max()};
    for (size_t n = 1; n <= 257; n += n < (VekGuard::Active ? 12 : 48) ? 1 : n < 132 ? 7 : 125)
    {
        std::vector<Element> elements(n * n);
        std::generate(elements.begin(), elements.end(), [&] { return values(random); });
        auto const compare = [&, n](char const * what, std::vector<Element> const & changed)
        {
            SCOPED_TRACE(std::to_string(n) + ", " + what);
            Compare<TypeParam>(n, changed);
        };
        compare("random", elements);
        auto changed = elements;
        size_t const column = random() % n;
        for (size_t i = 0; i < n; ++i) // ends the decomposition when it is that column's turn
            changed[i * n + column] = 0;
        compare("singular", changed);
        for (Element & element : changed)
            element = static_cast<Element>(static_cast<int>(random() % 5) - 2);
        compare("ties", changed);
        changed = elements;
        for (int i = 0; i < 3; ++i)
            changed[random() % changed.size()] = odd[random() % std::size(odd)];
        compare("odd values", changed);
        ASSERT_FALSE(this->HasFailure());
    }
}

} // namespace
