# Compiler settings shared by every target, and the one way to declare a library.

find_program(VELMORA_CCACHE ccache)
if(VELMORA_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${VELMORA_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VELMORA_CCACHE})
endif()

if(MSVC)
  add_compile_options(/W4 /utf-8)
  if(VELMORA_WERROR)
    add_compile_options(/WX)
  endif()
else()
  add_compile_options(-Wall -Wextra -Wshadow)
  # Frames are the same to the last bit on every processor.
  add_compile_options(-ffp-contract=off)
  if(CMAKE_UNITY_BUILD)
    # Several sources are compiled as one: each is the main file in its own right.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
  if(VELMORA_WERROR)
    add_compile_options(-Werror)
  endif()
endif()

if(VELMORA_SANITIZE)
  add_compile_options(-fsanitize=${VELMORA_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VELMORA_SANITIZE})
  add_compile_definitions(VELMORA_SANITIZED)
  if(VELMORA_SANITIZE MATCHES "(address|thread)")
    string(TOUPPER VELMORA_SANITIZED_${CMAKE_MATCH_1} definition)
    add_compile_definitions(${definition})
  endif()
endif()
if(VELMORA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# velmora_library(NAME [ROOM|UNIT...]): a static library of the units and of all sources below the
# rooms, folders of the calling folder; without either, of everything below it. Headers are included
# from the project's root ("model/Animmodel.h").
function(velmora_library name)
  if(NOT ARGN)
    set(ARGN .)
  endif()
  set(sources)
  foreach(place ${ARGN})
    if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/${place})
      file(GLOB_RECURSE found CONFIGURE_DEPENDS ${place}/*.cpp ${place}/*.h ${place}/*.qrc)
    else()
      file(GLOB found CONFIGURE_DEPENDS ${place}.cpp ${place}.h ${place}_*.cpp)
    endif()
    list(APPEND sources ${found})
  endforeach()
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME velmora_${name})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
endfunction()

# velmora_precompile(TARGET): the Qt headers that nearly every file of a widget library needs. Where
# several sources are compiled as one they are read seldom enough.
function(velmora_precompile name)
  if(NOT CMAKE_UNITY_BUILD)
    target_precompile_headers(${name} PRIVATE <QtWidgets> <vector> <string> <functional> <memory>)
  endif()
endfunction()
