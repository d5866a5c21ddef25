# Text files as constants of the program.
#
#   embed_text(<target> NAMESPACE <namespace> HEADER <header> FILES <file>...)
#
# adds a generated source for each file to <target>. The text of "open_files.sql" becomes
# `const char kOpenFiles[]` in <namespace>. <header>, as it is written in an include directive, is
# maintained by hand: it declares each constant as `extern const char kOpenFiles[];`.

set(EMBED_TEXT_STEP ${CMAKE_CURRENT_LIST_DIR}/EmbedTextStep.cmake)

function(embed_text target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAMESPACE;HEADER" "FILES")
  foreach(file IN LISTS arg_FILES)
    cmake_path(ABSOLUTE_PATH file OUTPUT_VARIABLE input)
    cmake_path(GET file STEM stem)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/embedded/${stem}.cpp)
    add_custom_command(
      OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -DINPUT=${input} -DOUTPUT=${output} -DSTEM=${stem}
              -DNAMESPACE=${arg_NAMESPACE} -DHEADER=${arg_HEADER} -P ${EMBED_TEXT_STEP}
      DEPENDS ${input} ${EMBED_TEXT_STEP}
      COMMENT "Embedding ${file}"
      VERBATIM)
    target_sources(${target} PRIVATE ${output})
  endforeach()
endfunction()
