# What `cmake --install` brings: the animator, Qt Designer's plug-in, and the libraries with their
# public headers as the package that find_package(Velmora) finds.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# A header is public unless its unit stands here.
set(private_units
  components/comms/Portdialog components/comms/Qlxserver
  components/controls/Picturefile components/controls/Plaintip components/controls/Textaccess
  components/graphing/Publishedrecord components/graphing/Tickrules
  components/graphing/editors/Axiseditor components/graphing/editors/Bineditor
  components/graphing/editors/Pickers components/graphing/editors/Propertyform
  components/graphing/editors/Serieseditor
  components/graphing/painting/Pixelmask components/graphing/painting/Plotfont
  components/links/Properties components/links/Random
  components/panels/Filenames components/panels/Formchecks components/panels/Formloader
  components/panels/Formtexts components/panels/Formwidgets
  components/sources/Datathread components/sources/Filename
  components/sources/macro/Macroeditor components/sources/macro/Macrofunctions
  model/Alignment model/Colortext model/Datafile model/Datareader model/Filesync model/Growingfile
  model/Modelreader model/Oneline model/Readfile model/Reading model/Sectionindex
  viewer/opengl/Glplatform viewer/opengl/Glsurface viewer/opengl/Sphereshader viewer/opengl/Stamps
  viewer/scene/Polygon viewer/scene/Vertexarrays)
list(TRANSFORM private_units REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/\\1.h" OUTPUT_VARIABLE private)
foreach(header ${private})
  if(NOT EXISTS ${header})
    message(FATAL_ERROR "${header} is listed as private in cmake/Install.cmake and does not exist")
  endif()
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Velmora)
set(libraries)     # each after those that it stands on
set(requirements)  # of each library, for the package's description

# velmora_export(NAME): installs a library, and those of ours that it stands on before it.
macro(velmora_export name)
  if(NOT ${name} IN_LIST libraries)
    velmora_requirements(${name} ${name}_needs ${name}_qt)
    foreach(need ${${name}_needs})
      velmora_export(${need})
    endforeach()
    list(APPEND libraries ${name})
    string(APPEND requirements "set(Velmora_${name}_NEEDS ${${name}_needs})\n"
                               "set(Velmora_${name}_QT ${${name}_qt})\n")
    velmora_install(${name})
  endif()
endmacro()

# velmora_requirements(NAME NEEDS QT): which of our libraries and which parts of Qt it links.
function(velmora_requirements name needs qt)
  get_target_property(links ${name} INTERFACE_LINK_LIBRARIES)
  list(TRANSFORM links REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1")
  set(parts ${links})
  list(FILTER parts INCLUDE REGEX "^Qt6::")
  list(TRANSFORM parts REPLACE "^Qt6::" "")
  list(FILTER links EXCLUDE REGEX "::")
  set(${needs} ${links} PARENT_SCOPE)
  set(${qt} ${parts} PARENT_SCOPE)
endfunction()

function(velmora_install name)
  get_target_property(headers ${name} SOURCES)
  list(FILTER headers INCLUDE REGEX "\\.h$")
  list(TRANSFORM headers REPLACE "/\\./" "/")
  list(REMOVE_ITEM headers ${private})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  install(TARGETS ${name} EXPORT Velmora_${name} ARCHIVE
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velmora)
  install(EXPORT Velmora_${name} NAMESPACE Velmora:: DESTINATION ${package_dir})
endfunction()

foreach(name model signals view3d components comms panels)
  velmora_export(${name})
endforeach()

configure_file(${CMAKE_CURRENT_LIST_DIR}/VelmoraConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VelmoraConfig.cmake @ONLY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelmoraConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelmoraConfig.cmake
  ${PROJECT_BINARY_DIR}/VelmoraConfigVersion.cmake ${CMAKE_CURRENT_LIST_DIR}/FindMeschach.cmake
  DESTINATION ${package_dir})

if(VELMORA_PROGRAMS)
  install(TARGETS velmora-animator)
endif()
if(TARGET velmora-designer)
  install(TARGETS velmora-designer
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/qt6/plugins/designer)
endif()
