// Work to be done once before the first test, so that what the library and the runtime keep for good is not mistaken
// for a leak of the test that happens to come first. At namespace scope of a test file:
//     VekTest::WarmUp const warmUp([] { ... });
#pragma once

namespace VekTest
{

class WarmUp
{
public:
    explicit WarmUp(void (*work)()) noexcept : m_work(work), m_next(s_first) { s_first = this; }
    WarmUp(WarmUp const &) = delete;
    WarmUp & operator=(WarmUp const &) = delete;

    static void RunAll()
    {
        for (WarmUp const * at = s_first; at; at = at->m_next)
            at->m_work();
    }

private:
    void (*m_work)();
    WarmUp const * m_next;
    static inline WarmUp const * s_first = nullptr;
};

} // namespace VekTest
