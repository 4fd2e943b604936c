#include "VekCore.h"

#include "base/LiveObjects.h"

#include <windows.h>

namespace
{

unsigned long long TimeOf(FILETIME const & time)
{
    return static_cast<unsigned long long>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

} // namespace

CVekCPUUsage::CVekCPUUsage()
{
    vek::CountBirth(vek::LiveClass::CPUUsage);
}

CVekCPUUsage::~CVekCPUUsage()
{
    vek::CountEnd(vek::LiveClass::CPUUsage);
}

void CVekCPUUsage::Update(double now)
{
    if (m_lastUpdate == 0.0)
    {
        m_lastUpdate = now;
        return;
    }
    if (now - m_lastUpdate <= 1.0)
        return;
    Measure();
    m_lastUpdate = now;
}

double CVekCPUUsage::GetUsage()
{
    return m_usage;
}

void CVekCPUUsage::Measure()
{
    FILETIME idle{};
    FILETIME kernel{};
    FILETIME user{};
    GetSystemTimes(&idle, &kernel, &user);
    FILETIME created{};
    FILETIME exited{};
    FILETIME processKernel{};
    FILETIME processUser{};
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &processKernel, &processUser);

    // Kept: the system's kernel time includes its idle time, which is not taken off.
    unsigned long long const system = TimeOf(kernel) + TimeOf(user) - (m_systemKernel + m_systemUser);
    unsigned long long const process = TimeOf(processKernel) + TimeOf(processUser) - (m_processKernel + m_processUser);
    m_usage = system == 0 ? 0.0 : static_cast<double>(process) / static_cast<double>(system) * 100.0;
    if (m_usage > 100.0)
        m_usage = 100.0;
    if (m_usage < 0.0)
        m_usage = 0.0;
    m_systemIdle = TimeOf(idle);
    m_systemKernel = TimeOf(kernel);
    m_systemUser = TimeOf(user);
    m_processKernel = TimeOf(processKernel);
    m_processUser = TimeOf(processUser);
}
