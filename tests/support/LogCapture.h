// Collects the library's messages for the length of a scope:
//     LogCapture log;
//     EXPECT_FALSE(stream->Open(nullptr, 0, 0));
//     EXPECT_EQ(log.Take(), L"CVekFileIOStream::Open --> Filename is NULL");
#pragma once

#include "VekLib.h"

#include <mutex>
#include <string>
#include <vector>

class LogCapture
{
public:
    LogCapture() { getVekLibKernel()->AddCatchLogOutput(&m_catcher); }
    ~LogCapture() { getVekLibKernel()->RemoveCatchLogOutput(&m_catcher); }
    LogCapture(LogCapture const &) = delete;
    LogCapture & operator=(LogCapture const &) = delete;

    // The messages so far, each without the one newline that the library appends.
    std::vector<std::wstring> Lines() const
    {
        std::lock_guard const lock(m_catcher.mutex);
        return m_catcher.lines;
    }
    // The same in one text, with a newline between two messages.
    std::wstring Text() const { return Joined(Lines()); }
    // As Text, and forgets them.
    std::wstring Take()
    {
        std::vector<std::wstring> taken;
        {
            std::lock_guard const lock(m_catcher.mutex);
            taken.swap(m_catcher.lines);
        }
        return Joined(taken);
    }
    // What arrived wrongly: a message without newline, or with a level that is not 0. Empty when all is well.
    std::wstring Oddities() const
    {
        std::lock_guard const lock(m_catcher.mutex);
        return m_catcher.oddities;
    }
    void Clear() { Take(); }

private:
    // Lives within the capture, whatever its count says: the last Deinit and the capture both release it.
    struct Catcher final : IVekCatchLogOutput
    {
        unsigned int AddRef() override { return ++count; }
        unsigned int Release() override { return --count; }
        unsigned int GetRefCount() const override { return count; }
        void OnLogOutput(int level, wchar_t const * text) override
        {
            std::wstring line = text;
            std::lock_guard const lock(mutex);
            if (level != 0)
                oddities += L"level " + std::to_wstring(level) + L": " + line;
            if (line.empty() || line.back() != L'\n')
                oddities += L"no newline: " + line;
            else
                line.pop_back();
            lines.push_back(std::move(line));
        }

        unsigned int count = 1;
        mutable std::mutex mutex;
        std::vector<std::wstring> lines;
        std::wstring oddities;
    };

    static std::wstring Joined(std::vector<std::wstring> const & lines)
    {
        std::wstring text;
        for (std::size_t i = 0; i < lines.size(); ++i)
        {
            if (i != 0)
                text += L'\n';
            text += lines[i];
        }
        return text;
    }

    Catcher m_catcher;
};
