# Two targets that everything links: the language, hardening and instrumentation; and the warnings.

add_library(zelk_options INTERFACE)
target_compile_features(zelk_options INTERFACE cxx_std_20 c_std_11)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

include(CheckPIESupported)
check_pie_supported()

# An attacker who finds a memory error must not be able to use it: the program ends instead.
target_compile_definitions(zelk_options INTERFACE _GLIBCXX_ASSERTIONS)
if(NOT ZELK_SANITIZE)
  target_compile_options(zelk_options INTERFACE
    -fstack-protector-strong
    -fstack-clash-protection
    $<$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>:-fcf-protection>
    # It works in optimised code only. A distribution may have set another level.
    "$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
target_link_options(zelk_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)

if(ZELK_SANITIZE)
  target_compile_options(zelk_options INTERFACE
    -fsanitize=${ZELK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # The checks of undefined behaviour are for the product: in tests they cost a third of the time
    # to compile.
    $<$<BOOL:$<TARGET_PROPERTY:ZELK_IS_TEST>>:-fno-sanitize=undefined>)
  target_link_options(zelk_options INTERFACE -fsanitize=${ZELK_SANITIZE})
endif()
if(ZELK_FUZZ)
  target_compile_options(zelk_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(zelk_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(ZELK_COVERAGE)
  target_compile_options(zelk_options INTERFACE --coverage -O0)
  target_link_options(zelk_options INTERFACE --coverage)
endif()

add_library(zelk_warnings INTERFACE)
target_compile_options(zelk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  $<$<BOOL:${ZELK_WERROR}>:-Werror>)
