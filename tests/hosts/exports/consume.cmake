# cmake -DBUILD=<build folder> -DSOURCE=<consumer project> -DWORK=<folder> -P consume.cmake
# Installs this build below WORK, builds the consumer against what was installed, both ways, and runs it.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
file(GLOB_RECURSE pc ${WORK}/installed/*/norvane.pc)
get_filename_component(pc_folder ${pc} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_folder})
get_filename_component(lib_folder ${pc_folder} DIRECTORY)
set(ENV{LD_LIBRARY_PATH} ${lib_folder})
foreach(pkg_config OFF ON)
  set(folder ${WORK}/consumer-${pkg_config})
  run(${CMAKE_COMMAND} -S ${SOURCE} -B ${folder} -G Ninja -DUSE_PKG_CONFIG=${pkg_config}
    -DCMAKE_PREFIX_PATH=${WORK}/installed)
  run(${CMAKE_COMMAND} --build ${folder})
  run(${folder}/consumer)
endforeach()
message("installed package consumed by find_package and by pkg-config")
