#pragma once

#include "Canvas.h"
#include "SceneView.h"

namespace tool
{

/// Draws a scene, triangles flat and lit from the eye, one of them highlighted (-1 for none).
class Renderer
{
public:
    Renderer(SceneView const & view, Canvas & canvas);

    void Draw(Scene const & scene, int highlighted);

private:
    void Draw(Segment const & segment);
    void Draw(Triangle const & triangle, bool highlighted);
    std::uint32_t Shade(Triangle const & triangle, bool highlighted) const;
    CVekVector4D<double> Project(Point const & point) const;
    Canvas::Place OnCanvas(CVekVector4D<double> const & point) const;
    Canvas::Place Lifted(Canvas::Place place) const;

    SceneView const & m_view;
    Canvas & m_canvas;
    CVekFrustum m_volume;
    bool m_isPerspective;
    SceneView::Transform m_toPicture;
    SceneView::Transform m_toCamera;
};

} // namespace tool
