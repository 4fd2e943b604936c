// The members of CVekNurbsCurve that search and enclose it; for NurbsCurve.cpp alone, which instantiates them.
#pragma once

#include "VekNurbs.h"

#include "VekCore.h"
#include "math/NurbsBezier.h"

#include <limits>

#include <math.h>

namespace vek
{

/// Halvings of one search; no real curve comes near it, only coordinates near the end of the number range.
constexpr unsigned int MAX_HALVINGS = 1u << 20;

/// The square of the distance of a point to a box.
inline double SquareToBox(CVekBoundBox<double> const & box, CVekVector3D<double> const & point)
{
    CVekVector3D<double> const nearest = point.Largest(box.minimum).Smallest(box.maximum);
    return (point - nearest).LengthSquared();
}

/// The search for the point of a curve that is nearest to a given one.
class NearestSearch
{
public:
    NearestSearch(CVekVector3D<double> const & target, double precision)
        : m_target(target), m_least(precision * precision), m_best(HUGE_VAL), m_parameter(0), m_refined(false),
          m_halvings(0)
    {
    }

    double Parameter() const { return m_parameter; }
    double Distance() const { return sqrt(m_best); }

    void Offer(CVekVector3D<double> const & point, double parameter)
    {
        double const square = (point - m_target).LengthSquared();
        // Squares say little about the place of a minimum; one that was refined stays, but for a real improvement.
        if (square < m_best * (1 - 1e-12))
        {
            m_best = square;
            m_parameter = parameter;
            m_refined = false;
        }
    }
    /// True when a part of the curve inside the box may have a nearer point, by more than a millionth.
    bool IsWorthwhile(CVekBoundBox<double> const & box) const
    {
        return m_best > m_least && SquareToBox(box, m_target) < m_best * (1 - 2e-6);
    }
    void Search(PieceStack & stack)
    {
        while (stack.count > 0)
        {
            BezierPiece & piece = stack.Last();
            if (!IsWorthwhile(piece.Hull()) || !IsChordWorthwhile(piece))
            {
                --stack.count;
                continue;
            }
            Refine(piece);
            if (piece.level == PieceStack::MAX_LEVEL || m_halvings == MAX_HALVINGS)
            {
                --stack.count;
                continue;
            }
            ++m_halvings;
            double const toFirst = (piece.First() - m_target).LengthSquared();
            bool const secondIsNearer = (piece.Last() - m_target).LengthSquared() < toFirst;
            stack.HalveLast(secondIsNearer);
            BezierPiece const & nearer = stack.Last();
            Offer(secondIsNearer ? nearer.First() : nearer.Last(), secondIsNearer ? nearer.start : nearer.end);
        }
    }

private:
    /// The same by the piece's chord, which tells more than a box once the piece is nearly straight.
    bool IsChordWorthwhile(BezierPiece const & piece) const
    {
        double const toChord = sqrt(SquareToSegment(m_target, piece.First(), piece.Last()));
        return toChord - sqrt(piece.SquareOfDeviation()) < Distance() * (1 - 1e-6);
    }
    /// Offers the minimum inside a piece where (C - P) C' changes its sign from - to +, by Newton's method between
    /// bounds.
    void Refine(BezierPiece const & piece)
    {
        if (!(Slope(piece.DerivativesAt(0)) < 0) || !(Slope(piece.DerivativesAt(1)) > 0))
            return;
        double low = 0;
        double high = 1;
        double t = 0.5;
        for (unsigned int i = 0; i < 60 && t > low && t < high; ++i)
        {
            PieceDerivatives const at = piece.DerivativesAt(t);
            double const slope = Slope(at);
            (slope > 0 ? high : low) = t;
            double const next = t - slope / (at.first.LengthSquared() + (at.point - m_target).Dot(at.second));
            if (fabs(next - t) < 1e-15)
                break;
            t = next > low && next < high ? next : low + (high - low) / 2;
        }
        CVekVector3D<double> const point = piece.DerivativesAt(t).point;
        double const square = (point - m_target).LengthSquared();
        Offer(point, piece.ParameterAt(t));
        // The first refinement of a minimum is the best: differences of control points of smaller pieces are rounded.
        if (!m_refined && square <= m_best * (1 + 1e-12) + m_least)
        {
            m_best = square;
            m_parameter = piece.ParameterAt(t);
            m_refined = true;
        }
    }
    double Slope(PieceDerivatives const & at) const { return (at.point - m_target).Dot(at.first); }

