#include "VekLib.h"

#include "support/GuardHeap.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace
{

class Callback final : public CVekRefCounted<IVekProgressController::Callback>
{
public:
    unsigned int Release() override
    {
        if (controller)
            storedAtRelease = controller->GetCallback();
        return CVekRefCounted::Release();
    }
    bool OnProgress(double taskProgress, double finishedShare, wchar_t const * taskName, int param) override
    {
        wchar_t line[100];
        _snwprintf(line, std::size(line), L"%s %g/%g %d;", taskName, taskProgress, finishedShare, param);
        calls += line;
        if (auto const action = std::exchange(onProgress, nullptr)) // once
            action();
        return result;
    }
    std::wstring Take() { return std::exchange(calls, {}); }

    std::wstring calls;
    std::function<void()> onProgress;
    IVekProgressController * controller = nullptr; // to be asked
    IVekProgressController::Callback * storedAtRelease = nullptr;
    bool result = true;
};

class Progress : public testing::Test
{
protected:
    Progress() : controller(getVekLibKernel()->CreateProgressController()) { controller->SetCallback(&callback); }
    ~Progress() override { controller->Release(); }

    Callback callback;
    IVekProgressController * const controller;
};

} // namespace

TEST_F(Progress, ReportsEachChange)
{
    struct Row
    {
        char const * name;
        std::function<void(IVekProgressController &)> work;
        wchar_t const * calls;
        bool completed;
    };
    Row const rows[] = {
        {"negative amounts take the step",
         [](auto & p) { p.BeginTask(L"t", 100, 10, 0), p.Progress(-1), p.Progress(-0.5), p.Progress(-7); },
         L"t 0/0 0;t 10/0 0;t 20/0 0;t 30/0 0;", false},
        {"zero is no step", [](auto & p) { p.BeginTask(L"t", 100, 10, 0), p.Progress(0); }, L"t 0/0 0;t 0/0 0;", false},
        {"limited to 100", [](auto & p) { p.BeginTask(L"t", 100, 10, 0), p.Progress(70), p.Progress(50); },
         L"t 0/0 0;t 70/0 0;t 100/0 0;", false},
        {"a negative step goes back", [](auto & p) { p.BeginTask(L"t", 100, -10, 0), p.Progress(-1); },
         L"t 0/0 0;t -10/0 0;", false},
        {"nested",
         [](auto & p) { p.BeginTask(L"A", 100, 1, 7), p.BeginTask(L"B", 50, 1, 8), p.EndTask(), p.EndTask(); },
         L"A 0/0 0;B 0/0 0;B 100/0 0;A 100/50 0;", true},
        {"a part of a part",
         [](auto & p)
         {
             p.BeginTask(L"A", 80, 1, 0), p.BeginTask(L"B", 50, 1, 0), p.BeginTask(L"C", 25, 1, 0);
             p.EndTask(), p.EndTask(), p.Progress(5);
         },
         L"A 0/0 0;B 0/0 0;C 0/0 0;C 100/0 0;B 100/10 0;A 55/50 0;", false},
        {"kept: what an ended task adds is not limited at once",
         [](auto & p) { p.BeginTask(L"A", 100, 1, 0), p.BeginTask(L"B", 130, 1, 0), p.EndTask(), p.Progress(-200); },
         L"A 0/0 0;B 0/0 0;B 100/0 0;A 100/130 0;", false},
        {"a new run starts anew",
         [](auto & p) { p.BeginTask(L"A", 100, 1, 0), p.EndTask(), p.BeginTask(L"B", 100, 1, 0); },
         L"A 0/0 0;A 100/0 0;B 0/0 0;", false},
        {"the parameter is the controller's", [](auto & p) { CallSlot(&p, 13, -3), p.BeginTask(L"t", 1, 1, 9); },
         L"t 0/0 -3;", false},
        {"nothing to end", [](auto & p) { p.EndTask(), p.Progress(5); }, L"", false},
        {"no name", [](auto & p) { p.BeginTask(nullptr, 1, 1, 0); }, L" 0/0 0;", false},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        IVekProgressController * const fresh = getVekLibKernel()->CreateProgressController();
        fresh->SetCallback(&callback);
        row.work(*fresh);
        EXPECT_EQ(callback.Take(), row.calls);
        EXPECT_EQ(fresh->IsCompleted(), row.completed);
        EXPECT_FALSE(fresh->IsCancelled());
        fresh->Release();
    }
    EXPECT_EQ(callback.GetRefCount(), 2u);
}

