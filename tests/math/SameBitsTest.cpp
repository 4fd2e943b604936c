// Plain arithmetic gives the same bits in every build: checksums of results over many inputs. What uses the runtime's
// sines and their like has the runtime's bits, and is not here.

#include "VekCamera.h"
#include "VekGeometry.h"
#include "VekMath.h"
#include "VekNurbs.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace
{

// Numbers and the checksum of what is made of them.
class Bits
{
public:
    template <class T>
    T Next() // from -2 to 2, sometimes whole
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        auto const value = static_cast<double>(static_cast<std::int32_t>(m_state >> 32)) / 1073741824.0;
        return static_cast<T>((m_state & 0x70000000) == 0 ? static_cast<double>(static_cast<int>(value)) : value);
    }
    template <class T>
    CVekVector3D<T> Vector()
    {
        T const x = Next<T>(), y = Next<T>();
        return CVekVector3D<T>(x, y, Next<T>());
    }
    template <class T>
    void Fill(T * values, unsigned int count)
    {
        for (unsigned int i = 0; i < count; ++i)
            values[i] = Next<T>();
    }
    template <class T>
    CVekMatrix4x4<T> Matrix()
    {
        CVekMatrix4x4<T> matrix;
        Fill(matrix.GetElements(), 16);
        return matrix;
    }

    template <class T>
    void Add(T const * values, unsigned int count)
    {
        unsigned char bytes[sizeof(T)];
        for (unsigned int i = 0; i < count; ++i)
        {
            T const value = values[i] == values[i] ? values[i] : T(); // no number has many patterns
            std::memcpy(bytes, &value, sizeof bytes);
            for (unsigned char const byte : bytes)
                m_sum = (m_sum ^ byte) * 1099511628211ULL;
        }
    }
    template <class T>
    void Add(T value)
    {
        Add(&value, 1);
    }
    template <class T>
    void Add(CVekVector3D<T> const & value)
    {
        Add(&value.x, 3);
    }
    template <class T>
    void Add(CVekMatrix4x4<T> const & value)
    {
        Add(value.GetElements(), 16);
    }
    std::uint64_t Sum() const { return m_sum; }

private:
    std::uint64_t m_state = 1;
    std::uint64_t m_sum = 14695981039346656037ULL;
};

template <class T>
void Vectors(Bits & bits)
{
    for (int i = 0; i < 2000; ++i)
    {
        auto const a = bits.Vector<T>(), b = bits.Vector<T>();
        bits.Add(a.Normalised());
        bits.Add(a.Cross(b));
        bits.Add(a.Lerp(b, bits.Next<T>()));
        T const lengths[] = {a.Dot(b), a.Length(), a.DistanceTo(b)};
        bits.Add(lengths, 3);
        bits.Add(CVekPlane<T>(a, b, bits.Vector<T>()).Normalised().Evaluate(a));
    }
}

template <class T>
void Products(Bits & bits)
{
    for (int i = 0; i < 2000; ++i)
    {
        auto a = bits.Matrix<T>();
        auto const b = bits.Matrix<T>();
        bits.Add(a * b);
        a *= b;
        bits.Add(a.TransformPoint(bits.Vector<T>()));
        bits.Add(a.TransformDirection(bits.Vector<T>()));
        a.Scale(bits.Next<T>(), 2, 3);
        bits.Add(a);
    }
    CVekMatrix<T> small(3, 4), other(4, 2);
    bits.Fill(small.GetElements(), 12);
    bits.Fill(other.GetElements(), 8);
    bits.Add((small *= other).GetElements(), 12);
}

template <class T>
void Inverses(Bits & bits)
{
    for (int i = 0; i < 2000; ++i)
    {
        auto matrix = bits.Matrix<T>();
        bits.Add(matrix.Determinant());
        bits.Add(matrix.Inverse(matrix) ? 1 : 0);
        bits.Add(matrix);
        auto const eye = bits.Vector<T>(), target = bits.Vector<T>(), up = bits.Vector<T>();
        bits.Add(CVekMatrix4x4<T>::LookAtLeftHanded(eye, target, up));
        bits.Add(CVekMatrix4x4<T>::LookAtRightHanded(eye, up, target));
    }
}

// The element's type, the class and the type that it computes in.
template <class T, class Math, class Result>
void Systems(Bits & bits)
{
    for (unsigned int n = 1; n <= 40; ++n)
    {
        CVekMatrix<T> matrix(n, n);
        unsigned int order[40];
        Result sides[40];
        bits.Fill(matrix.GetElements(), n * n);
        bits.Fill(sides, n);
        bits.Add(Math::LUDecompose(matrix, order));
        bits.Add(matrix.GetElements(), n * n);
        bits.Add(order, n);
        Math::LUSubstitution(matrix, order, sides, sides);
        bits.Add(sides, n);
    }
}

template <class T, class Math>
void Intersections(Bits & bits)
{
    for (int i = 0; i < 2000; ++i)
    {
        CVekVector3D<T> v[6], hit, weights;
        for (auto & vector : v)
            vector = bits.Vector<T>();
        T t = 0;
        bits.Add(Math::RayPlaneIntersection(v[0], v[1], CVekPlane<T>(v[2], v[3], v[4]), t, hit) ? 1 : 0);
        bits.Add(hit * t);
        bits.Add(Math::RayTriangleIntersection(v[0], v[1], v[2], v[3], v[4], v[5], 0, t, hit, &weights) ? 1 : 0);
        bits.Add(hit * t);
        bits.Add(weights);
        CVekMatrix4x4<T> transform;
        CVekBoundBox<T> from(v[0], v[0]), to(v[1], v[1]);
        from.Extend(v[2]);
        to.Extend(v[3]);
        bits.Add(Math::BoxToBoxTransform(transform, from, to, i % 2 == 0) ? 1 : 0);
        bits.Add(transform);
        bits.Add(from.Transformed(transform).Centre());
    }
}

