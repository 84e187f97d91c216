# The model reader's libFuzzer target; included from fuzz/CMakeLists.txt.
add_executable(tmsh_model_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/tmsh_model_fuzz.cpp)
target_link_libraries(tmsh_model_fuzz PRIVATE zol_core)
target_link_options(tmsh_model_fuzz PRIVATE -fsanitize=fuzzer)

set(tmsh_corpus ${CMAKE_CURRENT_BINARY_DIR}/corpus/tmsh)
add_test(NAME fuzz_tmsh_model_seed_corpus
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_CURRENT_SOURCE_DIR}/corpus/tmsh ${tmsh_corpus})
set_tests_properties(fuzz_tmsh_model_seed_corpus PROPERTIES FIXTURES_SETUP tmsh_model_corpus)

add_test(NAME fuzz_tmsh_model
  COMMAND tmsh_model_fuzz -max_total_time=${ZOL_FUZZ_SECONDS} -timeout=10
    -dict=${CMAKE_CURRENT_SOURCE_DIR}/kv3_text.dict ${tmsh_corpus})
math(EXPR tmsh_fuzz_timeout "${ZOL_FUZZ_SECONDS} + 120")
set_tests_properties(fuzz_tmsh_model PROPERTIES
  FIXTURES_REQUIRED tmsh_model_corpus
  TIMEOUT ${tmsh_fuzz_timeout})
