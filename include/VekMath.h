/// @file
/// Vectors, planes, matrices, boxes and colours. Points are row vectors multiplied from the left, p' = p x M; angles
/// are in radians; a positive rotation turns x into y, y into z, or z into x.
///
/// @code
/// CVekMatrix4x4<float> const turn = CVekMatrix4x4<float>::RotationZ(0.5f);
/// CVekMatrix4x4<float> const place = CVekMatrix4x4<float>::Translation(CVekVector3D<float>(10, 0, 0));
/// CVekVector3D<float> const corner = (turn * place).TransformPoint(CVekVector3D<float>(1, 1, 0)); // turned first
/// @endcode
#ifndef VEK_MATH_H
#define VEK_MATH_H

#include "VekExport.h"

#include <stddef.h>

/// @cond internal
namespace vek
{

#if defined(_MSC_VER)
extern "C" double __cdecl sqrt(double);
inline double SquareRoot(double value) noexcept
{
    return sqrt(value);
}
inline float SquareRoot(float value) noexcept
{
    return static_cast<float>(sqrt(value)); // the same as the nearest float: a double has more than twice the digits
}
#elif defined(__SSE2__) && !defined(__clang__)
// The instruction itself: the runtime's function may round twice.
inline float SquareRoot(float value) noexcept
{
    typedef float Pack __attribute__((vector_size(16)));
    return __builtin_ia32_sqrtss(Pack{value, 0, 0, 0})[0];
}
inline double SquareRoot(double value) noexcept
{
    typedef double Pack __attribute__((vector_size(16)));
    return __builtin_ia32_sqrtsd(Pack{value, 0})[0];
}
#else
inline float SquareRoot(float value) noexcept
{
    return __builtin_sqrtf(value);
}
inline double SquareRoot(double value) noexcept
{
    return __builtin_sqrt(value);
}
#endif

template <class T>
constexpr T Magnitude(T value) noexcept
{
    return value < T(0) ? -value : value;
}

/// Sums of squares between these have lost no digits and not overflown.
constexpr float SmallestSquare(float) noexcept
{
    return 1e-30f;
}
constexpr double SmallestSquare(double) noexcept
{
    return 1e-280;
}
constexpr float LargestSquare(float) noexcept
{
    return 1e37f;
}
constexpr double LargestSquare(double) noexcept
{
    return 1e307;
}

// Products of 4 x 4 matrices become part of the host, unless its compiler might round otherwise than the library's.
#if (defined(__GNUC__) || defined(__clang__)) && defined(__SSE2__)
#if !defined(__FMA__) && !defined(__FMA4__) && !defined(__FAST_MATH__)
#define VEK_INLINE_PRODUCTS
#endif
#endif

#if defined(VEK_INLINE_PRODUCTS)
// 16 bytes at any address.
template <class T>
struct PackOf;
template <>
struct PackOf<float>
{
    typedef float Type __attribute__((vector_size(16), aligned(4), may_alias));
    static Type Splat(float const * row, unsigned int index) noexcept
    {
        Type const whole = *reinterpret_cast<Type const *>(row); // loaded once for its four
        return Type{whole[index], whole[index], whole[index], whole[index]};
    }
};
template <>
struct PackOf<double>
{
    typedef double Type __attribute__((vector_size(16), aligned(4), may_alias));
    static Type Splat(double const * row, unsigned int index) noexcept { return Type{row[index], row[index]}; }
};

// One row of a product of 4 x 4 matrices: each element's sum starts at 0 and takes its terms in their order. The right
// matrix comes by the first and the last pack of each row, which are the same for float.
template <class T>
__attribute__((always_inline)) inline void MultiplyRow(T * product, T const * left,
                                                       typename PackOf<T>::Type const (&first)[4],
                                                       typename PackOf<T>::Type const (&last)[4]) noexcept
{
    using Pack = typename PackOf<T>::Type;
    Pack const a = PackOf<T>::Splat(left, 0), b = PackOf<T>::Splat(left, 1), c = PackOf<T>::Splat(left, 2),
               d = PackOf<T>::Splat(left, 3), zero = {};
    Pack * const target = reinterpret_cast<Pack *>(product);
    target[0] = zero + a * first[0] + b * first[1] + c * first[2] + d * first[3];
    if (sizeof(T) == sizeof(double))
        target[1] = zero + a * last[0] + b * last[1] + c * last[2] + d * last[3];
}

// product = left x right; product may be either.
template <class T>
__attribute__((always_inline)) inline void Multiply4x4(T * product, T const * left, T const * right) noexcept
{
    using Pack = typename PackOf<T>::Type;
    constexpr unsigned int LAST = 4 - 16 / sizeof(T);
    auto const load = [right](unsigned int index) { return *reinterpret_cast<Pack const *>(right + index); };
    Pack const first[4] = {load(0), load(4), load(8), load(12)};
    Pack const last[4] = {load(LAST), load(4 + LAST), load(8 + LAST), load(12 + LAST)};
    MultiplyRow(product, left, first, last);
    MultiplyRow(product + 4, left + 4, first, last);
    MultiplyRow(product + 8, left + 8, first, last);
    MultiplyRow(product + 12, left + 12, first, last);
}
#endif

/// @endcond

/// What the vectors of all sizes have in common. V gives its size N and its components through operator[].
template <class V, class T, unsigned int N>
class VectorOf
{
public:
    friend constexpr bool operator==(V const & a, V const & b) noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            if (!(a[i] == b[i]))
                return false;
        return true;
    }
    friend constexpr bool operator!=(V const & a, V const & b) noexcept { return !(a == b); }

