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
// A float has all its digits for a part of this too.
constexpr double LEAST_DISTANCE = 1e-30;

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
    camera.eye = m_centre + Point(0.5, 0.45, 1.0);
    TakeCamera(scene.camera ? *scene.camera : camera);
    if (scene.camera)
        m_centre = scene.camera->target;
    else
        Fit();
}

void SceneView::TakeCamera(SceneCamera const & camera)
{
    using Vector = CVekVector3D<float>;
    m_origin = camera.target;
    m_state.coordSystem = camera.coordSystem;
    m_state.up = Vector(camera.up.Normalised());
    Vector const eye(camera.eye - camera.target);
    m_state.matrix = camera.coordSystem == VEK_COORDSYSTEM_LEFTHANDED
                         ? CVekMatrix4x4<float>::LookAtLeftHanded(eye, Vector(), m_state.up)
                         : CVekMatrix4x4<float>::LookAtRightHanded(eye, Vector(), m_state.up);
    m_tangent = std::tan(camera.fieldOfView / 360.0 * PI);
    TakeVolume(camera.projection, Depth(camera.target));
}

/// The volume that shows what is at that distance as large as the angle makes it in perspective.
void SceneView::TakeVolume(VEK_PROJECTIONMODE mode, double distance)
{
    double const nearPlane = distance * NEAR_PART;
    bool const perspective = mode == VEK_PROJECTIONMODE_PERSPECTIVE;
    float const half = static_cast<float>(m_tangent * (perspective ? nearPlane : distance));
    float const front = static_cast<float>(nearPlane);
    m_state.frustum.SetFrustum(mode, -half, half, half, -half, front, 2 * front);
}

void SceneView::Resize(int width, int height)
{
    m_state.screenRight = static_cast<float>(std::max(width, 1));
    m_state.screenBottom = static_cast<float>(std::max(height, 1));
}

/// Moves the camera, which keeps its direction, so that the point comes to a place in front of it. The point becomes
/// the origin: around it, the record has the most digits.
void SceneView::MoveTo(Point const & point, Point const & inCamera)
{
    Point const pivot = Pivot();
    m_origin = point;
    SetPivot(pivot);
    m_state.matrix.SetTranslation(CVekVector3D<float>(inCamera));
}

void SceneView::Fit()
{
    EndDrag();
    m_centre = m_scene.bounds.Centre();
    double const aspect = static_cast<double>(Width()) / Height();
    double const slope = GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE ? m_tangent / FREE_BORDER : 0;
    // How far from the centre each side's plane has to be so that nothing is outside of it.
    double left = 0, right = 0, top = 0, bottom = 0;
    Transform const toCamera = WorldToCamera();
    m_scene.ForEachPoint(
        [&](Point const & point)
        {
            Point const p = toCamera.TransformDirection(point - m_centre);
            double const spread = slope * p.z * Forward();
            left = std::max(left, -p.x - spread * aspect);
            right = std::max(right, p.x - spread * aspect);
            top = std::max(top, p.y - spread);
            bottom = std::max(bottom, -p.y - spread);
        });
    double const half = std::max((left + right) / aspect, top + bottom) / 2;
    double distance = half * FREE_BORDER / m_tangent;
    if (!(distance > LEAST_DISTANCE))
        distance = 1;
    MoveTo(m_centre, Point((left - right) / 2, (bottom - top) / 2, distance * Forward()));
    SetPivot(m_centre);
    TakeVolume(GetProjection(), distance);
}

void SceneView::SetProjection(VEK_PROJECTIONMODE mode)
{
    EndDrag();
    if (mode == GetProjection())
        return;
    KeepPivotInFront();
    double distance = Depth(Pivot());
    if (mode == VEK_PROJECTIONMODE_PERSPECTIVE)
    {
        distance = static_cast<double>(m_state.frustum.GetHeight()) / 2 / m_tangent;
        Point place = InCamera(Pivot());
        place.z = distance * Forward();
        MoveTo(Pivot(), place);
    }
    TakeVolume(mode, distance);
}

/// What is not in front of the camera gives no depth to work at: a point on the view axis replaces it, at the depth
/// worked at before.
void SceneView::KeepPivotInFront()
{
    double const nearPlane = static_cast<double>(m_state.frustum.GetNear());
    Transform back;
    if (!(Depth(Pivot()) > nearPlane) && WorldToCamera().Inverse(back))
        SetPivot(m_origin + back.TransformPoint(Point(0, 0, nearPlane / NEAR_PART * Forward())));
}

void SceneView::TakePivot(VEK_CAMERAMODE mode, Point const * hit)
{
    bool const takesHit = hit && mode != VEK_CAMERAMODE_ORBIT;
    if (takesHit)
        MoveTo(*hit, InCamera(*hit));
    SetPivot(takesHit ? *hit : m_centre);
    if (mode != VEK_CAMERAMODE_ORBIT)
        KeepPivotInFront();
    double const depth = Depth(Pivot());
    if (GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE && depth > 0)
        TakeVolume(GetProjection(), depth);
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

CVekFrustum SceneView::DrawnVolume() const
{
    double const nearPlane = static_cast<double>(m_state.frustum.GetNear());
    double nearest = 0, farthest = 0;
    for (unsigned int i = 0; i < 8; ++i)
    {
        double const depth = Depth(m_scene.bounds.Corner(i));
        nearest = i == 0 ? depth : std::min(nearest, depth);
        farthest = i == 0 ? depth : std::max(farthest, depth);
    }
    double const distance = std::max({std::fabs(nearest), std::fabs(farthest), nearPlane / NEAR_PART});
    double const margin = std::max((farthest - nearest) * 0.01, distance * 1e-3);
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
    Point place((x + 0.5) / Width() * 2 - 1, 1 - (y + 0.5) / Height() * 2, 0);
    if (!WorldToPicture().Inverse(back) || !back.ProjectPoint(place, ray.from))
        return false;
    place.z = 1;
    ray.origin = m_origin;
    return back.ProjectPoint(place, ray.to);
}

} // namespace tool
