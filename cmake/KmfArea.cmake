# Areas: one object library per group of source folders, with declared dependencies.
#
#   kmf_area(NAME DIRS dir... [DEPS area...] [LIBS target...] [EMBED symbol=file ...])
#
# Every *.cpp directly inside the listed folders belongs to the area. EMBED turns a text file
# into a C++ definition `extern const char* const symbol;` (namespace kivmovfrec::embedded) so
# DDL and demo data ship inside the library. An area without sources is registered but builds
# nothing, so later work can fill it in.
#
# An area compiles against the public headers (include/) and against an include tree of its own
# (build/area_include/NAME) that holds only the headers of its folders and of the folders of the
# areas it depends on, directly or not. Including a header of an undeclared area therefore fails
# to compile. The trees are laid out by kmf_assemble_library, once every area is known, which
# also refuses a source folder that no area lists.

set_property(GLOBAL PROPERTY KMF_AREAS "")
set_property(GLOBAL PROPERTY KMF_ALL_AREAS "")
set_property(GLOBAL PROPERTY KMF_ALL_DIRS "")

function(kmf_area name)
  cmake_parse_arguments(A "" "" "DIRS;DEPS;LIBS;EMBED" ${ARGN})
  set(sources "")
  foreach(dir IN LISTS A_DIRS)
    if(NOT dir MATCHES "^src/")
      message(FATAL_ERROR "area ${name}: folder ${dir} is not under src/")
    endif()
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${dir}/*.cpp)
    list(APPEND sources ${found})
  endforeach()
  foreach(item IN LISTS A_EMBED)
    string(REPLACE "=" ";" pair "${item}")
    list(GET pair 0 symbol)
    list(GET pair 1 file)
    set(in ${PROJECT_SOURCE_DIR}/${file})
    set(out ${PROJECT_BINARY_DIR}/embedded/${symbol}.cpp)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${in})
    file(READ ${in} text)
    file(WRITE ${out}.tmp "namespace kivmovfrec::embedded {\nextern const char* const ${symbol};\n"
         "const char* const ${symbol} = R\"kmfembed(${text})kmfembed\";\n}\n")
    file(COPY_FILE ${out}.tmp ${out} ONLY_IF_DIFFERENT)
    list(APPEND sources ${out})
  endforeach()
  set_property(GLOBAL PROPERTY KMF_DEPS_${name} "${A_DEPS}")
  set_property(GLOBAL PROPERTY KMF_LIBS_${name} "${A_LIBS}")
  set_property(GLOBAL PROPERTY KMF_DIRS_${name} "${A_DIRS}")
  set_property(GLOBAL APPEND PROPERTY KMF_ALL_AREAS ${name})
  set_property(GLOBAL APPEND PROPERTY KMF_ALL_DIRS ${A_DIRS})
  if(sources)
    add_library(kmf_${name} OBJECT ${sources})
    set_property(GLOBAL APPEND PROPERTY KMF_AREAS ${name})
  endif()
endfunction()

# The area itself and every area it depends on, directly or not.
function(kmf_closure_names out)
  set(todo ${ARGN})
  set(seen "")
  while(todo)
    list(POP_FRONT todo name)
    if(name IN_LIST seen)
      continue()
    endif()
    list(APPEND seen ${name})
    get_property(deps GLOBAL PROPERTY KMF_DEPS_${name})
    list(APPEND todo ${deps})
  endwhile()
  set(${out} ${seen} PARENT_SCOPE)
endfunction()

# The object-library targets of that closure (areas without sources have none).
function(kmf_closure out)
  kmf_closure_names(names ${ARGN})
  set(result "")
  foreach(name IN LISTS names)
    if(TARGET kmf_${name})
      list(APPEND result kmf_${name})
    endif()
  endforeach()
  set(${out} ${result} PARENT_SCOPE)
endfunction()

# fmt, nlohmann-json and the LIBS of the given areas' closure, linked into target.
function(kmf_area_libs target scope)
  kmf_closure_names(names ${ARGN})
  target_link_libraries(${target} ${scope} fmt::fmt nlohmann_json::nlohmann_json)
  foreach(name IN LISTS names)
    get_property(libs GLOBAL PROPERTY KMF_LIBS_${name})
    if(libs)
      target_link_libraries(${target} ${scope} ${libs})
    endif()
  endforeach()
endfunction()

# Include folders and external libraries for code that uses the areas' internals from outside
# them (tests, benchmarks, fuzz targets): the public and the whole internal header root.
function(kmf_area_usage target scope)
  target_include_directories(${target} ${scope}
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
  kmf_area_libs(${target} ${scope} ${ARGN})
endfunction()

# Links the objects of the given areas and of everything they depend on into target.
function(kmf_link_areas target)
  kmf_closure(areas ${ARGN})
  foreach(area IN LISTS areas)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${area}>)
  endforeach()
  kmf_area_usage(${target} PRIVATE ${ARGN})
endfunction()

# Source folders under `root` (relative paths, "src/..." style) that hold a *.cpp and are not
# in `listed`. Kept apart from the configure step so that it can be checked on its own (in
# script mode, where a glob cannot re-run the configure step).
function(kmf_unlisted_dirs out root listed)
  set(depends CONFIGURE_DEPENDS)
  if(CMAKE_SCRIPT_MODE_FILE)
    set(depends "")
  endif()
  file(GLOB_RECURSE cpps ${depends} RELATIVE ${root} ${root}/src/*.cpp)
  set(result "")
  foreach(cpp IN LISTS cpps)
    get_filename_component(dir ${cpp} DIRECTORY)
    if(NOT dir IN_LIST listed AND NOT dir IN_LIST result)
      list(APPEND result ${dir})
    endif()
  endforeach()
  list(SORT result)
  set(${out} ${result} PARENT_SCOPE)
endfunction()

# Lays out build/area_include/NAME: a symbolic link per header of each folder of the area's
# closure, at the header's path under src/. Headers of other folders are simply not there.
function(kmf_area_include_tree name)
  set(tree ${PROJECT_BINARY_DIR}/area_include/${name})
  file(REMOVE_RECURSE ${tree})
  file(MAKE_DIRECTORY ${tree})
  kmf_closure_names(names ${name})
  foreach(area IN LISTS names)
    get_property(dirs GLOBAL PROPERTY KMF_DIRS_${area})
    foreach(dir IN LISTS dirs)
      # A new header re-runs the configure step, which links it in.
      file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${dir}/*.h)
      string(REGEX REPLACE "^src/" "" rel ${dir})
      file(MAKE_DIRECTORY ${tree}/${rel})
      foreach(header IN LISTS headers)
        get_filename_component(file ${header} NAME)
        file(CREATE_LINK ${header} ${tree}/${rel}/${file} SYMBOLIC)
      endforeach()
    endforeach()
  endforeach()
  target_include_directories(kmf_${name} PRIVATE ${PROJECT_SOURCE_DIR}/include ${tree})
  kmf_area_libs(kmf_${name} PRIVATE ${name})
endfunction()

# The shipped libraries: every area's objects in one shared and one static library. The shared
# library exports only what the public headers mark KMF_API and links SQLite and libpq
# privately; the static archive carries them (and fmt) for its consumer's link.
function(kmf_assemble_library)
  get_property(all_areas GLOBAL PROPERTY KMF_ALL_AREAS)
  foreach(area IN LISTS all_areas)
    get_property(deps GLOBAL PROPERTY KMF_DEPS_${area})
    foreach(dep IN LISTS deps)
      if(NOT dep IN_LIST all_areas)
        message(FATAL_ERROR "area ${area} depends on ${dep}, which is no area")
      endif()
    endforeach()
  endforeach()
  get_property(listed GLOBAL PROPERTY KMF_ALL_DIRS)
  kmf_unlisted_dirs(unlisted ${PROJECT_SOURCE_DIR} "${listed}")
  if(unlisted)
    list(JOIN unlisted ", " unlisted)
    message(FATAL_ERROR "source folders that no kmf_area lists: ${unlisted}")
  endif()

  get_property(areas GLOBAL PROPERTY KMF_AREAS)
  set(objects "")
  foreach(area IN LISTS areas)
    kmf_area_include_tree(${area})
    list(APPEND objects $<TARGET_OBJECTS:kmf_${area}>)
  endforeach()
  add_library(kivmovfrec SHARED ${objects})
  add_library(kivmovfrec_static STATIC ${objects})
  set_target_properties(kivmovfrec_static PROPERTIES OUTPUT_NAME kivmovfrec)
  set_target_properties(kivmovfrec PROPERTIES VERSION ${PROJECT_VERSION}
                                              SOVERSION ${PROJECT_VERSION_MAJOR})
  set(map ${PROJECT_SOURCE_DIR}/cmake/kivmovfrec.map)
  target_link_options(kivmovfrec PRIVATE -Wl,--version-script=${map})
  set_property(TARGET kivmovfrec APPEND PROPERTY LINK_DEPENDS ${map})
  foreach(lib kivmovfrec kivmovfrec_static)
    target_include_directories(${lib} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${lib} PRIVATE $<BUILD_INTERFACE:fmt::fmt>
                                         $<BUILD_INTERFACE:nlohmann_json::nlohmann_json>
                                         SQLite::SQLite3)
    if(PostgreSQL_FOUND)
      target_link_libraries(${lib} PRIVATE PostgreSQL::PostgreSQL)
    endif()
  endforeach()
  # A static archive keeps its dependencies for the consumer's link; SQLite and libpq, private
  # above, are exported as link-only dependencies of the archive by CMake itself.
  target_link_libraries(kivmovfrec_static INTERFACE $<INSTALL_INTERFACE:fmt::fmt>)
endfunction()
