// 32-bit ucrtbase.dll has no functions of float: Microsoft's headers, too, call those of double.
#define FUNCTION(name)                                                                                                 \
    __declspec(dllimport) double __cdecl name(double);                                                                 \
    float __cdecl name##f(float x)                                                                                     \
    {                                                                                                                  \
        return static_cast<float>(name(static_cast<double>(x)));                                                       \
    }
#define FUNCTION2(name)                                                                                                \
    __declspec(dllimport) double __cdecl name(double, double);                                                         \
    float __cdecl name##f(float x, float y)                                                                            \
    {                                                                                                                  \
        return static_cast<float>(name(static_cast<double>(x), static_cast<double>(y)));                               \
    }

extern "C"
{

    __declspec(dllimport) double __cdecl ldexp(double, int);
    float __cdecl ldexpf(float x, int exponent) // 64-bit ucrtbase.dll has none either
    {
        return static_cast<float>(ldexp(static_cast<double>(x), exponent));
    }

#ifdef _M_IX86
    FUNCTION(acos)
    FUNCTION(asin)
    FUNCTION(atan)
    FUNCTION(ceil)
    FUNCTION(cos)
    FUNCTION(cosh)
    FUNCTION(exp)
    FUNCTION(floor)
    FUNCTION(log)
    FUNCTION(log10)
    FUNCTION(sin)
    FUNCTION(sinh)
    FUNCTION(sqrt)
    FUNCTION(tan)
    FUNCTION(tanh)
    FUNCTION2(atan2)
    FUNCTION2(fmod)
    FUNCTION2(pow)
#endif

} // extern "C"
