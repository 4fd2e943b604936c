#include "core/MemorySystem.h"

#include "VekLib.h"
#include "core/ProcessState.h"

#include "support/GuardHeap.h"
#include "support/WarmUp.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

static_assert(sizeof(CVekMemoryBlock) == (sizeof(void *) == 4 ? 152 : 176));

namespace
{

constexpr char const * NO_FILE = nullptr;
constexpr wchar_t const * NO_WIDE_FILE = nullptr;
unsigned int g_firstNumber = 99;

CVekMemorySystem & System()
{
    return *CVekMemorySystem::Get();
}

CVekMemoryBlock const & RecordOf(unsigned char const * data)
{
    return reinterpret_cast<CVekMemoryBlock const *>(data)[-1];
}

// Before any test: the very first tracked block of the process.
VekTest::WarmUp const warmUp(
    []
    {
        unsigned char * const first = VekAllocMemory(1, NO_FILE, 0);
        g_firstNumber = RecordOf(first).m_number;
        VekDeallocMemory(first, NO_FILE, 0);
    });

unsigned int BlocksInBuckets()
{
    unsigned int count = 0;
    for (unsigned int i = 0; i < CVekMemorySystem::BUCKET_COUNT; ++i)
    {
        auto const & bucket = System().GetBucket(i);
        count += bucket.GetCount();
        for (CVekMemoryBlock const * block = bucket.GetHead(); block; block = block->GetNext())
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block->m_data) & 0xFFFF, i);
    }
    return count;
}

int g_breaks;

