#include "oom/DataScenarios.h"

#include <cstdlib>

namespace
{

bool UseMemoryStream()
{
    Released<IVekMemoryIOStream> const stream(getVekLibKernel()->CreateMemoryIOStream());
    if (!stream || !stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 1000))
        return false;
    int found = 0;
    bool const printed = stream->Printf(L"%d %s", 17, L"text") && stream->Scanf(L"%d", &found);
    return printed && found == 17;
}

bool UseFileStream()
{
    wchar_t const * const folder = _wgetenv(L"VEK_TEST_TMP");
    wchar_t path[300] = L"oom.bin";
    if (folder)
        VekStrPrintfW(path, 300, L"%s/oom.bin", folder);
    Released<IVekFileIOStream> const stream(getVekLibKernel()->CreateFileIOStream());
    if (!stream || !stream->Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0))
        return false;
    bool const printed = stream->Printf("%d %s", 17, "text") && stream->WriteDouble(1.5, true);
    stream->Close();
    int found = 0;
    return stream->Open(path, VEK_IO_READ | VEK_IO_BINARY, 0) && stream->Scanf("%d", &found) && found == 17 && printed;
}

} // namespace

std::vector<Scenario> const dataScenarios = {
    {"UseMemoryStream", UseMemoryStream, {L"CVekMemoryIOStream"}},
    {"UseFileStream", UseFileStream, {L"CVekFileIOStream"}},
};
