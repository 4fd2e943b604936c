#include "CurveReader.h"

#include "Console.h"
#include "LibraryText.h"
#include "LogToStderr.h"

#include <cmath>

namespace tool
{

namespace
{

constexpr Color CURVE_COLOR(240, 170, 70, 255);
// A curve strays from its segments by this part of its size at most, too little to be seen in a window.
constexpr float FINENESS = 1.0f / 4000.0f;
constexpr unsigned int MOST_SEGMENTS = 1000000;

/// The first line of the library's messages, without the operation's name.
std::wstring Reason(std::wstring const & messages)
{
    std::size_t const arrow = messages.find(L"--> ");
    std::size_t const begin = arrow == std::wstring::npos ? 0 : arrow + 4;
    return messages.substr(begin, messages.find(L'\n', begin) - begin);
}

} // namespace

void CurveReader::Read(IVekXMLElement & element, Scene & scene)
{
    float const degree = m_reader.OptionalNumber(L"degree", 3, 1, CVekNurbsCurve<float>::MAX_DEGREE);
    std::vector<float> knots;
    if (m_reader.Has(L"knots"))
        knots = m_reader.Numbers(L"knots", 0);
    Color const color = m_reader.OptionalColor(CURVE_COLOR);
    m_reader.OptionalText(L"name");
    if (degree != std::floor(degree))
        m_reader.Complain(L"attribute \"degree\" is not a whole number");
    bool const readPoints = ReadPoints(element);
    if (!m_reader.Finish() || !readPoints)
        return;

    std::wstring messages;
    CVekNurbsCurve<float> curve;
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

void CurveReader::AddSegments(CVekNurbsCurve<float> const & curve, Color const & color, Scene & scene)
{
    float const size = curve.GetBoundBox().Size().Length();
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
