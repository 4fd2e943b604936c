#include "base/SystemFunction.h"

#include <windows.h>

#include <string.h>
#include <wchar.h>

namespace vek
{

void * SystemFunctionAddress::Find() noexcept
{
    // By its whole path: a DLL of that name beside the program or in the current folder is not the system's.
    wchar_t path[2 * MAX_PATH];
    UINT const length = GetSystemDirectoryW(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH || wcslen(m_dll) + 2 > MAX_PATH)
        return nullptr;
    path[length] = L'\\';
    wcscpy(path + length + 1, m_dll);
    // The DLL stays loaded: others may still run in it when this library is unloaded.
    HMODULE const module = LoadLibraryW(path);
    FARPROC const function = module ? GetProcAddress(module, m_name) : nullptr;
    void * const address = reinterpret_cast<void *>(function);
    m_address.store(address, std::memory_order_release);
    return address;
}

} // namespace vek
