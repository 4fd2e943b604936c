#include "Benches.h"

#include "VekGeometry.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <type_traits>
#include <utility>

namespace bench
{

namespace
{

template <class T>
using Routines = std::conditional_t<std::is_same_v<T, float>, CVekMath32, CVekMath64>;

// Plain loops in the order of operations that the library keeps, to compare with.
template <class T>
[[gnu::noinline]] T PlainDecompose(CVekMatrix<T> & matrix, unsigned int * order)
{
    unsigned int const n = matrix.GetRows();
    T * const a = matrix.GetElements();
    T determinant = 1;
    for (unsigned int i = 0; i < n; ++i)
        order[i] = i;
    for (unsigned int k = 0; k + 1 < n; ++k)
    {
        for (unsigned int i = k + 1; i < n; ++i)
        {
            T const one = a[order[i] * n + k], other = a[order[k] * n + k];
            if ((one < 0 ? -one : one) > (other < 0 ? -other : other))
            {
                std::swap(order[i], order[k]);
                determinant = -determinant;
            }
        }
        T const * const pivotRow = a + order[k] * n;
        T const pivot = pivotRow[k];
        if (pivot == 0)
            return 0;
        determinant *= pivot;
        for (unsigned int i = k + 1; i < n; ++i)
        {
            T * const row = a + order[i] * n;
            row[k] /= pivot;
            T const factor = row[k];
            for (unsigned int j = k + 1; j < n; ++j)
                row[j] -= pivotRow[j] * factor;
        }
    }
    return a[order[n - 1] * n + n - 1] * determinant;
}

template <class T>
[[gnu::noinline]] void PlainSubstitute(CVekMatrix<T> const & matrix, unsigned int const * order, T const * src,
                                       T * result)
{
    unsigned int const n = matrix.GetRows();
    T const * const a = matrix.GetElements();
    static T y[1024]; // spares it the allocation
    for (unsigned int i = 0; i < n; ++i)
    {
        T sum = 0;
        for (unsigned int j = 0; j < i; ++j)
            sum += a[order[i] * n + j] * y[j];
        y[i] = src[order[i]] - sum;
    }
    for (unsigned int i = n; i-- > 0;)
    {
        T sum = 0;
        for (unsigned int j = i + 1; j < n; ++j)
            sum += a[order[i] * n + j] * result[j];
        result[i] = (y[i] - sum) / a[order[i] * n + i];
    }
}

/// So many systems of one size, with the best times of working them all.
template <class T>
class Systems
{
public:
    Systems(unsigned int size, bool quick) : m_size(size), m_quick(quick)
    {
        std::mt19937 random(size);
        std::uniform_real_distribution<T> values(-1, 1);
        m_originals.resize(std::max(1u, 100000 / (size * size)), CVekMatrix<T>(size, size));
        for (CVekMatrix<T> & original : m_originals)
            std::generate_n(original.GetElements(), size * size, [&] { return values(random); });
        m_order.resize(size);
        m_src.assign(size, T(1));
        m_result.resize(size);
    }

    void Measure(Table & table, Aims & aims)
    {
        Best times[2][2]; // decomposition, substitution; plain, library
        int const rounds = m_size > 500 ? (m_quick ? 2 : 6) : m_quick ? 30 : 200;
        for (int round = 0; round < rounds; ++round)
        {
            Run(PlainDecompose<T>, PlainSubstitute<T>, times[0][0], times[1][0]);
            Run([](CVekMatrix<T> & a, unsigned int * order) { return Routines<T>::LUDecompose(a, order); },
                [](CVekMatrix<T> const & a, unsigned int const * order, T const * src, T * result)
                { Routines<T>::LUSubstitution(a, order, src, result); },
                times[0][1], times[1][1]);
        }
        double const n = m_size, decomposition = n * n * n * 2 / 3, substitution = n * n * 2;
        double const plain[] = {times[0][0].Seconds(), times[1][0].Seconds(),
                                times[0][0].Seconds() + times[1][0].Seconds()};
        double const library[] = {times[0][1].Seconds(), times[1][1].Seconds(),
                                  times[0][1].Seconds() + times[1][1].Seconds()};
        Add(table, "decompose", decomposition, plain[0], library[0], &aims);
        Add(table, "decompose and substitute", decomposition + substitution, plain[2], library[2], &aims);
        Add(table, "substitute", substitution, plain[1], library[1], nullptr);
    }

private:
    template <class Decompose, class Substitute>
    void Run(Decompose const & decompose, Substitute const & substitute, Best & first, Best & second)
    {
        std::vector<CVekMatrix<T>> matrices = m_originals;
        double factors = 0, solutions = 0;
        Stopwatch watch;
        for (CVekMatrix<T> & matrix : matrices)
            m_sink = m_sink + decompose(matrix, m_order.data());
        factors = watch.Lap();
        for (CVekMatrix<T> const & matrix : matrices)
            substitute(matrix, m_order.data(), m_src.data(), m_result.data());
        solutions = watch.Lap();
        first.Add(factors);
        second.Add(solutions);
    }

