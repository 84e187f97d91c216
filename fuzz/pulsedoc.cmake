# The Pulse document loader and compiler's libFuzzer target; included from
# fuzz/CMakeLists.txt. The shipped documents, the broken ones too, and fuzz/corpus/pulsedoc
# (a node of each family the shipped ones don't use) seed its corpus.
add_executable(pulse_document_fuzz ${CMAKE_CURRENT_SOURCE_DIR}/pulse_document_fuzz.cpp)
target_link_libraries(pulse_document_fuzz PRIVATE zol_pulsedoc)
target_compile_definitions(pulse_document_fuzz PRIVATE ZOL_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
target_link_options(pulse_document_fuzz PRIVATE -fsanitize=fuzzer)

set(pulsedoc_corpus ${CMAKE_CURRENT_BINARY_DIR}/corpus/pulsedoc)
add_test(NAME fuzz_pulse_document_seed_corpus
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_SOURCE_DIR}/content/content/pulse/documents
    ${CMAKE_CURRENT_SOURCE_DIR}/corpus/pulsedoc ${pulsedoc_corpus})
set_tests_properties(fuzz_pulse_document_seed_corpus PROPERTIES FIXTURES_SETUP pulse_document_corpus)

add_test(NAME fuzz_pulse_document
  COMMAND pulse_document_fuzz -max_total_time=${ZOL_FUZZ_SECONDS} -timeout=20 -rss_limit_mb=4096
    -dict=${CMAKE_CURRENT_SOURCE_DIR}/pulse_document.dict ${pulsedoc_corpus})
math(EXPR pulsedoc_fuzz_timeout "${ZOL_FUZZ_SECONDS} + 120")
set_tests_properties(fuzz_pulse_document PROPERTIES
  FIXTURES_REQUIRED pulse_document_corpus
  TIMEOUT ${pulsedoc_fuzz_timeout})