LONG CALLBACK StepOverBreakpoint(EXCEPTION_POINTERS * pointers)
{
    if (pointers->ExceptionRecord->ExceptionCode != EXCEPTION_BREAKPOINT)
        return EXCEPTION_CONTINUE_SEARCH;
    ++g_breaks;
#ifdef _WIN64
    auto & at = pointers->ContextRecord->Rip;
#else
    auto & at = pointers->ContextRecord->Eip;
#endif
    if (*reinterpret_cast<unsigned char const *>(at) == 0xCC)
        ++at;
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

TEST(MemorySystem, CountsLiveBlocks)
{
    EXPECT_EQ(g_firstNumber, 0u);
    unsigned int const number = System().GetNextNumber();
    ASSERT_EQ(System().GetCurrentBlocks(), 0u);
    // Earlier tests have left their peaks: reach them first.
    unsigned char * const ground = VekAllocMemory(System().GetPeakBytes(), NO_FILE, 0);
    std::vector<unsigned char *> blocks;
    while (System().GetCurrentBlocks() < System().GetPeakBlocks())
        blocks.push_back(VekAllocMemory(0, NO_FILE, 0));
    unsigned int const bytes = System().GetCurrentBytes();
    unsigned int const count = System().GetCurrentBlocks();

    unsigned char * const ten = VekAllocMemory(10, L"file", 1);
    unsigned char * const twenty = VekAllocMemory(20, "file", 2);
    EXPECT_TRUE(VekDeallocMemory(ten, L"other", 3));
    EXPECT_EQ(System().GetCurrentBytes() - bytes, 20u);
    EXPECT_EQ(System().GetPeakBytes() - bytes, 30u);
    EXPECT_EQ(System().GetCurrentBlocks() - count, 1u);
    EXPECT_EQ(System().GetPeakBlocks() - count, 2u);
    EXPECT_EQ(RecordOf(twenty).m_number, System().GetNextNumber() - 1);
    EXPECT_EQ(System().GetNextNumber() - number, blocks.size() + 3);

    EXPECT_TRUE(VekDeallocMemory(twenty, NO_FILE, 0));
    EXPECT_TRUE(VekDeallocMemory(ground, NO_FILE, 0));
    for (unsigned char * const block : blocks)
        EXPECT_TRUE(VekDeallocMemory(block, NO_FILE, 0));
    EXPECT_TRUE(System().GetCurrentBytes() == 0 && System().GetCurrentBlocks() == 0);
}

TEST(MemorySystem, RecordsWhereABlockWasAskedFor)
{
    std::wstring const fits(63, L'n');
    std::wstring const tooLong(100, L'n');
    std::pair<wchar_t const *, wchar_t const *> const rows[] = {
        // clang-format off
        {L"Scene.cpp", L"Scene.cpp"}, {L"D:\\work/core\\Scene.cpp", L"Scene.cpp"}, {L"D:Scene.cpp", L"Scene.cpp"},
        {L"core/", L""}, {L"", L""}, {L"D:/a/folder/of/some/length/F8.h", L"F8.h"}, {L"a/Length8", L"Length8"},
        {fits.c_str(), fits.c_str()}, {tooLong.c_str(), fits.c_str()},
        // clang-format on
    };
    for (auto const & [file, expected] : rows)
    {
        alignas(16) wchar_t moved[128]; // a name may begin anywhere within what is read at a time
        unsigned char * wide = nullptr;
        for (std::size_t i = 0; i <= 16; ++i)
        {
            VekDeallocMemory(wide, NO_FILE, 0);
            std::fill_n(moved, i, L'/');
            wide = VekAllocMemory(7, std::wcscpy(moved + i, file), -5);
            ASSERT_STREQ(RecordOf(wide).m_fileName, expected) << i;
        }
        unsigned char * const narrow = VekAllocMemory(7, VekCreateStrWtoA(file), 12);
        EXPECT_STREQ(RecordOf(wide).m_fileName, expected);
        EXPECT_STREQ(RecordOf(narrow).m_fileName, expected);
        EXPECT_TRUE(RecordOf(wide).m_line == -5 && RecordOf(narrow).m_line == 12);
        EXPECT_TRUE(RecordOf(narrow).m_size == 7 && RecordOf(narrow).m_data == narrow);
        VekDeallocMemory(wide, NO_FILE, 0);
        VekDeallocMemory(narrow, NO_FILE, 0);
    }
    for (unsigned char * const block : {VekAllocMemory(1, NO_FILE, 0), VekAllocMemory(1, NO_WIDE_FILE, 0)})
    {
        EXPECT_STREQ(RecordOf(block).m_fileName, L"Unknown File");
        VekDeallocMemory(block, NO_FILE, 0);
    }
    unsigned char * const block = VekAllocMemory(1, "\xE9", 0);
    EXPECT_STREQ(RecordOf(block).m_fileName, L"\xFFE9");
    VekDeallocMemory(block, NO_FILE, 0);
}

TEST(MemorySystem, FindsABlockAgain)
{
    struct Live
    {
        unsigned char * data;
        unsigned int size;
        unsigned char mark;
    };
    std::vector<Live> live;
    std::mt19937 random(3);
    std::size_t const most = VekGuard::Active ? 1500 : 60000;
    for (std::size_t turn = 0; turn < most * 5; ++turn)
    {
        // Up, down again, and up and down by chance.
        bool const adds = turn < most ? true : turn < most * 2 ? random() % 8 == 0 : random() % 2 == 0;
        if (live.size() < most && adds)
        {
            unsigned int const size = random() % 64 ? random() % 300 : 7900 + random() % 300; // around the pool's limit
            // On the guard heap the allocation behind the block's own fails, if there is one: then there is no block.
            bool const fails = random() % 3 == 0;
            if (fails)
                VekGuard::FailAllocation(2);
            unsigned char * const data = VekAllocMemory(size, __FILE__, __LINE__);
            VekGuard::FailReset();
            if (VekGuard::Active && fails && !data)
                continue;
            ASSERT_NE(data, nullptr);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(data) % (2 * sizeof(void *)), 0u);
            live.push_back({data, size, static_cast<unsigned char>(random())});
            std::fill_n(data, size, live.back().mark);
        }
        else if (!live.empty())
        {
            std::swap(live[random() % live.size()], live.back());
            Live const one = live.back();
            live.pop_back();
            for (unsigned int i = 0; i < one.size; ++i)
                ASSERT_EQ(one.data[i], one.mark);
            ASSERT_TRUE(VekDeallocMemory(one.data, __FILE__, __LINE__));
        }
    }
    EXPECT_EQ(BlocksInBuckets(), live.size());
    for (Live const & one : live)
        EXPECT_TRUE(VekDeallocMemory(one.data, NO_FILE, 0));
    EXPECT_EQ(BlocksInBuckets(), 0u);
}

