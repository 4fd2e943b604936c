#include "VekMath.h"

#include "math/Inverse.h"
#include "math/Pack.h"

#include <float.h>
#include <math.h>

namespace
{

template <class T>
CVekMatrix4x4<T> FromRows(CVekVector3D<T> const & x, CVekVector3D<T> const & y, CVekVector3D<T> const & z,
                          CVekVector3D<T> const & offset)
{
    CVekMatrix4x4<T> matrix;
    matrix.SetRow(0, CVekVector4D<T>(x, 0));
    matrix.SetRow(1, CVekVector4D<T>(y, 0));
    matrix.SetRow(2, CVekVector4D<T>(z, 0));
    matrix.SetRow(3, CVekVector4D<T>(offset, 1));
    return matrix;
}

template <class T>
CVekVector3D<T> UnitAxis(unsigned int axis)
{
    CVekVector3D<T> unit;
    unit[axis] = 1;
    return unit;
}

// A unit vector perpendicular to the unit vector z on the side where x is for y up.
template <class T>
CVekVector3D<T> RightOf(CVekVector3D<T> const & up, CVekVector3D<T> const & z)
{
    CVekVector3D<T> const right = up.Normalised().Cross(z);
    // Shorter ones are mere rounding.
    if (right.Length() > (sizeof(T) == sizeof(float) ? static_cast<T>(FLT_EPSILON) : static_cast<T>(DBL_EPSILON)) * 4)
        return right.Normalised();
    // +y is up, but in a plan +x runs to the right.
    if (z.LargestAxis() != 1)
        return UnitAxis<T>(1).Cross(z).Normalised();
    return (z.y > T(0) ? z.Cross(UnitAxis<T>(2)) : UnitAxis<T>(2).Cross(z)).Normalised();
}

template <class T>
CVekMatrix4x4<T> LookAlong(CVekVector3D<T> const & eye, CVekVector3D<T> const & direction, CVekVector3D<T> const & up)
{
    CVekVector3D<T> const unit = direction.Normalised();
    CVekVector3D<T> const z = unit == CVekVector3D<T>() ? UnitAxis<T>(2) : unit;
    CVekVector3D<T> const x = RightOf(up, z);
    CVekVector3D<T> const y = z.Cross(x);
    CVekVector3D<T> const offset(-x.Dot(eye), -y.Dot(eye), -z.Dot(eye));
    return FromRows(CVekVector3D<T>(x.x, y.x, z.x), CVekVector3D<T>(x.y, y.y, z.y), CVekVector3D<T>(x.z, y.z, z.z),
                    offset);
}

// One matrix to invert and the inverse that grows beside it. Beside each element stands the sum of the magnitudes that
// it was computed from, which tells its rounding.
class Elimination
{
public:
    template <class T>
    explicit Elimination(T const * elements)
    {
        for (int row = 0; row < SIZE; ++row)
            for (int column = 0; column < SIZE; ++column)
            {
                m_rows[row].left[column] = static_cast<double>(elements[row * SIZE + column]);
                m_rows[row].terms[column] = fabs(m_rows[row].left[column]);
                m_rows[row].right[column] = row == column ? 1 : 0;
            }
    }

    bool Run()
    {
        for (int column = 0; column < SIZE; ++column)
        {
            int const pivot = FindPivot(column);
            // A NaN is no pivot either.
            if (!(fabs(m_rows[pivot].left[column]) > 4 * DBL_EPSILON * m_rows[pivot].terms[column]))
                return false;
            Row const exchanged = m_rows[pivot];
            m_rows[pivot] = m_rows[column];
            m_rows[column] = exchanged;
            for (int row = 0; row < SIZE; ++row)
                if (row != column)
                    Subtract(m_rows[row], m_rows[column], column);
        }
        for (int row = 0; row < SIZE; ++row)
            for (int column = 0; column < SIZE; ++column)
                m_rows[row].right[column] /= m_rows[row].left[row];
        return true;
    }

    double Inverse(int row, int column) const { return m_rows[row].right[column]; }

private:
    static constexpr int SIZE = 4;

    struct Row
    {
        double left[SIZE], right[SIZE], terms[SIZE];
    };

