# rkxml_add_schema(TARGET SCHEMA.xsd... [NAMESPACE URI=cpp::name...] [CATALOG FILE] [FILES NAME...])
#
# Adds the classes of the schemas to a target: rkxml makes a header and one or more sources for each schema document,
# included and imported ones too, while the target is built, and again when one of them changes. The target, which is of
# the same directory, finds the headers by their names: #include "order.h" for order.xsd. It still has to be linked to
# RkXmlLib16::RkXmlLib16. Schemas that share documents go into one call.
#
#   NAMESPACE  C++ namespaces for target namespaces, as `rkxml generate --namespace` takes them
#   CATALOG    lines URL=FILE: where schemas of such locations are
#   FILES      what rkxml makes of the schemas. Only needed in a build that makes rkxml itself, where rkxml cannot be
#              asked yet, and only if that is not one header and one source for each SCHEMA.
function(rkxml_add_schema target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "CATALOG" "NAMESPACE;FILES")
  if(NOT TARGET ${target})
    message(FATAL_ERROR "rkxml_add_schema: there is no target ${target}")
  endif()
  if(NOT arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "rkxml_add_schema: no schema is given for ${target}")
  endif()
  _rkxml_require_program()

  set(schemas "")
  foreach(schema IN LISTS arg_UNPARSED_ARGUMENTS)
    get_filename_component(schema ${schema} ABSOLUTE)
    list(APPEND schemas ${schema})
  endforeach()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target}.schemas)
  list(GET schemas 0 first)
  get_filename_component(names ${first} NAME)
  set(depfile ${folder}/${names}.d)
  set(arguments generate --out ${folder} --depfile ${depfile})
  foreach(name IN LISTS arg_NAMESPACE)
    list(APPEND arguments --namespace ${name})
  endforeach()
  set(inputs ${schemas})
  if(arg_CATALOG)
    get_filename_component(catalog ${arg_CATALOG} ABSOLUTE)
    list(APPEND arguments --catalog ${catalog})
    list(APPEND inputs ${catalog})
  endif()

  get_target_property(is_installed RkXmlLib16::rkxml IMPORTED)
  if(arg_FILES)
    list(TRANSFORM arg_FILES PREPEND ${folder}/ OUTPUT_VARIABLE files)
  elseif(is_installed)
    _rkxml_list_files(files)
  else()
    set(files "")
    foreach(schema IN LISTS schemas)
      get_filename_component(stem ${schema} NAME_WLE)
      list(APPEND files ${folder}/${stem}.h ${folder}/${stem}.cpp)
    endforeach()
  endif()

  get_target_property(known ${target} RKXML_SCHEMA_FILES)
  foreach(file IN LISTS files)
    if(file IN_LIST known)
      message(FATAL_ERROR "rkxml_add_schema: two calls for ${target} make ${file}: give their schemas in one call")
    endif()
  endforeach()
  set_property(TARGET ${target} APPEND PROPERTY RKXML_SCHEMA_FILES ${files})

  # rkxml does not touch what stays the same, and ninja then compiles only what changed; make would run it each time.
  set(touch "")
  if(CMAKE_GENERATOR MATCHES "Make")
    list(GET files 0 file)
    set(touch COMMAND ${CMAKE_COMMAND} -E touch ${file})
  endif()
  add_custom_command(
    OUTPUT ${files}
    COMMAND RkXmlLib16::rkxml ${arguments} ${schemas}
    ${touch}
    DEPENDS RkXmlLib16::rkxml ${inputs}
    DEPFILE ${depfile}
    COMMENT "Making the classes of ${names}"
    VERBATIM
  )
  target_sources(${target} PRIVATE ${files})
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${folder}>)
endfunction()

# The program: a target of this build, else one that is installed, beside the library or on PATH.
function(_rkxml_require_program)
  if(NOT TARGET RkXmlLib16::rkxml)
    find_program(RKXML_PROGRAM rkxml HINTS ${RkXmlLib16_PROGRAM_DIR})
    mark_as_advanced(RKXML_PROGRAM)
    if(NOT RKXML_PROGRAM)
      message(FATAL_ERROR "rkxml_add_schema: the program rkxml is not installed (Debian package rkxml); "
                          "RKXML_PROGRAM may name it")
    endif()
    add_executable(RkXmlLib16::rkxml IMPORTED)
    set_target_properties(RkXmlLib16::rkxml PROPERTIES IMPORTED_LOCATION ${RKXML_PROGRAM})
  endif()
endfunction()

# Asks the installed program, and lets CMake ask again when a schema document changes.
function(_rkxml_list_files variable)
  get_target_property(program RkXmlLib16::rkxml LOCATION)
  file(MAKE_DIRECTORY ${folder})
  execute_process(COMMAND ${program} ${arguments} --list ${schemas}
    RESULT_VARIABLE code OUTPUT_VARIABLE files ERROR_VARIABLE errors)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "rkxml_add_schema: ${errors}")
  endif()
  string(STRIP "${files}" files)
  string(REPLACE "\n" ";" files "${files}")
  set(${variable} ${files} PARENT_SCOPE)
  # OUTPUTS: \<line feed>  DOCUMENT \<line feed>  DOCUMENT ...
  file(READ ${depfile} documents)
  string(STRIP "${documents}" documents)
  string(REPLACE " \\\n  " ";" documents "${documents}")
  list(POP_FRONT documents)
  string(REGEX REPLACE "\\\\([ #])" "\\1" documents "${documents}")
  string(REPLACE "$$" "$" documents "${documents}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${inputs} ${documents})
endfunction()
