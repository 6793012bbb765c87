# Areas: one object library per group of source folders, with declared dependencies.
#
#   kmf_area(NAME DIRS dir... [DEPS area...] [LIBS target...] [EMBED symbol=file ...])
#
# Every *.cpp directly inside the listed folders belongs to the area. EMBED turns a text file
# into a C++ definition `extern const char* const symbol;` (namespace kivmovfrec::embedded) so
# DDL and demo data ship inside the library. An area without sources is registered but builds
# nothing, so later work can fill it in.

set_property(GLOBAL PROPERTY KMF_AREAS "")

function(kmf_area name)
  cmake_parse_arguments(A "" "" "DIRS;DEPS;LIBS;EMBED" ${ARGN})
  set(sources "")
  foreach(dir IN LISTS A_DIRS)
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
  if(sources)
    add_library(kmf_${name} OBJECT ${sources})
    kmf_area_usage(kmf_${name} PUBLIC ${name})
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

# Include folders and external libraries that every user of the areas' code needs: the public
# and internal header roots, fmt, nlohmann-json and each area's own LIBS (closure included).
function(kmf_area_usage target scope)
  kmf_closure_names(names ${ARGN})
  target_include_directories(${target} ${scope}
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
  target_link_libraries(${target} ${scope} fmt::fmt nlohmann_json::nlohmann_json)
  foreach(name IN LISTS names)
    get_property(libs GLOBAL PROPERTY KMF_LIBS_${name})
    if(libs)
      target_link_libraries(${target} ${scope} ${libs})
    endif()
  endforeach()
endfunction()

# Links the objects of the given areas and of everything they depend on into target.
function(kmf_link_areas target)
  kmf_closure(areas ${ARGN})
  foreach(area IN LISTS areas)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${area}>)
  endforeach()
  kmf_area_usage(${target} PRIVATE ${ARGN})
endfunction()

# The shipped libraries: every area's objects in one shared and one static library.
function(kmf_assemble_library)
  get_property(areas GLOBAL PROPERTY KMF_AREAS)
  set(objects "")
  set(libs "")
  foreach(area IN LISTS areas)
    list(APPEND objects $<TARGET_OBJECTS:kmf_${area}>)
  endforeach()
  add_library(kivmovfrec SHARED ${objects})
  add_library(kivmovfrec_static STATIC ${objects})
  set_target_properties(kivmovfrec_static PROPERTIES OUTPUT_NAME kivmovfrec)
  set_target_properties(kivmovfrec PROPERTIES VERSION ${PROJECT_VERSION}
                                              SOVERSION ${PROJECT_VERSION_MAJOR})
  foreach(lib kivmovfrec kivmovfrec_static)
    target_include_directories(${lib} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${lib} PRIVATE $<BUILD_INTERFACE:fmt::fmt>
                                         $<BUILD_INTERFACE:nlohmann_json::nlohmann_json>)
    target_link_libraries(${lib} PUBLIC SQLite::SQLite3)
    if(PostgreSQL_FOUND)
      target_link_libraries(${lib} PUBLIC PostgreSQL::PostgreSQL)
    endif()
  endforeach()
  # A static archive keeps its dependencies for the consumer's link.
  target_link_libraries(kivmovfrec_static INTERFACE $<INSTALL_INTERFACE:fmt::fmt>)
endfunction()
