#include "VekThread.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

namespace
{

std::wstring CurrentDirectory()
{
    wchar_t text[2000] = L"";
    GetCurrentDirectoryW(2000, text);
    return text;
}

} // namespace

TEST(SetCurrentDirectory, PutsTheEarlierOneBack)
{
    std::wstring const before = CurrentDirectory();
    wchar_t temporary[MAX_PATH + 1];
    GetTempPathW(MAX_PATH, temporary);
    {
        CVekSetCurrentDirectory const scope(temporary);
        std::wstring const inside = CurrentDirectory();
        EXPECT_NE(inside, before);
        {
            CVekSetCurrentDirectory const copy(scope);
            SetCurrentDirectoryW(L"C:\\");
        }
        EXPECT_EQ(CurrentDirectory(), before) << "a copy puts back the same";
        {
            CVekSetCurrentDirectory const nothing(nullptr);
            EXPECT_EQ(CurrentDirectory(), before);
            SetCurrentDirectoryW(temporary);
        }
        EXPECT_EQ(CurrentDirectory(), before) << "null only puts back";
        CVekSetCurrentDirectory const missing(L"Q:\\no\\such\\folder");
        EXPECT_EQ(CurrentDirectory(), before);
        SetCurrentDirectoryW(temporary);
    }
    EXPECT_EQ(CurrentDirectory(), before);
}

TEST(WaitCursor, ShowsForAScope)
{
    HCURSOR const arrow = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    SetCursor(arrow);
    for (int turn = 0; turn < 2; ++turn) // kept: destroying the system's shared cursor does it no harm
    {
        {
            CVekWaitCursor const scope;
            EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)));
            EXPECT_NE(GetCursor(), arrow);
        }
        EXPECT_EQ(GetCursor(), arrow);
    }
}
