# The areas' header boundaries, run as `cmake -DSOURCE_DIR=... -DBINARY_DIR=... -P`:
#  - each area's include tree holds the headers of its own and its dependencies' folders and
#    nothing else (a dependency's sub-folder that is another area stays out);
#  - every source of src/ is compiled against its area's tree, never against src/ itself.
set(tree ${BINARY_DIR}/area_include)
set(failures "")

# area | header | whether the area sees it
set(cases
  "core|storage/columnas.h|NO"          # storage depends on core, not the reverse
  "ui|storage/columnas.h|NO"
  "ui|ui/user_picker/eleccion_usuarios.h|YES"
  "storage|storage/columnas.h|YES"
  "storage|platform/suite/clock.h|YES"  # through core
  "schedule|platform/db/dialect.h|NO"
  "formula|storage/parametros.h|YES"
  "formula|storage/install/sql_script.h|NO"
  "install|storage/install/sql_script.h|YES"
  "install|storage/columnas.h|NO"
  "api|storage/install/sql_script.h|YES")
foreach(case IN LISTS cases)
  string(REPLACE "|" ";" parts "${case}")
  list(GET parts 0 area)
  list(GET parts 1 header)
  list(GET parts 2 expected)
  if(NOT IS_DIRECTORY ${tree}/${area})
    list(APPEND failures "no include tree for area ${area}")
  elseif(EXISTS ${tree}/${area}/${header} AND expected STREQUAL "NO")
    list(APPEND failures "area ${area} sees ${header}")
  elseif(NOT EXISTS ${tree}/${area}/${header} AND expected STREQUAL "YES")
    list(APPEND failures "area ${area} does not see ${header}")
  endif()
endforeach()

file(READ ${BINARY_DIR}/compile_commands.json json)
string(JSON count LENGTH "${json}")
math(EXPR last "${count} - 1")
set(checked 0)
foreach(i RANGE ${last})
  string(JSON file GET "${json}" ${i} file)
  if(NOT file MATCHES "^${SOURCE_DIR}/src/")
    continue()
  endif()
  string(JSON command GET "${json}" ${i} command)
  math(EXPR checked "${checked} + 1")
  if(command MATCHES "-I *${SOURCE_DIR}/src( |$)")
    list(APPEND failures "${file} is compiled with all of src/ in its include path")
  elseif(NOT command MATCHES "-I *${BINARY_DIR}/area_include/[a-z_]+( |$)")
    list(APPEND failures "${file} is compiled without its area's include tree")
  endif()
endforeach()
if(checked EQUAL 0)
  list(APPEND failures "compile_commands.json lists no source of src/")
endif()

if(failures)
  list(JOIN failures "\n  " text)
  message(FATAL_ERROR "area header boundaries:\n  ${text}")
endif()