    CVekVector3D<double> const m_target;
    double const m_least; // the square of a distance that is none
    double m_best;
    double m_parameter;
    bool m_refined;
    unsigned int m_halvings;
};

/// Makes a box just large enough for a piece of a curve, but for a tolerance.
inline void ExtendByPiece(CVekBoundBox<double> & box, PieceStack & stack, double tolerance, unsigned int & halvings)
{
    CVekVector3D<double> const margin(tolerance, tolerance, tolerance);
    while (stack.count > 0)
    {
        BezierPiece const & piece = stack.Last();
        CVekBoundBox<double> const hull = piece.Hull();
        CVekBoundBox<double> const enough(box.minimum - margin, box.maximum + margin);
        if (enough.Contains(hull) || piece.level == PieceStack::MAX_LEVEL || halvings == MAX_HALVINGS)
        {
            box.Extend(hull);
            --stack.count;
            continue;
        }
        ++halvings;
        stack.HalveLast(false);
        box.Extend(stack.Last().Last());
    }
}

/// The numbers of T next below, or above, unless they are the same.
template <class T>
CVekVector3D<T> RoundOutwards(CVekVector3D<double> const & point, bool up)
{
    CVekVector3D<T> result(point);
    T const limit = up ? std::numeric_limits<T>::infinity() : -std::numeric_limits<T>::infinity();
    for (unsigned int i = 0; i < 3; ++i)
    {
        double const rounded = static_cast<double>(result[i]);
        if (up ? rounded < point[i] : rounded > point[i])
            result[i] = static_cast<T>(nextafterf(static_cast<float>(result[i]), static_cast<float>(limit)));
    }
    return result;
}

} // namespace vek

template <class T>
bool CVekNurbsCurve<T>::FindClosestPoint(CVekVector3D<T> const & point, T & parameter, T * distance) const noexcept
{
    if (IsEmpty())
        return false;
    CVekVector3D<double> const target(point);
    if (!(target - target == CVekVector3D<double>()))
    {
        VekLogOutput(0, L"CVekNurbsCurve::FindClosestPoint --> Point is not finite");
        return false;
    }
    CVekBoundBox<double> const control = vek::ControlBox(*this, 0, m_pointCount);
    double const size = control.minimum.Length() + control.maximum.Length();
    vek::NearestSearch search(target, size * 1e-15);
    vek::PieceStack stack;
    unsigned int const first = vek::FirstSpan(m_knots, m_degree, m_pointCount);
    for (unsigned int span = first; span < m_pointCount; span = vek::NextSpan(m_knots, m_pointCount, span))
    {
        vek::LoadPiece(*this, span, stack.pieces[0]);
        search.Offer(stack.pieces[0].First(), stack.pieces[0].start);
        search.Offer(stack.pieces[0].Last(), stack.pieces[0].end);
    }
    for (unsigned int span = first; span < m_pointCount; span = vek::NextSpan(m_knots, m_pointCount, span))
    {
        if (!search.IsWorthwhile(vek::ControlBox(*this, span - m_degree, m_degree + 1)))
            continue;
        stack.count = 1;
        vek::LoadPiece(*this, span, stack.pieces[0]);
        search.Search(stack);
    }
    parameter = vek::ClampToDomain(*this, static_cast<T>(search.Parameter()));
    if (distance)
        *distance = static_cast<T>(search.Distance());
    return true;
}

template <class T>
CVekBoundBox<T> CVekNurbsCurve<T>::GetBoundBox() const noexcept
{
    if (IsEmpty())
        return CVekBoundBox<T>();
    double const tolerance = vek::ControlBox(*this, 0, m_pointCount).Size().Length() * 1e-9;
    CVekBoundBox<double> box;
    vek::PieceStack stack;
    unsigned int halvings = 0;
    for (unsigned int span = vek::FirstSpan(m_knots, m_degree, m_pointCount); span < m_pointCount;
         span = vek::NextSpan(m_knots, m_pointCount, span))
    {
        if (box.Contains(vek::ControlBox(*this, span - m_degree, m_degree + 1)))
            continue;
        stack.count = 1;
        vek::LoadPiece(*this, span, stack.pieces[0]);
        box.Extend(stack.pieces[0].First());
        box.Extend(stack.pieces[0].Last());
        vek::ExtendByPiece(box, stack, tolerance, halvings);
    }
    return CVekBoundBox<T>(vek::RoundOutwards<T>(box.minimum, false), vek::RoundOutwards<T>(box.maximum, true));
}