    friend constexpr V operator+(V a, V const & b) noexcept { return a += b; }
    friend constexpr V operator-(V a, V const & b) noexcept { return a -= b; }
    friend constexpr V operator-(V a) noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            a[i] = -a[i];
        return a;
    }
    friend constexpr V operator*(V a, T factor) noexcept { return a *= factor; }
    friend constexpr V operator*(T factor, V a) noexcept { return a *= factor; }
    friend constexpr V operator/(V a, T divisor) noexcept { return a /= divisor; }
    /// By component; returns this vector.
    constexpr V & operator+=(V const & other) noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            Self()[i] += other[i];
        return Self();
    }
    constexpr V & operator-=(V const & other) noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            Self()[i] -= other[i];
        return Self();
    }
    constexpr V & operator*=(T factor) noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            Self()[i] *= factor;
        return Self();
    }
    constexpr V & operator/=(T divisor) noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            Self()[i] /= divisor;
        return Self();
    }

    /// The scalar product.
    constexpr T Dot(V const & other) const noexcept
    {
        T sum = Self()[0] * other[0];
        for (unsigned int i = 1; i < N; ++i)
            sum += Self()[i] * other[i];
        return sum;
    }
    /// The scalar product with itself.
    constexpr T LengthSquared() const noexcept { return Dot(Self()); }
    /// The Euclidean length, without overflow or loss of digits in between. Not for whole numbers, as all that follows
    /// from it: Normalised and DistanceTo.
    T Length() const noexcept
    {
        static_assert(T(1) / T(2) != T(0), "lengths are for float and double");
        T const sum = LengthSquared();
        if (sum >= SmallestSquare(T()) && sum <= LargestSquare(T()))
            return SquareRoot(sum);
        if (!(sum == sum))
            return sum;
        T const largest = LargestMagnitude();
        return largest - largest == T(0) && largest > T(0) ? largest * SquareRoot((Self() / largest).LengthSquared())
                                                           : largest;
    }
    /// The vector of length 1 in the same direction; the zero vector stays zero.
    V Normalised() const noexcept
    {
        static_assert(T(1) / T(2) != T(0), "directions of length 1 are for float and double");
        T const sum = LengthSquared();
        if (sum >= SmallestSquare(T()) && sum <= LargestSquare(T()))
            return Self() / SquareRoot(sum);
        if (!(sum == sum))
            return Self() / sum;
        T const largest = LargestMagnitude();
        if (largest == T(0))
            return V();
        V const scaled = Self() / largest;
        return scaled / SquareRoot(scaled.LengthSquared());
    }
    /// The length of the difference.
    T DistanceTo(V const & other) const noexcept { return (Self() - other).Length(); }
    /// This vector at t = 0, the other at t = 1, both exactly; t may lie outside.
    constexpr V Lerp(V const & other, T t) const noexcept { return Self() * (T(1) - t) + other * t; }
    /// True when no component differs by more than the tolerance.
    constexpr bool IsNear(V const & other, T tolerance) const noexcept
    {
        for (unsigned int i = 0; i < N; ++i)
            if (!(Self()[i] == other[i] || Magnitude(Self()[i] - other[i]) <= tolerance))
                return false;
        return true;
    }
    /// The smaller, the larger component of both vectors in each place.
    constexpr V Smallest(V const & other) const noexcept
    {
        V result = Self();
        for (unsigned int i = 0; i < N; ++i)
            result[i] = other[i] < result[i] ? other[i] : result[i];
        return result;
    }
    constexpr V Largest(V const & other) const noexcept
    {
        V result = Self();
        for (unsigned int i = 0; i < N; ++i)
            result[i] = result[i] < other[i] ? other[i] : result[i];
        return result;
    }
    /// The place of the component of largest magnitude, the first of equal ones.
    constexpr unsigned int LargestAxis() const noexcept
    {
        unsigned int axis = 0;
        for (unsigned int i = 1; i < N; ++i)
            if (Magnitude(Self()[i]) > Magnitude(Self()[axis]))
                axis = i;
        return axis;
    }

