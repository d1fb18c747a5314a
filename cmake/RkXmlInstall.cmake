# What `cmake --install` puts down, in three components: runtime (the shared library), dev (headers, CMake package,
# RkXmlLib16.pc, pages, examples) and tool (the program rkxml).
include(CMakePackageConfigHelpers)

install(TARGETS RkXmlLib16 EXPORT RkXmlLib16Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/RkXmlLib16 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/RkXmlLib16)
install(EXPORT RkXmlLib16Targets NAMESPACE RkXmlLib16:: DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/RkXmlLib16Config.cmake.in
  ${PROJECT_BINARY_DIR}/RkXmlLib16Config.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/RkXmlLib16ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/RkXmlLib16Config.cmake ${PROJECT_BINARY_DIR}/RkXmlLib16ConfigVersion.cmake
  ${CMAKE_CURRENT_LIST_DIR}/RkXmlSchema.cmake
  DESTINATION ${package_dir} COMPONENT dev)

# The prefix of the .pc file follows the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH RKXML_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" RKXML_PC_PREFIX "${RKXML_PC_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/RkXmlLib16.pc.in ${PROJECT_BINARY_DIR}/RkXmlLib16.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/RkXmlLib16.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The pages and the examples, beside each other as in the source, so that their links lead on.
set(RKXML_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/librkxmllib16-dev)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${RKXML_DOC_DIR} COMPONENT dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${RKXML_DOC_DIR} COMPONENT dev FILES_MATCHING
  PATTERN "*.md" PATTERN "*.svg")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${RKXML_DOC_DIR} COMPONENT dev)

if(TARGET rkxml)
  # The program finds the library beside it in whatever prefix it was installed to.
  file(RELATIVE_PATH library_from_program /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
  set_target_properties(rkxml PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_program}")
  install(TARGETS rkxml RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/rkxml/rkxml.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/rkxml/rkxml.bash RENAME rkxml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
endif()
