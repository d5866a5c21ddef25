# Engines in shared objects of their own.
#
#   add_engine_module(<engine> <source>)
#
# makes tal-<engine>.so beside libtal.so of the static library tal_<engine> and <source>, which has
# the module's entry (tal/module.h).

# C++ objects pass between libtal.so and a module, so that both must be built alike: with the same
# headers and the same compiler.
set(hashes "")
foreach(header connect.h engine.h failure.h module.h status.h)
  set(header ${PROJECT_SOURCE_DIR}/tal/${header})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
  file(SHA256 ${header} hash)
  string(APPEND hashes ${hash})
endforeach()
string(SHA256 hash "${hashes} ${ZELK_SANITIZE}")
string(SUBSTRING ${hash} 0 16 hash)
add_library(tal_module_interface INTERFACE)
target_compile_definitions(tal_module_interface INTERFACE
  TAL_MODULE_INTERFACE="${PROJECT_VERSION} ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} ${hash}")

function(add_engine_module engine source)
  set(map ${PROJECT_SOURCE_DIR}/tal/module.map)
  set(target tal_${engine}_module)
  add_library(${target} MODULE ${source})
  set_target_properties(${target} PROPERTIES
    PREFIX "" OUTPUT_NAME tal-${engine} LINK_DEPENDS ${map})
  target_compile_options(${target} PRIVATE -fvisibility=default)
  target_link_libraries(${target} PRIVATE
    tal_${engine} tal_module_interface zelk_options zelk_warnings)
  target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,--no-undefined-version)
  install(TARGETS ${target} LIBRARY DESTINATION lib/zelk)
endfunction()
