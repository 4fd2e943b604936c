// Every subsystem with its n-th call of the system failing, for n = 1, 2, 3, ..., then with that one and all later
// ones.

#include "Console.h"
#include "oom/Scenarios.h"
#include "support/Files.h"
#include "support/GuardHeap.h"
#include "support/Handles.h"
#include "support/SystemCalls.h"
#include "xml/XmlSet.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <string>

namespace
{

// A file that can't be deleted stays; there are only so many names for others beside it.
void RemoveLeftovers()
{
    WIN32_FIND_DATAW found;
    HANDLE const search = FindFirstFileW(TemporaryPath(L"*.new").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do
        DeleteFileW(TemporaryPath(found.cFileName).c_str());
    while (FindNextFileW(search, &found));
    FindClose(search);
}

bool SaveOver()
{
    CVekRef<IVekXMLDocument> const document{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()};
    CVekRef<CVekXMLElement> const root{new CVekXMLElement};
    root->SetName(L"root");
    document->SetRootElement(root.Get());
    return VekSaveXMLDocument(TemporaryPath(L"saved.xml").c_str(), document.Get());
}

bool ReadAFile()
{
    return VekLoadXMLDocument(TemporaryPath(L"saved.xml").c_str()) != nullptr;
}

// As `vek xml set` does on a drive that may fail, or be gone, at any moment.
bool EditAFile()
{
    static int number = 0;
    tool::EditRequest request;
    request.path = request.target = TemporaryPath(L"saved.xml");
    request.edits = {{tool::XmlEdit::Kind::Set, L"", L"a", std::to_wstring(++number)}};
    try
    {
        return tool::RunXmlEdits(request) == tool::EXIT_DONE;
    }
    catch (std::bad_alloc const &)
    {
        return false;
    }
}

bool UseLocks()
{
    CVekMutex mutex;
    CVekSemaphore semaphore(1, 1);
    CVekSignal signal;
    bool const isSet = signal.SetSignal();
    CVekSyncObject * const objects[] = {&mutex, &semaphore};
    bool const locked = mutex.Lock() && semaphore.Lock() && signal.Lock();
    return objects[0] && isSet && locked && semaphore.Unlock() && mutex.Unlock();
}

std::vector<Scenario> AllScenarios()
{
    std::vector<Scenario> all = {{"SaveOver", SaveOver, {}},
                                 {"ReadAFile", ReadAFile, {}},
                                 {"EditAFile", EditAFile, {}},
                                 {"UseLocks", UseLocks, {}}};
    for (auto const & scenarios : {coreScenarios, dataScenarios, xmlScenarios})
        all.insert(all.end(), scenarios.begin(), scenarios.end());
    return all;
}

// Threads that end give theirs back a little later.
bool HandlesComeDownTo(int count)
{
    for (int i = 0; i < 200 && CountHandles() > count; ++i)
        Sleep(10);
    return CountHandles() <= count;
}

class FailingSystem : public testing::TestWithParam<Scenario>
{
};

// Whether the result must tell.
void FailEachCall(bool (*run)(), void (*fail)(std::size_t), bool mustTell)
{
    for (std::size_t n = 1;; ++n)
    {
        std::size_t const blocks = VekGuard::LiveBlocks();
        int const handles = CountHandles();
        fail(n);
        bool const succeeded = run();
        char const * const name = VekTest::SystemReset();
        if (!name)
            return;
        EXPECT_TRUE(ReadAFile()) << "the old file is lost after " << name;
        RemoveLeftovers();
        // What is closed last may have been written all the same.
        EXPECT_TRUE(!succeeded || !mustTell || std::strncmp(name, "fclose", 6) == 0)
            << name << " is not told, call " << n;
        ASSERT_TRUE(run()) << "not usable after " << name << ", call " << n;
        ASSERT_EQ(VekGuard::LiveBlocks(), blocks) << "leak after " << name << ", call " << n;
        ASSERT_TRUE(HandlesComeDownTo(handles)) << "leak of a handle after " << name << ", call " << n;
    }
}

TEST_P(FailingSystem, LeavesTheLibraryUsable)
{
    CVekLibrary const library;
    ASSERT_TRUE(SaveOver() && GetParam().run());
    bool const isOfFiles = GetParam().run == SaveOver || GetParam().run == ReadAFile || GetParam().run == EditAFile;
    FailEachCall(GetParam().run, VekTest::FailSystemCall, false);
    FailEachCall(GetParam().run, VekTest::FailSystemFrom, isOfFiles);
    isSound = true; // other bytes may say the same
}

INSTANTIATE_TEST_SUITE_P(All, FailingSystem, testing::ValuesIn(AllScenarios()),
                         [](auto const & scenario) { return std::string(scenario.param.name); });

} // namespace