    double Aim() const
    {
        bool const single = std::is_same_v<T, float>;
        return m_size <= 4 ? 1.0 : m_size == 64 ? (single ? 1.6 : 1.2) : m_size == 256 ? (single ? 2.5 : 1.4) : 0.0;
    }

    void Add(Table & table, char const * work, double operations, double plain, double library, Aims * aims) const
    {
        double const total = operations * static_cast<double>(m_originals.size()) / 1e9, ratio = plain / library;
        std::string const aim = aims && Aim() > 0 ? Number(Aim(), 1) + ' ' + aims->Check(ratio >= Aim()) : "";
        table.Add({std::string(work) + (std::is_same_v<T, float> ? ", float" : ", double"), std::to_string(m_size),
                   Number(total / plain, 2), Number(total / library, 2), Number(ratio, 2), aim});
    }

    unsigned int m_size;
    bool m_quick;
    std::vector<CVekMatrix<T>> m_originals;
    std::vector<unsigned int> m_order;
    std::vector<T> m_src, m_result;
    T volatile m_sink = 0;
};

template <class T>
void AddSystems(Table & table, bool quick, Aims & aims)
{
    for (unsigned int const size : {3u, 4u, 16u, 64u, 256u, 1024u})
        Systems<T>(size, quick).Measure(table, aims);
}

/// The best rate of so many calls, in millions per second.
template <class Work>
std::string Rate(bool quick, Work const & work)
{
    constexpr int COUNT = 10000;
    Best best;
    for (int round = 0; round < (quick ? 20 : 200); ++round)
    {
        Stopwatch watch;
        for (int i = 0; i < COUNT; ++i)
            work(i);
        best.Add(watch.Lap());
    }
    return Number(COUNT / best.Seconds() / 1e6, 1);
}

template <class T>
std::vector<std::string> TransformRates(bool quick)
{
    using Vector = CVekVector3D<T>;
    auto const turn = CVekMatrix4x4<T>::Rotation(Vector(1, 2, 3), T(0.01));
    CVekMatrix4x4<T> product = turn;
    Vector const a(0, 0, 0), b(1, 0, 0), c(0, 1, 0), normal(0, 0, 1);
    Vector point(1, 0, 0), hit, weights;
    T t = 0;
    std::vector<std::string> rates;
    rates.push_back(Rate(quick, [&](int) { product *= turn; }));
    rates.push_back(Rate(quick, [&](int) { turn.Inverse(product); }));
    rates.push_back(Rate(quick, [&](int) { point = turn.TransformPoint(point); }));
    rates.push_back(Rate(quick,
                         [&](int i)
                         {
                             Vector const from(static_cast<T>(i) * T(0.0001), T(0.25), 1);
                             Routines<T>::RayTriangleIntersection(from, Vector(from.x, from.y, 0), a, b, c, normal,
                                                                  VEK_RT_BOTH_FACES, t, hit, &weights);
                         }));
    T const volatile sink = point.x + t + product(0, 0);
    static_cast<void>(sink);
    return rates;
}

} // namespace

void MeasureMath(bool quick, Aims & aims)
{
    Table systems({"linear systems", "n", "plain loop", "library", "ratio", "aim"});
    AddSystems<float>(systems, quick, aims);
    AddSystems<double>(systems, quick, aims);
    std::printf("Linear systems: GFLOP/s, beside the plain loops as this program's compiler makes them.\n\n");
    systems.Print();

    Table rates({"millions per second", "float", "double"});
    auto const single = TransformRates<float>(quick), twice = TransformRates<double>(quick);
    char const * const names[] = {"product of 4 x 4 matrices", "inverse of a 4 x 4 matrix", "point by a 4 x 4 matrix",
                                  "ray by a triangle"};
    for (std::size_t i = 0; i < single.size(); ++i)
        rates.Add({names[i], single[i], twice[i]});
    std::printf("\n");
    rates.Print();
    std::printf("\n");
}

} // namespace bench
