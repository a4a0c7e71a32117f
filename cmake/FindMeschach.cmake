# Meschach::meschach. Debian installs the library without a package description for CMake.
find_path(MESCHACH_INCLUDE_DIR meschach/matrix.h)
find_library(MESCHACH_LIBRARY meschach)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Meschach REQUIRED_VARS MESCHACH_LIBRARY MESCHACH_INCLUDE_DIR)
if(Meschach_FOUND AND NOT TARGET Meschach::meschach)
  add_library(Meschach::meschach UNKNOWN IMPORTED)
  set_target_properties(Meschach::meschach PROPERTIES
    IMPORTED_LOCATION ${MESCHACH_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${MESCHACH_INCLUDE_DIR})
endif()
