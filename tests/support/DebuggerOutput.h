// Collects what the program sends to the debugger for the length of a scope, by handling the exception through which
// the system delivers it. For one thread at a time.
#pragma once

#include <windows.h>

#include <string>

class DebuggerOutput
{
public:
    DebuggerOutput() : m_handler(AddVectoredExceptionHandler(1, Receive)) { s_text.clear(); }
    ~DebuggerOutput() { RemoveVectoredExceptionHandler(m_handler); }
    DebuggerOutput(DebuggerOutput const &) = delete;
    DebuggerOutput & operator=(DebuggerOutput const &) = delete;

    static std::wstring Take()
    {
        std::wstring text;
        text.swap(s_text);
        return text;
    }

private:
    static LONG CALLBACK Receive(EXCEPTION_POINTERS * pointers)
    {
        // Older systems narrow the text first.
        constexpr DWORD narrowPrint = 0x40010006, widePrint = 0x4001000A;
        EXCEPTION_RECORD const & record = *pointers->ExceptionRecord;
        if (record.NumberParameters < 2 || (record.ExceptionCode != narrowPrint && record.ExceptionCode != widePrint))
            return EXCEPTION_CONTINUE_SEARCH;
        if (record.ExceptionCode == widePrint)
            s_text += reinterpret_cast<wchar_t const *>(record.ExceptionInformation[1]);
        else
            for (char const * at = reinterpret_cast<char const *>(record.ExceptionInformation[1]); *at; ++at)
                s_text += static_cast<unsigned char>(*at);
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline std::wstring s_text;
    void * m_handler;
};
