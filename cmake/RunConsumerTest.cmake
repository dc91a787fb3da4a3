# Stages an install of the build and builds examples/consumer and
# examples/host against it, by find_package and by pkg-config, then runs
# them: the host's whole walk-through on the sample data, with the installed
# example price model. Run by CTest as
# `cmake -P` with BUILD_DIR, SOURCE_DIR, WORK_DIR, GENERATOR, CXX and LIBDIR.
file(REMOVE_RECURSE "${WORK_DIR}")
set(stage "${WORK_DIR}/stage")

function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
endfunction()

step(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${stage}")

# The installed tool finds the installed library by its run path, with no
# LD_LIBRARY_PATH, and answers.
if(EXISTS "${stage}/bin/nvtool")
  set(ENV{LD_LIBRARY_PATH} "")
  step("${stage}/bin/nvtool" --version)
  if(NOT step_output MATCHES "libnvshared\\.so")
    message(FATAL_ERROR "unexpected nvtool --version:\n${step_output}")
  endif()
  step("${stage}/bin/nvtool" name ESH4)
  # The example price model is installed where the tool looks by default.
  if(EXISTS "${stage}/${LIBDIR}/nvshared/pricemodels/forward_yield.so")
    step("${stage}/bin/nvtool" models)
    if(NOT step_output MATCHES "\n  model Forward Yield\n")
      message(FATAL_ERROR "unexpected nvtool models:\n${step_output}")
    endif()
    # The installed demo finds the installed model by itself.
    step("${stage}/bin/nvtool" demo --quiet --work-dir "${WORK_DIR}/demo")
    if(NOT step_output MATCHES "^host walk-through: 19 of 19 steps done")
      message(FATAL_ERROR "unexpected nvtool demo:\n${step_output}")
    endif()
  endif()
endif()

# find_package(nvshared CONFIG REQUIRED)
step(${CMAKE_COMMAND} -S "${SOURCE_DIR}/examples/consumer"
     -B "${WORK_DIR}/cmake-build" -G "${GENERATOR}"
     -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${stage})
step(${CMAKE_COMMAND} --build "${WORK_DIR}/cmake-build")
step("${WORK_DIR}/cmake-build/consumer")
if(NOT step_output MATCHES "CME-A \\(Globex\\) is on market CME")
  message(FATAL_ERROR "unexpected output:\n${step_output}")
endif()

# The example host, by find_package, runs the whole walk-through.
# Without the example model (plug-ins not built) it is built but not run.
set(plugin "${stage}/${LIBDIR}/nvshared/pricemodels/forward_yield.so")
step(${CMAKE_COMMAND} -S "${SOURCE_DIR}/examples/host"
     -B "${WORK_DIR}/host-build" -G "${GENERATOR}"
     -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${stage})
step(${CMAKE_COMMAND} --build "${WORK_DIR}/host-build")
if(EXISTS "${plugin}")
  step("${WORK_DIR}/host-build/host" "${SOURCE_DIR}/data"
       "${WORK_DIR}/host-run" "${plugin}")
  if(NOT step_output MATCHES "\nShut-down, at exit\n.*\nhost walk-through: 19 of 19 steps done")
    message(FATAL_ERROR "unexpected example host output:\n${step_output}")
  endif()
endif()

# pkg-config --cflags --libs nvshared
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} "${stage}/${LIBDIR}/pkgconfig")
step(${PKG_CONFIG} --cflags --libs nvshared)
string(STRIP "${step_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
step(${CXX} "${SOURCE_DIR}/examples/consumer/main.cc" ${flags}
     "-Wl,-rpath,${stage}/${LIBDIR}" -o "${WORK_DIR}/pkgconfig-consumer")
step("${WORK_DIR}/pkgconfig-consumer")
if(NOT step_output MATCHES "CME-A \\(Globex\\) is on market CME")
  message(FATAL_ERROR "unexpected output:\n${step_output}")
endif()
step(${CXX} -std=c++20 "${SOURCE_DIR}/examples/host/main.cc"
     "${SOURCE_DIR}/examples/host/walkthrough.cc" ${flags}
     "-Wl,-rpath,${stage}/${LIBDIR}" -o "${WORK_DIR}/pkgconfig-host")
if(EXISTS "${plugin}")
  step("${WORK_DIR}/pkgconfig-host" --quiet "${SOURCE_DIR}/data"
       "${WORK_DIR}/pkgconfig-host-run" "${plugin}")
  if(NOT step_output MATCHES "^host walk-through: 19 of 19 steps done")
    message(FATAL_ERROR "unexpected example host output:\n${step_output}")
  endif()
endif()
