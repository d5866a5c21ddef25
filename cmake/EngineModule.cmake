# Engines in shared objects of their own.
#
#   add_engine_module(<engine> <source>)
#
# makes tal-<engine>.so in the folder of libtal.so from the static library tal_<engine> and <source>,
# which has the module's entry (tal/module.h).

# The tag is the same only if library and module are built with the same headers and compiler.
set(hashes "")
foreach(header credentials.h engine.h module.h status.h)
  set(header ${PROJECT_SOURCE_DIR}/tal/${header})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
  file(SHA256 ${header} hash)
  string(APPEND hashes ${hash})
endforeach()
string(SHA256 hash "${hashes} ${ZELK_SANITIZE}")
string(SUBSTRING ${hash} 0 16 hash)
set(TAL_ABI_TAG "${PROJECT_VERSION} ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} ${hash}")

# Gives the ABI tag to one source only, so that a new tag makes nothing else compile again.
function(use_abi_tag source)
  set_property(SOURCE ${source} APPEND PROPERTY COMPILE_DEFINITIONS "TAL_ABI_TAG=\"${TAL_ABI_TAG}\"")
endfunction()

function(add_engine_module engine source)
  set(map ${PROJECT_SOURCE_DIR}/tal/module.map)
  set(target tal_${engine}_module)
  add_library(${target} MODULE ${source})
  set_target_properties(${target} PROPERTIES
    PREFIX "" OUTPUT_NAME tal-${engine} LINK_DEPENDS ${map})
  use_abi_tag(${source})
  target_compile_options(${target} PRIVATE -fvisibility=default)
  target_link_libraries(${target} PRIVATE tal_${engine} zelk_options zelk_warnings)
  target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,--no-undefined-version)
  install(TARGETS ${target} LIBRARY DESTINATION lib/zelk)
endfunction()
