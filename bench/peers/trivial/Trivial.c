/* As little as a DLL can be. */
#include <stdbool.h>

__declspec(dllexport) bool TrivialInit(void);

bool TrivialInit(void)
{
    return true;
}
