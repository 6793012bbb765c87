# A source folder that no area lists is found (the configure step refuses it), run as
# `cmake -DSOURCE_DIR=... -DWORK_DIR=... -P` on a scratch tree under WORK_DIR.
cmake_minimum_required(VERSION 3.25)
include(${SOURCE_DIR}/cmake/KmfArea.cmake)
set(root ${WORK_DIR}/unlisted_folders)
file(REMOVE_RECURSE ${root})
foreach(file src/a/x.cpp src/a/b/y.cpp src/c/z.cpp src/c/d/only_header.h src/e/notes.txt)
  get_filename_component(dir ${root}/${file} DIRECTORY)
  file(MAKE_DIRECTORY ${dir})
  file(TOUCH ${root}/${file})
endforeach()

function(expect_unlisted listed expected)
  kmf_unlisted_dirs(found ${root} "${listed}")
  if(NOT "${found}" STREQUAL "${expected}")
    message(SEND_ERROR "listed [${listed}]: found [${found}], expected [${expected}]")
  endif()
endfunction()
expect_unlisted("src/a" "src/a/b;src/c")           # a sub-folder is not covered by its parent
expect_unlisted("src/a;src/a/b;src/c" "")          # folders without sources need no area
expect_unlisted("src/a/b;src/c;src/x" "src/a")     # a listed folder that does not exist is no cover
file(REMOVE_RECURSE ${root})
