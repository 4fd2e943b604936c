#include "VekCamera.h"

#include <cmath>

static_assert(sizeof(void *) != 4 || sizeof(CVekFrustum) == 32);

CVekFrustum::CVekFrustum() noexcept
    : CVekFrustum(VEK_PROJECTIONMODE_PERSPECTIVE, -0.5f, 0.5f, 0.5f, -0.5f, 1.0f, 100.0f)
{
}

CVekFrustum::CVekFrustum(VEK_PROJECTIONMODE mode, float left, float right, float top, float bottom, float nearPlane,
                         float farPlane) noexcept
    : m_mode(mode), m_left(left), m_right(right), m_top(top), m_bottom(bottom), m_near(nearPlane), m_far(farPlane)
{
}

CVekFrustum::~CVekFrustum() = default;

bool CVekFrustum::SetFrustum(VEK_PROJECTIONMODE mode, float left, float right, float top, float bottom, float nearPlane,
                             float farPlane) noexcept
{
    *this = CVekFrustum(mode, left, right, top, bottom, nearPlane, farPlane);
    return true;
}

float CVekFrustum::GetFOV(VEK_ANGLE unit) const noexcept
{
    constexpr float DEGREES_PER_RADIAN = 57.29578f;
    if (m_near == 0.0f)
        return 0.0f;
    // Kept: the whole height over near, not twice the angle of half the height.
    float const fov = static_cast<float>(std::atan(static_cast<double>(GetHeight() / m_near)));
    return unit == VEK_ANGLE_RADIANS ? fov : fov * DEGREES_PER_RADIAN;
}

bool CVekFrustum::FixAspectRatio(float width, float height) noexcept
{
    if (width == 0.0f || height == 0.0f)
        return false;
    Scale(width / height, 1.0f);
    return true;
}

void CVekFrustum::Scale(float horizontal, float vertical) noexcept
{
    m_left *= horizontal;
    m_right *= horizontal;
    m_top *= vertical;
    m_bottom *= vertical;
}

CVekMatrix4x4<float> CVekFrustum::CreateProjectionMatrix(VEK_COORDSYSTEM coordSystem) const noexcept
{
    CVekMatrix4x4<float> matrix = CVekMatrix4x4<float>::Identity();
    bool const leftHanded = coordSystem == VEK_COORDSYSTEM_LEFTHANDED;
    if (!leftHanded && coordSystem != VEK_COORDSYSTEM_RIGHTHANDED)
        return matrix;
    if (m_mode == VEK_PROJECTIONMODE_PERSPECTIVE)
        FillPerspective(matrix, leftHanded);
    else if (m_mode == VEK_PROJECTIONMODE_ORTHOGRAPHIC)
        FillOrthographic(matrix, leftHanded);
    return matrix;
}

void CVekFrustum::FillPerspective(CVekMatrix4x4<float> & matrix, bool leftHanded) const noexcept
{
    matrix(0, 0) = 2.0f * m_near / (m_right - m_left);
    matrix(1, 1) = 2.0f * m_near / (m_top - m_bottom);
    matrix(2, 0) = (m_right + m_left) / (leftHanded ? m_left - m_right : m_right - m_left);
    matrix(2, 1) = (m_top + m_bottom) / (leftHanded ? m_bottom - m_top : m_top - m_bottom);
    matrix(2, 2) = m_far / (leftHanded ? m_far - m_near : m_near - m_far);
    matrix(2, 3) = leftHanded ? 1.0f : -1.0f;
    matrix(3, 2) = m_near * m_far / (m_near - m_far);
    matrix(3, 3) = 0.0f;
}

void CVekFrustum::FillOrthographic(CVekMatrix4x4<float> & matrix, bool leftHanded) const noexcept
{
    matrix(0, 0) = 2.0f / (m_right - m_left);
    matrix(1, 1) = 2.0f / (m_top - m_bottom);
    matrix(2, 2) = (leftHanded ? 1.0f : -1.0f) / (m_far - m_near);
    matrix(3, 0) = (m_right + m_left) / (m_left - m_right);
    matrix(3, 1) = (m_top + m_bottom) / (m_bottom - m_top);
    matrix(3, 2) = -m_near / (m_far - m_near);
}
