/// @file
/// The view volume with its projection, and the controller that turns pointer movements into camera movements.
///
/// @code
/// // A drag of the left button turns the scene about the pivot.
/// CVekRef<IVekCameraUIController> const controller{getVekLibKernel()->CreateCameraUIController()};
/// VEK_CAMERASTATE state;
/// state.screenRight = 800;
/// state.screenBottom = 600;
/// state.pointerStart = CVekVector2D<float>(100, 100);
/// state.SavePrevious();
/// state.pointerCurrent = CVekVector2D<float>(140, 90);
/// controller->Manipulate(VEK_CAMERAMODE_ORBIT, &state);
/// @endcode
#ifndef VEK_CAMERA_H
#define VEK_CAMERA_H

#include "VekCore.h"
#include "VekExport.h"
#include "VekMath.h"

VEK_HEADER_BEGIN

/// How a view volume is projected.
enum VEK_PROJECTIONMODE : int
{
    VEK_PROJECTIONMODE_PERSPECTIVE = 0,
    VEK_PROJECTIONMODE_ORTHOGRAPHIC = 1
};

/// The handedness of camera coordinates: x to the right and y up in both; the view goes along +z in the left-handed and
/// along -z in the right-handed system.
enum VEK_COORDSYSTEM : int
{
    VEK_COORDSYSTEM_LEFTHANDED = 0,
    VEK_COORDSYSTEM_RIGHTHANDED = 1
};

/// The unit of an angle; every value but VEK_ANGLE_RADIANS means degrees.
enum VEK_ANGLE : int
{
    VEK_ANGLE_DEGREES = 1,
    VEK_ANGLE_RADIANS = 2
};

/// An off-centre view volume. Left, right, top and bottom lie on the near plane; near and far are distances from the
/// eye along the view.
class VEK_API CVekFrustum
{
public:
    /// Perspective, from -0.5 to 0.5 both ways, near 1, far 100.
    CVekFrustum() noexcept;
    /// Stores the values as they are.
    CVekFrustum(VEK_PROJECTIONMODE mode, float left, float right, float top, float bottom, float nearPlane,
                float farPlane) noexcept;
    CVekFrustum(CVekFrustum const &) noexcept = default;
    CVekFrustum & operator=(CVekFrustum const &) noexcept = default;
    virtual ~CVekFrustum();

    /// Stores the values as they are; always true.
    bool SetFrustum(VEK_PROJECTIONMODE mode, float left, float right, float top, float bottom, float nearPlane,
                    float farPlane) noexcept;

    /// The edges of the near plane, the distances of both planes and the mode, as they were stored.
    float GetLeft() const noexcept { return m_left; }
    float GetRight() const noexcept { return m_right; }
    float GetTop() const noexcept { return m_top; }
    float GetBottom() const noexcept { return m_bottom; }
    float GetNear() const noexcept { return m_near; }
    float GetFar() const noexcept { return m_far; }
    VEK_PROJECTIONMODE GetProjectionMode() const noexcept { return m_mode; }
    /// Store the value as it is.
    void SetLeft(float value) noexcept { m_left = value; }
    void SetRight(float value) noexcept { m_right = value; }
    void SetTop(float value) noexcept { m_top = value; }
    void SetBottom(float value) noexcept { m_bottom = value; }
    void SetNear(float value) noexcept { m_near = value; }
    void SetFar(float value) noexcept { m_far = value; }
    void SetProjectionMode(VEK_PROJECTIONMODE mode) noexcept { m_mode = mode; }

    /// Right minus left, top minus bottom, far minus near.
    float GetWidth() const noexcept { return m_right - m_left; }
    float GetHeight() const noexcept { return m_top - m_bottom; }
    float GetDepth() const noexcept { return m_far - m_near; }

    /// The arc tangent of the height over near, 0 when near is 0. It is not the angle between the upper and the lower
    /// plane, which is twice the arc tangent of half the height over near.
    float GetFOV(VEK_ANGLE unit) const noexcept;
    /// Multiplies left and right by width / height. False, with nothing changed, when one of them is 0.
    bool FixAspectRatio(float width, float height) noexcept;
    /// Multiplies left and right by the first factor, top and bottom by the second.
    void Scale(float horizontal, float vertical) noexcept;
    /// The projection from camera coordinates for row vectors: x and y from -1 to 1, depth from 0 at near to 1 at far.
    /// Equal planes give infinities; the identity for a mode or coordinate system that is none.
    CVekMatrix4x4<float> CreateProjectionMatrix(VEK_COORDSYSTEM coordSystem) const noexcept;

private:
    void FillPerspective(CVekMatrix4x4<float> & matrix, bool leftHanded) const noexcept;
    void FillOrthographic(CVekMatrix4x4<float> & matrix, bool leftHanded) const noexcept;

