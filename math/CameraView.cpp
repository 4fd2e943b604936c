#include "math/CameraView.h"

#include <cmath>

namespace vek
{

namespace
{

CVekVector2D<double> OnNearPlane(CVekVector2D<float> const & pointer, VEK_CAMERASTATE const & state,
                                 CVekFrustum const & volume, CameraView const & view)
{
    double const across = (static_cast<double>(pointer.x) - static_cast<double>(state.screenLeft)) / view.screenWidth;
    double const down = (static_cast<double>(pointer.y) - static_cast<double>(state.screenTop)) / view.screenHeight;
    double const left = static_cast<double>(volume.GetLeft()), right = static_cast<double>(volume.GetRight());
    double const top = static_cast<double>(volume.GetTop()), bottom = static_cast<double>(volume.GetBottom());
    return CVekVector2D<double>(left + across * (right - left), top + down * (bottom - top));
}

bool IsFinite(CVekVector2D<double> const & v)
{
    return std::isfinite(v.x) && std::isfinite(v.y);
}

} // namespace

bool IsFinite(CVekMatrix4x4<double> const & matrix)
{
    for (unsigned int i = 0; i < 16; ++i)
        if (!std::isfinite(matrix.GetElements()[i]))
            return false;
    return true;
}

bool CameraView::Read(VEK_CAMERASTATE const & state)
{
    return ReadScreen(state) && ReadVolume(state) && ReadMatrix(state);
}

bool CameraView::ReadScreen(VEK_CAMERASTATE const & state)
{
    screenWidth = static_cast<double>(state.screenRight) - static_cast<double>(state.screenLeft);
    screenHeight = static_cast<double>(state.screenBottom) - static_cast<double>(state.screenTop);
    movement = CVekVector2D<double>(state.pointerCurrent) - CVekVector2D<double>(state.pointerStart);
    return screenWidth > 0 && screenHeight > 0 && std::isfinite(screenWidth) && std::isfinite(screenHeight) &&
           IsFinite(movement);
}

bool CameraView::ReadVolume(VEK_CAMERASTATE const & state)
{
    CVekFrustum volume = state.frustum;
    if (!volume.FixAspectRatio(state.screenRight - state.screenLeft, state.screenBottom - state.screenTop) ||
        !std::isnormal(volume.GetWidth()) || !std::isnormal(volume.GetHeight()))
        return false;
    perspective = volume.GetProjectionMode() == VEK_PROJECTIONMODE_PERSPECTIVE;
    if (!perspective && volume.GetProjectionMode() != VEK_PROJECTIONMODE_ORTHOGRAPHIC)
        return false;
    nearPlane = static_cast<double>(volume.GetNear());
    if (!std::isfinite(nearPlane) || (perspective && nearPlane <= 0))
        return false;
    start = OnNearPlane(state.pointerStart, state, volume, *this);
    current = OnNearPlane(state.pointerCurrent, state, volume, *this);
    pixel = std::fmax(std::fabs(static_cast<double>(volume.GetWidth())) / screenWidth,
                      std::fabs(static_cast<double>(volume.GetHeight())) / screenHeight);
    return IsFinite(start) && IsFinite(current);
}

bool CameraView::ReadMatrix(VEK_CAMERASTATE const & state)
{
    if (state.coordSystem != VEK_COORDSYSTEM_LEFTHANDED && state.coordSystem != VEK_COORDSYSTEM_RIGHTHANDED)
        return false;
    forward = state.coordSystem == VEK_COORDSYSTEM_LEFTHANDED ? 1.0 : -1.0;
    matrix = CVekMatrix4x4<double>(state.matrix);
    CVekMatrix4x4<double> inverse;
    if (!IsFinite(matrix) || !matrix.Inverse(inverse))
        return false;
    pivot = matrix.TransformPoint(CVekVector3D<double>(state.pivot));
    return std::isfinite(pivot.x) && std::isfinite(pivot.y) && std::isfinite(pivot.z);
}

double CameraView::WorkingDepth() const
{
    return std::fmax(pivot.z * forward, nearPlane);
}

bool StoreMoved(CameraView const & view, CVekMatrix4x4<double> const & movement, CVekMatrix4x4<float> & matrix)
{
    CVekMatrix4x4<double> const moved = view.matrix * movement;
    CVekMatrix4x4<float> result;
    for (unsigned int i = 0; i < 16; ++i)
    {
        result.GetElements()[i] = static_cast<float>(moved.GetElements()[i]);
        if (!std::isfinite(result.GetElements()[i]))
            return false;
    }
    matrix = result;
    return true;
}

} // namespace vek