template <class T>
void AddCurve(Bits & bits, CVekNurbsCurve<T> const & curve)
{
    for (unsigned int i = 0; i < curve.GetPointCount(); ++i)
        bits.Add(&curve.GetWeightedPoints()[i].x, 4);
    bits.Add(curve.GetKnots(), curve.GetKnotCount());
}

template <class T>
void Curves(Bits & bits)
{
    for (unsigned int degree = 1; degree < 6; ++degree)
    {
        CVekVector3D<T> points[12], derivatives[4], line[400];
        T parameters[400];
        for (auto & point : points)
            point = bits.Vector<T>();
        CVekNurbsCurve<T> curve, before, after;
        ASSERT_TRUE(curve.CreateInterpolation(degree, points, 12));
        ASSERT_TRUE(curve.SetControlPoint(3, points[0], T(1.75)));
        AddCurve(bits, curve);
        for (int i = 0; i < 40; ++i)
        {
            T const at = curve.GetStart() + (curve.GetEnd() - curve.GetStart()) * T(i) / T(39);
            bits.Add(curve.GetPoint(at));
            curve.GetDerivatives(at, 3, derivatives);
            for (auto const & derivative : derivatives)
                bits.Add(derivative);
            bits.Add(curve.GetTangent(at));
            bits.Add(curve.GetCurvature(at));
        }
        T const middle = (curve.GetStart() + curve.GetEnd()) / T(2.1);
        T nearest = 0, distance = 0;
        ASSERT_TRUE(curve.FindClosestPoint(bits.Vector<T>(), nearest, &distance));
        T const lengths[] = {nearest, distance, curve.GetLength(), curve.GetLengthBetween(curve.GetStart(), middle),
                             curve.GetParameterAtLength(T(1.5))};
        bits.Add(lengths, 5);
        unsigned int const count = curve.Tessellate(T(0.01), line, parameters, 400);
        bits.Add(parameters, count < 400 ? count : 400);
        bits.Add(curve.GetBoundBox().Size());
        ASSERT_TRUE(curve.Split(middle, before, after) && curve.InsertKnot(middle) && curve.ElevateDegree(2));
        curve.Transform(bits.Matrix<T>());
        AddCurve(bits, before);
        AddCurve(bits, curve);
    }
}

void Projections(Bits & bits)
{
    for (int i = 0; i < 2000; ++i)
    {
        float v[6];
        bits.Fill(v, 6);
        CVekFrustum frustum(VEK_PROJECTIONMODE(i % 2), v[0], v[1], v[2], v[3], v[4], v[5]);
        frustum.FixAspectRatio(4, 3);
        frustum.Scale(v[0], v[5]);
        bits.Add(frustum.CreateProjectionMatrix(VEK_COORDSYSTEM(i / 2 % 2)));
    }
}

void Pans(Bits & bits)
{
    CVekCameraUIController controller;
    for (int i = 0; i < 1000; ++i)
    {
        VEK_CAMERASTATE state;
        state.frustum.SetProjectionMode(VEK_PROJECTIONMODE(i % 2));
        state.coordSystem = VEK_COORDSYSTEM(i / 2 % 2);
        auto const eye = bits.Vector<float>(), target = bits.Vector<float>(), pointer = bits.Vector<float>() * 100;
        state.matrix = CVekMatrix4x4<float>::LookAtLeftHanded(eye, target, state.up);
        state.pivot = bits.Vector<float>() * 3;
        state.screenRight = 640;
        state.screenBottom = 480;
        state.pointerStart = CVekVector2D<float>(320 + pointer.x, 240 + pointer.y);
        state.pointerCurrent = CVekVector2D<float>(320 + pointer.y, 240 + pointer.z);
        bits.Add(controller.Manipulate(VEK_CAMERAMODE_PAN, &state) ? 1 : 0);
        bits.Add(state.matrix);
        bits.Add(state.frustum.GetWidth());
    }
}

struct Row
{
    char const * name;
    void (*compute)(Bits &);
    std::uint64_t sum;
};
constexpr Row ROWS[] = {
    {"vectors, float", Vectors<float>, 231292081423353280u},
    {"vectors, double", Vectors<double>, 13151809155555354788u},
    {"products, float", Products<float>, 9864564192462284366u},
    {"products, double", Products<double>, 8864562920611310401u},
    {"inverses, float", Inverses<float>, 18274207181747221299u},
    {"inverses, double", Inverses<double>, 13873124219209137391u},
    {"systems, float in float", Systems<float, CVekMath32, float>, 5584528628098574321u},
    {"systems, float in double", Systems<float, CVekMath64, double>, 3166988616382850780u},
    {"systems, double", Systems<double, CVekMath64, double>, 5243571866922275226u},
    {"intersections, float", Intersections<float, CVekMath32>, 10547671034609437489u},
    {"intersections, double", Intersections<double, CVekMath64>, 17083948017143729738u},
    {"curves, float", Curves<float>, 13688638795912634515u},
    {"curves, double", Curves<double>, 17304366684967407032u},
    {"projections", Projections, 10258380081851538072u},
    {"pans of a camera", Pans, 10069636741701713241u},
};

TEST(PlainArithmetic, HasTheSameBitsInEveryBuild)
{
    for (Row const & row : ROWS)
    {
        Bits bits;
        row.compute(bits);
        EXPECT_EQ(bits.Sum(), row.sum) << row.name;
    }
}

} // namespace
