# Runs the ANTLR 3 tool on one grammar (cmake -P). The Debian tool's C templates print
# "template error" warnings for attributes the C target never uses; those are dropped,
# anything else the tool says is shown, and an error fails the build. The generation
# time stamp is taken out of the files so that unchanged grammars compile to the same
# text (and hit the compiler cache).
execute_process(
  COMMAND ${ANTLR3} -fo ${OUT_DIR} -lib ${VOCAB_DIR} ${GRAMMAR}
  RESULT_VARIABLE result
  OUTPUT_VARIABLE output
  ERROR_VARIABLE output)
string(REGEX REPLACE "[^\n]*template error:[^\n]*\n?" "" output "${output}")
if(output)
  message("${output}")
endif()
if(NOT result EQUAL 0 OR output MATCHES "error\\(")
  message(FATAL_ERROR "antlr3 failed on ${GRAMMAR}")
endif()
foreach(name generic_exprLexer.c generic_exprLexer.h generic_exprParser.c generic_exprParser.h)
  file(READ ${OUT_DIR}/${name} text)
  string(REGEX REPLACE "\n[^\n]*On : [^\n]*" "" text "${text}")
  file(WRITE ${OUT_DIR}/${name} "${text}")
endforeach()
