# ostrel::fortran has Fortran's modules ostrel_handles and ostrel, whose sources are OSTREL_FORTRAN_SOURCES. The compiler
# of the project that uses them compiles them when one of that project's programs links them. The target exists only if
# Fortran is enabled before.
if(CMAKE_Fortran_COMPILER_LOADED AND NOT TARGET ostrel_fortran)
  set(module_folder ${CMAKE_CURRENT_BINARY_DIR}/ostrel_fortran)
  add_library(ostrel_fortran STATIC EXCLUDE_FROM_ALL ${OSTREL_FORTRAN_SOURCES})
  set_target_properties(ostrel_fortran PROPERTIES Fortran_MODULE_DIRECTORY ${module_folder})
  target_include_directories(ostrel_fortran INTERFACE ${module_folder})
  target_link_libraries(ostrel_fortran PUBLIC ostrel::ostrel)
  add_library(ostrel::fortran ALIAS ostrel_fortran)
endif()
