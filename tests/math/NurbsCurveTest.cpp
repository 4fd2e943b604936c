#include "VekLib.h"

#include "support/GuardHeap.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace
{

static_assert(std::is_nothrow_copy_constructible_v<CVekNurbsCurve<float>> &&
              std::is_nothrow_move_constructible_v<CVekNurbsCurve<double>>);

constexpr double PI = 3.14159265358979323846;

template <class T>
class NurbsCurve : public testing::Test
{
protected:
    using Curve = CVekNurbsCurve<T>;
    using Vector = CVekVector3D<T>;

    // A relative tolerance: some hundred roundings.
    static constexpr T ROUNDING = 200 * std::numeric_limits<T>::epsilon();

    static T Random(T low, T high)
    {
        static std::mt19937 generator(7);
        return std::uniform_real_distribution<T>(low, high)(generator);
    }
    // Random points within 1 of 0, weights 0.5 to 2, and knots of which the given ones are inside.
    static Curve Make(unsigned int degree, std::vector<T> const & inside, bool clamped = true)
    {
        std::vector<T> knots(degree + 1, T(0));
        knots.insert(knots.end(), inside.begin(), inside.end());
        knots.insert(knots.end(), degree + 1, T(1));
        for (unsigned int i = 1; !clamped && i <= degree; ++i)
        {
            knots[degree - i] -= static_cast<T>(i) / 4;
            knots[knots.size() - 1 - degree + i] += static_cast<T>(i) / 8;
        }
        std::vector<Vector> points;
        std::vector<T> weights;
        for (size_t i = 0; i < knots.size() - degree - 1; ++i)
        {
            points.push_back(Vector(Random(-1, 1), Random(-1, 1), Random(-1, 1)));
            weights.push_back(Random(T(0.5), 2));
        }
        Curve curve;
        EXPECT_TRUE(curve.Create(degree, points.data(), weights.data(), static_cast<unsigned int>(points.size()),
                                 knots.data(), static_cast<unsigned int>(knots.size())));
        return curve;
    }
    // One of each kind: a Bezier, knots of all multiplicities, short spans, ends that are not clamped, a high degree.
    static std::vector<Curve> Zoo()
    {
        std::vector<T> many;
        for (int i = 1; i < 40; ++i)
            many.push_back(static_cast<T>(i) / 40);
        return {Make(1, {T(0.5)}),
                Make(2, {}),
                Make(3, {T(0.25), T(0.5), T(0.5), T(0.75), T(0.75), T(0.75)}),
                Make(4, {T(0.5), T(0.5001), T(0.9)}, false),
                Make(3, many, false),
                Make(12, {T(0.25), T(0.5), T(0.5)}),
                Make(31, {T(0.3), T(0.6)})};
    }
    // The largest distance of points at the same parameters.
    static T Difference(Curve const & a, Curve const & b)
    {
        T largest = 0;
        for (int i = 0; i <= 200; ++i)
        {
            T const u = a.GetStart() + (a.GetEnd() - a.GetStart()) * static_cast<T>(i) / 200;
            largest = std::max(largest, a.GetPoint(u).DistanceTo(b.GetPoint(u)));
        }
        return largest;
    }
    static Curve Circle(T radius)
    {
        Curve circle;
        EXPECT_TRUE(circle.CreateCircle(Vector(1, 2, 3), Vector(radius, 0, 0), Vector(0, radius, 0)));
        return circle;
    }
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(NurbsCurve, Precisions);

TYPED_TEST(NurbsCurve, CreateChecks)
{
    using T = TypeParam;
    T const nan = std::numeric_limits<T>::quiet_NaN();
    T const max = std::numeric_limits<T>::max(), min = std::numeric_limits<T>::min();
    CVekVector3D<T> const good[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 1, 0}};
    CVekVector3D<T> const bad[4] = {{0, 0, 0}, {1, 0, 0}, {1, nan, 0}, {2, 1, 0}};
    struct Row
    {
        VEK_NURBS_ERROR code;
        unsigned int index, degree, count;
        std::vector<T> weights, knots;
        wchar_t const * message; // null: it is created
        bool badPoint = false;
    };
    Row const rows[] = {
        {VEK_NURBS_ERROR_NONE, 0, 3, 4, {}, {}, nullptr},
        {VEK_NURBS_ERROR_NONE, 0, 2, 4, {1, 2, 3, 4}, {0, 0, 0, T(0.5), 1, 1, 1}, nullptr},
        {VEK_NURBS_ERROR_NONE, 0, 2, 4, {}, {-1, 0, 1, 2, 3, 4, 5}, nullptr},
        {VEK_NURBS_ERROR_NONE, 0, 2, 4, {}, {0, 0, 0, 1, 1, 2, 3}, nullptr},
        {VEK_NURBS_ERROR_DEGREE, 0, 0, 4, {}, {}, L"Degree 0 is not 1 to 32"},
        {VEK_NURBS_ERROR_DEGREE, 0, 33, 34, {}, {}, L"Degree 33 is not 1 to 32"},
        {VEK_NURBS_ERROR_POINT_COUNT, 0, 3, 3, {}, {}, L"Number of control points 3 is not 4 to 1048576"},
        {VEK_NURBS_ERROR_POINT_COUNT,
         0,
         3,
         0xFFFFFFFF,
         {},
         {},
         L"Number of control points 4294967295 is not 4 to 1048576"},
        {VEK_NURBS_ERROR_KNOT_COUNT, 0, 2, 4, {}, {0, 0, 0, 1, 1, 1}, L"Number of knots 6 is not 7"},
        {VEK_NURBS_ERROR_POINT, 2, 3, 4, {}, {}, L"Control point 2 is not finite", true},
        {VEK_NURBS_ERROR_POINT, 3, 3, 4, {1, 1, 1, max}, {}, L"Control point 3 is not finite"},
        {VEK_NURBS_ERROR_WEIGHT, 1, 3, 4, {1, 0, 1, 1}, {}, L"Weight 1 is not a positive normal number"},
        {VEK_NURBS_ERROR_WEIGHT, 1, 3, 4, {1, -1, 1, 1}, {}, L"Weight 1 is not a positive normal number"},
        {VEK_NURBS_ERROR_WEIGHT, 2, 3, 4, {1, 1, nan, 1}, {}, L"Weight 2 is not a positive normal number"},
        {VEK_NURBS_ERROR_NONE, 0, 3, 4, {1, 1, 1, min}, {}, nullptr},
        {VEK_NURBS_ERROR_WEIGHT, 3, 3, 4, {1, 1, 1, min / 2}, {}, L"Weight 3 is not a positive normal number"},
        {VEK_NURBS_ERROR_KNOT, 3, 2, 4, {}, {0, 0, 0, nan, 1, 1, 1}, L"Knot 3 is not finite or too large"},
        {VEK_NURBS_ERROR_KNOT, 6, 2, 4, {}, {0, 0, 0, 1, 2, 2, max}, L"Knot 6 is not finite or too large"},
        {VEK_NURBS_ERROR_KNOT_ORDER, 4, 2, 4, {}, {0, 0, 0, 2, 1, 3, 3}, L"Knot 4 is less than the one before"},
        {VEK_NURBS_ERROR_KNOT_REPEATED, 3, 2, 4, {}, {0, 0, 0, 0, 1, 1, 1}, L"Knot 3 occurs more than 3 times"},
        {VEK_NURBS_ERROR_KNOT_REPEATED, 4, 2, 4, {}, {0, 0, 1, 1, 1, 2, 2}, L"Knot 4 occurs more than 2 times"},
        {VEK_NURBS_ERROR_DOMAIN, 0, 2, 3, {}, {0, 1, 2, 2, 3, 4}, L"The domain is empty"},
    };
    CVekNurbsCurve<T> curve;
    EXPECT_TRUE(curve.CreateLine(good[0], good[1]));
    LogCapture log;
    for (Row const & row : rows)
    {
        CVekNurbsCurve<T> created(curve);
        auto const * const points = row.badPoint ? bad : good;
        T const * const weights = row.weights.empty() ? nullptr : row.weights.data();
        T const * const knots = row.knots.empty() ? nullptr : row.knots.data();
        auto const knotCount = static_cast<unsigned int>(row.knots.size());
        VekNurbsError const error = curve.Check(row.degree, points, weights, row.count, knots, knotCount);
        EXPECT_EQ(std::pair(error.code, error.index), std::pair(row.code, row.index));
        EXPECT_EQ(log.Take(), L"");
        bool const made = created.Create(row.degree, points, weights, row.count, knots, knotCount);
        EXPECT_EQ(made, row.message == nullptr);
        std::wstring const expected = row.message ? std::wstring(L"CVekNurbsCurve::Create --> ") + row.message : L"";
        EXPECT_EQ(log.Take(), expected);
        EXPECT_EQ(created.GetDegree(), made ? row.degree : 1) << "a failure leaves the curve as it was";
    }
    EXPECT_FALSE(curve.Create(1, nullptr, nullptr, 2));
    EXPECT_FALSE(curve.InsertKnot(2) || curve.InsertKnot(nan) || curve.InsertKnot(T(0.5), 2) || curve.InsertKnot(0));
    EXPECT_FALSE(curve.ElevateDegree(32) || curve.Split(0, curve, curve) || curve.Split(nan, curve, curve));
    EXPECT_FALSE(curve.SetControlPoint(2, good[0], 1) || curve.SetControlPoint(0, good[0], min / 2));
    EXPECT_FALSE(curve.CreateArc(good[0], good[1], good[2], 0, 0) ||
                 curve.CreateArc(good[0], good[1], good[2], 0, nan));
    EXPECT_FALSE(curve.CreateInterpolation(1, std::vector{good[0], good[0]}.data(), 2));
    CVekMatrix4x4<T> behind;
    behind.SetIdentity();
    behind(3, 3) = 0;
    EXPECT_FALSE(curve.Transform(behind));
    EXPECT_EQ(log.Lines().size(), 14u);
    for (unsigned int const count : {0u, 1u, 34u})
    {
        log.Take();
        EXPECT_FALSE(curve.CreateBezier(good, nullptr, count));
        EXPECT_EQ(log.Take(), L"CVekNurbsCurve::CreateBezier --> Number of control points " + std::to_wstring(count) +
                                  L" is not 2 to 33");
    }
    EXPECT_EQ(curve.GetPoint(1), good[1]);
}

TYPED_TEST(NurbsCurve, BezierIsDeCasteljausPoint)
{
    using T = TypeParam;
    for (unsigned int degree : {1u, 2u, 3u, 4u, 5u, 6u, 20u, 32u})
    {
        auto const curve = this->Make(degree, {});
        for (int step = 0; step <= 20; ++step)
        {
            double const t = step / 20.0;
            std::vector<CVekVector4D<double>> row;
            for (unsigned int i = 0; i <= degree; ++i)
                row.push_back(CVekVector4D<double>(curve.GetWeightedPoints()[i]));
            for (; row.size() > 1; row.pop_back())
                for (size_t i = 0; i + 1 < row.size(); ++i)
                    row[i] = row[i].Lerp(row[i + 1], t);
            CVekVector3D<T> const expected(CVekVector3D<double>(row[0].XYZ() / row[0].w));
            EXPECT_TRUE(curve.GetPoint(static_cast<T>(t)).IsNear(expected, this->ROUNDING)) << degree << " at " << t;
        }
    }
}

TYPED_TEST(NurbsCurve, CircleIsExact)
{
    using T = TypeParam;
    using Point = CVekVector3D<T>;
    auto const circle = this->Circle(5);
    Point const centre(1, 2, 3);
    EXPECT_EQ(circle.GetPoint(0), circle.GetPoint(1));
    for (int i = 0; i <= 100; ++i)
    {
        T const u = static_cast<T>(i) / 100;
        EXPECT_NEAR(circle.GetPoint(u).DistanceTo(centre), 5, 5 * this->ROUNDING);
        EXPECT_NEAR(circle.GetCurvature(u), 0.2, this->ROUNDING);
        EXPECT_NEAR(circle.GetTangent(u).Dot(circle.GetPoint(u) - centre), 0, 5 * this->ROUNDING);
        EXPECT_NEAR(circle.GetTangent(u).Length(), 1, this->ROUNDING);
        // Of a point inside or outside the nearest one is on the ray from the centre.
        for (T const factor : {T(0.3), T(1), T(7)})
        {
            Point const point = centre + (circle.GetPoint(u) - centre) * factor;
            T parameter = 9;
            T distance = 9;
            EXPECT_TRUE(circle.FindClosestPoint(point, parameter, &distance));
            EXPECT_NEAR(distance, 5 * std::abs(factor - 1), 40 * this->ROUNDING);
            EXPECT_LT(circle.GetPoint(parameter).DistanceTo(circle.GetPoint(u)), 40 * this->ROUNDING) << u;
        }
    }
    EXPECT_NEAR(circle.GetLength(), 10 * PI, 10 * this->ROUNDING);
    EXPECT_NEAR(circle.GetParameterAtLength(static_cast<T>(7.5 * PI)), 0.75, this->ROUNDING);
    EXPECT_NEAR(circle.GetLengthBetween(T(0.875), T(0.25)), 6.25 * PI, 10 * this->ROUNDING);
    T distance = 0;
    T parameter = 0;
    EXPECT_TRUE(circle.FindClosestPoint(centre, parameter, &distance));
    EXPECT_NEAR(distance, 5, this->ROUNDING * 5);
    CVekBoundBox<T> const box = circle.GetBoundBox();
    EXPECT_TRUE(box.minimum.IsNear(Point(-4, -3, 3), T(3e-8) + 5 * this->ROUNDING));
    EXPECT_TRUE(box.maximum.IsNear(Point(6, 7, 3), T(3e-8) + 5 * this->ROUNDING));
    CVekNurbsCurve<T> arc;
    EXPECT_TRUE(arc.CreateArc(centre, Point(5, 0, 0), Point(0, 5, 0), 1, T(-2.5)));
    EXPECT_NEAR(arc.GetLength(), 12.5, 12 * this->ROUNDING);
    EXPECT_TRUE(
        arc.GetPoint(1).IsNear(centre + Point(std::cos(T(-1.5)), std::sin(T(-1.5)), 0) * 5, 5 * this->ROUNDING));
}

// In double, so that the differences mean something; curves of floats are worked in double too.
using NurbsCurveOfDoubles = NurbsCurve<double>;
TEST_F(NurbsCurveOfDoubles, DerivativesAreTheDifferences)
{
    for (auto const & curve : Zoo())
    {
        CVekVector3D<double> at[6], before[6], after[6];
        double const h = 1e-6;
        for (double const u : {0.11, 0.37, 0.63, 0.96})
        {
            EXPECT_TRUE(curve.GetDerivatives(u, 5, at) && curve.GetDerivatives(u - h, 5, before) &&
                        curve.GetDerivatives(u + h, 5, after));
            EXPECT_TRUE(at[0].IsNear(curve.GetPoint(u), 1e-12));
            for (unsigned int k = 1; k < 6; ++k)
            {
                CVekVector3D<double> const slope = (after[k - 1] - before[k - 1]) / (2 * h);
                EXPECT_LT(slope.DistanceTo(at[k]), 1e-4 * (1 + at[k].Length())) << curve.GetDegree() << ", order " << k;
            }
        }
    }
}

TYPED_TEST(NurbsCurve, EditingChangesNoPoint)
{
    using T = TypeParam;
    for (auto const & curve : this->Zoo())
    {
        SCOPED_TRACE(curve.GetDegree());
        T const limit = this->ROUNDING;
        auto edited = curve;
        EXPECT_EQ(this->Difference(curve, edited), 0);
        EXPECT_TRUE(edited.InsertKnot(T(0.1)) && edited.InsertKnot(T(0.71), curve.GetDegree()));
        EXPECT_EQ(edited.GetPointCount(), curve.GetPointCount() + 1 + curve.GetDegree());
        EXPECT_LT(this->Difference(curve, edited), limit);
        EXPECT_TRUE(edited.ElevateDegree());
        EXPECT_EQ(edited.GetDegree(), curve.GetDegree() + 1);
        EXPECT_LT(this->Difference(curve, edited), limit);
        if (curve.GetDegree() < 10)
        {
            EXPECT_TRUE(edited.ElevateDegree(12));
            EXPECT_LT(this->Difference(curve, edited), limit);
        }
        edited = curve;
        EXPECT_TRUE(edited.ClampEnds());
        EXPECT_EQ(edited.GetKnot(0), 0);
        EXPECT_TRUE(edited.GetControlPoint(0).IsNear(curve.GetPoint(0), limit));
        EXPECT_TRUE(edited.GetControlPoint(edited.GetPointCount() - 1).IsNear(curve.GetPoint(1), limit));
        EXPECT_LT(this->Difference(curve, edited), limit);
        for (T const at : {T(0.5), T(0.77)})
        {
            auto before = curve;
            decltype(edited) after;
            EXPECT_TRUE(before.Split(at, before, after)); // itself may be one of the halves
            EXPECT_TRUE(before.GetEnd() == at && after.GetStart() == at && after.GetEnd() == 1);
            EXPECT_LT(this->Difference(before, curve), limit);
            EXPECT_LT(this->Difference(after, curve), limit);
        }
        edited = curve;
        EXPECT_TRUE(edited.Reverse());
        for (T const u : {T(0), T(0.3), T(1)})
            EXPECT_TRUE(edited.GetPoint(u).IsNear(curve.GetPoint(1 - u), 10 * limit));
        CVekMatrix4x4<T> projection = CVekMatrix4x4<T>::Rotation(CVekVector3D<T>(1, 2, 3), 1);
        projection.AddTranslation(1, 2, 8);
        projection(2, 3) = 1;
        projection(3, 3) = 4;
        edited = curve;
        EXPECT_TRUE(edited.Transform(projection));
        CVekVector3D<T> projected;
        EXPECT_TRUE(projection.ProjectPoint(curve.GetPoint(T(0.4)), projected));
        EXPECT_TRUE(edited.GetPoint(T(0.4)).IsNear(projected, 10 * limit));
    }
}

TYPED_TEST(NurbsCurve, MeasuresAgreeWithManySamples)
{
    using T = TypeParam;
    for (auto const & curve : this->Zoo())
    {
        SCOPED_TRACE(curve.GetDegree());
        CVekBoundBox<T> box;
        std::vector<CVekVector3D<T>> samples;
        double length = 0;
        for (int i = 0; i <= 20000; ++i)
        {
            samples.push_back(curve.GetPoint(static_cast<T>(i) / 20000));
            box.Extend(samples.back());
            length += i ? samples[static_cast<size_t>(i)].DistanceTo(samples[static_cast<size_t>(i) - 1]) : 0;
        }
        EXPECT_NEAR(curve.GetLength(), length, 1e-4);
        EXPECT_NEAR(curve.GetLengthBetween(0, curve.GetParameterAtLength(static_cast<T>(length / 3))), length / 3,
                    1e-4);
        CVekBoundBox<T> const exact = curve.GetBoundBox();
        EXPECT_TRUE(exact.minimum.IsNear(box.minimum, T(1e-5)) && exact.maximum.IsNear(box.maximum, T(1e-5)));
        T const edge = this->ROUNDING;
        EXPECT_TRUE(CVekBoundBox<T>(exact.minimum - CVekVector3D<T>(edge, edge, edge),
                                    exact.maximum + CVekVector3D<T>(edge, edge, edge))
                        .Contains(box));
        for (int i = 0; i < 20; ++i)
        {
            CVekVector3D<T> const point(this->Random(-2, 2), this->Random(-2, 2), this->Random(-2, 2));
            T nearest = 100;
            for (auto const & sample : samples)
                nearest = std::min(nearest, sample.DistanceTo(point));
            T parameter = 0;
            T distance = 0;
            EXPECT_TRUE(curve.FindClosestPoint(point, parameter, &distance));
            EXPECT_LE(distance, nearest + this->ROUNDING);
            EXPECT_NEAR(curve.GetPoint(parameter).DistanceTo(point), distance, 10 * this->ROUNDING);
        }
    }
}

TYPED_TEST(NurbsCurve, TessellationKeepsTheTolerance)
{
    using T = TypeParam;
    using Point = CVekVector3D<T>;
    for (auto const & curve : this->Zoo())
        for (T const tolerance : {T(0.1), T(0.001)})
        {
            unsigned int const count = curve.Tessellate(tolerance, nullptr, nullptr, 0);
            std::vector<Point> points(count);
            std::vector<T> parameters(count);
            EXPECT_EQ(curve.Tessellate(tolerance, points.data(), parameters.data(), count), count);
            EXPECT_TRUE(parameters.front() == 0 && parameters.back() == 1);
            T worst = 0;
            for (size_t i = 0; i + 1 < count; ++i)
                for (int j = 0; j <= 8; ++j)
                {
                    Point const on =
                        curve.GetPoint(parameters[i] + (parameters[i + 1] - parameters[i]) * static_cast<T>(j) / 8);
                    Point const chord = points[i + 1] - points[i];
                    T const along = std::clamp((on - points[i]).Dot(chord) / chord.LengthSquared(), T(0), T(1));
                    worst = std::max(worst, on.DistanceTo(points[i] + chord * along));
                }
            EXPECT_LE(worst, tolerance + this->ROUNDING) << curve.GetDegree();
        }
    // A radius of 1000 to 1: the sagitta formula wants 71 chords; pieces are halved, so up to twice as many.
    unsigned int const count = this->Circle(1000).Tessellate(1, nullptr, nullptr, 0);
    EXPECT_TRUE(count > 71 && count < 150) << count;
    // Limits: no tolerance, one that is too small, a buffer that is too short.
    Point first[2];
    auto const circle = this->Circle(1);
    EXPECT_EQ(circle.Tessellate(0, first, nullptr, 2), 0u);
    EXPECT_EQ(circle.Tessellate(std::numeric_limits<T>::quiet_NaN(), first, nullptr, 2), 0u);
    EXPECT_EQ(circle.Tessellate(T(1e-30), first, nullptr, 2), CVekNurbsCurve<T>::MAX_SEGMENTS / 2 + 1);
    EXPECT_EQ(first[0], circle.GetPoint(0));
}

TYPED_TEST(NurbsCurve, InterpolationMeetsItsPoints)
{
    using T = TypeParam;
    struct Row
    {
        unsigned int degree;
        T shortest, longest; // distances along x, in the first and the second half
        bool made;
    };
    Row const rows[] = {{1, T(0.01), 1, true},      {3, T(0.01), 1, true},      {5, T(0.05), 1, true},
                        {1, T(1e-3), T(1e3), true}, {2, T(1e-3), T(1e3), true}, {3, T(1e-3), T(1e3), false},
                        {5, T(1e-3), T(1e3), false}};
    std::wstring const message = L"CVekNurbsCurve::CreateInterpolation --> Point ";
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << "degree " << row.degree << ", " << row.shortest << " to " << row.longest);
        std::vector<CVekVector3D<T>> points(1);
        for (int i = 1; i < 60; ++i)
        {
            T const distance = i < 30 ? row.shortest : row.longest;
            points.push_back(CVekVector3D<T>(points.back().x + distance, i % 2 ? distance : 0, 0));
        }
        auto curve = this->Circle(1);
        LogCapture log;
        EXPECT_EQ(curve.CreateInterpolation(row.degree, points.data(), 60), row.made);
        EXPECT_EQ(log.Text().substr(0, message.size()), row.made ? L"" : message);
        EXPECT_EQ(curve.GetPointCount(), row.made ? 60u : 9u) << "a failure leaves the curve as it was";
        T parameter = 0;
        T distance = 0;
        for (auto const & point : points)
            EXPECT_TRUE(!row.made || (curve.FindClosestPoint(point, parameter, &distance) &&
                                      distance < points.back().x * this->ROUNDING))
                << point.x;
    }
}