protected:
    constexpr VectorOf() noexcept = default;

private:
    constexpr V & Self() noexcept { return static_cast<V &>(*this); }
    constexpr V const & Self() const noexcept { return static_cast<V const &>(*this); }
    constexpr T LargestMagnitude() const noexcept { return Magnitude(Self()[LargestAxis()]); }
};

} // namespace vek

/// Two components, a plain value. Its operators work component by component; Dot, Length, Normalised, Lerp and more
/// come with all vectors, see vek::VectorOf.
template <class T>
class CVekVector2D : public vek::VectorOf<CVekVector2D<T>, T, 2>
{
public:
    /// The components.
    T x, y;

    /// All components are 0.
    constexpr CVekVector2D() noexcept : x(), y() {}
    /// Takes components, or converts those of another precision.
    constexpr CVekVector2D(T x_, T y_) noexcept : x(x_), y(y_) {}
    template <class U>
    constexpr explicit CVekVector2D(CVekVector2D<U> const & other) noexcept
        : x(static_cast<T>(other.x)), y(static_cast<T>(other.y))
    {
    }

    /// The component 0 or 1; any higher index is the last one.
    constexpr T & operator[](unsigned int index) noexcept { return index == 0 ? x : y; }
    constexpr T const & operator[](unsigned int index) const noexcept { return index == 0 ? x : y; }

    /// The third component of the vector product: positive when the other lies to the left, from x towards y.
    constexpr T Cross(CVekVector2D const & other) const noexcept { return x * other.y - y * other.x; }
};

/// Three components, a plain value: a point or a direction.
template <class T>
class CVekVector3D : public vek::VectorOf<CVekVector3D<T>, T, 3>
{
public:
    /// The components.
    T x, y, z;

    /// All components are 0.
    constexpr CVekVector3D() noexcept : x(), y(), z() {}
    /// Takes components, or converts those of another precision.
    constexpr CVekVector3D(T x_, T y_, T z_) noexcept : x(x_), y(y_), z(z_) {}
    template <class U>
    constexpr explicit CVekVector3D(CVekVector3D<U> const & other) noexcept
        : x(static_cast<T>(other.x)), y(static_cast<T>(other.y)), z(static_cast<T>(other.z))
    {
    }

    /// The component 0 to 2; any higher index is the last one.
    constexpr T & operator[](unsigned int index) noexcept { return index == 0 ? x : index == 1 ? y : z; }
    constexpr T const & operator[](unsigned int index) const noexcept { return index == 0 ? x : index == 1 ? y : z; }

    /// The vector product, x cross y = z.
    constexpr CVekVector3D Cross(CVekVector3D const & other) const noexcept
    {
        return CVekVector3D(y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x);
    }
};

/// Four components, a plain value.
template <class T>
class CVekVector4D : public vek::VectorOf<CVekVector4D<T>, T, 4>
{
public:
    /// The components.
    T x, y, z, w;

    /// All components are 0.
    constexpr CVekVector4D() noexcept : x(), y(), z(), w() {}
    /// Takes the components.
    constexpr CVekVector4D(T x_, T y_, T z_, T w_) noexcept : x(x_), y(y_), z(z_), w(w_) {}
    /// A point with w = 1 or a direction with w = 0.
    constexpr CVekVector4D(CVekVector3D<T> const & v, T w_) noexcept : x(v.x), y(v.y), z(v.z), w(w_) {}
    /// Converts the components of another precision.
    template <class U>
    constexpr explicit CVekVector4D(CVekVector4D<U> const & other) noexcept
        : x(static_cast<T>(other.x)), y(static_cast<T>(other.y)), z(static_cast<T>(other.z)), w(static_cast<T>(other.w))
    {
    }

