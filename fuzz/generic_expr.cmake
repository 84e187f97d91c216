# The generic expression parser's libFuzzer target; included from fuzz/CMakeLists.txt.
add_executable(generic_expr_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/generic_expr_fuzz.cpp)
target_link_libraries(generic_expr_fuzz PRIVATE zol_mathlib_extended)
target_link_options(generic_expr_fuzz PRIVATE -fsanitize=fuzzer)

set(generic_expr_corpus ${CMAKE_CURRENT_BINARY_DIR}/corpus/generic_expr)
add_test(NAME fuzz_generic_expr_seed_corpus
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_CURRENT_SOURCE_DIR}/corpus/generic_expr ${generic_expr_corpus})
set_tests_properties(fuzz_generic_expr_seed_corpus PROPERTIES FIXTURES_SETUP generic_expr_corpus)

add_test(NAME fuzz_generic_expr
  COMMAND generic_expr_fuzz -max_total_time=${ZOL_FUZZ_SECONDS} -timeout=10 -max_len=4096
    -dict=${CMAKE_CURRENT_SOURCE_DIR}/generic_expr.dict ${generic_expr_corpus})
math(EXPR generic_expr_fuzz_timeout "${ZOL_FUZZ_SECONDS} + 120")
set_tests_properties(fuzz_generic_expr PROPERTIES
  FIXTURES_REQUIRED generic_expr_corpus
  TIMEOUT ${generic_expr_fuzz_timeout})
