#include "Renderer.h"

#include "Clipper.h"

#include <algorithm>
#include <cmath>

namespace tool
{

namespace
{

constexpr std::uint32_t BACKGROUND = 0x00202428;
constexpr Color HIGHLIGHT(255, 230, 60, 255);
constexpr double AMBIENT = 0.35;
// Lines on a triangle are seen: they are drawn this much nearer, by a part of their distance in perspective, of the
// volume's height in an orthographic view.
constexpr double LINE_LIFT = 2e-4;

std::uint32_t Pixel(Color const & color)
{
    return static_cast<std::uint32_t>(color.red) << 16 | static_cast<std::uint32_t>(color.green) << 8 | color.blue;
}

} // namespace

Renderer::Renderer(SceneView const & view, Canvas & canvas)
    : m_view(view), m_canvas(canvas), m_volume(view.DrawnVolume()),
      m_isPerspective(view.GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE), m_toPicture(view.WorldToPicture()),
      m_toCamera(view.WorldToCamera())
{
}

void Renderer::Draw(Scene const & scene, int highlighted)
{
    m_canvas.Clear(BACKGROUND);
    for (std::size_t i = 0; i < scene.triangles.size(); ++i)
        Draw(scene.triangles[i], static_cast<int>(i) == highlighted);
    for (Segment const & segment : scene.segments)
        Draw(segment);
}

CVekVector4D<double> Renderer::Project(Point const & point) const
{
    return m_toPicture.Transform(CVekVector4D<double>(point - m_view.Origin(), 1.0));
}

Canvas::Place Renderer::OnCanvas(CVekVector4D<double> const & point) const
{
    return {(point.x / point.w + 1) / 2 * m_canvas.Width(), (1 - point.y / point.w) / 2 * m_canvas.Height(),
            m_isPerspective ? static_cast<double>(m_volume.GetNear()) / point.w : 1 - point.z / point.w};
}

Canvas::Place Renderer::Lifted(Canvas::Place place) const
{
    place.nearness += m_isPerspective ? LINE_LIFT * place.nearness
                                      : LINE_LIFT * static_cast<double>(m_volume.GetHeight() / m_volume.GetDepth());
    return place;
}

void Renderer::Draw(Segment const & segment)
{
    CVekVector4D<double> from = Project(segment.from), to = Project(segment.to);
    if (Clipper::Clip(from, to))
        m_canvas.DrawLine(Lifted(OnCanvas(from)), Lifted(OnCanvas(to)), Pixel(segment.color));
}

void Renderer::Draw(Triangle const & triangle, bool highlighted)
{
    Clipper::Vector corners[Clipper::MOST_CORNERS] = {Project(triangle.a), Project(triangle.b), Project(triangle.c)};
    std::size_t const count = Clipper::Clip(corners, 3);
    std::uint32_t const color = count > 0 ? Shade(triangle, highlighted) : 0;
    for (std::size_t i = 2; i < count; ++i)
        m_canvas.FillTriangle(OnCanvas(corners[0]), OnCanvas(corners[i - 1]), OnCanvas(corners[i]), color);
}

std::uint32_t Renderer::Shade(Triangle const & triangle, bool highlighted) const
{
    if (highlighted)
        return Pixel(HIGHLIGHT);
    Point const normal = (triangle.b - triangle.a).Cross(triangle.c - triangle.a);
    double const facing = std::fabs(m_toCamera.TransformDirection(normal.Normalised()).z);
    double const light = std::isfinite(facing) ? AMBIENT + (1 - AMBIENT) * std::min(facing, 1.0) : AMBIENT;
    return Pixel(Color(0, 0, 0, 255).Lerp(triangle.color, static_cast<float>(light)));
}

} // namespace tool
