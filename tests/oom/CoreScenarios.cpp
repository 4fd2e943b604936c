#include "oom/Scenarios.h"

#include <windows.h>

namespace
{

constexpr GUID EVENT = {0x22222222, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};

IVekKernel & Kernel()
{
    return *getVekLibKernel();
}

bool StartAndStop()
{
    // The suite's own start goes on counting: stop it for real, and start it again at the end.
    VekLibDeinit();
    bool const started = VekLibInit();
    bool const usable = Kernel().GetXMLManager() != nullptr && Kernel().RegisterEvent(EVENT);
    VekLibDeinit();
    return VekLibInit() && started && usable;
}

bool TrackMemory()
{
    unsigned char * blocks[40];
    bool succeeded = true;
    for (unsigned int i = 0; i < 40; ++i)
    {
        blocks[i] = i % 2 ? VekAllocMemory(i * 10, "narrow.cpp", 1) : VekAllocMemory(i * 10, L"dir/wide.cpp", 1);
        succeeded = succeeded && blocks[i];
    }
    for (unsigned char * const block : blocks)
        succeeded = (!block || VekDeallocMemory(block, L"", 0)) && succeeded;
    return succeeded;
}

template <class T>
bool Grow(T const * piece)
{
    CVekString<T> text(piece);
    CVekString<T> copy(text);
    for (int i = 0; i < 40; ++i)
    {
        int const before = text.GetLength();
        text.Append(copy);
        if (text.GetLength() == before)
            return false; // and is as it was
    }
    text.AssignPart(text, 3, 100);
    copy = text;
    return text.Reserve(5000, true) && text.GetLength() == 100 && copy.Compare(text) == 0;
}

bool UseStrings()
{
    bool succeeded = Grow("narrow ") & Grow(L"wide ");
    CVekString<wchar_t> text;
    text.AppendFormat(L"%s %d", L"formatted", 12);
    succeeded = text.GetLength() == 12 && succeeded;
    succeeded = VekCreateStrAtoW("one").GetLength() == 3 && succeeded;
    return VekCreateStrWtoA(L"two").GetLength() == 3 && succeeded;
}

bool UsePaths()
{
    CVekString<wchar_t> path(L"..\\file.txt"), relative;
    bool const absolute = VekMakePathAbsolute(path, CVekString<wchar_t>(L"C:\\dir\\sub")) && !path.IsEmpty();
    CVekSetCurrentDirectory const scope(L"C:\\");
    return VekGetRelativePathT(relative, L"C:\\a\\b", 16, L"C:\\a\\c\\d.txt", 0) && !relative.IsEmpty() && absolute;
}

template <class T>
bool Keeps(T const & value)
{
    VEK_VARIANT const variant(value);
    return static_cast<T const &>(variant) == value;
}

bool UseVariants()
{
    bool succeeded = Keeps(true) & Keeps('c') & Keeps(7) & Keeps(1.5F) & Keeps(2.5) & Keeps(7U);
    succeeded &= Keeps(CVekRGBA<unsigned char>(1, 2, 3, 4)) & Keeps(CVekRGBA<float>(1, 2, 3, 4));
    succeeded &= Keeps(CVekVector4D<int>(1, 2, 3, 4)) & Keeps(CVekVector4D<float>(1, 2, 3, 4));
    succeeded &= Keeps(CVekVector4D<double>(1, 2, 3, 4));
    CVekMatrix4x4<double> matrix;
    matrix(3, 3) = 5;
    VEK_VARIANT const matrices[] = {VEK_VARIANT(matrix), VEK_VARIANT(CVekMatrix4x4<float>())};
    succeeded &= static_cast<CVekMatrix4x4<double> const &>(matrices[0])(3, 3) == 5;
    VEK_VARIANT const texts[] = {VEK_VARIANT("narrow"), VEK_VARIANT(L"wide")};
    VEK_VARIANT const copy = texts[1];
    succeeded &= static_cast<CVekString<wchar_t> const &>(copy).GetLength() == 4;
    succeeded &= static_cast<CVekString<char> const &>(texts[0]).GetLength() == 6;
    VEK_VARIANT buffer(VEK_DT_BUFFER);
    unsigned char const bytes[100] = {};
    succeeded &= buffer.CopyBuffer(bytes, 100) && buffer.GetBufferSize() == 100;
    CVekMatrix<float> large;
    large.Create(20, 30);
    return large.GetElements() && succeeded;
}

class Handler final : public CVekEventHandler
{
public:
    bool OnEvent(CVekEventData *) override { return true; }
};

bool FireEvents()
{
    bool succeeded = Kernel().RegisterEvent(EVENT);
    CVekRef<CVekEventHandlerContainer> const container(new (std::nothrow) CVekEventHandlerContainer);
    for (int i = 0; i < 5 && container; ++i)
    {
        auto * const handler = new (std::nothrow) Handler;
        bool const added = handler && container->Add(handler) && Kernel().AddEventHandler(EVENT, handler);
        if (added)
            handler->SetContainer(container.Get());
        succeeded = added && succeeded;
    }
    succeeded = Kernel().FireEvent(EVENT, nullptr) && container && succeeded;
    if (container)
        container->RemoveAll();
    Kernel().UnregisterEvent(EVENT);
    return succeeded;
}

bool TrackProgress()
{
    CVekRef<IVekProgressController> const progress(Kernel().CreateProgressController());
    if (!progress)
        return false;
    for (int depth = 0; depth < 10; ++depth)
        progress->BeginTask(L"a task with a name", 50, 10, depth);
    progress->Progress(-1);
    for (int depth = 0; depth < 10; ++depth)
        progress->EndTask();
    return progress->IsCompleted();
}

class Command final : public CVekThreadCommand
{
public:
    void Execute() override { executed = true; }
    bool executed = false;
};

bool RunWorker()
{
    CVekRef<IVekThread> const thread(Kernel().CreateThread(L"worker", nullptr, false, 0, 0));
    if (!thread)
        return false;
    if (thread->Start() == 0xFFFFFFFF)
        return false; // a command would wait for another start
    auto * const command = new (std::nothrow) Command;
    bool succeeded = command != nullptr;
    if (command)
    {
        command->AddRef();
        Kernel().ExecuteThreadCommand(command, thread.Get());
        succeeded = command->executed;
    }
    thread->Suspend();
    thread->Resume();
    thread->Stop();
    if (command)
        while (command->Release() != 0 && !succeeded)
            ; // a command that was not run keeps the reference that its run gives back
    return succeeded;
}

bool MakeServices()
{
    CVekRef<IVekTimer> const timer(Kernel().CreateTimer());
    CVekRef<IVekRandomizer> const randomizer(Kernel().CreateRandomizer());
    CVekRef<IVekCPUUsage> const usage(Kernel().CreateCPUUsage());
    VekLogOutput(0, L"said %s", L"aloud");
    return timer && randomizer && usage;
}

} // namespace

std::vector<Scenario> const coreScenarios = {
    {"StartAndStop", StartAndStop, {L"VekLib", L"CVek", nullptr}},
    {"TrackMemory", TrackMemory, {nullptr}},
    {"UseStrings",
     UseStrings,
     {L"VekCreateStrAtoW --> Failed to allocate buffre", L"VekCreateStrWtoA --> Failed to allocate buffre"}},
    {"UsePaths", UsePaths, {nullptr}},
    {"UseVariants", UseVariants, {nullptr}},
    {"FireEvents", FireEvents, {nullptr}},
    {"TrackProgress", TrackProgress, {nullptr}},
    {"RunWorker", RunWorker, {nullptr}},
    {"MakeServices",
     MakeServices,
     {L"said aloud", L"CVekKernel::CreateCPUUsage --> Failed to create CPU usage interface"}},
};
