#include "Benches.h"

#include "VekLib.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace bench
{

namespace
{

constexpr unsigned int DEGREE = 3;
constexpr unsigned int POINTS = 20000;

/// The textbook's loop: the span by bisection, then de Boor's algorithm on weighted points.
template <class T>
CVekVector3D<T> PlainPoint(CVekNurbsCurve<T> const & curve, T parameter)
{
    T const * const knots = curve.GetKnots();
    unsigned int low = DEGREE;
    unsigned int high = curve.GetPointCount();
    while (high - low > 1)
        (parameter < knots[(low + high) / 2] ? high : low) = (low + high) / 2;
    CVekVector4D<T> row[DEGREE + 1];
    for (unsigned int i = 0; i <= DEGREE; ++i)
        row[i] = curve.GetWeightedPoints()[low - DEGREE + i];
    for (unsigned int step = 1; step <= DEGREE; ++step)
        for (unsigned int i = DEGREE; i >= step; --i)
        {
            T const first = knots[low - DEGREE + i];
            T const ratio = (parameter - first) / (knots[low + 1 + i - step] - first);
            row[i].x = row[i - 1].x * (1 - ratio) + row[i].x * ratio;
            row[i].y = row[i - 1].y * (1 - ratio) + row[i].y * ratio;
            row[i].z = row[i - 1].z * (1 - ratio) + row[i].z * ratio;
            row[i].w = row[i - 1].w * (1 - ratio) + row[i].w * ratio;
        }
    return CVekVector3D<T>(row[DEGREE].x / row[DEGREE].w, row[DEGREE].y / row[DEGREE].w, row[DEGREE].z / row[DEGREE].w);
}

/// A helix with weights.
template <class T>
CVekNurbsCurve<T> Helix(unsigned int controls)
{
    std::vector<CVekVector3D<T>> points;
    std::vector<T> weights;
    for (unsigned int i = 0; i < controls; ++i)
    {
        T const angle = static_cast<T>(i) / 3;
        points.push_back(CVekVector3D<T>(std::cos(angle), std::sin(angle), angle));
        weights.push_back(static_cast<T>(1 + i % 3));
    }
    CVekNurbsCurve<T> curve;
    curve.Create(DEGREE, points.data(), weights.data(), controls);
    return curve;
}

/// Millions of points per second.
template <class Work>
double Rate(int rounds, Work const & work)
{
    Best best;
    for (int round = 0; round < rounds; ++round)
    {
        Stopwatch watch;
        work();
        best.Add(watch.Lap());
    }
    return POINTS / best.Seconds() / 1e6;
}

template <class T>
void AddRows(Table & table, char const * precision, int rounds)
{
    CVekNurbsCurve<T> const curve = Helix<T>(64);
    std::vector<T> ordered;
    std::vector<T> scattered;
    for (unsigned int i = 0; i < POINTS; ++i)
    {
        ordered.push_back(static_cast<T>(i) / static_cast<T>(POINTS));
        scattered.push_back(static_cast<T>(i * 7919 % POINTS) / static_cast<T>(POINTS));
    }
    std::vector<CVekVector3D<T>> points(POINTS);
    for (auto const * parameters : {&ordered, &scattered})
    {
        double const plain = Rate(rounds,
                                  [&]
                                  {
                                      for (unsigned int i = 0; i < POINTS; ++i)
                                          points[i] = PlainPoint(curve, (*parameters)[i]);
                                  });
        double const single = Rate(rounds,
                                   [&]
                                   {
                                       for (unsigned int i = 0; i < POINTS; ++i)
                                           points[i] = curve.GetPoint((*parameters)[i]);
                                   });
        double const many = Rate(rounds, [&] { curve.GetPoints(parameters->data(), POINTS, points.data()); });
        table.Add({precision, parameters == &ordered ? "in order" : "scattered", Number(plain, 1), Number(single, 1),
                   Number(many, 1), Number(many / plain, 2)});
    }
}

/// As many even steps as a curve has control points, in milliseconds.
void AddSteps(Table & table, unsigned int steps, int rounds)
{
    CVekNurbsCurve<float> const curve = Helix<float>(steps);
    float const length = curve.GetLength();
    std::vector<float> lengths;
    for (unsigned int i = 0; i < steps; ++i)
        lengths.push_back(length * static_cast<float>(i) / static_cast<float>(steps));
    std::vector<float> parameters(steps);
    Best single, many;
    for (int round = 0; round < rounds; ++round)
    {
        Stopwatch watch;
        for (unsigned int i = 0; i < steps; ++i)
            parameters[i] = curve.GetParameterAtLength(lengths[i]);
        single.Add(watch.Lap());
        curve.GetParametersAtLengths(lengths.data(), steps, parameters.data());
        many.Add(watch.Lap());
    }
    table.Add({std::to_string(steps), Number(single.Seconds() * 1e3, 1), Number(many.Seconds() * 1e3, 1),
               Number(single.Seconds() / many.Seconds(), 1)});
}

} // namespace

void MeasureCurve(bool quick)
{
    int const rounds = quick ? 20 : 100;
    Table table({"precision", "parameters", "plain de Boor", "GetPoint", "GetPoints", "ratio"});
    AddRows<float>(table, "float", rounds);
    AddRows<double>(table, "double", rounds);
    std::printf("NURBS curve of degree 3: millions of points per second.\n\n");
    table.Print();
    Table steps({"steps and control points", "GetParameterAtLength", "GetParametersAtLengths", "ratio"});
    for (unsigned int const count : {100u, 200u, 400u})
        AddSteps(steps, count, quick ? 1 : 3);
    std::printf("\nEven steps along it, of floats: milliseconds.\n\n");
    steps.Print();
    std::printf("\n");
}

} // namespace bench
