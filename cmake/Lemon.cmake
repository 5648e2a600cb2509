# cmake -DLEMON= -DGRAMMAR= -DOUT_DIR= -DCONFLICTS= -P Lemon.cmake: runs lemon on a grammar in OUT_DIR and leaves NAME.cpp
# there. Lemon ends with status 1 when it had conflicts to settle; exactly CONFLICTS of them are known and meant.
get_filename_component(name ${GRAMMAR} NAME_WE)
configure_file(${GRAMMAR} ${OUT_DIR}/${name}.y COPYONLY)
execute_process(COMMAND ${LEMON} -q ${OUT_DIR}/${name}.y WORKING_DIRECTORY ${OUT_DIR}
                OUTPUT_VARIABLE out ERROR_VARIABLE err)
string(STRIP "${out}${err}" said)
if(NOT said STREQUAL "${CONFLICTS} parsing conflicts.")
  message(FATAL_ERROR "lemon on ${name}.y: ${said}")
endif()
file(RENAME ${OUT_DIR}/${name}.c ${OUT_DIR}/${name}.cpp)
