# Link privately with veklib_warnings to be held to the project's warnings.
option(VEKLIB_WERROR "Treat warnings as errors" ON)

add_library(veklib_warnings INTERFACE)
target_compile_options(veklib_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Woverloaded-virtual -Wnon-virtual-dtor -Wimplicit-fallthrough
        # printf-like members read wide text; MinGW's checker knows the narrow rules only.
        -Wno-format
    >
    # Sanitizer code makes GCC guess wrong about uninitialised values: there warnings stay warnings.
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<BOOL:${VEKLIB_WERROR}>,$<NOT:$<BOOL:${VEKLIB_GUARD}>>>:-Werror>
)
