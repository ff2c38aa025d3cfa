# Installs the library, and the files by which other projects find it. All paths in these files are relative, so that
# the installed tree may be moved.
include(CMakePackageConfigHelpers)
set(OSTREL_INSTALL_MODULEDIR ${CMAKE_INSTALL_INCLUDEDIR}/ostrel)
set(OSTREL_INSTALL_FORTRANDIR ${CMAKE_INSTALL_DATADIR}/ostrel/Fortran)
set(OSTREL_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/ostrel)

# The headers of the modules; they include each other relative to their folder.
add_library(ostrel_modules INTERFACE)
add_library(ostrel::modules ALIAS ostrel_modules)
set_target_properties(ostrel_modules PROPERTIES EXPORT_NAME modules)
target_include_directories(ostrel_modules INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/Source> $<INSTALL_INTERFACE:${OSTREL_INSTALL_MODULEDIR}>)
target_compile_features(ostrel_modules INTERFACE cxx_std_20)
target_link_libraries(ostrel_modules INTERFACE ostrel)

set(OSTREL_FORTRAN_SOURCES ${PROJECT_SOURCE_DIR}/Interfaces/Fortran/ostrel.f90
    ${PROJECT_SOURCE_DIR}/Interfaces/Fortran/ostrel_handles.f90)
if(OSTREL_BUILD_FORTRAN)
  enable_language(Fortran)
endif()
include(${PROJECT_SOURCE_DIR}/cmake/fortran_module.cmake)

# Each component is a package of its own. A wheel of the Python package has library, fluids and python.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
install(TARGETS ostrel ostrel_modules EXPORT ostrelTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT library NAMELINK_COMPONENT development)
install(FILES Include/ostrel.h Include/ostrel_fluid.h Include/ostrel.hpp Include/ostrel_names.hpp
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES Documentation/Entry-points.md Documentation/Handles.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
# Two headers and the folder of the handles are left out, since the library does not export what they declare.
install(DIRECTORY Source/ DESTINATION ${OSTREL_INSTALL_MODULEDIR}
        FILES_MATCHING PATTERN "*.h" PATTERN host.h EXCLUDE PATTERN console.h EXCLUDE PATTERN Fluid EXCLUDE)
install(FILES ${OSTREL_FORTRAN_SOURCES} DESTINATION ${OSTREL_INSTALL_FORTRANDIR} COMPONENT fortran)
install(DIRECTORY Fluids/ DESTINATION ${OSTREL_INSTALL_FLUIDDIR} COMPONENT fluids
        FILES_MATCHING PATTERN "*.osd" PATTERN index.csv)

install(EXPORT ostrelTargets NAMESPACE ostrel:: DESTINATION ${OSTREL_INSTALL_CMAKEDIR})
configure_package_config_file(cmake/ostrelConfig.cmake.in ostrelConfig.cmake
  INSTALL_DESTINATION ${OSTREL_INSTALL_CMAKEDIR} PATH_VARS OSTREL_INSTALL_FLUIDDIR OSTREL_INSTALL_FORTRANDIR)
# While the first number of the version is 0, versions with the same second number are compatible.
write_basic_package_version_file(ostrelConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ostrelConfig.cmake ${PROJECT_BINARY_DIR}/ostrelConfigVersion.cmake
              cmake/fortran_module.cmake DESTINATION ${OSTREL_INSTALL_CMAKEDIR})

set(pc_folder ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH OSTREL_PC_TO_INCLUDE ${pc_folder} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
file(RELATIVE_PATH OSTREL_PC_TO_DATA ${pc_folder} ${CMAKE_INSTALL_FULL_DATADIR})
configure_file(cmake/ostrel.pc.in ostrel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ostrel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Fortran's modules as this compiler writes them, and their procedures.
if(OSTREL_BUILD_FORTRAN)
  set(OSTREL_INSTALL_FORTRAN_MODULEDIR ${CMAKE_INSTALL_LIBDIR}/fortran/ostrel
      CACHE STRING "Folder of Fortran's compiled modules, relative to the prefix")
  set_target_properties(ostrel_fortran PROPERTIES EXCLUDE_FROM_ALL OFF POSITION_INDEPENDENT_CODE ON)
  # gfortran puts the path of a source into messages of the program, whatever -ffile-prefix-map says. Without line markers
  # it knows only the preprocessed file, whose path is relative, so that the build may stand anywhere.
  target_compile_options(ostrel_fortran PRIVATE $<$<Fortran_COMPILER_ID:GNU>:-P>)
  install(TARGETS ostrel_fortran ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT fortran)
  install(DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/ostrel_fortran/ DESTINATION ${OSTREL_INSTALL_FORTRAN_MODULEDIR}
          COMPONENT fortran FILES_MATCHING PATTERN "*.mod")
  file(RELATIVE_PATH OSTREL_PC_TO_FORTRAN_MODULES ${pc_folder} ${CMAKE_INSTALL_PREFIX}/${OSTREL_INSTALL_FORTRAN_MODULEDIR})
  configure_file(cmake/ostrel-fortran.pc.in ostrel-fortran.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/ostrel-fortran.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT fortran)
endif()
