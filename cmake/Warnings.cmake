# Link privately with veklib_warnings to be held to the project's warnings.
option(VEKLIB_WERROR "Treat warnings as errors" ON)

add_library(veklib_warnings INTERFACE)
target_compile_options(veklib_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Woverloaded-virtual -Wimplicit-fallthrough
        # Interfaces deliberately have no virtual destructor; GCC says so where one is deleted through a final class.
        -Wno-non-virtual-dtor -Wno-delete-non-virtual-dtor
        # printf-like members read wide text; MinGW's checker knows the narrow rules only.
        -Wno-format
    >
    # Sanitizer code makes GCC guess wrong about uninitialised values: there warnings stay warnings.
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<BOOL:${VEKLIB_WERROR}>,$<NOT:$<BOOL:${VEKLIB_GUARD}>>>:-Werror>
)