TYPED_TEST(NurbsCurve, StrangeInputIsSafe)
{
    using T = TypeParam;
    using Point = CVekVector3D<T>;
    T const nan = std::numeric_limits<T>::quiet_NaN();
    T const huge = std::numeric_limits<T>::max() / 8;
    CVekNurbsCurve<T> empty;
    T number = 5;
    Point vector;
    LogCapture log;
    EXPECT_TRUE(empty.GetPoint(1) == Point() && empty.GetTangent(1) == Point() && empty.GetCurvature(1) == 0);
    EXPECT_TRUE(empty.GetLength() == 0 && empty.GetParameterAtLength(1) == 0 && empty.GetBoundBox().empty);
    EXPECT_FALSE(empty.FindClosestPoint(Point(), number) || empty.GetDerivatives(0, 0, &vector) || empty.Reverse());
    EXPECT_FALSE(empty.InsertKnot(0) || empty.ElevateDegree() || empty.Split(0, empty, empty) || empty.ClampEnds());
    EXPECT_FALSE(empty.SetControlPoint(0, Point(), 1) || empty.Transform(CVekMatrix4x4<T>::Identity()));
    EXPECT_EQ(log.Text(), L"");
    auto const open = this->Make(3, {T(0.5)});
    Point const ends[2] = {open.GetPoint(0), open.GetPoint(1)};
    EXPECT_TRUE(open.GetPoint(nan) == ends[0] && open.GetPoint(-huge) == ends[0] && open.GetPoint(huge) == ends[1]);
    EXPECT_TRUE(open.GetParameterAtLength(nan) == 0 && open.GetParameterAtLength(huge) == 1);
    EXPECT_TRUE(open.GetLengthBetween(nan, 1) == open.GetLength() && open.GetLengthBetween(1, nan) == open.GetLength());
    // All at one place, at the end of the number range, and on knots without distance: it ends, whatever it says.
    std::vector<Point> const same(8, Point(T(0.1), T(0.7), T(0.3)));
    std::vector<Point> far;
    for (int i = 0; i < 8; ++i)
        far.push_back(Point(i % 2 ? huge : -huge, i % 3 ? huge : -huge, 0));
    T const tiny = std::numeric_limits<T>::denorm_min();
    T const knots[12] = {0, 0, 0, 0, tiny, 2 * tiny, 3 * tiny, 1, 2, 2, 2, 2};
    T const weights[8] = {1, 3, T(1e-6), 1, 1, T(0.3), 2, 1};
    for (auto const & points : {same, far})
    {
        CVekNurbsCurve<T> curve;
        ASSERT_TRUE(curve.Create(3, points.data(), weights, 8, knots, 12));
        EXPECT_GE(curve.Tessellate(1, nullptr, nullptr, 0), 2u);
        curve.FindClosestPoint(same[0], number);
        EXPECT_TRUE(number >= 0 && number <= 2);
        curve.GetLength();
        curve.GetParameterAtLength(1);
        curve.GetBoundBox();
        curve.GetCurvature(tiny);
        curve.ElevateDegree(3);
    }
}

