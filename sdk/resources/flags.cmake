# cmake -D COUNTRIES=countries.json -D FLAGS=folder -D BUNDLE=folder -P flags.cmake
# Copies the flag of each country in the list into the bundle, by the country's code.
file(READ "${COUNTRIES}" countries)
string(JSON count LENGTH "${countries}")
math(EXPR last "${count} - 1")
set(flags "")
foreach(index RANGE ${last})
  string(JSON code GET "${countries}" ${index} code)
  if(NOT EXISTS "${FLAGS}/${code}.svg")
    message(FATAL_ERROR "There is no flag for the country \"${code}\" in ${FLAGS}")
  endif()
  list(APPEND flags "${FLAGS}/${code}.svg")
endforeach()
file(COPY ${flags} DESTINATION "${BUNDLE}")
