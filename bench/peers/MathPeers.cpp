#include "Peers.h"
#include "VekGeometry.h"
#include "VekMath.h"

#include <Eigen/Dense>
#include <glm/glm.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <type_traits>

namespace bench
{

namespace
{

constexpr std::size_t MATRICES = 64; // stay in the first cache
constexpr int ROUNDS = 300;

/// The same matrices for the library and both peers, with the results of each. The peers store columns and multiply
/// from the other side, so that the elements of a product of theirs, b by a, are those of the library's a by b.
template <class T>
struct Matrices
{
    using Own = CVekMatrix4x4<T>;
    using Eigens = Eigen::Matrix<T, 4, 4>;
    using Glms = glm::mat<4, 4, T, glm::defaultp>;

    Matrices()
    {
        std::mt19937 random(1); // NOLINT(cert-msc32-c): the same matrices each time
        std::uniform_real_distribution<T> values(-1, 1);
        for (auto const operand : {&Matrices::a, &Matrices::b})
            for (std::size_t i = 0; i < MATRICES; ++i)
                for (unsigned int row = 0; row < 4; ++row)
                    for (unsigned int column = 0; column < 4; ++column)
                        Set((this->*operand), i, row, column, values(random) + (row == column ? T(2) : T(0)));
    }

    struct Operands
    {
        std::array<Own, MATRICES> own;
        std::array<Eigens, MATRICES> eigen;
        std::array<Glms, MATRICES> glm;
    };

    void Set(Operands & operand, std::size_t i, unsigned int row, unsigned int column, T value)
    {
        operand.own[i](row, column) = value;
        operand.eigen[i](column, row) = value;
        operand.glm[i][static_cast<int>(row)][static_cast<int>(column)] = value;
    }

    /// Whether the results are equal but for rounding.
    bool ResultsAgree() const
    {
        T const tolerance = std::is_same_v<T, float> ? T(1e-3) : T(1e-9);
        for (std::size_t i = 0; i < MATRICES; ++i)
            for (unsigned int row = 0; row < 4; ++row)
                for (unsigned int column = 0; column < 4; ++column)
                {
                    T const value = result.own[i](row, column);
                    T const other = result.glm[i][static_cast<int>(row)][static_cast<int>(column)];
                    if (!(std::abs(value - result.eigen[i](column, row)) <= tolerance * (1 + std::abs(value))) ||
                        !(std::abs(value - other) <= tolerance * (1 + std::abs(value))))
                        return false;
                }
        return true;
    }

    Operands a, b, result;
};

/// One operation for each matrix, so many times over.
template <class Body>
Work ForEach(Body body)
{
    return [body]
    {
        Stopwatch watch;
        for (int round = 0; round < ROUNDS; ++round)
            for (std::size_t i = 0; i < MATRICES; ++i)
                body(i);
        return watch.Lap() / (ROUNDS * static_cast<double>(MATRICES));
    };
}

template <class T>
void AddProductsAndInverses(Duels & duels)
{
    std::string const precision = std::is_same_v<T, float> ? ", float" : ", double";
    static Matrices<T> storage; // aligned, as blocks of the heap are not
    auto * const m = &storage;
    auto const multiply = ForEach([m](std::size_t i) { m->result.own[i] = m->a.own[i] * m->b.own[i]; });
    auto const multiplyEigen =
        ForEach([m](std::size_t i) { m->result.eigen[i].noalias() = m->b.eigen[i] * m->a.eigen[i]; });
    auto const multiplyGlm = ForEach([m](std::size_t i) { m->result.glm[i] = m->b.glm[i] * m->a.glm[i]; });
    multiply(), multiplyEigen(), multiplyGlm();
    duels.Expect(m->ResultsAgree(), "products" + precision);
    duels.Add("4 x 4 product" + precision, "Eigen", 0, multiply, multiplyEigen);
    duels.Add("4 x 4 product" + precision, "glm", 0, multiply, multiplyGlm);

    auto const invert = ForEach([m](std::size_t i) { m->a.own[i].Inverse(m->result.own[i]); });
    auto const invertEigen = ForEach([m](std::size_t i) { m->result.eigen[i] = m->a.eigen[i].inverse(); });
    auto const invertGlm = ForEach([m](std::size_t i) { m->result.glm[i] = glm::inverse(m->a.glm[i]); });
    invert(), invertEigen(), invertGlm();
    duels.Expect(m->ResultsAgree(), "inverses" + precision);
    duels.Add("4 x 4 inverse" + precision, "Eigen", 0, invert, invertEigen);
    duels.Add("4 x 4 inverse" + precision, "glm", 0, invert, invertGlm);
}

/// One linear system, solved by both.
template <class T>
struct System
{
    using Routines = std::conditional_t<std::is_same_v<T, float>, CVekMath32, CVekMath64>;
    using Matrix = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
    using Vector = Eigen::Matrix<T, Eigen::Dynamic, 1>;

