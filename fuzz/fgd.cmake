# The FGD reader's libFuzzer target; included from fuzz/CMakeLists.txt.
add_executable(fgd_reader_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/fgd_reader_fuzz.cpp)
target_link_libraries(fgd_reader_fuzz PRIVATE zol_toolutils2)
target_link_options(fgd_reader_fuzz PRIVATE -fsanitize=fuzzer)

set(fgd_corpus ${CMAKE_CURRENT_BINARY_DIR}/corpus/fgd)
add_test(NAME fuzz_fgd_reader_seed_corpus
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_CURRENT_SOURCE_DIR}/corpus/fgd ${fgd_corpus})
set_tests_properties(fuzz_fgd_reader_seed_corpus PROPERTIES FIXTURES_SETUP fgd_reader_corpus)

add_test(NAME fuzz_fgd_reader
  COMMAND fgd_reader_fuzz -max_total_time=${ZOL_FUZZ_SECONDS} -timeout=10 ${fgd_corpus})
math(EXPR fgd_fuzz_timeout "${ZOL_FUZZ_SECONDS} + 120")
set_tests_properties(fuzz_fgd_reader PROPERTIES
  FIXTURES_REQUIRED fgd_reader_corpus
  TIMEOUT ${fgd_fuzz_timeout})
