# Profile-guided optimisation with g++: records a profile in a build folder, then uses it; scripts/tune.sh does both.
set(RKXML_PROFILE "" CACHE STRING "Empty, record (write a profile) or use (optimise by it)")
set_property(CACHE RKXML_PROFILE PROPERTY STRINGS "" record use)

# rkxml_profile(OBJECTS LIBRARY...): sets the options for the objects and for the libraries linked from them.
function(rkxml_profile objects)
  if(NOT RKXML_PROFILE)
    return()
  endif()
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    message(FATAL_ERROR "RKXML_PROFILE needs g++")
  endif()
  if(RKXML_PROFILE STREQUAL record)
    # What the optimiser warns of in code that counts is wrong.
    target_compile_options(${objects} PRIVATE -fprofile-generate -w)
    foreach(library ${ARGN})
      target_link_options(${library} PUBLIC -fprofile-generate)
    endforeach()
  elseif(RKXML_PROFILE STREQUAL use)
    # Code without counts, or with those of other code, is compiled as without a profile, not for size. Unrolled and
    # duplicated loops, which a profile turns on, make the code larger and slower.
    target_compile_options(${objects} PRIVATE
      -fprofile-use -fprofile-partial-training -Wno-missing-profile -Wno-coverage-mismatch
      -fno-tracer -fno-peel-loops -fno-split-loops -fno-unroll-loops -fno-unswitch-loops)
    set_target_properties(${objects} ${ARGN} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
  else()
    message(FATAL_ERROR "RKXML_PROFILE is '${RKXML_PROFILE}', neither record nor use")
  endif()
endfunction()
