# rkxml_warnings(TARGET): the warnings that all code of the project is free of.
option(RKXML_WERROR "Treat warnings as errors" OFF)
function(rkxml_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(RKXML_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
