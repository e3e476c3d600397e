# virn_add_test(<name> SOURCES <files...> LIBS <targets...>)
# Builds one GoogleTest executable and registers its cases with CTest. Widget tests run on the
# offscreen platform; every test gets a private scratch folder through VIRN_TEST_TMP.
function(virn_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} virn_testsupport GTest::gtest GTest::gtest_main
                                         Qt6::Test)
  gtest_discover_tests(${name}
    DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8" TIMEOUT 300)
endfunction()