TYPED_TEST(NurbsCurve, ManyAtOnceAreTheSameOneByOne)
{
    using T = TypeParam;
    T none = 5;
    CVekVector3D<T> nowhere(1, 2, 3);
    CVekNurbsCurve<T>().GetPoints(&none, 1, &nowhere);
    CVekNurbsCurve<T>().GetParametersAtLengths(&none, 1, &none);
    EXPECT_TRUE(nowhere == CVekVector3D<T>() && none == 0);
    for (auto const & curve : this->Zoo())
    {
        SCOPED_TRACE(curve.GetDegree());
        T parts[60], lengths[60], parameters[60];
        CVekVector3D<T> points[60];
        for (int i = 0; i < 60; ++i) // rising, then to and fro, beyond both ends
        {
            parts[i] = static_cast<T>(i < 30 ? i : (i * 37) % 60 - 15) / 29;
            lengths[i] = i == 40 ? std::numeric_limits<T>::quiet_NaN() : curve.GetLength() * parts[i];
        }
        curve.GetPoints(parts, 60, points);
        curve.GetParametersAtLengths(lengths, 60, parameters);
        for (int i = 0; i < 60; i += VekGuard::Active ? 7 : 1)
        {
            EXPECT_EQ(points[i], curve.GetPoint(parts[i])) << i;
            EXPECT_EQ(parameters[i], curve.GetParameterAtLength(lengths[i])) << i;
        }
    }
}

} // namespace
