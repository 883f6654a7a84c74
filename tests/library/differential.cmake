# The tree behind the exports against a second reading of the same library.
add_driver_test(differential_test
  SOURCES
    differential_generator.cpp
    differential_model.cpp
    differential_reader.cpp
    differential_test.cpp
  LIBRARIES itunes_driver velmarpath test_support)
target_compile_definitions(differential_test PRIVATE SAMPLES_FOLDER="${SAMPLES_FOLDER}")

# The same through velmarhost, against Python's reader.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_FOUND)
  add_test(NAME ListCounts.AgreeWithPlistlib
           COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/differential_list_counts.py
                   $<TARGET_FILE:velmarhost> ${SAMPLES_FOLDER})
  set_tests_properties(ListCounts.AgreeWithPlistlib PROPERTIES
    SKIP_RETURN_CODE 77 TIMEOUT 300
    ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0")  # as for the other tests that run velmarhost
endif()
