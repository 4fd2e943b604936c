// The members of CVekNurbsCurve that turn it into a polyline; for NurbsCurve.cpp alone, which instantiates them.
#pragma once

#include "VekNurbs.h"

#include "math/NurbsBezier.h"

namespace vek
{

/// Takes the points of a tessellation and counts them; what is beyond the arrays is only counted.
template <class T>
struct PolylineWriter
{
    CVekVector3D<T> * points;
    T * parameters;
    unsigned int capacity;
    unsigned int count;

    void Add(CVekVector3D<double> const & point, double parameter)
    {
        if (count < capacity)
        {
            if (points)
                points[count] = CVekVector3D<T>(point);
            if (parameters)
                parameters[count] = static_cast<T>(parameter);
        }
        ++count;
    }
};

/// How often a piece of each span may be halved, so that all segments together stay below the limit.
inline unsigned int LevelLimit(unsigned int spans)
{
    unsigned int level = 0;
    while (level < PieceStack::MAX_LEVEL && CVekNurbsCurve<float>::MAX_SEGMENTS >> (level + 1) >= spans)
        ++level;
    return level;
}

} // namespace vek

template <class T>
unsigned int CVekNurbsCurve<T>::Tessellate(T tolerance, CVekVector3D<T> * points, T * parameters,
                                           unsigned int capacity) const noexcept
{
    double const allowed = static_cast<double>(tolerance);
    if (IsEmpty() || !(allowed > 0))
        return 0;
    unsigned int const levels = vek::LevelLimit(m_pointCount - m_degree);
    vek::PolylineWriter<T> writer = {points, parameters, capacity, 0};
    vek::PieceStack stack;
    for (unsigned int span = vek::FirstSpan(m_knots, m_degree, m_pointCount); span < m_pointCount;
         span = vek::NextSpan(m_knots, m_pointCount, span))
    {
        stack.count = 1;
        vek::LoadPiece(*this, span, stack.pieces[0]);
        if (writer.count == 0)
            writer.Add(stack.Last().First(), stack.Last().start);
        while (stack.count > 0)
        {
            vek::BezierPiece const & piece = stack.Last();
            if (piece.level < levels && piece.SquareOfDeviation() > allowed * allowed)
            {
                stack.HalveLast(false);
                continue;
            }
            writer.Add(piece.Last(), piece.end);
            --stack.count;
        }
    }
    return writer.count;
}