    /// The component 0 to 3; any higher index is the last one.
    constexpr T & operator[](unsigned int index) noexcept
    {
        return index == 0 ? x : index == 1 ? y : index == 2 ? z : w;
    }
    constexpr T const & operator[](unsigned int index) const noexcept
    {
        return index == 0 ? x : index == 1 ? y : index == 2 ? z : w;
    }

    /// x, y and z as they are.
    constexpr CVekVector3D<T> XYZ() const noexcept { return CVekVector3D<T>(x, y, z); }
};

/// A colour with its opacity, a plain value.
template <class T>
class CVekRGBA
{
public:
    /// The components.
    T red, green, blue, alpha;

    /// All components are 0.
    constexpr CVekRGBA() noexcept : red(), green(), blue(), alpha() {}
    /// Takes the components.
    constexpr CVekRGBA(T r, T g, T b, T a) noexcept : red(r), green(g), blue(b), alpha(a) {}

    friend constexpr bool operator==(CVekRGBA const & a, CVekRGBA const & b) noexcept
    {
        return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
    }
    friend constexpr bool operator!=(CVekRGBA const & a, CVekRGBA const & b) noexcept { return !(a == b); }

    /// The colour between this one at t = 0 and the other at t = 1; t is clamped to that range. Components of whole
    /// numbers are rounded to the nearest.
    constexpr CVekRGBA Lerp(CVekRGBA const & other, float t) const noexcept
    {
        return CVekRGBA(Between(red, other.red, t), Between(green, other.green, t), Between(blue, other.blue, t),
                        Between(alpha, other.alpha, t));
    }

private:
    static constexpr T Between(T a, T b, float t) noexcept
    {
        constexpr float HALF = T(0.5f) == T(0) ? 0.5f : 0.0f;
        return t > 0 ? t < 1 ? static_cast<T>(static_cast<float>(a) * (1 - t) + static_cast<float>(b) * t + HALF) : b
                     : a;
    }
};

/// The points where a x + b y + c z + d = 0, a plain value. (a, b, c) is the normal; it points to the front.
template <class T>
class CVekPlane
{
public:
    /// The plane is where a x + b y + c z + d = 0.
    T a, b, c, d;

    /// All coefficients are 0: no plane at all.
    constexpr CVekPlane() noexcept : a(), b(), c(), d() {}
    /// Takes the coefficients.
    constexpr CVekPlane(T a_, T b_, T c_, T d_) noexcept : a(a_), b(b_), c(c_), d(d_) {}
    /// The plane with that normal, taken as it is, through a point.
    constexpr CVekPlane(CVekVector3D<T> const & normal, CVekVector3D<T> const & point) noexcept
        : a(normal.x), b(normal.y), c(normal.z), d(-normal.Dot(point))
    {
    }
    /// The plane through three points, its normal (q - p) cross (r - p): they run counterclockwise when seen from the
    /// front in a right-handed system.
    constexpr CVekPlane(CVekVector3D<T> const & p, CVekVector3D<T> const & q, CVekVector3D<T> const & r) noexcept
        : CVekPlane((q - p).Cross(r - p), p)
    {
    }
    /// Converts the coefficients of another precision.
    template <class U>
    constexpr explicit CVekPlane(CVekPlane<U> const & other) noexcept
        : a(static_cast<T>(other.a)), b(static_cast<T>(other.b)), c(static_cast<T>(other.c)), d(static_cast<T>(other.d))
    {
    }

    friend constexpr bool operator==(CVekPlane const & p, CVekPlane const & q) noexcept
    {
        return p.a == q.a && p.b == q.b && p.c == q.c && p.d == q.d;
    }
    friend constexpr bool operator!=(CVekPlane const & p, CVekPlane const & q) noexcept { return !(p == q); }
    /// The same points with front and back exchanged.
    constexpr CVekPlane operator-() const noexcept { return CVekPlane(-a, -b, -c, -d); }

