# Compiler and linker options of all targets.
add_compile_options(-Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual)
# GCC 12 reports false overlaps in std::string's operator+ (GCC bug 105651).
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(TYPEFORGE_WERROR)
    add_compile_options(-Werror)
endif()
# Hardened as Debian builds its own packages (dpkg-buildflags(1)); sanitizer builds have their own checks.
if(NOT TYPEFORGE_SANITIZE)
    add_compile_options(-fstack-protector-strong $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()
include(CheckPIESupported)
check_pie_supported()
if(TYPEFORGE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>) # false positives of GCC 12 in instrumented std::regex
endif()
if(TYPEFORGE_FUZZ)
    # Leaves out instrumentation that doubles the time of an execution: the dictionaries provide words to compare with,
    # and AddressSanitizer finds invalid pointers.
    add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp,indirect-calls
        -fno-sanitize=null,alignment,object-size,vptr)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()
find_program(CCACHE ccache)
if(CCACHE)
    # Without this, ccache caches no unit that has a precompiled header.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

# precompile(TARGET SCOPE HEADER...): precompiles headers of other projects, which take most of the time to compile a
# small unit. The engine is left out, so that its units stay known to include what they use. In precompiled headers GCC
# 12 also reports the overlaps and sizes of bug 105651 at their places in the standard library.
function(precompile target scope)
    target_precompile_headers(${target} ${scope} ${ARGN})
    foreach(warning array-bounds stringop-overflow stringop-overread)
        target_compile_options(${target} ${scope} $<$<CXX_COMPILER_ID:GNU>:-Wno-${warning}>)
    endforeach()
endfunction()
