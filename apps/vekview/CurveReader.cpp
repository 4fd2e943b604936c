#include "CurveReader.h"

#include "Console.h"
#include "LibraryText.h"

#include <cmath>

namespace tool
{

namespace
{

constexpr Color CURVE_COLOR(240, 170, 70, 255);
// A curve strays from its segments by this part of its size at most: too little to be seen while all of it is in the
// window. Its corners show close up.
constexpr double FINENESS = 1.0 / 4000.0;
constexpr unsigned int MOST_SEGMENTS = 1000000;

} // namespace

void CurveReader::Read(IVekXMLElement & element, Scene & scene)
{
    double const degree = m_reader.OptionalNumber(L"degree", 3, 1, CVekNurbsCurve<double>::MAX_DEGREE);
    std::vector<double> knots;
    if (m_reader.Has(L"knots"))
        knots = m_reader.Numbers(L"knots", 0);
    Color const color = m_reader.OptionalColor(CURVE_COLOR);
    m_reader.OptionalText(L"name");
    if (degree != std::floor(degree))
        m_reader.Complain(L"attribute \"degree\" is not a whole number");
    bool const readPoints = ReadPoints(element);
    if (!m_reader.Finish() || !readPoints)
        return;

    auto const order = static_cast<unsigned int>(degree);
    auto const pointCount = static_cast<unsigned int>(m_points.size());
    auto const knotCount = static_cast<unsigned int>(knots.size());
    double const * const firstKnot = knots.empty() ? nullptr : knots.data();
    VekNurbsError const error =
        CVekNurbsCurve<double>::Check(order, m_points.data(), m_weights.data(), pointCount, firstKnot, knotCount);
    CVekNurbsCurve<double> curve;
    if (error.code != VEK_NURBS_ERROR_NONE)
        m_reader.Complain(WhyNoCurve(error, order, knotCount));
    else if (!curve.Create(order, m_points.data(), m_weights.data(), pointCount, firstKnot, knotCount))
        m_reader.Complain(L"needs more memory than there is");
    else
        AddSegments(curve, color, scene);
}

bool CurveReader::ReadPoints(IVekXMLElement & element)
{
    bool good = true;
    for (int i = 0; i < element.GetNumChildren(); ++i)
    {
        IVekXMLElement & child = *element.GetChild(i);
        if (View(child.GetName()) != L"point")
        {
            m_reader.Complain(L"has an element <" + PrintableName(child.GetName()) + L"> inside");
            return false;
        }
        ElementReader reader(child, m_reader.Title() + Format(L", point %d", i + 1), m_problems);
        m_points.push_back(reader.RequiredPoint(L"at"));
        m_weights.push_back(reader.OptionalNumber(L"weight", 1, 1e-6f, 1e6f));
        good = reader.Finish() && good;
    }
    return good;
}

/// In the words of the file, not of the library.
std::wstring CurveReader::WhyNoCurve(VekNurbsError const & error, unsigned int degree, unsigned int knotCount) const
{
    constexpr unsigned int MOST_POINTS = CVekNurbsCurve<double>::MAX_POINTS;
    auto const pointCount = static_cast<unsigned int>(m_points.size());
    switch (error.code)
    {
    case VEK_NURBS_ERROR_NO_POINTS:
        return L"has no <point> inside";
    case VEK_NURBS_ERROR_POINT_COUNT:
        return pointCount > MOST_POINTS ? Format(L"has more than %u points inside", MOST_POINTS)
                                        : Format(L"degree %u needs at least %u points inside", degree, degree + 1);
    case VEK_NURBS_ERROR_POINT:
        return Format(L"point %u is too far out", error.index + 1);
    case VEK_NURBS_ERROR_KNOT_COUNT:
        return Format(L"attribute \"knots\" has %u numbers, not %u: number of points + degree + 1", knotCount,
                      pointCount + degree + 1);
    case VEK_NURBS_ERROR_KNOT:
        return Format(L"attribute \"knots\": number %u is too large", error.index + 1);
    case VEK_NURBS_ERROR_KNOT_ORDER:
        return Format(L"attribute \"knots\" has a number that is less than the one before: number %u", error.index + 1);
    case VEK_NURBS_ERROR_KNOT_REPEATED:
        return Format(L"attribute \"knots\" has a number too often: number %u; it may stand there degree times, "
                      L"degree + 1 times at the ends",
                      error.index + 1);
    case VEK_NURBS_ERROR_DOMAIN:
        return L"attribute \"knots\" has no room between its ends";
    default: // what the reader of the attributes has refused already
        return Format(L"is no curve (%u)", static_cast<unsigned int>(error.code));
    }
}

void CurveReader::AddSegments(CVekNurbsCurve<double> const & curve, Color const & color, Scene & scene)
{
    double const size = curve.GetBoundBox().Size().Length();
    if (!(size > 0))
    {
        m_reader.Complain(L"all its points are one");
        return;
    }
    unsigned int const count = curve.Tessellate(size * FINENESS, nullptr, nullptr, 0);
    if (count < 2 || count > MOST_SEGMENTS)
    {
        m_reader.Complain(L"needs more than 1000000 segments");
        return;
    }
    std::vector<Point> points(count);
    curve.Tessellate(size * FINENESS, points.data(), nullptr, count);
    for (std::size_t i = 1; i < points.size(); ++i)
        scene.AddSegment(points[i - 1], points[i], color);
}

} // namespace tool