TEST_F(Progress, CancelsByTheCallbackUntilTheNextRun)
{
    callback.result = false;
    controller->BeginTask(L"t", 100, 1, 0);
    EXPECT_TRUE(controller->IsCancelled());
    callback.result = true;
    controller->Progress(1);
    EXPECT_TRUE(controller->IsCancelled()) << "true does not take it back";
    controller->BeginTask(L"u", 100, 1, 0);
    controller->EndTask();
    controller->EndTask();
    EXPECT_TRUE(controller->IsCancelled() && controller->IsCompleted());
    controller->BeginTask(L"t", 100, 1, 0);
    EXPECT_FALSE(controller->IsCancelled() || controller->IsCompleted());
    controller->Cancel();
    controller->Completed();
    EXPECT_TRUE(controller->IsCancelled() && controller->IsCompleted());
}

TEST_F(Progress, HoldsItsCallback)
{
    controller->SetCallback(&callback);
    EXPECT_EQ(callback.GetRefCount(), 2u);
    Callback other;
    callback.controller = controller;
    controller->SetCallback(&other);
    EXPECT_EQ(callback.GetRefCount(), 1u);
    EXPECT_EQ(callback.storedAtRelease, &callback) << "kept: the new one is stored last";
    EXPECT_EQ(controller->GetCallback(), &other);
    controller->SetCallback(nullptr);
    EXPECT_EQ(other.GetRefCount(), 1u);
    controller->BeginTask(L"t", 1, 1, 1);
    EXPECT_EQ(other.calls, L"");
}

TEST_F(Progress, SurvivesWhatACallbackDoes)
{
    struct Row
    {
        char const * name;
        std::function<void()> action; // when the inner task's end is reported
        wchar_t const * calls;
    };
    Row const rows[] = {
        {"ends the task", [&] { controller->EndTask(); }, L"i 100/0 0;i 100/0 0;o 50/50 0;"},
        {"ends all tasks", [&] { controller->EndTask(), controller->EndTask(); }, L"i 100/0 0;i 100/0 0;o 100/50 0;"},
        {"begins another", [&] { controller->BeginTask(L"n", 10, 1, 0); }, L"i 100/0 0;n 0/0 0;n 50/50 0;"},
        {"takes itself away", [&] { controller->SetCallback(nullptr); }, L"i 100/0 0;"},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        controller->SetCallback(&callback);
        controller->BeginTask(L"o", 100, 1, 0);
        controller->BeginTask(L"i", 50, 1, 0);
        callback.Take();
        callback.onProgress = row.action;
        controller->EndTask();
        controller->Progress(0);
        EXPECT_EQ(callback.Take(), row.calls);
        controller->SetCallback(nullptr);
        for (int i = 0; i < 3; ++i)
            controller->EndTask();
        EXPECT_TRUE(controller->IsCompleted());
    }
}

TEST_F(Progress, BeginEndsWithItsScope)
{
    {
        CVekProgressBegin const begin(controller, L"t", 100, 5, 0);
        controller->Progress(-1);
        CVekProgressBegin const nothing(nullptr, L"t", 100, 5, 0);
    }
    EXPECT_EQ(callback.Take(), L"t 0/0 0;t 5/0 0;t 100/0 0;");
    EXPECT_TRUE(controller->IsCompleted());
    EXPECT_EQ(controller->GetRefCount(), 1u) << "it holds no reference";
}

TEST_F(Progress, EndsWhatItBeganWithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    controller->BeginTask(L"outer", 100, 1, 0);
    for (std::size_t failing = 1; failing < 4; ++failing)
    {
        VekGuard::FailFrom(failing);
        controller->BeginTask(L"inner", 50, 1, 0);
        VekGuard::FailReset();
        controller->Progress(1);
        controller->EndTask();
        EXPECT_FALSE(controller->IsCompleted()) << failing;
    }
    controller->EndTask();
    EXPECT_TRUE(controller->IsCompleted());
}
