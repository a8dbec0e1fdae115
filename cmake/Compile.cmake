# How every target of the project is compiled.
add_compile_options(-Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual)
# GCC 12 sees overlaps in std::string's own operator+ that aren't there (its bug 105651).
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(TYPEFORGE_WERROR)
    add_compile_options(-Werror)
endif()
# Hardened as Debian builds its own packages (dpkg-buildflags(1)); the sanitizers see to it in their builds.
if(NOT TYPEFORGE_SANITIZE)
    add_compile_options(-fstack-protector-strong $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()
include(CheckPIESupported)
check_pie_supported()
if(TYPEFORGE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_options(-Wno-maybe-uninitialized) # GCC 12 sees it in std::regex once that is instrumented
endif()
if(TYPEFORGE_FUZZ)
    # Without what would double the time of an execution: words to compare with are in the dictionaries, and bad pointers
    # are AddressSanitizer's.
    add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp,indirect-calls
        -fno-sanitize=null,alignment,object-size,vptr)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()
find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