    /// (a, b, c), of whatever length.
    constexpr CVekVector3D<T> Normal() const noexcept { return CVekVector3D<T>(a, b, c); }
    /// The plane's expression at a point: 0 on it, positive in front. It is the distance when the normal's length is 1.
    constexpr T Evaluate(CVekVector3D<T> const & point) const noexcept { return Normal().Dot(point) + d; }
    /// The same plane with a normal of length 1; one without a normal stays as it is.
    CVekPlane Normalised() const noexcept
    {
        T const length = Normal().Length();
        return length == T(0) ? *this : CVekPlane(a / length, b / length, c / length, d / length);
    }
};

/// A matrix of any size. Elements are stored row by row: [row][column] is at index row * columns + column. Points are
/// row vectors multiplied from the left, so that a 4 x 4 transform has its translation in row 3 and its scale factors
/// on the diagonal. Copies own their elements.
template <class T>
class CVekMatrix
{
public:
    /// An empty matrix: no rows, no columns, no elements.
    VEK_API CVekMatrix() noexcept;
    /// A matrix of that size, its elements not initialised; after a failed allocation it is empty.
    VEK_API CVekMatrix(unsigned int rows, unsigned int columns) noexcept;
    /// Copies size and elements; empty after a failed allocation.
    VEK_API CVekMatrix(CVekMatrix const & other) noexcept;
    /// Takes over size and elements through Create; a matrix of fixed size keeps its size and takes the elements that
    /// both have. Without elements in the source this matrix is destroyed (as Destroy does).
    VEK_API CVekMatrix & operator=(CVekMatrix const & other) noexcept;

    /// Frees the elements.
    VEK_API_INLINE virtual ~CVekMatrix();
    /// Replaces the elements by rows x columns new ones, not initialised. Returns true also when the allocation failed:
    /// GetElements is null then and the sizes are the old ones.
    VEK_API virtual bool Create(unsigned int rows, unsigned int columns);
    /// Frees the elements; the sizes stay.
    VEK_API virtual void Destroy();

    /// The size.
    unsigned int GetRows() const noexcept { return m_rows; }
    unsigned int GetColumns() const noexcept { return m_columns; }
    /// The first element of row 0, or null without elements; the matrix keeps ownership.
    T * GetElements() noexcept { return m_elements; }
    T const * GetElements() const noexcept { return m_elements; }

    /// The element at a row and column. Outside the matrix it is a zero that belongs to no matrix.
    T & operator()(unsigned int row, unsigned int column) noexcept
    {
        return Has(row, column) ? m_elements[IndexOf(row, column)] : OutsideElement();
    }
    T const & operator()(unsigned int row, unsigned int column) const noexcept
    {
        return Has(row, column) ? m_elements[IndexOf(row, column)] : ZERO;
    }

    /// Sets the diagonal to 1 and everything else to 0.
    VEK_API void SetIdentity() noexcept;
    /// this = this x other, for matrices of up to 4 x 4: of larger ones only the first 4 rows and columns are replaced.
    /// The inner dimension is this matrix's row count; elements that a matrix doesn't have count as 0.
    VEK_API CVekMatrix & operator*=(CVekMatrix const & other) noexcept;
    /// Adds to the elements [3][0], [3][1] and [3][2], as far as they exist.
    VEK_API void AddTranslation(T x, T y, T z) noexcept;
    /// Multiplies this matrix by the 4 x 4 scale matrix of the three factors.
    VEK_API void Scale(T x, T y, T z) noexcept;

protected:
    /// For matrices whose elements are part of the object.
    VEK_API_INLINE CVekMatrix(unsigned int rows, unsigned int columns, T * elements) noexcept;

    bool Has(unsigned int row, unsigned int column) const noexcept
    {
        return row < m_rows && column < m_columns && m_elements != nullptr;
    }
    size_t IndexOf(unsigned int row, unsigned int column) const noexcept
    {
        return static_cast<size_t>(row) * m_columns + column;
    }
    /// One for each thread, 0 again at each call.
    VEK_API static T & OutsideElement() noexcept;
    static constexpr T ZERO = T(0);

    unsigned int m_rows;
    unsigned int m_columns;
    T * m_elements;
};

template <class T>
CVekMatrix<T>::CVekMatrix(unsigned int rows, unsigned int columns, T * elements) noexcept
    : m_rows(rows), m_columns(columns), m_elements(elements)
{
}

template <class T>
CVekMatrix<T>::~CVekMatrix()
{
    if (m_elements)
        CVekMatrix::Destroy(); // in the library, whose memory they are
}

