# Whole definition files through compile and a few simulation steps; included from
# fuzz/CMakeLists.txt.
add_executable(tfxs_definition_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/tfxs_definition_fuzz.cpp)
target_link_libraries(tfxs_definition_fuzz PRIVATE zol_core)
target_link_options(tfxs_definition_fuzz PRIVATE -fsanitize=fuzzer)

set(tfxs_corpus ${CMAKE_CURRENT_BINARY_DIR}/corpus/tfxs)
add_test(NAME fuzz_tfxs_definition_seed_corpus
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_CURRENT_SOURCE_DIR}/corpus/tfxs ${tfxs_corpus})
set_tests_properties(fuzz_tfxs_definition_seed_corpus PROPERTIES FIXTURES_SETUP tfxs_definition_corpus)

# Memory is capped so that an input allocating beyond its budget fails the run.
add_test(NAME fuzz_tfxs_definition
  COMMAND tfxs_definition_fuzz -max_total_time=${ZOL_FUZZ_SECONDS} -timeout=10 -rss_limit_mb=2048
    -dict=${CMAKE_CURRENT_SOURCE_DIR}/tfxs.dict ${tfxs_corpus})
math(EXPR tfxs_fuzz_timeout "${ZOL_FUZZ_SECONDS} + 120")
set_tests_properties(fuzz_tfxs_definition PROPERTIES
  FIXTURES_REQUIRED tfxs_definition_corpus
  TIMEOUT ${tfxs_fuzz_timeout})
