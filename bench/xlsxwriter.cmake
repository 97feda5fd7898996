# The libxlsxwriter reference for workbook_bench (bench/CMakeLists.txt includes this file).
find_package(PkgConfig REQUIRED)
pkg_check_modules(XLSXWRITER IMPORTED_TARGET xlsxwriter)
if(XLSXWRITER_FOUND AND TARGET workbook_bench)
  add_executable(xlsxwriter_reference ${CMAKE_CURRENT_LIST_DIR}/xlsxwriter_reference.cpp)
  target_link_libraries(xlsxwriter_reference PRIVATE PkgConfig::XLSXWRITER)
  add_dependencies(workbook_bench xlsxwriter_reference)
  target_compile_definitions(workbook_bench PRIVATE
    SW_XLSXWRITER_REFERENCE="$<TARGET_FILE:xlsxwriter_reference>")
endif()
