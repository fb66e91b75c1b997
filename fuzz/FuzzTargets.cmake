# The fuzz targets, each with the area whose public parser it drives (the area's dependencies
# come with it). Both the libFuzzer build (fuzz/CMakeLists.txt) and the corpus replay of the
# test suite (fuzz/replay/) read this list. The seeds and every reproducer found live in
# fuzz/corpus/<target>/.
set(VN_FUZZ_TARGETS
  wkt_parser:wkt
  http_warning:network
  url_query:network
  value_coercion:values
  json:values
  model_names:model
  number_format:formatting
  date_format:formatting
  regular_expression:formatting
  string_format:log
  layout_dimension:geometry
  keyed_unarchiver:coding)

# vn_fuzz_targets_for_areas(<out-var> <areas...>): the target names whose area is built.
function(vn_fuzz_targets_for_areas out)
  set(names "")
  foreach(entry IN LISTS VN_FUZZ_TARGETS)
    string(REPLACE ":" ";" parts ${entry})
    list(GET parts 0 name)
    list(GET parts 1 area)
    if(area IN_LIST ARGN)
      list(APPEND names ${name})
    endif()
  endforeach()
  set(${out} ${names} PARENT_SCOPE)
endfunction()
