// What compiled code asks for around exceptions and is in no Windows under that name.
extern "C"
{

    __declspec(dllimport) __declspec(noreturn) void __cdecl terminate();
    __declspec(dllimport) bool __cdecl __uncaught_exception();

    // Where an exception ends that leaves a function that promises none.
    __declspec(noreturn) void __cdecl __std_terminate()
    {
        terminate();
    }

    // More than one at a time is not told apart.
    int __cdecl __uncaught_exceptions()
    {
        return __uncaught_exception() ? 1 : 0;
    }

} // extern "C"
