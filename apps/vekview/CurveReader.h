#pragma once

#include "ElementReader.h"

namespace tool
{

/// Reads a <curve> with its <point> elements, and adds it to a scene as segments.
class CurveReader
{
public:
    CurveReader(ElementReader & reader, Problems & problems) : m_reader(reader), m_problems(problems) {}

    void Read(IVekXMLElement & element, Scene & scene);

private:
    bool ReadPoints(IVekXMLElement & element);
    std::wstring WhyNoCurve(VekNurbsError const & error, unsigned int degree, unsigned int knotCount) const;
    void AddSegments(CVekNurbsCurve<double> const & curve, Color const & color, Scene & scene);

    ElementReader & m_reader;
    Problems & m_problems;
    std::vector<Point> m_points;
    std::vector<double> m_weights;
};

} // namespace tool
