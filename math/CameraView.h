// A camera record taken apart for the controller: what all manipulations need, checked and in double precision.
#pragma once

#include "VekCamera.h"

namespace vek
{

struct CameraView
{
    CVekMatrix4x4<double> matrix;
    bool perspective;
    double forward;             // the view's direction along z, 1 or -1
    CVekVector3D<double> pivot; // in camera coordinates
    double nearPlane;
    CVekVector2D<double> start, current; // the pointer on the near plane, the view axis in its origin
    CVekVector2D<double> movement;       // of the pointer on the screen, y downwards
    double screenWidth, screenHeight;
    double pixel; // a screen unit's larger side on the near plane

    /// False when the record makes no camera.
    bool Read(VEK_CAMERASTATE const & state);

    /// The depth at which the pointer's position is meant.
    double WorkingDepth() const;
    /// The sideways size at that depth of what has the size 1 on the near plane.
    double Spread() const { return perspective ? WorkingDepth() / nearPlane : 1.0; }

private:
    bool ReadScreen(VEK_CAMERASTATE const & state);
    bool ReadVolume(VEK_CAMERASTATE const & state);
    bool ReadMatrix(VEK_CAMERASTATE const & state);
};

/// True when all elements are finite.
bool IsFinite(CVekMatrix4x4<double> const & matrix);

/// Stores the product of the view's matrix and a movement in camera coordinates; false, and nothing is stored, when it
/// is not finite.
bool StoreMoved(CameraView const & view, CVekMatrix4x4<double> const & movement, CVekMatrix4x4<float> & matrix);

} // namespace vek
