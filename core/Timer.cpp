#include "VekLib.h"

#include "base/LiveObjects.h"

#include <windows.h>

CVekTimer::CVekTimer()
{
    vek::CountBirth(vek::LiveClass::Timer);
}

CVekTimer::~CVekTimer()
{
    vek::CountEnd(vek::LiveClass::Timer);
}

bool CVekTimer::Start()
{
    LARGE_INTEGER count{};
    bool const read = QueryPerformanceCounter(&count) != 0;
    m_start = count.QuadPart;
    m_running = true;
    return read;
}

void CVekTimer::Stop()
{
    // Kept: the elapsed time goes on growing.
    m_running = false;
}

bool CVekTimer::IsRunning()
{
    return m_running;
}

long long CVekTimer::GetElapsedTicks()
{
    LARGE_INTEGER count{};
    QueryPerformanceCounter(&count);
    return count.QuadPart - m_start;
}

double CVekTimer::GetElapsedSeconds()
{
    return static_cast<double>(GetElapsedTicks()) / static_cast<double>(getVekLibKernel()->GetPerformanceFrequency());
}

double CVekTimer::GetRate(int count)
{
    if (count == 0)
        return 0.0;
    double const seconds = GetElapsedSeconds();
    // Kept: the count itself when no time has passed.
    return seconds == 0.0 ? static_cast<double>(count) : static_cast<double>(count) / seconds;
}
