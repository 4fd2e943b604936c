/// @file
/// Export macros, the overload-group macro, and the forward declarations that the other headers share.
#ifndef VEK_EXPORT_H
#define VEK_EXPORT_H

#if defined(VEKLIB_STATIC)
#define VEK_API
#elif defined(_WIN32)
#if defined(VEKLIB_BUILD)
#define VEK_API __declspec(dllexport)
#else
#define VEK_API __declspec(dllimport)
#endif
#else
#define VEK_API
#endif

/// Linkage and calling convention of the three entry points, so that GetProcAddress finds them by their plain names.
#define VEK_ENTRY extern "C" VEK_API

/// Declares a group of virtual operations that share a name, each without its semicolon, in slot order.
/// The Itanium C++ ABI lays such a group out in the order of declaration, the Microsoft C++ ABI in reverse: the macro
/// declares it the right way round for either, so that both see the same vtable.
#define VEK_OVERLOADS(...) VEK_EXPAND(VEK_OVERLOADS_PICK(__VA_ARGS__, VEK_OV_LIST)(__VA_ARGS__))

/// @cond internal
#define VEK_EXPAND(x) x
#define VEK_OV_LIST                                                                                                    \
    VEK_OV24, VEK_OV23, VEK_OV22, VEK_OV21, VEK_OV20, VEK_OV19, VEK_OV18, VEK_OV17, VEK_OV16, VEK_OV15, VEK_OV14,      \
        VEK_OV13, VEK_OV12, VEK_OV11, VEK_OV10, VEK_OV9, VEK_OV8, VEK_OV7, VEK_OV6, VEK_OV5, VEK_OV4, VEK_OV3,         \
        VEK_OV2, VEK_OV1, 0
#define VEK_OVERLOADS_PICK(...) VEK_EXPAND(VEK_OV_PICK(__VA_ARGS__))
#define VEK_OV_PICK(a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, a18, a19, a20, a21,    \
                    a22, a23, a24, name, ...)                                                                          \
    name
#if defined(_MSC_VER)
#define VEK_OV_PAIR(first, rest) rest first;
#else
#define VEK_OV_PAIR(first, rest)                                                                                       \
    first;                                                                                                             \
    rest
#endif
#define VEK_OV1(a) a;
#define VEK_OV2(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV1(__VA_ARGS__)))
#define VEK_OV3(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV2(__VA_ARGS__)))
#define VEK_OV4(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV3(__VA_ARGS__)))
#define VEK_OV5(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV4(__VA_ARGS__)))
#define VEK_OV6(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV5(__VA_ARGS__)))
#define VEK_OV7(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV6(__VA_ARGS__)))
#define VEK_OV8(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV7(__VA_ARGS__)))
#define VEK_OV9(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV8(__VA_ARGS__)))
#define VEK_OV10(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV9(__VA_ARGS__)))
#define VEK_OV11(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV10(__VA_ARGS__)))
#define VEK_OV12(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV11(__VA_ARGS__)))
#define VEK_OV13(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV12(__VA_ARGS__)))
#define VEK_OV14(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV13(__VA_ARGS__)))
#define VEK_OV15(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV14(__VA_ARGS__)))
#define VEK_OV16(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV15(__VA_ARGS__)))
#define VEK_OV17(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV16(__VA_ARGS__)))
#define VEK_OV18(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV17(__VA_ARGS__)))
#define VEK_OV19(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV18(__VA_ARGS__)))
#define VEK_OV20(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV19(__VA_ARGS__)))
#define VEK_OV21(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV20(__VA_ARGS__)))
#define VEK_OV22(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV21(__VA_ARGS__)))
#define VEK_OV23(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV22(__VA_ARGS__)))
#define VEK_OV24(a, ...) VEK_OV_PAIR(a, VEK_EXPAND(VEK_OV23(__VA_ARGS__)))
/// @endcond

struct _GUID;
/// An event or value identifier of 16 bytes; include the platform's own header where one is made or read.
typedef struct _GUID GUID;
/// The C runtime's file record (FILE).
struct _iobuf;

class IVekObject;
class IVekKernel;
class IVekCatchLogOutput;
class IVekThread;
class IVekTimer;
class IVekIOStream;
class IVekFileIOStream;
class IVekMemoryIOStream;
class IVekCameraUIController;
class IVekProgressController;
class IVekLexer;
class IVekTokenizer;
class IVekRandomizer;
class IVekCPUUsage;
class IVekXMLManager;
class IVekXMLElement;
class IVekXMLDocument;
class IVekXMLParser;
class IVekXMLWriter;
class CVekThreadCommand;
class CVekEventHandler;
class CVekEventData;
class VEK_VARIANT;

template <class T>
class CVekString;
template <class T>
class CVekRGBA;
template <class T>
class CVekVector2D;
template <class T>
class CVekVector3D;
template <class T>
class CVekVector4D;
template <class T>
class CVekPlane;
template <class T>
class CVekBoundBox;
template <class T>
class CVekMatrix;
template <class T>
class CVekMatrix4x4;

#endif