    explicit System(unsigned int size)
        : n(size), original(size * size), matrix(size, size), order(size), source(size, T(1)), result(size),
          eigenOriginal(size, size), eigenSource(size), eigenResult(size), lu(size)
    {
        std::mt19937 random(size);
        std::uniform_real_distribution<T> values(-1, 1);
        std::generate(original.begin(), original.end(), [&] { return values(random); });
        for (unsigned int row = 0; row < n; ++row)
            for (unsigned int column = 0; column < n; ++column)
                eigenOriginal(row, column) = original[row * n + column];
        eigenSource.setOnes();
    }

    void Decompose()
    {
        std::copy(original.begin(), original.end(), matrix.GetElements());
        Routines::LUDecompose(matrix, order.data());
    }
    void Solve() { Routines::LUSubstitution(matrix, order.data(), source.data(), result.data()); }
    void DecomposeByEigen() { lu.compute(eigenOriginal); }
    void SolveByEigen() { eigenResult.noalias() = lu.solve(eigenSource); }

    bool ResultsAgree() const
    {
        Vector const own = Eigen::Map<Vector const>(result.data(), n);
        T const tolerance = std::is_same_v<T, float> ? T(1e-2) : T(1e-8);
        return (own - eigenResult).norm() <= tolerance * eigenResult.norm();
    }

    unsigned int n;
    std::vector<T> original;
    CVekMatrix<T> matrix;
    std::vector<unsigned int> order;
    std::vector<T> source, result;
    Matrix eigenOriginal;
    Vector eigenSource, eigenResult;
    Eigen::PartialPivLU<Matrix> lu;
};

template <class T>
void AddSystems(Duels & duels)
{
    for (unsigned int const n : {4u, 16u, 64u, 256u})
    {
        std::string const name = std::string(std::is_same_v<T, float> ? ", float" : ", double") + ", n = ";
        auto const system = std::make_shared<System<T>>(n);
        system->Decompose(), system->DecomposeByEigen();
        system->Solve(), system->SolveByEigen();
        duels.Expect(system->ResultsAgree(), "linear systems" + name + std::to_string(n));
        int const decompositions = std::max(1, 10000000 / static_cast<int>(n * n * (n + 20)));
        int const solutions = std::max(1, 10000000 / static_cast<int>(n * (n + 20)));
        duels.Add("LU decompose" + name + std::to_string(n), "Eigen", 0,
                  Repeat(decompositions, [system] { system->Decompose(); }),
                  Repeat(decompositions, [system] { system->DecomposeByEigen(); }));
        duels.Add("LU solve" + name + std::to_string(n), "Eigen", 0, Repeat(solutions, [system] { system->Solve(); }),
                  Repeat(solutions, [system] { system->SolveByEigen(); }));
    }
}

} // namespace

void AddMath(Duels & duels)
{
    AddProductsAndInverses<float>(duels);
    AddProductsAndInverses<double>(duels);
    AddSystems<float>(duels);
    AddSystems<double>(duels);
}

} // namespace bench
