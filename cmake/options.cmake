# Compiler settings shared by every target.
set(NORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined or thread")
option(NORVANE_BUILD_TESTS "Build the tests" ON)
option(NORVANE_BUILD_BENCH "Build the benchmarks" ON)

find_package(Threads REQUIRED)

add_library(norvane_options INTERFACE)
target_include_directories(norvane_options INTERFACE ${PROJECT_SOURCE_DIR})
target_link_libraries(norvane_options INTERFACE Threads::Threads)
# Contraction is off so that one order of operations gives the same bits with and without FMA hardware.
target_compile_options(norvane_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror -ffp-contract=off)
target_compile_definitions(norvane_options INTERFACE
  NORVANE_VERSION="${PROJECT_VERSION}")

if(NORVANE_SANITIZE)
  target_compile_options(norvane_options INTERFACE -fsanitize=${NORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(norvane_options INTERFACE -fsanitize=${NORVANE_SANITIZE})
  if(NORVANE_SANITIZE MATCHES "undefined")
    target_compile_options(norvane_options INTERFACE -fsanitize=float-cast-overflow)
  endif()
endif()

if(WIN32)
  # The module must load on a machine that has nothing of the compiler's run time. Without the time of linking the same
  # sources give the same bytes.
  target_link_options(norvane_options INTERFACE -static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp)
  target_compile_definitions(norvane_options INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
endif()
