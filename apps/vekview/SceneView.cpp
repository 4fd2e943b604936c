#include "SceneView.h"

#include <algorithm>
#include <cmath>

namespace tool
{

namespace
{

constexpr double PI = 3.14159265358979323846;
constexpr double STEPS_PER_HEIGHT = 16; // of the wheel: four double the size
constexpr double FREE_BORDER = 1.05;
// A near plane this much nearer than the pivot leaves room to move, and digits for the depth.
constexpr double NEAR_PART = 1e-3;
constexpr double LEAST_NEAR_PART = 1e-4; // of far

CVekMatrix4x4<double> Double(CVekMatrix4x4<float> const & matrix)
{
    CVekMatrix4x4<double> result;
    for (unsigned int row = 0; row < 4; ++row)
        result.SetRow(row, CVekVector4D<double>(matrix.Row(row)));
    return result;
}

} // namespace

SceneView::SceneView(Scene const & scene) : m_scene(scene), m_centre(scene.bounds.Centre()), m_tangent(0)
{
    Resize(1, 1);
    SceneCamera camera;
    // From the front, a little above and to the right.
    camera.target = m_centre;
    camera.eye = m_centre + Point(0.5f, 0.45f, 1.0f);
    TakeCamera(scene.camera ? *scene.camera : camera);
    if (scene.camera)
        m_centre = scene.camera->target;
    else
        Fit();
}

void SceneView::TakeCamera(SceneCamera const & camera)
{
    m_state.coordSystem = camera.coordSystem;
    m_state.up = camera.up;
    m_state.matrix = camera.coordSystem == VEK_COORDSYSTEM_LEFTHANDED
                         ? CVekMatrix4x4<float>::LookAtLeftHanded(camera.eye, camera.target, camera.up)
                         : CVekMatrix4x4<float>::LookAtRightHanded(camera.eye, camera.target, camera.up);
    m_tangent = std::tan(static_cast<double>(camera.fieldOfView) / 360.0 * PI);
    double const distance = Depth(camera.target);
    bool const perspective = camera.projection == VEK_PROJECTIONMODE_PERSPECTIVE;
    double const nearPlane = distance * NEAR_PART;
    TakeVolume(camera.projection, m_tangent * (perspective ? nearPlane : distance), nearPlane);
}

void SceneView::TakeVolume(VEK_PROJECTIONMODE mode, double halfHeight, double nearPlane)
{
    float const half = static_cast<float>(halfHeight), front = static_cast<float>(nearPlane);
    m_state.frustum.SetFrustum(mode, -half, half, half, -half, front, 2 * front);
}

void SceneView::Resize(int width, int height)
{
    m_state.screenRight = static_cast<float>(std::max(width, 1));
    m_state.screenBottom = static_cast<float>(std::max(height, 1));
}

double SceneView::Depth(Point const & point) const
{
    return static_cast<double>(m_state.matrix.TransformPoint(point).z) * Forward();
}

/// Moves the camera along its view axis.
void SceneView::MoveToDepth(Point const & point, double depth)
{
    Point offset = m_state.matrix.GetTranslation();
    offset.z += static_cast<float>((depth - Depth(point)) * Forward());
    m_state.matrix.SetTranslation(offset);
}

void SceneView::Fit()
{
    EndDrag();
    m_centre = m_scene.bounds.Centre();
    double radius = static_cast<double>(m_scene.bounds.Size().Length()) / 2.0 * FREE_BORDER;
    if (!(radius > 0))
        radius = 1;
    double const aspect = std::min(1.0, static_cast<double>(Width()) / Height());
    double const distance = radius / std::sin(std::atan(m_tangent * aspect));
    Point offset = m_state.matrix.GetTranslation() - m_state.matrix.TransformPoint(m_centre);
    m_state.matrix.SetTranslation(offset);
    MoveToDepth(m_centre, distance);
    double const nearPlane = distance * NEAR_PART;
    bool const perspective = GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE;
    TakeVolume(GetProjection(), perspective ? m_tangent * nearPlane : radius / aspect, nearPlane);
}

void SceneView::SetProjection(VEK_PROJECTIONMODE mode)
{
    EndDrag();
    if (mode == GetProjection())
        return;
    double const half = static_cast<double>(m_state.frustum.GetHeight()) / 2.0;
    if (mode == VEK_PROJECTIONMODE_PERSPECTIVE)
    {
        double const distance = half / m_tangent;
        MoveToDepth(m_centre, distance);
        TakeVolume(mode, m_tangent * distance * NEAR_PART, distance * NEAR_PART);
    }
    else
    {
        double const nearPlane = static_cast<double>(m_state.frustum.GetNear());
        TakeVolume(mode, half / nearPlane * std::max(Depth(m_centre), nearPlane), nearPlane);
    }
}

void SceneView::TakePivot(VEK_CAMERAMODE mode, Point const * hit)
{
    m_state.pivot = hit && mode != VEK_CAMERAMODE_ORBIT ? *hit : m_centre;
    double const nearPlane = Depth(m_state.pivot) * NEAR_PART;
    if (GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE && nearPlane > 0)
        TakeVolume(GetProjection(), m_tangent * nearPlane, nearPlane);
}

void SceneView::BeginDrag(VEK_CAMERAMODE mode, int x, int y, Point const * hit)
{
    TakePivot(mode, hit);
    m_mode = mode;
    m_dragging = true;
    m_state.pointerStart = CVekVector2D<float>(static_cast<float>(x), static_cast<float>(y));
    m_state.SavePrevious();
}

void SceneView::Drag(int x, int y)
{
    if (!m_dragging)
        return;
    m_state.RestorePrevious();
    m_state.pointerCurrent = CVekVector2D<float>(static_cast<float>(x), static_cast<float>(y));
    m_controller.Manipulate(m_mode, &m_state);
}

void SceneView::EndDrag()
{
    m_dragging = false;
}

void SceneView::CancelDrag()
{
    if (m_dragging)
        m_state.RestorePrevious();
    m_dragging = false;
}

void SceneView::Wheel(double steps, int x, int y, Point const * hit)
{
    EndDrag();
    TakePivot(VEK_CAMERAMODE_DOLLY, hit);
    m_state.pointerStart = CVekVector2D<float>(static_cast<float>(x), static_cast<float>(y));
    float const way = static_cast<float>(-steps * Height() / STEPS_PER_HEIGHT);
    m_state.pointerCurrent = m_state.pointerStart + CVekVector2D<float>(0, way);
    m_controller.Manipulate(VEK_CAMERAMODE_DOLLY, &m_state);
}

/// The camera's volume in the picture's proportions, with near and far just around the scene.
CVekFrustum SceneView::DrawnVolume() const
{
    double nearest = 0, farthest = 0;
    for (unsigned int i = 0; i < 8; ++i)
    {
        double const depth = Depth(m_scene.bounds.Corner(i));
        nearest = i == 0 ? depth : std::min(nearest, depth);
        farthest = i == 0 ? depth : std::max(farthest, depth);
    }
    double const margin = std::max((farthest - nearest) * 0.01, std::max(std::fabs(farthest) * 1e-3, 1e-6));
    nearest -= margin;
    farthest += margin;
    CVekFrustum volume = m_state.frustum;
    if (GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE)
    {
        farthest = std::max(farthest, margin);
        nearest = std::max(nearest, farthest * LEAST_NEAR_PART);
        float const part = static_cast<float>(nearest) / volume.GetNear();
        volume.Scale(part, part);
    }
    volume.SetNear(static_cast<float>(nearest));
    volume.SetFar(static_cast<float>(farthest));
    volume.FixAspectRatio(m_state.screenRight, m_state.screenBottom);
    return volume;
}

SceneView::Transform SceneView::WorldToCamera() const
{
    return Double(m_state.matrix);
}

SceneView::Transform SceneView::WorldToPicture() const
{
    return WorldToCamera() * Double(DrawnVolume().CreateProjectionMatrix(m_state.coordSystem));
}

bool SceneView::RayAt(int x, int y, Ray & ray) const
{
    Transform back;
    CVekVector3D<double> place((x + 0.5) / Width() * 2 - 1, 1 - (y + 0.5) / Height() * 2, 0);
    if (!WorldToPicture().Inverse(back) || !back.ProjectPoint(place, ray.from))
        return false;
    place.z = 1;
    return back.ProjectPoint(place, ray.to);
}

} // namespace tool
