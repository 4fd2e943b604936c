#include "CurveReader.h"

#include "Console.h"
#include "LibraryText.h"
#include "LogToStderr.h"

#include <algorithm>
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

/// The first line of the library's messages, without the operation's name.
std::wstring Reason(std::wstring const & messages)
{
    std::size_t const arrow = messages.find(L"--> ");
    std::size_t const begin = arrow == std::wstring::npos ? 0 : arrow + 4;
    return messages.substr(begin, messages.find(L'\n', begin) - begin);
}

/// True for sorted knots of which one stands more often than degree times, at the ends of the list once more.
bool IsOneTooOften(std::vector<double> const & knots, std::size_t degree)
{
    for (std::size_t i = 0; i + degree < knots.size(); ++i)
    {
        bool const isAtEnd = knots[i] == knots.front() || knots[i] == knots.back();
        std::size_t const tooFar = i + degree + (isAtEnd ? 1 : 0);
        if (tooFar < knots.size() && knots[tooFar] == knots[i])
            return true;
    }
    return false;
}

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

    std::wstring const why = WhyNoCurve(static_cast<std::size_t>(degree), knots);
    if (!why.empty())
    {
        m_reader.Complain(why);
        return;
    }
    std::wstring messages;
    CVekNurbsCurve<double> curve;
    {
        LogToStderr::Diversion const diversion(messages);
        curve.Create(static_cast<unsigned int>(degree), m_points.data(), m_weights.data(),
                     static_cast<unsigned int>(m_points.size()), knots.empty() ? nullptr : knots.data(),
                     static_cast<unsigned int>(knots.size()));
    }
    if (curve.IsEmpty())
        m_reader.Complain(Reason(messages));
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

/// In the words of the file, not of the library; empty when it is one.
std::wstring CurveReader::WhyNoCurve(std::size_t degree, std::vector<double> const & knots) const
{
    constexpr std::size_t MOST_POINTS = CVekNurbsCurve<double>::MAX_POINTS;
    std::size_t const count = m_points.size();
    if (count == 0)
        return L"has no <point> inside";
    if (count <= degree)
        return Format(L"degree %u needs at least %u points inside", static_cast<unsigned int>(degree),
                      static_cast<unsigned int>(degree + 1));
    if (count > MOST_POINTS)
        return Format(L"has more than %u points inside", static_cast<unsigned int>(MOST_POINTS));
    if (knots.empty())
        return L"";
    if (knots.size() != count + degree + 1)
        return Format(L"attribute \"knots\" has %u numbers, not %u: number of points + degree + 1",
                      static_cast<unsigned int>(knots.size()), static_cast<unsigned int>(count + degree + 1));
    if (!std::is_sorted(knots.begin(), knots.end()))
        return L"attribute \"knots\" has a number that is less than the one before";
    if (IsOneTooOften(knots, degree))
        return L"attribute \"knots\" has a number too often: more than degree times, or degree + 1 at the ends";
    return knots[degree] < knots[count] ? L"" : L"attribute \"knots\" has no room between its ends";
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
