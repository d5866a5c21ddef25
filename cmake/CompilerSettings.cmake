# Two targets that everything links: the language and instrumentation, and the warnings.

add_library(zelk_options INTERFACE)
target_compile_features(zelk_options INTERFACE cxx_std_20 c_std_11)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(ZELK_SANITIZE)
  target_compile_options(zelk_options INTERFACE
    -fsanitize=${ZELK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
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