    VEK_PROJECTIONMODE m_mode;
    float m_left;
    float m_right;
    float m_top;
    float m_bottom;
    float m_near;
    float m_far;
};

/// What IVekCameraUIController::Manipulate can do.
enum VEK_CAMERAMODE : int
{
    /// Turns the scene about the pivot: across about the axis `up`, up and down about the camera's x axis. A drag along
    /// the shorter side of the screen is half a turn.
    VEK_CAMERAMODE_ORBIT = 0,
    /// A drag upwards goes nearer: in perspective the eye moves towards the point that is under pointerStart at the
    /// pivot's depth, in an orthographic view the volume shrinks; that point stays where it is on the screen. A drag
    /// over the screen's height changes the pivot's depth, or the volume, by a factor of 16.
    VEK_CAMERAMODE_DOLLY = 1,
    /// Turns the picture about the view axis as the pointer turns around it.
    VEK_CAMERAMODE_ROLL = 2,
    /// Moves the camera sideways so that what was under pointerStart at the pivot's depth comes under pointerCurrent.
    VEK_CAMERAMODE_PAN = 3
};

/// A camera and the pointer that moves it; it belongs to the caller. The controller reads all of it and writes frustum,
/// matrix and their previous copies.
///
/// A drag that leaves no rounding behind and can be taken back: when the button goes down, set pointerStart and call
/// SavePrevious; at every movement call RestorePrevious, set pointerCurrent and call Manipulate. A single step, as of a
/// wheel, is one call with both positions set. A caller that sets pointerStart to pointerCurrent after each call
/// instead gets the same picture but for rounding; only the dolly then takes the point under each new start.
struct VEK_CAMERASTATE
{
    /// The volume of a square screen: what is drawn is a copy after FixAspectRatio with the screen's width and height.
    CVekFrustum frustum;
    /// From the world to camera coordinates, for row vectors. A point is drawn at p * matrix * the copy's projection.
    CVekMatrix4x4<float> matrix = CVekMatrix4x4<float>::Identity();
    VEK_COORDSYSTEM coordSystem = VEK_COORDSYSTEM_LEFTHANDED; ///< Which way the camera looks along its z axis.
    /// Where the picture is, in pixels with y downwards, or any other unit that the pointer has too.
    float screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    /// Where the button went down, in the same units.
    CVekVector2D<float> pointerStart;
    /// Where the pointer is now.
    CVekVector2D<float> pointerCurrent;
    /// The point in the world about which the camera orbits, and whose depth the other modes work at. A pivot that is
    /// not in front of the near plane of a perspective view counts as being on that plane there.
    CVekVector3D<float> pivot;
    /// The direction in the world about which sideways drags orbit; zero for the camera's own y axis.
    CVekVector3D<float> up = CVekVector3D<float>(0, 1, 0);
    /// What frustum and matrix were before the latest call of Manipulate.
    CVekFrustum previousFrustum;
    CVekMatrix4x4<float> previousMatrix = CVekMatrix4x4<float>::Identity();

    /// The default frustum and the identity, left-handed, an empty screen, the pivot in the origin, y up.
    VEK_CAMERASTATE() noexcept = default;

    /// Remembers frustum and matrix: a drag begins.
    void SavePrevious() noexcept
    {
        previousFrustum = frustum;
        previousMatrix = matrix;
    }
    /// Takes the latest manipulation back.
    void RestorePrevious() noexcept
    {
        frustum = previousFrustum;
        matrix = previousMatrix;
    }
};

/// Moves a camera as the pointer moves. It keeps nothing between calls: one controller may serve any number of cameras,
/// and any thread with a record of its own.
class IVekCameraUIController : public IVekObject
{
public:
    /// Moves the camera of the record as the mode (VEK_CAMERAMODE) says, by the way from pointerStart to
    /// pointerCurrent. First it copies the record's frustum and matrix into the previous ones, whatever comes of it.
    /// False, with the camera left as it is, for any other mode, a null record, an empty or mirrored screen, planes
    /// that enclose nothing, a perspective view without a positive near distance, a matrix that can't be inverted,
    /// values that are not finite, a roll with the pointer on the view axis, and a pan whose field of view
    /// (CVekFrustum::GetFOV) is 0, as that of an orthographic view with near 0 is.
    virtual bool Manipulate(int mode, VEK_CAMERASTATE * state) = 0;

protected:
    ~IVekCameraUIController() = default;
};

/// The library's camera controller.
class VEK_API CVekCameraUIController : public CVekRefCounted<IVekCameraUIController>
{
public:
    CVekCameraUIController();
    CVekCameraUIController(CVekCameraUIController const &) = delete;
    CVekCameraUIController & operator=(CVekCameraUIController const &) = delete;
    ~CVekCameraUIController() override;

    bool Manipulate(int mode, VEK_CAMERASTATE * state) override;
};

VEK_HEADER_END

#endif
