# What the end-to-end scripts of nvtool share, included by each; they run as
# `cmake -P` with -DNVTOOL=<binary> and -DWORK_DIR=<scratch dir>, which is
# made empty here.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

# run(<expected exit or "nonzero"> <stdout regex> <stderr regex> args...)
# runs nvtool with the args, standard input from ${run_input} when it is
# set, reports every mismatch, and leaves the standard output in `last_out`.
function(run expected_rc out_regex err_regex)
  set(input)
  if(run_input)
    set(input INPUT_FILE "${run_input}")
  endif()
  execute_process(COMMAND "${NVTOOL}" ${ARGN} ${input}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(expected_rc STREQUAL "nonzero")
    if(rc EQUAL 0)
      message(SEND_ERROR "nvtool ${ARGN}: exit 0, expected non-zero\n${out}")
    endif()
  elseif(NOT rc EQUAL expected_rc)
    message(SEND_ERROR "nvtool ${ARGN}: exit ${rc}, expected ${expected_rc}\n${out}${err}")
  endif()
  if(NOT out MATCHES "${out_regex}")
    message(SEND_ERROR "nvtool ${ARGN}: stdout does not match '${out_regex}':\n${out}")
  endif()
  if(NOT err MATCHES "${err_regex}")
    message(SEND_ERROR "nvtool ${ARGN}: stderr does not match '${err_regex}':\n${err}")
  endif()
  set(last_out "${out}" PARENT_SCOPE)
endfunction()