/// A matrix of fixed size that carries its elements; Create and Destroy do nothing.
template <class T, unsigned int M, unsigned int N>
class CVekMatrixMxN : public CVekMatrix<T>
{
public:
    /// All elements are 0.
    CVekMatrixMxN() noexcept : CVekMatrix<T>(M, N, nullptr), m_inline() { this->m_elements = m_inline.at; }
    /// Copies the elements.
    CVekMatrixMxN(CVekMatrixMxN const & other) noexcept : CVekMatrix<T>(M, N, nullptr), m_inline(other.m_inline)
    {
        this->m_elements = m_inline.at;
    }
    CVekMatrixMxN & operator=(CVekMatrixMxN const & other) noexcept
    {
        m_inline = other.m_inline;
        return *this;
    }

    ~CVekMatrixMxN() override { this->m_elements = nullptr; }
    /// Does nothing and returns true: the size is fixed.
    bool Create(unsigned int, unsigned int) override { return true; }
    /// Does nothing.
    void Destroy() override {}

protected:
    /// For elements that are all written at once.
    enum Unset
    {
        UNSET
    };
    // cppcheck-suppress uninitMemberVar ; that is what it is for
    explicit CVekMatrixMxN(Unset) noexcept : CVekMatrix<T>(M, N, nullptr) { this->m_elements = m_inline.at; }

private:
    // As one object, which compilers copy by packs.
    struct Elements
    {
        T at[static_cast<size_t>(M) * N];
    };
    Elements m_inline;
};

/// The 4 x 4 matrix of transforms, of float or double. A product a * b transforms by a first and then by b.
template <class T>
class CVekMatrix4x4 : public CVekMatrixMxN<T, 4, 4>
{
public:
    /// All elements are 0.
    CVekMatrix4x4() noexcept = default;
    /// The elements of a matrix of the other precision, rounded to this one's.
    template <class U>
    explicit CVekMatrix4x4(CVekMatrix4x4<U> const & other) noexcept
    {
        for (size_t i = 0; i < 16; ++i)
            this->m_elements[i] = static_cast<T>(other.GetElements()[i]);
    }

    /// No transform at all; a translation by an offset; a scaling by a factor for each axis.
    VEK_API static CVekMatrix4x4 Identity() noexcept;
    VEK_API static CVekMatrix4x4 Translation(CVekVector3D<T> const & offset) noexcept;
    VEK_API static CVekMatrix4x4 Scaling(CVekVector3D<T> const & factors) noexcept;
    /// Rotations by an angle in radians: about x from y to z, about y from z to x, about z from x to y.
    VEK_API static CVekMatrix4x4 RotationX(T angle) noexcept;
    VEK_API static CVekMatrix4x4 RotationY(T angle) noexcept;
    VEK_API static CVekMatrix4x4 RotationZ(T angle) noexcept;
    /// The rotation about an axis of any length through the origin (Rodrigues' formula), counterclockwise when seen
    /// from the axis's tip in a right-handed system; the identity for an axis of length 0.
    VEK_API static CVekMatrix4x4 Rotation(CVekVector3D<T> const & axis, T angle) noexcept;
    /// The transform from the world to a viewer at eye: eye becomes the origin, target lies on the view axis, up points
    /// towards +y. The view axis is +z in the left-handed system, -z in the right-handed one. Where up gives no
    /// direction it is +y, or for a view along y the one of +z and -z for which +x runs to the right; where target is
    /// eye the view goes along +z and -z of the world.
    VEK_API static CVekMatrix4x4 LookAtLeftHanded(CVekVector3D<T> const & eye, CVekVector3D<T> const & target,
                                                  CVekVector3D<T> const & up) noexcept;
    VEK_API static CVekMatrix4x4 LookAtRightHanded(CVekVector3D<T> const & eye, CVekVector3D<T> const & target,
                                                   CVekVector3D<T> const & up) noexcept;

    /// this = this x other.
    CVekMatrix4x4 & operator*=(CVekMatrix4x4 const & other) noexcept;
    using CVekMatrix<T>::operator*=;
    /// The same bits as operator*= gives.
    VEK_API_INLINE CVekMatrix4x4 operator*(CVekMatrix4x4 const & other) const noexcept;
    /// By value.
    bool operator==(CVekMatrix4x4 const & other) const noexcept
    {
        return Row(0) == other.Row(0) && Row(1) == other.Row(1) && Row(2) == other.Row(2) && Row(3) == other.Row(3);
    }
    bool operator!=(CVekMatrix4x4 const & other) const noexcept { return !(*this == other); }
    /// True when no element differs by more than the tolerance.
    bool IsNear(CVekMatrix4x4 const & other, T tolerance) const noexcept
    {
        return Row(0).IsNear(other.Row(0), tolerance) && Row(1).IsNear(other.Row(1), tolerance) &&
               Row(2).IsNear(other.Row(2), tolerance) && Row(3).IsNear(other.Row(3), tolerance);
    }

