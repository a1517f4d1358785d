# Hardening of everything that is built: guards on stack, calls and library functions, a random place in memory, and
# tables of addresses that are read-only once the program runs. script/release/check-hardening looks for them in the
# results.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

# The sanitizers bring their own guards and replace the same library functions.
function(kalivor_harden target)
  if(MSVC OR KALIVOR_SANITIZE OR KALIVOR_FUZZ)
    return()
  endif()
  target_compile_options(${target} INTERFACE -fstack-protector-strong)
  set(flags -fcf-protection)
  if(NOT WIN32)
    # Windows wants every page of the stack touched in turn anyway.
    list(APPEND flags -fstack-clash-protection)
  endif()
  foreach(flag IN LISTS flags)
    string(MAKE_C_IDENTIFIER "KALIVOR_HAS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
      target_compile_options(${target} INTERFACE ${flag})
    endif()
  endforeach()
  # The checked library functions exist in optimised builds only.
  string(TOUPPER "${CMAKE_BUILD_TYPE}" type)
  if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${type}}" MATCHES "-O[1-3gsz]")
    target_compile_options(${target} INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
  if(WIN32)
    # The guard and the checked functions are a library of their own there.
    target_link_options(${target} INTERFACE -fstack-protector-strong)
  endif()
  if(UNIX AND NOT APPLE)
    target_link_options(${target} INTERFACE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  endif()
endfunction()
