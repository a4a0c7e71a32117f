# Installs what is built and builds two projects of a stranger with it, in the folder OUT.
# cmake -DBUILT=... -DOUT=... -DCONFIG=... -DOPTIONS=... -P Build.cmake

# What a project compiled with the same headers before is kept, stale headers are not.
file(REMOVE_RECURSE ${OUT}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILT} --config ${CONFIG} --prefix ${OUT}/prefix
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
foreach(unit model/Reading viewer/opengl/Stamps components/links/Random components/comms/Qlxserver
        components/panels/Formchecks)
  if(EXISTS ${OUT}/prefix/include/velmora/${unit}.h)
    message(FATAL_ERROR "A private header is installed: ${unit}.h")
  endif()
endforeach()
foreach(project viewer palette)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/${project} -B ${OUT}/${project}
            -DCMAKE_PREFIX_PATH=${OUT}/prefix -DCMAKE_BUILD_TYPE=${CONFIG} ${OPTIONS}
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${OUT}/${project} --config ${CONFIG} --parallel
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()
