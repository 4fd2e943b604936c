/// @file
/// Export macros, the overload-group macro, and the forward declarations that the other headers share.
///
/// @code
/// // Enough to name the library's types where none of them is used.
/// struct SceneWindow
/// {
///     IVekXMLDocument * document;
///     CVekThreadCommand * loading;
/// };
/// @endcode
#ifndef VEK_EXPORT_H
#define VEK_EXPORT_H

/// What a host imports. Names and layouts are those of one C++ ABI: objects of such classes, and of a host's classes
/// that are derived from them, are only for a library of the host's own. Interfaces are for both.
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

/// What becomes part of the host, and is exported for hosts that were compiled before it did.
#if defined(VEKLIB_BUILD)
#define VEK_API_INLINE VEK_API
#elif defined(__GNUC__)
#define VEK_API_INLINE __attribute__((always_inline)) inline
#else
#define VEK_API_INLINE inline
#endif

/// Linkage and calling convention of the entry points, so that GetProcAddress finds them by their plain names.
#define VEK_ENTRY extern "C" VEK_API

/// @cond internal
/// Declare a group of virtual operations that share a name, 2, 3 or 21 of them, each without its semicolon, in slot
/// order. The Itanium C++ ABI lays such a group out in the order of declaration, the Microsoft C++ ABI in reverse: the
/// macros declare it the right way round for either, so that both see the same vtable.
// clang-format off
#if defined(_MSC_VER)
#define VEK_OVERLOADS2(a, b) b; a;
#define VEK_OVERLOADS3(a, b, c) c; b; a;
#define VEK_OVERLOADS21(a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, \
                        a12, a13, a14, a15, a16, a17, a18, a19, a20, a21) \
    a21; a20; a19; a18; a17; a16; a15; a14; a13; a12; a11; \
    a10; a9; a8; a7; a6; a5; a4; a3; a2; a1;
#else
#define VEK_OVERLOADS2(a, b) a; b;
#define VEK_OVERLOADS3(a, b, c) a; b; c;
#define VEK_OVERLOADS21(a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, \
                        a12, a13, a14, a15, a16, a17, a18, a19, a20, a21) \
    a1; a2; a3; a4; a5; a6; a7; a8; a9; a10; a11; \
    a12; a13; a14; a15; a16; a17; a18; a19; a20; a21;
#endif
// clang-format on

/// Around what a header declares. A host's compiler would warn of members and bases of exported classes that it makes
/// the code of itself.
#if defined(_MSC_VER)
#define VEK_HEADER_BEGIN __pragma(warning(push)) __pragma(warning(disable : 4251 4275))
#define VEK_HEADER_END __pragma(warning(pop))
#else
#define VEK_HEADER_BEGIN
#define VEK_HEADER_END
#endif
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
