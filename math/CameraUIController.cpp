#include "math/CameraView.h"

#include "base/LiveObjects.h"

#include <cmath>

namespace
{

using Matrix = CVekMatrix4x4<double>;
using Vector = CVekVector3D<double>;

constexpr double HALF_TURN = 3.14159265358979323846;
// A drag over the screen's height doubles or halves this often: 16 times.
constexpr double DOUBLINGS_PER_SCREEN = 4.0;
constexpr double MOST_DOUBLINGS = 100.0;
// So little of the camera's y axis along the world's is still upright: seen from straight above nothing flips.
constexpr double UPSIDE_DOWN = -1e-3;

/// The world's up direction in camera coordinates, of length 1.
Vector UpAxis(vek::CameraView const & view, CVekVector3D<float> const & up)
{
    Vector const axis = view.matrix.TransformDirection(Vector(up));
    double const length = axis.Length();
    return length > 0.0 && std::isfinite(length) ? axis / length : Vector(0, 1, 0);
}

bool Orbit(vek::CameraView const & view, VEK_CAMERASTATE & state)
{
    double const anglePerPixel = HALF_TURN / std::fmin(view.screenWidth, view.screenHeight);
    Vector const up = UpAxis(view, state.up);
    // What is in front of the pivot follows the pointer, also in a picture that stands on its head.
    double const sense = (up.y < UPSIDE_DOWN ? 1.0 : -1.0) * view.forward;
    Matrix const around = Matrix::Rotation(up, sense * view.movement.x * anglePerPixel);
    Matrix const over = Matrix::RotationX(-view.forward * view.movement.y * anglePerPixel);
    return vek::StoreMoved(view, Matrix::Translation(-view.pivot) * around * over * Matrix::Translation(view.pivot),
                           state.matrix);
}

/// How much nearer, or smaller, a drag wants it: below 1 for a drag upwards.
double DollyFactor(vek::CameraView const & view)
{
    double const doublings = DOUBLINGS_PER_SCREEN * view.movement.y / view.screenHeight;
    return std::exp2(std::fmax(-MOST_DOUBLINGS, std::fmin(doublings, MOST_DOUBLINGS)));
}

bool Dolly(vek::CameraView const & view, VEK_CAMERASTATE & state)
{
    double const part = DollyFactor(view) - 1.0;
    double const spread = view.Spread();
    Vector const target(view.start.x * spread, view.start.y * spread, view.WorkingDepth() * view.forward);
    return vek::StoreMoved(view, Matrix::Translation(target * part), state.matrix);
}

bool Zoom(vek::CameraView const & view, VEK_CAMERASTATE & state)
{
    float const factor = static_cast<float>(DollyFactor(view));
    CVekFrustum zoomed = state.frustum;
    zoomed.Scale(factor, factor);
    if (!std::isnormal(zoomed.GetWidth()) || !std::isnormal(zoomed.GetHeight()))
        return false;
    double const part = static_cast<double>(factor) - 1.0;
    Vector const shift(view.start.x * part, view.start.y * part, 0.0);
    if (!vek::StoreMoved(view, Matrix::Translation(shift), state.matrix))
        return false;
    state.frustum = zoomed;
    return true;
}

bool Roll(vek::CameraView const & view, VEK_CAMERASTATE & state)
{
    // Nearer to the axis than half a pixel a direction means nothing.
    double const least = view.pixel / 2.0;
    if (view.start.Length() < least || view.current.Length() < least)
        return false;
    double const angle = std::atan2(view.start.Cross(view.current), view.start.Dot(view.current));
    return vek::StoreMoved(view, Matrix::RotationZ(angle), state.matrix);
}

bool Pan(vek::CameraView const & view, VEK_CAMERASTATE & state)
{
    CVekFrustum volume = state.frustum;
    // Kept: the field of view decides in an orthographic view too, so that one with near 0 can't be panned.
    if (!volume.FixAspectRatio(state.screenRight - state.screenLeft, state.screenBottom - state.screenTop) ||
        volume.GetFOV(VEK_ANGLE_RADIANS) == 0.0f)
        return false;
    CVekVector2D<double> const shift = (view.current - view.start) * view.Spread();
    return vek::StoreMoved(view, Matrix::Translation(Vector(shift.x, shift.y, 0.0)), state.matrix);
}

} // namespace

CVekCameraUIController::CVekCameraUIController()
{
    vek::CountBirth(vek::LiveClass::CameraUIController);
}

CVekCameraUIController::~CVekCameraUIController()
{
    vek::CountEnd(vek::LiveClass::CameraUIController);
}

bool CVekCameraUIController::Manipulate(int mode, VEK_CAMERASTATE * state)
{
    if (!state)
        return false;
    // Kept: also before a mode or a record that is then refused.
    state->SavePrevious();
    vek::CameraView view;
    if (mode < VEK_CAMERAMODE_ORBIT || mode > VEK_CAMERAMODE_PAN || !view.Read(*state))
        return false;
    switch (mode)
    {
    case VEK_CAMERAMODE_ORBIT:
        return Orbit(view, *state);
    case VEK_CAMERAMODE_DOLLY:
        return view.perspective ? Dolly(view, *state) : Zoom(view, *state);
    case VEK_CAMERAMODE_ROLL:
        return Roll(view, *state);
    default:
        return Pan(view, *state);
    }
}
