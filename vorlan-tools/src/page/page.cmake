# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# The page that `vorlan-tools page` writes: page.html, its style and its scripts, in this order, with
# Debian's Chart.js, become one C++ file.

find_file(VORLAN_CHART_JS chart.min.js
  PATHS /usr/share/javascript/chart.js /usr/share/nodejs/chart.js/dist NO_DEFAULT_PATH REQUIRED)
set(page_folder ${CMAKE_CURRENT_SOURCE_DIR}/src/page/page)
set(page_scripts elements.js numbers.js theme.js unit_groups.js svg_recorder.js tables.js printing.js figures.js
  alignments.js chart_configs.js unit_length_charts.js calibration_chart.js sequence_map.js summary.js comparison.js main.js)
set(page_files ${page_scripts})
list(TRANSFORM page_files PREPEND ${page_folder}/)
set(page_parts ${CMAKE_CURRENT_BINARY_DIR}/page_parts.cpp)
string(REPLACE ";" " " page_script_list "${page_scripts}")
add_custom_command(OUTPUT ${page_parts}
  COMMAND ${CMAKE_COMMAND} -DFOLDER=${page_folder} -DCHART_JS=${VORLAN_CHART_JS} "-DSCRIPTS=${page_script_list}"
    -DOUTPUT=${page_parts} -P ${CMAKE_CURRENT_SOURCE_DIR}/src/page/embed_page.cmake
  DEPENDS ${page_files} ${page_folder}/page.html ${page_folder}/page.css ${VORLAN_CHART_JS}
    ${CMAKE_CURRENT_SOURCE_DIR}/src/page/embed_page.cmake
  VERBATIM)
target_sources(vorlan_tools_core PRIVATE ${page_parts})