    int FindPivot(int column) const
    {
        int pivot = column;
        for (int row = column + 1; row < SIZE; ++row)
            if (fabs(m_rows[row].left[column]) > fabs(m_rows[pivot].left[column]))
                pivot = row;
        return pivot;
    }
    static void Subtract(Row & row, Row const & pivot, int column)
    {
        double const factor = row.left[column] / pivot.left[column];
        vek::Pack<double> const factors = vek::Splat(factor), magnitudes = vek::Splat(fabs(factor));
        for (int i = 0; i < SIZE; i += 2)
        {
            vek::StorePack(row.left + i, vek::LoadPack(row.left + i) - factors * vek::LoadPack(pivot.left + i));
            vek::StorePack(row.right + i, vek::LoadPack(row.right + i) - factors * vek::LoadPack(pivot.right + i));
            vek::StorePack(row.terms + i, vek::LoadPack(row.terms + i) + magnitudes * vek::LoadPack(pivot.terms + i));
        }
    }

    Row m_rows[SIZE];
};

} // namespace

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::Identity() noexcept
{
    return Translation(CVekVector3D<T>());
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::Translation(CVekVector3D<T> const & offset) noexcept
{
    return FromRows(UnitAxis<T>(0), UnitAxis<T>(1), UnitAxis<T>(2), offset);
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::Scaling(CVekVector3D<T> const & factors) noexcept
{
    return FromRows(CVekVector3D<T>(factors.x, 0, 0), CVekVector3D<T>(0, factors.y, 0),
                    CVekVector3D<T>(0, 0, factors.z), CVekVector3D<T>());
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::RotationX(T angle) noexcept
{
    return Rotation(UnitAxis<T>(0), angle);
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::RotationY(T angle) noexcept
{
    return Rotation(UnitAxis<T>(1), angle);
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::RotationZ(T angle) noexcept
{
    return Rotation(UnitAxis<T>(2), angle);
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::Rotation(CVekVector3D<T> const & axis, T angle) noexcept
{
    CVekVector3D<T> const n = axis.Normalised();
    if (n == CVekVector3D<T>())
        return Identity();
    T const c = static_cast<T>(cos(static_cast<double>(angle))), s = static_cast<T>(sin(static_cast<double>(angle)));
    // A unit vector e turns into n (n . e) (1 - c) + e c + n x e s.
    CVekVector3D<T> rows[3];
    for (unsigned int i = 0; i < 3; ++i)
        rows[i] = n * (n[i] * (1 - c)) + UnitAxis<T>(i) * c + n.Cross(UnitAxis<T>(i)) * s;
    return FromRows(rows[0], rows[1], rows[2], CVekVector3D<T>());
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::LookAtLeftHanded(CVekVector3D<T> const & eye, CVekVector3D<T> const & target,
                                                    CVekVector3D<T> const & up) noexcept
{
    return LookAlong(eye, target - eye, up);
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::LookAtRightHanded(CVekVector3D<T> const & eye, CVekVector3D<T> const & target,
                                                     CVekVector3D<T> const & up) noexcept
{
    return LookAlong(eye, eye - target, up);
}

template <class T>
CVekMatrix4x4<T> CVekMatrix4x4<T>::Transposed() const noexcept
{
    CVekMatrix4x4 result;
    for (unsigned int row = 0; row < 4; ++row)
        for (unsigned int column = 0; column < 4; ++column)
            result.m_elements[column * 4 + row] = this->m_elements[row * 4 + column];
    return result;
}

template <class T>
T CVekMatrix4x4<T>::Determinant() const noexcept
{
    auto const minor = [this](unsigned int row, unsigned int a, unsigned int b)
    {
        T const * const m = this->m_elements + row * 4;
        return static_cast<double>(m[a]) * static_cast<double>(m[4 + b]) -
               static_cast<double>(m[b]) * static_cast<double>(m[4 + a]);
    };
    return static_cast<T>(minor(0, 0, 1) * minor(2, 2, 3) - minor(0, 0, 2) * minor(2, 1, 3) +
                          minor(0, 0, 3) * minor(2, 1, 2) + minor(0, 1, 2) * minor(2, 0, 3) -
                          minor(0, 1, 3) * minor(2, 0, 2) + minor(0, 2, 3) * minor(2, 0, 1));
}

template <class T>
bool CVekMatrix4x4<T>::Inverse(CVekMatrix4x4 & result) const noexcept
{
    if (vek::CofactorInverse<T>::Run(this->m_elements, result.m_elements))
        return true;
    Elimination elimination(this->m_elements);
    if (!elimination.Run())
        return false;
    T elements[16];
    for (int i = 0; i < 16; ++i)
    {
        elements[i] = static_cast<T>(elimination.Inverse(i / 4, i % 4));
        if (!isfinite(elements[i]))
            return false;
    }
    for (int i = 0; i < 16; ++i)
        result.m_elements[i] = elements[i];
    return true;
}

template class CVekMatrix4x4<float>;
template class CVekMatrix4x4<double>;