    /// A row 0 to 3; any higher one is the last.
    CVekVector4D<T> Row(unsigned int row) const noexcept
    {
        T const * const elements = this->m_elements + 4 * (row < 3 ? row : 3);
        return CVekVector4D<T>(elements[0], elements[1], elements[2], elements[3]);
    }
    void SetRow(unsigned int row, CVekVector4D<T> const & values) noexcept
    {
        for (unsigned int column = 0; column < 4; ++column)
            this->m_elements[4 * (row < 3 ? row : 3) + column] = values[column];
    }
    /// The first three elements of row 3.
    CVekVector3D<T> GetTranslation() const noexcept { return Row(3).XYZ(); }
    void SetTranslation(CVekVector3D<T> const & offset) noexcept
    {
        SetRow(3, CVekVector4D<T>(offset, this->m_elements[15]));
    }

    /// The matrix with rows and columns exchanged; this one stays.
    VEK_API CVekMatrix4x4 Transposed() const noexcept;
    /// By 2 x 2 minors of the upper and the lower half, in double precision.
    VEK_API T Determinant() const noexcept;
    /// Writes the inverse; result may be this matrix. In double precision: by cofactors where the determinant has kept
    /// its digits, and by Gauss-Jordan elimination with partial pivoting elsewhere. Returns false and leaves result as
    /// it is when the matrix is singular: when a pivot is 0, or no more than the rounding of what it was computed from,
    /// or when the inverse has elements that are not finite. The size of the elements alone never makes a matrix
    /// singular.
    VEK_API bool Inverse(CVekMatrix4x4 & result) const noexcept;

    /// The row vector v multiplied by this matrix.
    CVekVector4D<T> Transform(CVekVector4D<T> const & v) const noexcept
    {
        T const * const m = this->m_elements;
        return CVekVector4D<T>(
            v.x * m[0] + v.y * m[4] + v.z * m[8] + v.w * m[12], v.x * m[1] + v.y * m[5] + v.z * m[9] + v.w * m[13],
            v.x * m[2] + v.y * m[6] + v.z * m[10] + v.w * m[14], v.x * m[3] + v.y * m[7] + v.z * m[11] + v.w * m[15]);
    }
    /// A point, w = 1, by a transform whose last column is (0, 0, 0, 1).
    CVekVector3D<T> TransformPoint(CVekVector3D<T> const & p) const noexcept
    {
        T const * const m = this->m_elements;
        return CVekVector3D<T>(p.x * m[0] + p.y * m[4] + p.z * m[8] + m[12],
                               p.x * m[1] + p.y * m[5] + p.z * m[9] + m[13],
                               p.x * m[2] + p.y * m[6] + p.z * m[10] + m[14]);
    }
    /// A direction, w = 0: the translation does not matter. Normals take the transposed inverse.
    CVekVector3D<T> TransformDirection(CVekVector3D<T> const & v) const noexcept
    {
        T const * const m = this->m_elements;
        return CVekVector3D<T>(v.x * m[0] + v.y * m[4] + v.z * m[8], v.x * m[1] + v.y * m[5] + v.z * m[9],
                               v.x * m[2] + v.y * m[6] + v.z * m[10]);
    }
    /// A point by a projection: with the division by w. False when w is 0; the result is left as it is then.
    bool ProjectPoint(CVekVector3D<T> const & p, CVekVector3D<T> & result) const noexcept
    {
        CVekVector4D<T> const v = Transform(CVekVector4D<T>(p, T(1)));
        if (v.w == T(0))
            return false;
        result = v.XYZ() / v.w;
        return true;
    }

private:
    using typename CVekMatrixMxN<T, 4, 4>::Unset;
    explicit CVekMatrix4x4(Unset unset) noexcept : CVekMatrixMxN<T, 4, 4>(unset) {}
};