#ifndef VEKLIB_GUARD // where such pointers end the process
TEST(MemorySystem, LeavesAloneWhatIsNoBlock)
{
    CVekString<char> const text("its block is the pool's, but no tracked one");
    char const * const characters = text;
    unsigned char * const first = VekAllocMemory(500, NO_FILE, 0);
    unsigned char * const second = VekAllocMemory(500, NO_FILE, 0);
    std::fill_n(first, 500, static_cast<unsigned char>(7));
    // What a block holds is not taken for a record, even if it is a copy of one that names the place behind it.
    CVekMemoryBlock copy = RecordOf(first);
    copy.m_data = first + 8 + sizeof copy;
    std::memcpy(first + 8, &copy, sizeof copy);
    EXPECT_TRUE(VekDeallocMemory(VekAllocMemory(500, NO_FILE, 0), NO_FILE, 0) && VekDeallocMemory(second, NO_FILE, 0));
    unsigned int const blocks = System().GetCurrentBlocks();
    void const * const pointers[] = {second, second + 8, first + 1, first + 8 + sizeof copy, first - 8, characters};
    for (void const * const pointer : pointers)
        EXPECT_FALSE(VekDeallocMemory(const_cast<void *>(pointer), NO_FILE, 0)) << pointer;
    EXPECT_EQ(System().GetCurrentBlocks(), blocks);
    EXPECT_EQ(BlocksInBuckets(), blocks);
    EXPECT_STREQ(characters, "its block is the pool's, but no tracked one");
    EXPECT_TRUE(VekDeallocMemory(first, NO_FILE, 0));
}
#endif

TEST(MemorySystem, FreesOtherBlocksToo)
{
    EXPECT_FALSE(VekDeallocMemory(std::malloc(20), NO_FILE, 0));
    EXPECT_FALSE(VekDeallocMemory(nullptr, L"", 0));
    unsigned int const number = System().GetNextNumber();
    if (sizeof(void *) == 4)
    {
        EXPECT_EQ(VekAllocMemory(0xFFFFFFF0u, NO_FILE, 0), nullptr) << "the record would not fit in front of it";
    }
    vek::g_trackingSuspended = true;
    unsigned char * const plain = VekAllocMemory(20, NO_FILE, 0);
    vek::g_trackingSuspended = false;
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(System().GetNextNumber(), number);
    EXPECT_FALSE(VekDeallocMemory(plain, NO_FILE, 0));
    EXPECT_EQ(System().GetCurrentBlocks(), 0u);
}

TEST(MemorySystem, StopsInTheDebugger)
{
    void * const handler = AddVectoredExceptionHandler(1, StepOverBreakpoint);
    g_breaks = 0;
    unsigned int const first = System().GetNextNumber();
    getVekLibKernel()->SetBreakOnAllocation(first + 5);
    unsigned char * blocks[10];
    for (int i = 0; i < 10; ++i)
    {
        blocks[i] = VekAllocMemory(8, __FILE__, i);
        EXPECT_EQ(g_breaks, i < 5 ? 0 : 1) << i;
        EXPECT_EQ(RecordOf(blocks[i]).m_number, first + static_cast<unsigned int>(i));
    }
    getVekLibKernel()->SetBreakOnAllocation(0);
    for (unsigned char * const block : blocks)
        EXPECT_TRUE(VekDeallocMemory(block, __FILE__, 0));
    RemoveVectoredExceptionHandler(handler);
}
