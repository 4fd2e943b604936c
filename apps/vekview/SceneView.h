#pragma once

#include "Scene.h"

namespace tool
{

/// How a scene is seen: the camera's record, the controller that moves it, and the ways from world to screen and back.
/// The record has floats. Therefore its world has an origin of its own, close to what is looked at.
class SceneView
{
public:
    using Transform = CVekMatrix4x4<double>;

    /// A line into the picture, from the nearest to the farthest point of the volume, as seen from an origin.
    struct Ray
    {
        Point origin, from, to;
    };

    /// Takes the scene's camera, or shows all of the scene. The scene has to stay.
    explicit SceneView(Scene const & scene);

    /// Tells the size of the picture in pixels.
    void Resize(int width, int height);
    int Width() const { return static_cast<int>(m_state.screenRight); }
    int Height() const { return static_cast<int>(m_state.screenBottom); }

    /// Moves the camera, which keeps its direction, until the whole scene just fits into the picture.
    void Fit();
    /// Changes the projection; what is at the pivot keeps its size.
    void SetProjection(VEK_PROJECTIONMODE mode);
    VEK_PROJECTIONMODE GetProjection() const { return m_state.frustum.GetProjectionMode(); }

    /// A drag, from the button's going down to its end. Orbits are about the scene's middle, the other modes at the
    /// depth of the point that was hit, if any.
    void BeginDrag(VEK_CAMERAMODE mode, int x, int y, Point const * hit);
    void Drag(int x, int y);
    bool IsDragging() const { return m_dragging; }
    void EndDrag();
    /// Ends the drag with the camera where it was before.
    void CancelDrag();
    /// Goes nearer by a number of steps, or back; the point under the pointer stays there.
    void Wheel(double steps, int x, int y, Point const * hit);

    /// What the transforms count from: they take points less this one.
    Point const & Origin() const { return m_origin; }
    /// From the world to the camera.
    Transform WorldToCamera() const;
    /// The camera's volume in the picture's proportions, with near and far just around the scene.
    CVekFrustum DrawnVolume() const;
    /// From the world to what is visible from -1 to 1 both ways, and from 0 to 1 in depth.
    Transform WorldToPicture() const;
    /// False when the picture has no line there.
    bool RayAt(int x, int y, Ray & ray) const;

private:
    void TakeCamera(SceneCamera const & camera);
    void TakeVolume(VEK_PROJECTIONMODE mode, double distance);
    double Forward() const { return m_state.coordSystem == VEK_COORDSYSTEM_LEFTHANDED ? 1.0 : -1.0; }
    Point InCamera(Point const & point) const { return WorldToCamera().TransformPoint(point - m_origin); }
    double Depth(Point const & point) const { return InCamera(point).z * Forward(); }
    void MoveTo(Point const & point, Point const & inCamera);
    Point Pivot() const { return m_origin + Point(m_state.pivot); }
    void SetPivot(Point const & point) { m_state.pivot = CVekVector3D<float>(point - m_origin); }
    void KeepPivotInFront();
    void TakePivot(VEK_CAMERAMODE mode, Point const * hit);

    Scene const & m_scene;
    CVekCameraUIController m_controller;
    VEK_CAMERASTATE m_state;
    Point m_origin;   // of the record's world
    Point m_centre;   // of orbits
    double m_tangent; // of half the angle between the upper and the lower plane in perspective
    VEK_CAMERAMODE m_mode = VEK_CAMERAMODE_ORBIT;
    bool m_dragging = false;
};

} // namespace tool
