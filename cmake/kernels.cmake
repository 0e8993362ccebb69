# Files named *_avx2.cpp and *_avx512.cpp are compiled for these instructions and run on processors that have them
# (core/kernel.h). Neither option lets the compiler fuse operations.
#
# The stack of 64-bit Windows is aligned to 16 bytes only, and GCC's vectors of 32 do not know (GCC bug 54412): the
# assembler makes every move one that may be unaligned, or there are no such kernels.
set(NORVANE_KERNEL_OPTIONS "")
set(NORVANE_HAS_KERNELS ON)
if(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  set(NORVANE_HAS_KERNELS OFF)
elseif(WIN32)
  include(CheckCXXCompilerFlag)
  check_cxx_compiler_flag("-Wa,-muse-unaligned-vector-move" NORVANE_UNALIGNED_MOVES)
  if(NORVANE_UNALIGNED_MOVES)
    set(NORVANE_KERNEL_OPTIONS "-Wa,-muse-unaligned-vector-move")
  else()
    set(NORVANE_HAS_KERNELS OFF)
  endif()
endif()
if(NOT NORVANE_HAS_KERNELS)
  target_compile_definitions(norvane_options INTERFACE NORVANE_NO_KERNELS)
endif()

function(norvane_kernel_files)
  if(NOT NORVANE_HAS_KERNELS)
    return()
  endif()
  foreach(source IN LISTS ARGN)
    if(source MATCHES "_avx2\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mavx2;${NORVANE_KERNEL_OPTIONS}")
    elseif(source MATCHES "_avx512\\.cpp$")
      set_source_files_properties(${source} PROPERTIES
        COMPILE_OPTIONS "-mavx512f;-mavx512dq;-fno-math-errno;${NORVANE_KERNEL_OPTIONS}")
    endif()
  endforeach()
endfunction()
