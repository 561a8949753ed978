# Helpers that turn the folder layout into targets, so that adding a source
# or a test file needs no edit of the build files.

set(MERVOLA_AREAS "")

# The libraries compile their sources in batches of eight (one translation
# unit each): Qt's headers and templates are then compiled once per batch,
# not once per file, which roughly halves the libraries' compile time.
function(mervola_batch_sources target)
  if(NOT MERVOLA_UNITY)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
endfunction()

# mervola_area(NAME DEPS ...): static library from src/NAME/*.cpp (not ui/,
# nor gdal/: code that calls GDAL goes to a library of its own).
function(mervola_area name)
  cmake_parse_arguments(A "" "" "DEPS" ${ARGN})
  file(GLOB srcs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.cpp
                                   ${PROJECT_SOURCE_DIR}/src/${name}/*/*.cpp)
  list(FILTER srcs EXCLUDE REGEX "/src/${name}/(ui|gdal)/")
  file(GLOB hdrs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.h
                                   ${PROJECT_SOURCE_DIR}/src/${name}/*/*.h)
  list(FILTER hdrs EXCLUDE REGEX "/src/${name}/(ui|gdal)/")
  if(NOT srcs)
    set(srcs ${PROJECT_SOURCE_DIR}/cmake/empty.cpp)
  endif()
  add_library(mervola_${name} STATIC ${srcs} ${hdrs})
  target_include_directories(mervola_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(mervola_${name} PUBLIC ${A_DEPS})
  target_precompile_headers(mervola_${name} PRIVATE <QString> <QStringList> <QVariant> <vector> <memory>)
  mervola_batch_sources(mervola_${name})
  set(MERVOLA_AREAS ${MERVOLA_AREAS} ${name} PARENT_SCOPE)
endfunction()

# Widgets library: every src/*/ui/*.cpp plus src/ui/ resources.
function(mervola_widgets_library)
  file(GLOB srcs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*/ui/*.cpp
                                   ${PROJECT_SOURCE_DIR}/src/*/ui/*.h
                                   ${PROJECT_SOURCE_DIR}/src/*/ui/*.qrc)
  if(NOT srcs)
    set(srcs ${PROJECT_SOURCE_DIR}/cmake/empty.cpp)
  endif()
  add_library(mervola_widgets STATIC ${srcs})
  target_include_directories(mervola_widgets PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(mervola_widgets PUBLIC mervola_core Qt6::Widgets Qt6::Svg
    Qt6::PrintSupport Qt6::Concurrent Qt6::Charts)
  if(TARGET Qt6::DataVisualization)
    target_link_libraries(mervola_widgets PUBLIC Qt6::DataVisualization)
    target_compile_definitions(mervola_widgets PUBLIC MERVOLA_HAVE_DATAVIS=1)
  endif()
  target_precompile_headers(mervola_widgets PRIVATE <QtWidgets/QtWidgets>)
  mervola_batch_sources(mervola_widgets)
endfunction()

# The helpers every test uses, compiled once: tests/support/*.cpp. The
# library also carries the one precompiled header of Qt Test and Qt Widgets
# that every test reuses; for that every test sees the same libraries and
# definitions (those of mervola_widgets, which holds all the others).
function(mervola_test_support_library)
  file(GLOB srcs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/support/*.cpp)
  add_library(mervola_testsupport STATIC ${srcs})
  target_include_directories(mervola_testsupport PUBLIC ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(mervola_testsupport PUBLIC mervola_widgets Qt6::Test)
  target_compile_definitions(mervola_testsupport PUBLIC
    MERVOLA_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    MERVOLA_BINARY_DIR="${PROJECT_BINARY_DIR}"
    MERVOLA_CLI="$<TARGET_FILE:mervola-cli>"
    MERVOLA_APP="$<TARGET_FILE_DIR:mervola-cli>/mervola"
    MERVOLA_TEST_VERSION="${PROJECT_VERSION}")
  target_precompile_headers(mervola_testsupport PRIVATE <QtTest> <QtWidgets/QtWidgets> <QString> <QStringList>
    <vector> <memory>)
  add_dependencies(mervola_testsupport mervola-cli)
endfunction()

# add_mervola_test(NAME SOURCES ... LIBS ... [NEEDS_GUI])
#
# Every test source declares its test class itself and includes its own
# "<source>.moc". That file is made by running moc on the source alone:
# automatic moc would first follow every include through the Qt headers,
# about a second of processor time per test program for the same output.
function(add_mervola_test name)
  cmake_parse_arguments(T "NEEDS_GUI" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC OFF)
  set(moc_dir ${CMAKE_CURRENT_BINARY_DIR}/${name}_moc)
  foreach(src ${T_SOURCES})
    get_filename_component(base ${src} NAME_WE)
    get_filename_component(abs ${src} ABSOLUTE)
    add_custom_command(OUTPUT ${moc_dir}/${base}.moc
      COMMAND Qt6::moc ${abs} -o ${moc_dir}/${base}.moc
      DEPENDS ${abs} Qt6::moc
      COMMENT "moc ${base}.cpp" VERBATIM)
    target_sources(${name} PRIVATE ${moc_dir}/${base}.moc)
    set_source_files_properties(${moc_dir}/${base}.moc PROPERTIES HEADER_FILE_ONLY ON)
  endforeach()
  target_include_directories(${name} PRIVATE ${moc_dir})
  target_link_libraries(${name} PRIVATE ${T_LIBS} mervola_testsupport Qt6::Test)
  target_precompile_headers(${name} REUSE_FROM mervola_testsupport)
  add_test(NAME ${name} COMMAND ${name})
  set(env "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0")
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${env}" TIMEOUT 600)
endfunction()

# Every tests/<area>/test_*.cpp is one test linked to that area's library;
# every tests/<area>/ui/test_*.cpp is a widget test.
function(mervola_register_tests)
  mervola_test_support_library()
  foreach(area ${MERVOLA_AREAS})
    file(GLOB tests CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${area}/test_*.cpp)
    foreach(t ${tests})
      get_filename_component(n ${t} NAME_WE)
      if(area STREQUAL "platform")
        add_mervola_test(${area}_${n} SOURCES ${t} LIBS mervola_platform)
      else()
        add_mervola_test(${area}_${n} SOURCES ${t} LIBS mervola_${area} mervola_atlas)
      endif()
    endforeach()
    file(GLOB uitests CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${area}/ui/test_*.cpp)
    foreach(t ${uitests})
      get_filename_component(n ${t} NAME_WE)
      add_mervola_test(${area}_ui_${n} SOURCES ${t} LIBS mervola_widgets NEEDS_GUI)
    endforeach()
  endforeach()
  # User journeys: the whole program driven through its main window, and
  # the program itself started where a journey needs a second copy.
  file(GLOB journeytests CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/journeys/test_*.cpp)
  foreach(t ${journeytests})
    get_filename_component(n ${t} NAME_WE)
    add_mervola_test(journeys_${n} SOURCES ${t} LIBS mervola_widgets NEEDS_GUI)
    if(TARGET mervola)
      add_dependencies(journeys_${n} mervola)
    endif()
  endforeach()
  # Command-line tests run the built executables as a user would.
  file(GLOB clitests CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/cli/test_*.cpp)
  foreach(t ${clitests})
    get_filename_component(n ${t} NAME_WE)
    add_mervola_test(cli_${n} SOURCES ${t} LIBS mervola_core)
    add_dependencies(cli_${n} mervola-cli)
    if(TARGET mervola)
      add_dependencies(cli_${n} mervola)
    endif()
  endforeach()
endfunction()
