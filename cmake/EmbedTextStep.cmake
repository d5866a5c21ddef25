# Writes one text file as a C++ source; run by embed_text().

string(REPLACE "_" ";" words ${STEM})
set(constant k)
foreach(word IN LISTS words)
  string(SUBSTRING ${word} 0 1 initial)
  string(SUBSTRING ${word} 1 -1 rest)
  string(TOUPPER ${initial} initial)
  string(APPEND constant ${initial}${rest})
endforeach()

file(READ ${INPUT} text)
file(WRITE ${OUTPUT} "#include \"${HEADER}\"

namespace ${NAMESPACE} {

const char ${constant}[] = R\"embedded(${text})embedded\";

}  // namespace ${NAMESPACE}
")
