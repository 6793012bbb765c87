# A source folder that no area lists is found (the configure step refuses it), run as
# `cmake -DSOURCE_DIR=... -DWORK_DIR=... -P`. Works on a scratch tree under WORK_DIR.
cmake_minimum_required(VERSION 3.25)
include(${SOURCE_DIR}/cmake/KmfArea.cmake)
set(root ${WORK_DIR}/unlisted_folders)
file(REMOVE_RECURSE ${root})
foreach(file src/a/x.cpp src/a/b/y.cpp src/c/z.cpp src/c/d/only_header.h src/e/notes.txt)
  get_filename_component(dir ${root}/${file} DIRECTORY)
  file(MAKE_DIRECTORY ${dir})
  file(TOUCH ${root}/${file})
endforeach()

set(failures "")
# listed folders | folders expected back (comma-separated)
set(cases
  "src/a|src/a/b,src/c"          # a sub-folder is not covered by its parent
  "src/a,src/a/b,src/c|"         # folders without sources (c/d, e) need no area
  "src/a/b,src/c,src/x|src/a")   # an area's folder that does not exist changes nothing
foreach(case IN LISTS cases)
  string(REPLACE "|" ";" parts "${case}")
  list(GET parts 0 listed)
  string(REPLACE "," ";" listed "${listed}")
  list(LENGTH parts n)
  set(expected "")
  if(n GREATER 1)
    list(GET parts 1 expected)
    string(REPLACE "," ";" expected "${expected}")
  endif()
  kmf_unlisted_dirs(found ${root} "${listed}")
  if(NOT "${found}" STREQUAL "${expected}")
    list(APPEND failures "listed [${listed}]: found [${found}], expected [${expected}]")
  endif()
endforeach()
file(REMOVE_RECURSE ${root})

if(failures)
  list(JOIN failures "\n  " text)
  message(FATAL_ERROR "unlisted source folders:\n  ${text}")
endif()
