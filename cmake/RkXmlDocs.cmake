# The target docs makes the reference from the headers, where Doxygen is installed; any warning fails it.
find_program(RKXML_DOXYGEN doxygen)
mark_as_advanced(RKXML_DOXYGEN)
if(RKXML_DOXYGEN)
  configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/docs/Doxyfile @ONLY)
  add_custom_target(docs
    COMMAND ${RKXML_DOXYGEN} ${PROJECT_BINARY_DIR}/docs/Doxyfile
    COMMAND ${CMAKE_COMMAND} -E echo "see ${PROJECT_BINARY_DIR}/docs/html/index.html"
    VERBATIM)
endif()
