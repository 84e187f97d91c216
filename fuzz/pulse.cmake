# The compiled graph loader's libFuzzer target; included from fuzz/CMakeLists.txt. The
# shipped samples seed its corpus.
add_executable(pulse_graph_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/pulse_graph_fuzz.cpp)
target_link_libraries(pulse_graph_fuzz PRIVATE zol_pulse_runtime)
target_link_options(pulse_graph_fuzz PRIVATE -fsanitize=fuzzer)

set(pulse_corpus ${CMAKE_CURRENT_BINARY_DIR}/corpus/pulse)
add_test(NAME fuzz_pulse_graph_seed_corpus
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_SOURCE_DIR}/content/content/pulse/samples ${pulse_corpus})
set_tests_properties(fuzz_pulse_graph_seed_corpus PROPERTIES FIXTURES_SETUP pulse_graph_corpus)

add_test(NAME fuzz_pulse_graph
  COMMAND pulse_graph_fuzz -max_total_time=${ZOL_FUZZ_SECONDS} -timeout=20 -rss_limit_mb=4096
    -dict=${CMAKE_CURRENT_SOURCE_DIR}/pulse_graph.dict ${pulse_corpus})
math(EXPR pulse_fuzz_timeout "${ZOL_FUZZ_SECONDS} + 120")
set_tests_properties(fuzz_pulse_graph PROPERTIES
  FIXTURES_REQUIRED pulse_graph_corpus
  TIMEOUT ${pulse_fuzz_timeout})