template <class T>
inline CVekMatrix4x4<T> & CVekMatrix4x4<T>::operator*=(CVekMatrix4x4 const & other) noexcept
{
#if defined(VEK_INLINE_PRODUCTS)
    vek::Multiply4x4(this->m_elements, this->m_elements, other.m_elements);
#else
    CVekMatrix<T>::operator*=(other);
#endif
    return *this;
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::operator*(CVekMatrix4x4 const & other) const noexcept
{
#if defined(VEK_INLINE_PRODUCTS)
    CVekMatrix4x4 product(CVekMatrix4x4::UNSET);
    vek::Multiply4x4(product.m_elements, this->m_elements, other.m_elements);
#else
    CVekMatrix4x4 product(*this);
    product *= other;
#endif
    return product;
}

/// A box along the axes, or no box at all, a plain value. Corners belong to it.
template <class T>
class CVekBoundBox
{
public:
    /// The corners with the smallest and the largest coordinates.
    CVekVector3D<T> minimum, maximum;
    /// True for no box: its corners don't count.
    bool empty;

    constexpr CVekBoundBox() noexcept : minimum(), maximum(), empty(true) {}
    /// Takes the corners as they are.
    constexpr CVekBoundBox(CVekVector3D<T> const & minimum_, CVekVector3D<T> const & maximum_) noexcept
        : minimum(minimum_), maximum(maximum_), empty(false)
    {
    }

    friend constexpr bool operator==(CVekBoundBox const & a, CVekBoundBox const & b) noexcept
    {
        return a.empty == b.empty && (a.empty || (a.minimum == b.minimum && a.maximum == b.maximum));
    }
    friend constexpr bool operator!=(CVekBoundBox const & a, CVekBoundBox const & b) noexcept { return !(a == b); }

    /// The extent along each axis; 0 for an empty box.
    constexpr CVekVector3D<T> Size() const noexcept
    {
        return empty ? CVekVector3D<T>() : CVekVector3D<T>(maximum - minimum);
    }
    /// The point in the middle; 0 for an empty box.
    constexpr CVekVector3D<T> Centre() const noexcept
    {
        return empty ? CVekVector3D<T>() : CVekVector3D<T>((minimum + maximum) / T(2));
    }
    /// The corner 0 to 7: bit 0, 1, 2 takes the maximum of x, y, z.
    constexpr CVekVector3D<T> Corner(unsigned int index) const noexcept
    {
        return CVekVector3D<T>((index & 1u) ? maximum.x : minimum.x, (index & 2u) ? maximum.y : minimum.y,
                               (index & 4u) ? maximum.z : minimum.z);
    }

    /// Makes the box just large enough for a point or another box too.
    constexpr void Extend(CVekVector3D<T> const & point) noexcept { Extend(CVekBoundBox(point, point)); }
    constexpr void Extend(CVekBoundBox const & other) noexcept { *this = Union(other); }
    /// The smallest box around both.
    constexpr CVekBoundBox Union(CVekBoundBox const & other) const noexcept
    {
        return empty         ? other
               : other.empty ? *this
                             : CVekBoundBox(minimum.Smallest(other.minimum), maximum.Largest(other.maximum));
    }
    /// True for points of the box, its surface included.
    constexpr bool Contains(CVekVector3D<T> const & p) const noexcept
    {
        return !empty && p.x >= minimum.x && p.x <= maximum.x && p.y >= minimum.y && p.y <= maximum.y &&
               p.z >= minimum.z && p.z <= maximum.z;
    }
    /// True when the whole other box is inside; an empty one always is.
    constexpr bool Contains(CVekBoundBox const & other) const noexcept
    {
        return other.empty || (Contains(other.minimum) && Contains(other.maximum));
    }
    /// True when the two have a point in common.
    constexpr bool Intersects(CVekBoundBox const & other) const noexcept
    {
        return !empty && !other.empty && minimum.x <= other.maximum.x && other.minimum.x <= maximum.x &&
               minimum.y <= other.maximum.y && other.minimum.y <= maximum.y && minimum.z <= other.maximum.z &&
               other.minimum.z <= maximum.z;
    }
    /// The smallest box around the eight transformed corners, by a transform whose last column is (0, 0, 0, 1).
    CVekBoundBox Transformed(CVekMatrix4x4<T> const & transform) const noexcept
    {
        CVekBoundBox box;
        for (unsigned int i = 0; i < 8 && !empty; ++i)
            box.Extend(transform.TransformPoint(Corner(i)));
        return box;
    }
};

#endif
