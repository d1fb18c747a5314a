# Compiling by a profile, which g++ does by what the same build folder recorded before; scripts/tune.sh does both.
set(RKXML_PROFILE "" CACHE STRING "Nothing, record (count what the library does) or use (compile by these counts)")
set_property(CACHE RKXML_PROFILE PROPERTY STRINGS "" record use)

# rkxml_profile(OBJECTS LIBRARY...): compiles the objects so, and links the libraries of them so.
function(rkxml_profile objects)
  if(NOT RKXML_PROFILE)
    return()
  endif()
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    message(FATAL_ERROR "RKXML_PROFILE needs g++")
  endif()
  if(RKXML_PROFILE STREQUAL record)
    target_compile_options(${objects} PRIVATE -fprofile-generate)
    foreach(library ${ARGN})
      target_link_options(${library} PUBLIC -fprofile-generate)
    endforeach()
  elseif(RKXML_PROFILE STREQUAL use)
    # What was never run is compiled as without a profile, not for size. Unrolled and doubled loops, which come with a
    # profile, make the code larger and the roads slower.
    target_compile_options(${objects} PRIVATE
      -fprofile-use -fprofile-partial-training -Wno-missing-profile -Wno-error=coverage-mismatch
      -fno-tracer -fno-peel-loops -fno-split-loops -fno-unroll-loops -fno-unswitch-loops)
    set_target_properties(${objects} ${ARGN} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
  else()
    message(FATAL_ERROR "RKXML_PROFILE is '${RKXML_PROFILE}', neither record nor use")
  endif()
endfunction()
