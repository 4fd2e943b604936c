/// @file
/// Matrices and the plain four-component types.
#ifndef VEK_MATH_H
#define VEK_MATH_H

#include "VekExport.h"

#include <stddef.h>

/// A matrix of any size. Elements are stored row by row: [row][column] is at index row * columns + column. Points are
/// row vectors multiplied from the left, so that a 4 x 4 transform has its translation in row 3 and its scale factors
/// on the diagonal. Copies own their elements.
template <class T>
class CVekMatrix
{
public:
    /// An empty matrix: no rows, no columns, no elements.
    VEK_API CVekMatrix() VEK_NOEXCEPT;
    /// A matrix of that size, its elements not initialised; after a failed allocation it is empty.
    VEK_API CVekMatrix(unsigned int rows, unsigned int columns) VEK_NOEXCEPT;
    VEK_API CVekMatrix(CVekMatrix const & other) VEK_NOEXCEPT;
    /// Takes over size and elements through Create; a matrix of fixed size keeps its size and takes the elements that
    /// both have. Without elements in the source this matrix is destroyed (as Destroy does).
    VEK_API CVekMatrix & operator=(CVekMatrix const & other) VEK_NOEXCEPT;

    /// Frees the elements.
    VEK_API virtual ~CVekMatrix();
    /// Replaces the elements by rows x columns new ones, not initialised. Returns true also when the allocation failed:
    /// GetElements is null then and the sizes are the old ones.
    VEK_API virtual bool Create(unsigned int rows, unsigned int columns);
    /// Frees the elements; the sizes stay.
    VEK_API virtual void Destroy();

    unsigned int GetRows() const VEK_NOEXCEPT { return m_rows; }
    unsigned int GetColumns() const VEK_NOEXCEPT { return m_columns; }
    /// The first element of row 0, or null without elements; the matrix keeps ownership.
    T * GetElements() VEK_NOEXCEPT { return m_elements; }
    T const * GetElements() const VEK_NOEXCEPT { return m_elements; }

    /// The element at a row and column. Outside the matrix it is a zero that belongs to no matrix.
    T & operator()(unsigned int row, unsigned int column) VEK_NOEXCEPT
    {
        return Has(row, column) ? m_elements[IndexOf(row, column)] : OutsideElement();
    }
    T const & operator()(unsigned int row, unsigned int column) const VEK_NOEXCEPT
    {
        return Has(row, column) ? m_elements[IndexOf(row, column)] : OutsideElement();
    }

    /// Sets the diagonal to 1 and everything else to 0.
    VEK_API void SetIdentity() VEK_NOEXCEPT;
    /// this = this x other, for matrices of up to 4 x 4: of larger ones only the first 4 rows and columns are replaced.
    /// The inner dimension is this matrix's row count; elements that a matrix doesn't have count as 0.
    VEK_API CVekMatrix & operator*=(CVekMatrix const & other) VEK_NOEXCEPT;
    /// Adds to the elements [3][0], [3][1] and [3][2], as far as they exist.
    VEK_API void AddTranslation(T x, T y, T z) VEK_NOEXCEPT;
    /// Multiplies this matrix by the 4 x 4 scale matrix of the three factors.
    VEK_API void Scale(T x, T y, T z) VEK_NOEXCEPT;

protected:
    /// For matrices whose elements are part of the object.
    VEK_API CVekMatrix(unsigned int rows, unsigned int columns, T * elements) VEK_NOEXCEPT;

    bool Has(unsigned int row, unsigned int column) const VEK_NOEXCEPT
    {
        return row < m_rows && column < m_columns && m_elements != nullptr;
    }
    size_t IndexOf(unsigned int row, unsigned int column) const VEK_NOEXCEPT
    {
        return static_cast<size_t>(row) * m_columns + column;
    }
    VEK_API static T & OutsideElement() VEK_NOEXCEPT;

    unsigned int m_rows;
    unsigned int m_columns;
    T * m_elements;
};

/// A matrix of fixed size that carries its elements; Create and Destroy do nothing.
template <class T, unsigned int M, unsigned int N>
class CVekMatrixMxN : public CVekMatrix<T>
{
public:
    /// All elements are 0.
    CVekMatrixMxN() VEK_NOEXCEPT : CVekMatrix<T>(M, N, nullptr), m_inline() { this->m_elements = m_inline; }
    CVekMatrixMxN(CVekMatrixMxN const & other) VEK_NOEXCEPT : CVekMatrix<T>(M, N, nullptr)
    {
        this->m_elements = m_inline;
        CopyElements(other);
    }
    CVekMatrixMxN & operator=(CVekMatrixMxN const & other) VEK_NOEXCEPT
    {
        CopyElements(other);
        return *this;
    }

    ~CVekMatrixMxN() override { this->m_elements = nullptr; }
    /// Does nothing and returns true: the size is fixed.
    bool Create(unsigned int, unsigned int) override { return true; }
    /// Does nothing.
    void Destroy() override {}

private:
    void CopyElements(CVekMatrixMxN const & other) VEK_NOEXCEPT
    {
        for (size_t i = 0; i < sizeof(m_inline) / sizeof(T); ++i)
            m_inline[i] = other.m_inline[i];
    }

    T m_inline[static_cast<size_t>(M) * N];
};

/// The 4 x 4 matrix of transforms.
template <class T>
class CVekMatrix4x4 : public CVekMatrixMxN<T, 4, 4>
{
};

/// Four components, a plain value.
template <class T>
class CVekVector4D
{
public:
    T x, y, z, w;

    /// All components are 0.
    constexpr CVekVector4D() VEK_NOEXCEPT : x(), y(), z(), w() {}
    constexpr CVekVector4D(T x_, T y_, T z_, T w_) VEK_NOEXCEPT : x(x_), y(y_), z(z_), w(w_) {}

    friend constexpr bool operator==(CVekVector4D const & a, CVekVector4D const & b) VEK_NOEXCEPT
    {
        return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
    }
    friend constexpr bool operator!=(CVekVector4D const & a, CVekVector4D const & b) VEK_NOEXCEPT { return !(a == b); }
};

/// A colour with its opacity, a plain value.
template <class T>
class CVekRGBA
{
public:
    T red, green, blue, alpha;

    /// All components are 0.
    constexpr CVekRGBA() VEK_NOEXCEPT : red(), green(), blue(), alpha() {}
    constexpr CVekRGBA(T r, T g, T b, T a) VEK_NOEXCEPT : red(r), green(g), blue(b), alpha(a) {}

    friend constexpr bool operator==(CVekRGBA const & a, CVekRGBA const & b) VEK_NOEXCEPT
    {
        return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
    }
    friend constexpr bool operator!=(CVekRGBA const & a, CVekRGBA const & b) VEK_NOEXCEPT { return !(a == b); }
};

#endif
